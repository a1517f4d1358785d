#include "core/TelegramText.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "base/Windows1252.h"
#include "base/su.h"
#include "comm/COM_A.h"
#include "comm/COM_T.h"
#include "core/ControllerImage.h"
#include "core/ParameterTypes.h"
#include "core/ValueSets.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Of a request: start character, station address and mode in front of the body, sum and end behind it.
constexpr qsizetype kAddressAt = 1;
constexpr qsizetype kAddressDigits = 2;
constexpr qsizetype kBodyAt = 5;
constexpr qsizetype kTail = 3;
constexpr qsizetype kShortestRequest = kBodyAt + kTail;
constexpr QChar kStart = u'#';
constexpr QChar kCarriageReturn = u'\r';

// Of a reply: the mark of a refusal, and the payload.
constexpr qsizetype kMarkAt = 5;
constexpr qsizetype kPayloadAt = 6;
constexpr qsizetype kWordDigits = 4;

// Most telegrams are no longer, so that what they say stands below each other.
constexpr qsizetype kUsualCharacters = 18;

constexpr QStringView kVersionQuery = u"v00";

bool EndsLine(QChar c) {
  return c <= kCarriageReturn;
}

QString SumFault(const QString& expected, QStringView found) {
  return u"Prüfsumme falsch, %1 statt %2"_s.arg(found.toString(), expected);
}

// The reply among what was received, as the telegram layer looks for it: line by line, behind the echo.
struct FoundReply {
  QString line;         // without what stands behind it
  bool ended = false;   // the line has an end
  bool echoed = false;  // the request came back before it
};

FoundReply FindReply(const QString& request, const QString& received) {
  FoundReply found;
  QStringView rest = received;
  while (!rest.isEmpty()) {
    const auto end = std::find_if(rest.begin(), rest.end(), EndsLine);
    if (end == rest.end()) return {rest.toString(), false, found.echoed};
    QStringView line = rest.first(end - rest.begin() + 1);
    rest = rest.sliced(line.size());
    if (!line.startsWith(kStart)) return {line.toString(), true, found.echoed};
    // What begins like a request is its echo, whatever has become of it on its way.
    found.echoed = true;
    if (line.size() <= request.size()) continue;
    line = line.sliced(request.size());
    if (line.back() >= u'\n') return {line.toString(), true, true};
  }
  return found;
}

// Printable characters of a word in quotes, or nothing.
QString Letters(quint16 word) {
  const quint8 bytes[] = {static_cast<quint8>(word >> 8), static_cast<quint8>(word & 0xFF)};
  QString letters;
  for (const quint8 byte : bytes)
    letters += CharacterFromByte(byte);
  const bool printable =
      word != 0xFFFF && std::all_of(letters.cbegin(), letters.cend(), [](QChar c) { return c.isPrint(); });
  return printable ? u'„' + letters + u'“' : QString();
}

}  // namespace

QString ShownCharacters(QByteArrayView characters) {
  constexpr char16_t kSymbols = 0x2400;  // of the control characters, in their order
  constexpr char16_t kDelete = 0x7F;
  constexpr char16_t kDeleteSymbol = 0x2421;
  QString shown = TextFromBytes(characters);
  for (QChar& c : shown) {
    if (c < u' ') c = QChar(static_cast<char16_t>(kSymbols + c.unicode()));
    if (c == kDelete) c = kDeleteSymbol;
    // Of these there are no symbols.
    if (c > kDelete && c < QChar(0xA0)) c = QChar::ReplacementCharacter;
  }
  return shown;
}

QString TimeOfDay(double secondsSinceMidnight) {
  constexpr qint64 kDay_ms = 24LL * 60 * 60 * 1000;
  const qint64 all_ms =
      (static_cast<qint64>(std::floor(secondsSinceMidnight * 1000)) % kDay_ms + kDay_ms) % kDay_ms;
  const auto digits = [](qint64 number, int count) {
    return QString::number(number).rightJustified(count, u'0');
  };
  return digits(all_ms / 3'600'000, 2) + u':' + digits(all_ms / 60'000 % 60, 2) + u':' +
         digits(all_ms / 1000 % 60, 2) + u'.' + digits(all_ms % 1000, 3);
}

QString RequestLine(const QString& characters, const QString& text) {
  return u"PC     > "_s + characters.leftJustified(kUsualCharacters) + u"  "_s + text;
}

QString ReplyLine(const QString& characters, const QString& text) {
  return u"Regler < "_s + characters.leftJustified(kUsualCharacters) + u"  "_s + text;
}

/// A request taken apart.
struct TelegramReader::Parts {
  enum class Kind { Damaged, Version, Read, Write, Other };
  Kind kind = Kind::Damaged;
  QString frame;
  QString station;          // in decimal
  QString address;          // four digits, of a word
  QString word;             // the same, of one that is written
  bool namesKnown = false;  // the definitions are those of the exchange
};

TelegramReader::TelegramReader(const Module1& module) : version_(module.VersionList.SelectedText()) {
  for (const VersionRecord& row : module.Versionen)
    if (!row.Version.isEmpty()) letters_.emplace_back(row.Version, row.Kennung);
  for (int index = 0; index < module.ParCount; ++index) {
    const ParameterRecord& record = module.Par[index];
    if (record.VarAdresse.isEmpty()) continue;
    const CodedValue places = PlacesOf(record);
    if (places.words.empty()) continue;
    const auto parameter = static_cast<int>(records_.size());
    records_.push_back(record);
    int word = 0;
    for (const CodedWord& place : places.words)
      places_.push_back(
          {place.address, place.mask, parameter, ++word, static_cast<int>(places.words.size())});
  }
  std::stable_sort(places_.begin(), places_.end(),
                   [](const Place& left, const Place& right) { return left.address < right.address; });
}

TelegramReader::Parts TelegramReader::PartsOf(QByteArrayView request, const QString& version) const {
  Parts parts;
  parts.frame = TextFromBytes(request);
  const QString& frame = parts.frame;
  if (frame.size() < kShortestRequest || !frame.startsWith(kStart) || !frame.endsWith(kCarriageReturn))
    return parts;
  const QStringView summed = QStringView(frame).chopped(kTail);
  if (TelegramSum(summed) != QStringView(frame).sliced(summed.size(), 2)) return parts;
  parts.kind = Parts::Kind::Other;
  const QStringView station = summed.sliced(kAddressAt, kAddressDigits);
  parts.station =
      su::IsHex(station) ? QString::number(static_cast<int>(su::HexToNumber(station))) : station.toString();
  parts.namesKnown = version == version_;
  const QStringView body = summed.sliced(kBodyAt);
  if (body == kVersionQuery) {
    parts.kind = Parts::Kind::Version;
    return parts;
  }
  const auto row = std::find_if(letters_.begin(), letters_.end(),
                                [&version](const auto& letters) { return letters.first == version; });
  if (row == letters_.end() || body.isEmpty() || !su::IsHex(body.sliced(1))) return parts;
  const QString& letters = row->second.Padded();
  const bool writes = body.at(0) == letters.at(0) && body.size() == 1 + 2 * kWordDigits;
  const bool reads = body.at(0) == letters.at(1) && body.size() == 1 + kWordDigits;
  if (!writes && !reads) return parts;
  parts.kind = writes ? Parts::Kind::Write : Parts::Kind::Read;
  parts.address = body.sliced(1, kWordDigits).toString();
  if (writes) parts.word = body.sliced(1 + kWordDigits).toString();
  return parts;
}

auto TelegramReader::PlacesAt(const Parts& parts) const
    -> std::pair<std::vector<Place>::const_iterator, std::vector<Place>::const_iterator> {
  if (!parts.namesKnown) return {places_.end(), places_.end()};
  // A byte is asked for by its own address, which may be odd; what answers is the word.
  const auto address = static_cast<quint16>(static_cast<quint16>(su::HexToNumber(parts.address)) & 0xFFFEU);
  const auto first = std::lower_bound(places_.begin(), places_.end(), address,
                                      [](const Place& place, quint16 at) { return place.address < at; });
  const auto last = std::upper_bound(first, places_.end(), address,
                                     [](quint16 at, const Place& place) { return at < place.address; });
  return {first, last};
}

QString TelegramReader::NameAt(const Place& place) const {
  const QString& name = records_[static_cast<std::size_t>(place.parameter)].Name;
  return place.words == 1 ? name : u"%1, Wort %2 von %3"_s.arg(name).arg(place.word).arg(place.words);
}

QString TelegramReader::ValueText(const Place& place, quint16 word) const {
  const ParameterRecord& record = records_[static_cast<std::size_t>(place.parameter)];
  const bool isText = TypeOf(record.Typ).kind == ValueKind::Text;
  if (place.words > 1 || isText) {
    const QString letters = isText ? Letters(word) : QString();
    return letters.isEmpty() ? su::HexPad(word, kWordDigits) : letters;
  }
  const std::optional<ParameterValue> value = Decoded(record, {{place.address, word}});
  if (!value) return su::HexPad(word, kWordDigits);
  const QString unit = record.Einheit.Trimmed();
  return ExactText(record, *value) + (unit.isEmpty() ? QString() : u' ' + unit);
}

// What a word means: each parameter that lies in it with its value.
QString TelegramReader::WordText(const Parts& parts, QStringView digits) const {
  const auto word = static_cast<quint16>(su::HexToNumber(digits));
  QStringList values;
  const auto [first, last] = PlacesAt(parts);
  for (auto place = first; place != last; ++place)
    values.append(NameAt(*place) + u" = "_s + ValueText(*place, word));
  return values.join(u"; "_s);
}

QString TelegramReader::RequestText(QByteArrayView request, const QString& version) const {
  const Parts parts = PartsOf(request, version);
  const QString station = u"Gerät "_s + parts.station + u": "_s;
  switch (parts.kind) {
    case Parts::Kind::Damaged:
      return u"keine gültige Anfrage"_s;
    case Parts::Kind::Version:
      return station + u"Versionsabfrage"_s;
    case Parts::Kind::Read: {
      QStringList names;
      const auto [first, last] = PlacesAt(parts);
      for (auto place = first; place != last; ++place)
        names.append(NameAt(*place));
      const QString text = station + u"Lesen "_s + parts.address;
      return names.isEmpty() ? text : text + u", "_s + names.join(u"; "_s);
    }
    case Parts::Kind::Write: {
      const QString values = WordText(parts, parts.word);
      const QString text = station + u"Schreiben "_s + parts.address + u" = "_s + parts.word;
      return values.isEmpty() ? text : text + u", "_s + values;
    }
    case Parts::Kind::Other:
      break;
  }
  return station + u"unbekannter Befehl"_s;
}

ReplyMeaning TelegramReader::ReplyText(QByteArrayView request, QByteArrayView received,
                                       const QString& version) const {
  const Parts parts = PartsOf(request, version);
  const FoundReply reply = FindReply(parts.frame, TextFromBytes(received));
  const QString& line = reply.line;
  const auto meaning = [&reply](bool usable, const QString& text) {
    return ReplyMeaning{usable, reply.echoed ? text + u" (nach dem Echo)"_s : text};
  };
  if (received.isEmpty()) return {false, u"keine Antwort"_s};
  if (line.isEmpty()) return {false, u"nur das Echo der Anfrage"_s};
  if (!reply.ended) return meaning(false, u"unvollständig, ohne Zeilenende"_s);
  if (line.size() < kShortestReply) {
    return meaning(false, u"zu kurz, %1 von mindestens %2 Zeichen"_s.arg(line.size()).arg(kShortestReply));
  }
  if (line.at(kMarkAt) == u'?')
    return meaning(false, u"Abgelehnt:"_s + RefusalText(line.sliced(kPayloadAt, 2)));
  const QStringView summed = QStringView(line).chopped(kTail);
  const QStringView found = QStringView(line).sliced(summed.size(), 2);
  if (const QString sum = TelegramSum(summed); sum != found) return meaning(false, SumFault(sum, found));
  const QString payload = summed.sliced(kPayloadAt).toString();
  switch (parts.kind) {
    case Parts::Kind::Version:
      return meaning(true, u"Version "_s + VersionText(payload));
    case Parts::Kind::Write:
      return meaning(true, u"geschrieben"_s);
    case Parts::Kind::Read: {
      if (payload.size() != kWordDigits) {
        return meaning(false, u"falsche Länge, %1 statt %2 Stellen"_s.arg(payload.size()).arg(kWordDigits));
      }
      const QString values = su::IsHex(payload) ? WordText(parts, payload) : QString();
      return meaning(true, values.isEmpty() ? u"Wort "_s + payload : values);
    }
    default:
      return meaning(true, u"Inhalt „"_s + payload + u'“');
  }
}

QString TelegramReader::RequestText(const Exchange& exchange) const {
  QString text = RequestText(exchange.request.View(), exchange.version);
  if (exchange.attempt > 1) text += u" (%1. Versuch)"_s.arg(exchange.attempt);
  if (exchange.end == ExchangeEnd::NoPort) text += u" (nicht gesendet)"_s;
  return text;
}

QString TelegramReader::ReplyText(const Exchange& exchange) const {
  QString text;
  if (exchange.end == ExchangeEnd::NoPort) {
    text = ReasonOf(exchange.failure);
  } else if (!exchange.received.Whole()) {
    text = exchange.failure.isEmpty() ? u"sehr viele Zeichen"_s : u"zu viele Zeichen"_s;
  } else {
    const ReplyMeaning meaning =
        ReplyText(exchange.request.View(), exchange.received.View(), exchange.version);
    // The characters are in order, and it failed all the same: it was too late, or not what was expected.
    text = meaning.usable && !exchange.failure.isEmpty() ? ReasonOf(exchange.failure) : meaning.text;
    if (const QString lineError = LineErrorText(exchange.lineError); !lineError.isEmpty())
      text += u':' + lineError;
  }
  return exchange.fault.isEmpty() ? text : text + u": "_s + exchange.fault;
}

QString TelegramLines::Of(const TelegramReader& reader, const Exchange& exchange) {
  QString lines;
  if (exchange.portNumber != portNumber_ || exchange.settings != settings_ || exchange.version != version_) {
    portNumber_ = exchange.portNumber;
    settings_ = exchange.settings;
    version_ = exchange.version;
    lines = u"Leitung: COM%1, %2; ausgewählte Version: %3\n"_s.arg(
        QString::number(portNumber_), settings_, version_.isEmpty() ? u"keine"_s : version_);
  }
  constexpr double kMilli = 1000;
  lines += TimeOfDay(exchange.at_s) + u"  "_s +
           RequestLine(ShownCharacters(exchange.request), reader.RequestText(exchange)) + u'\n';
  lines += TimeOfDay(exchange.at_s + exchange.answer_s) + u"  "_s +
           ReplyLine(ShownCharacters(exchange.received),
                     u"%1 (%2 ms)"_s.arg(reader.ReplyText(exchange),
                                         QString::number(std::lround(exchange.answer_s * kMilli)))) +
           u'\n';
  return lines;
}

}  // namespace kalivor
