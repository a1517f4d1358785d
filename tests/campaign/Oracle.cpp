// The rules of telegrams, transfers and reports once more, in their plainest form.
#include "campaign/Oracle.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

using Kind = PlantParameter::Kind;

constexpr double kReplyTime_s = 0.4;
constexpr double kLongestExchange_s = 1.2;
constexpr double kPause_s = 0.02;
constexpr double kTolerance_s = 1e-3;

// The exchanges are not those that the rules demand.
struct Mismatch {
  QString text;
};

// A run-time error ends the transfer; its box shows this text.
struct RunTimeError {
  QString box;
};

[[noreturn]] void Fail(const QString& text) {
  throw Mismatch{text};
}

void Require(bool holds, const QString& text) {
  if (!holds) Fail(text);
}

// The upper half of windows-1252 that differs from Latin-1.
constexpr char16_t kHigh[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

QChar Character(int code) {
  return code >= 0x80 && code < 0xA0 ? QChar(kHigh[code - 0x80]) : QChar(static_cast<char16_t>(code));
}

int Code(QChar character) {
  for (int code = 0; code < 256; ++code) {
    if (Character(code) == character) return code;
  }
  return '?';
}

QString Text(const QByteArray& bytes) {
  QString text;
  for (const char byte : bytes)
    text += Character(static_cast<unsigned char>(byte));
  return text;
}

QByteArray Hex4(qint64 number) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  QByteArray text;
  for (int shift = 12; shift >= 0; shift -= 4)
    text += kDigits[(number >> shift) & 15];
  return text;
}

QByteArray Sum(const QByteArray& bytes) {
  unsigned sum = 0;
  for (const char byte : bytes)
    sum += static_cast<unsigned char>(byte);
  return Hex4(sum % 256).right(2);
}

// What is no hexadecimal digit counts as 0.
int Digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

int Number(const QByteArray& digits) {
  int number = 0;
  for (const char c : digits)
    number = number * 16 + Digit(c);
  return number;
}

// From "8" on a first character makes the number negative.
int SignedNumber(const QByteArray& digits) {
  if (static_cast<unsigned char>(digits.at(0)) < '8') return Number(digits);
  int complement = 0;
  for (const char c : digits)
    complement = complement * 16 + (15 - Digit(c));
  return -complement - 1;
}

QByteArray After(const QByteArray& address, int offset) {
  return Hex4(address.right(4).toInt(nullptr, 16) + offset);
}

bool IsOdd(const PlantParameter& parameter) {
  return Digit(parameter.address.back()) % 2 == 1;
}

QString Scaled(const PlantParameter& parameter, qint32 value) {
  qint64 drop = 1;
  for (int i = 0; i < parameter.dropped; ++i)
    drop *= 10;
  qint64 whole = drop;
  for (int i = 0; i < parameter.decimals; ++i)
    whole *= 10;
  QString text = QString::number(value / whole);
  while (text.size() < 6)
    text.prepend(u' ');
  if (parameter.decimals > 0) {
    QString fraction = QString::number(std::abs(value % whole / drop));
    while (fraction.size() < parameter.decimals)
      fraction.prepend(u'0');
    text += u'.' + fraction;
  }
  while (text.size() < 9)
    text += u' ';
  return text;
}

QString Blank(int number) {
  return number < 0 ? QString::number(number) : u' ' + QString::number(number);
}

bool Expired(double start_s, double now_s, double duration_s) {
  return now_s < start_s || now_s - start_s >= duration_s;
}

QString EventText(int event) {
  switch (event) {
    case 1001:
      return u" Es wurde ein Anhaltesignal (Break-Signal) empfangen."_s;
    case 1004:
      return u" Datenblockfehler (Framing Error). Die Hardware hat einen Datenblockfehler entdeckt."_s;
    case 1006:
      return u" Anschlußüberlauf (Port Overrun). Es ist ein Zeichen verlorengegangen, da die Hardware nicht "
             u"in der "
             "Lage war, dieses Zeichen zu lesen, bevor das nächste Zeichen eintraf."_s;
    case 1008:
      return u" Überlauf des Empfangspuffers (Receive Buffer Overflow). Der Empfangspuffer ist voll."_s;
    case 1009:
      return u" Paritätsfehler (Parity Error). Die Hardware hat einen Paritätsfehler entdeckt."_s;
    case 1010:
      return u" Sendepuffer voll (Transmit Buffer Full). Bei dem Versuch, ein Zeichen in die Warteschlange "
             "aufzunehmen, wurde festgestellt, daß der Sendepuffer voll war."_s;
    case 1011:
      return u" Unerwarteter Fehler beim Abrufen des Device Control Block (DCB) für den Anschluß."_s;
    default:
      return {};
  }
}

QString CodeText(const QByteArray& code) {
  if (code == "02") return u" Code 02 Falscher Serialmode"_s;
  if (code == "04") return u" Code 04 Falsches Kennzeichen"_s;
  if (code == "05") return u" Code 05 Falsche Anzahl Parameter"_s;
  if (code == "06") return u" Code 06 Falsches Zeichen"_s;
  if (code == "07") return u" Code 07 Falsche Datensatznummer"_s;
  return u" Code "_s + Text(code);
}

WrongClass ClassOf(const Line& line, const QByteArray& accepted, const std::vector<int>& origins,
                   int exchange) {
  const int first = origins.front();
  const bool one =
      std::all_of(origins.begin(), origins.end(), [first](int origin) { return origin == first; });
  if (!one) return WrongClass::Collision;
  const Origin& origin = line.origins[static_cast<std::size_t>(first)];
  if (origin.kind == Origin::Kind::Foreign) return WrongClass::ForeignReply;
  Require(origin.kind == Origin::Kind::Reply, u"no reply was taken as one: "_s + Text(accepted));
  if (origin.otherController) return WrongClass::ExchangedController;
  if (origin.exchange != exchange) return WrongClass::LateReply;
  // Nobody checks the length of a version. Losing the first digit of the sum can even leave one that fits:
  // the last character of the version then stands for it.
  constexpr qsizetype versionReply = 17;
  if (accepted.mid(5, 1) == "v" && accepted.size() != versionReply) return WrongClass::OtherLength;
  if (origin.forgotten) return WrongClass::WriteWithoutEffect;
  if (origin.damages >= 2 || origin.requestDamages >= 2) return WrongClass::SumPreserving;
  Fail(u"a wrong value that the telegram shows was taken over: "_s + Text(accepted));
}

}  // namespace

QString Oracle::Run(Command command) {
  try {
    Transfer(command);
    if (next_ != line_.log.size()) return u"the port was opened once more than the rules demand"_s;
    return {};
  } catch (const Mismatch& mismatch) {
    return u"exchange %1: "_s.arg(next_) + mismatch.text;
  }
}

void Oracle::Transfer(Command command) {
  static const QString kFirst[] = {u"Empfangen.."_s, u"Vergleichen.."_s, u"Senden.."_s};
  static const QString kLast[] = {u"Empfangen beendet"_s, u"Vergleich beendet"_s, u"Senden beendet"_s};
  static const QString kAborted[] = {u"Empfangen abgebrochen"_s, u"Vergleich abgebrochen"_s,
                                     u"Senden abgebrochen"_s};
  const auto number = static_cast<std::size_t>(command);
  Add(kFirst[number]);
  try {
    const bool done = command == Command::Send ? Sending() : Following(command);
    expected_.transferred = expected_.transferred && done;
    Add(done ? kLast[number] : kAborted[number]);
  } catch (const RunTimeError& error) {
    Add(kAborted[number]);
    expected_.boxes.append(error.box);
    expected_.thrown = true;
  }
}

bool Oracle::Following(Command command) {
  if (!FollowVersion(command)) return false;
  if (FollowPlant(PlantNumber())) {
    if (command == Command::Receive) {
      ReceiveAll();
    } else {
      Walk([this](PlantParameter& parameter) { return CompareOne(parameter); });
    }
    expected_.transferred = true;
  }
  return !abort_;
}

bool Oracle::FollowVersion(Command command) {
  const QString version = Identify();
  if (version.startsWith(u"ERROR: "_s)) {
    Add(version);
    return false;
  }
  const int position = FindVersion(version);
  if (position < 0) {
    Add(version.startsWith(u"Error"_s) ? version : u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  if (position == plant_.version) return true;
  if (command == Command::Compare) {
    Add(u"Andere ReglerVersion: "_s + version);
    return false;
  }
  SelectVersion(position);
  return true;
}

bool Oracle::FollowPlant(int number) {
  const auto count = static_cast<int>(plant_.Selected().plants.size());
  if (number <= -1) return count < 2;
  if (plant_.plant == number) return true;
  if (count < number) {
    Add(u"Empfangene Anlagennummer ("_s + Blank(number) + u") zu gross"_s);
    return false;
  }
  plant_.plantValue = number;
  SelectPlant(number);
  return true;
}

bool Oracle::Sending() {
  const QString version = Identify();
  const int position = FindVersion(version);
  if (position < 0) {
    Add(u"Unbekannte ReglerVersion: "_s + version);
    return false;
  }
  if (position != plant_.version) {
    const qint16 answer =
        Ask(u"Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r"
            "Der Befehl Senden kann nicht ausgeführt werden.\n\r\n\rBitte wählen Sie:"_s,
            u"PC     (Senden Abbrechen)  : "_s + plant_.Selected().version,
            u"Regler (Werte neu Einlesen): "_s + version);
    if (answer == 2) {
      SelectVersion(position);
      ReceiveAll();
    }
    return false;
  }
  if (!AcceptPlant()) return false;
  Walk([this](PlantParameter& parameter) { return SendOne(parameter); });
  expected_.transferred = true;
  return !abort_;
}

// True where the plant types agree, or the user wants the PC's.
bool Oracle::AcceptPlant() {
  PlantVersion& version = plant_.Selected();
  const auto count = static_cast<int>(version.plants.size());
  const int number = PlantNumber();
  if (number <= -1) return false;
  if (plant_.plant == number) return true;
  if (count < number) {
    Add(u"Empfangene Anlagennummer ("_s + Blank(number) + u") zu gross"_s);
    return false;
  }
  const qint16 answer = Ask(
      u"Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\r\n\rBitte wählen Sie:"_s,
      u"PC: "_s + version.plants.value(plant_.plant), u"Regler: "_s + version.plants.value(number));
  if (answer != 1) {
    SelectPlant(number);
    ReceiveAll();
    return false;
  }
  if (!version.plantAddress.isEmpty() && !Write(plant_.plantValue, version.plantAddress)) {
    Add(u"Fehler bei: "_s + version.plantVariable);
    ++expected_.failures;
  }
  return true;
}

int Oracle::PlantNumber() {
  const PlantVersion& version = plant_.Selected();
  if (version.plantAddress.isEmpty()) return 0;
  const std::optional<qint16> number = ReadSigned(version.plantAddress);
  if (!number) Add(u"Fehler bei: "_s + version.plantVariable + u"[0]"_s);
  if (number.value_or(-1) == -1) ++expected_.failures;
  return number.value_or(-1);
}

void Oracle::SelectVersion(int position) {
  plant_.version = position;
  plant_.plant = 0;
  plant_.Reload();
}

void Oracle::SelectPlant(int number) {
  if (number >= plant_.Selected().plants.size())
    throw RunTimeError{u"Die Auswahl liegt außerhalb der Liste."_s};
  plant_.plant = number;
  plant_.Reload();
}

int Oracle::FindVersion(const QString& version) const {
  for (std::size_t i = 0; i < plant_.versions.size(); ++i) {
    if (plant_.versions[i].version == version) return static_cast<int>(i);
  }
  return -1;
}

template <typename Handle>
void Oracle::Walk(Handle&& handle) {
  for (PlantParameter& parameter : plant_.Selected().parameters) {
    if (parameter.checked && parameter.address.isEmpty()) {
      Add(u"Warnung: Variabel <"_s + parameter.variable + u"> nicht bekannt."_s);
      Add(u"Fehler bei "_s + parameter.name);
      ++expected_.failures;
    } else if (parameter.checked) {
      if (!handle(parameter)) ++expected_.failures;
      Dot();
    }
    if (abort_) return;
  }
}

void Oracle::ReceiveAll() {
  Walk([this](PlantParameter& parameter) { return ReceiveOne(parameter); });
}

bool Oracle::ReceiveOne(PlantParameter& parameter) {
  if (parameter.kind == Kind::Unknown) return true;
  if (parameter.kind == Kind::Text) {
    // What could be read replaces the text, unless a run-time error ends the walk here.
    QString text;
    const bool complete = ReadText(parameter, text);
    parameter.text = text;
    return complete;
  }
  const std::optional<qint32> number = ReadNumber(parameter);
  if (number) parameter.value = *number;
  return number.has_value();
}

bool Oracle::CompareOne(const PlantParameter& parameter) {
  if (parameter.kind == Kind::Unknown) return true;
  if (parameter.kind == Kind::Text) {
    QString text;
    if (!ReadText(parameter, text)) return false;
    if (text != parameter.text.left(parameter.length)) Deviation(parameter, parameter.text, text);
    return true;
  }
  const std::optional<qint32> number = ReadNumber(parameter);
  if (number && *number != parameter.value)
    Deviation(parameter, Scaled(parameter, parameter.value), Scaled(parameter, *number));
  return number.has_value();
}

bool Oracle::SendOne(const PlantParameter& parameter) {
  const QByteArray& address = parameter.address;
  switch (parameter.kind) {
    case Kind::Long:
      return (Write(parameter.value / 65536, address) && Write(parameter.value % 65536, After(address, 2))) ||
             Fails(parameter);
    case Kind::Int:
      return Write(parameter.value, address) || Fails(parameter);
    case Kind::Char: {
      const std::optional<qint16> old = ReadSigned(address);
      if (!old) return Fails(parameter);
      const qint64 word = IsOdd(parameter) ? qint64{*old} / 256 * 256 + qint64{parameter.value}
                                           : qint64{parameter.value} * 256 + *old % 256;
      if (word != static_cast<qint32>(word)) throw RunTimeError{u"Zahl außerhalb des zulässigen Bereichs."_s};
      return Write(static_cast<qint32>(word), address) || Fails(parameter);
    }
    case Kind::Text: {
      QString text = parameter.text;
      while (text.size() < parameter.length)
        text += u' ';
      for (int k = 1; k <= parameter.length / 2; ++k) {
        const int word = Code(text.at(2 * k - 2)) * 256 + Code(text.at(2 * k - 1));
        if (Write(word, After(address, 2 * k - 2))) continue;
        const QString failure = u"Fehler bei: "_s + parameter.variable + u'[' + QString::number(k) + u']';
        expected_.boxes.append(failure);
        Add(failure);
        return false;
      }
      return true;
    }
    case Kind::Unknown:
      break;
  }
  return true;
}

std::optional<qint32> Oracle::ReadNumber(const PlantParameter& parameter) {
  const std::optional<qint16> word = ReadSigned(parameter.address);
  std::optional<qint32> number;
  if (word && parameter.kind == Kind::Long) {
    const std::optional<qint32> low = ReadUnsigned(After(parameter.address, 2));
    if (low) number = *word * 65536 + *low;
  } else if (word && parameter.kind == Kind::Char) {
    number = IsOdd(parameter) ? *word & 255 : *word / 256;
  } else if (word) {
    number = *word;
  }
  if (!number) Fails(parameter);
  return number;
}

bool Oracle::ReadText(const PlantParameter& parameter, QString& text) {
  for (int k = 1; k <= parameter.length / 2; ++k) {
    const std::optional<qint16> word = ReadSigned(After(parameter.address, 2 * k - 2));
    if (!word) {
      Add(u"Fehler bei: "_s + parameter.variable + u'[' + QString::number(k) + u']');
      return false;
    }
    if (*word == -1) {
      text += u' ';
      continue;
    }
    // The high byte is raised by one where the low byte is 128 or more.
    const int low = *word & 255;
    const int high = ((*word & 0xFFFF) / 256 + (low >= 128 ? 1 : 0)) & 255;
    text += Character(high);
    text += Character(low);
  }
  return true;
}

bool Oracle::Fails(const PlantParameter& parameter) {
  Add(u"Fehler bei: "_s + parameter.variable);
  return false;
}

void Oracle::Deviation(const PlantParameter& parameter, const QString& pc, const QString& controller) {
  Add(u"Änderung bei: "_s + parameter.name);
  Add(u"   PC    : "_s + pc);
  Add(u"   Regler: "_s + controller);
  ++expected_.deviations;
}

QString Oracle::Identify() {
  QString version = QueryVersion();
  for (const QString& settings : {u"19200,o,7,1"_s, u"9600,o,7,1"_s}) {
    if (!version.startsWith(u"ERROR: "_s)) break;
    Configure(settings);
    version = QueryVersion();
  }
  return version;
}

QString Oracle::QueryVersion() {
  const Reply reply = Transact("v00");
  if (!reply.error.isEmpty()) return reply.error;
  // What stands behind the first eight characters does not count.
  Judge(reply, reply.payload.left(8) == line_.Truth().version);
  QString type = Text(reply.payload.left(4));
  if (type.size() < 4 || type.at(3) != u'-') type += u'-';
  QString number = QString::number(Number(reply.payload.mid(4, 4)));
  while (number.size() < 4)
    number.prepend(u'0');
  return type + number.left(3) + u'.' + number.right(1);
}

void Oracle::Configure(const QString& settings) {
  if (abort_) return;
  settings_ = settings;
  const Exchange& exchange = NextExchange();
  Require(!exchange.frame, u"a telegram instead of trying the port"_s);
}

// The digits of a good reply; nothing after a failure, which is in the report, or a reply of another length.
std::optional<Oracle::Reply> Oracle::ReadDigits(const QByteArray& address) {
  const Reply reply = WithRetries(kReadLetter + address.right(4));
  if (!reply.error.isEmpty()) {
    Add(reply.error);
    return {};
  }
  if (reply.payload.size() != 4) return {};
  return reply;
}

std::optional<qint16> Oracle::ReadSigned(const QByteArray& address) {
  const std::optional<Reply> reply = ReadDigits(address);
  if (!reply) return {};
  const int number = SignedNumber(reply->payload);
  if (number < -32768 || number > 32767) throw RunTimeError{u"Zahl außerhalb des zulässigen Bereichs."_s};
  Judge(*reply,
        (number & 0xFFFF) == reply->exchange->heldBefore || (number & 0xFFFF) == reply->exchange->heldAfter);
  return static_cast<qint16>(number);
}

std::optional<qint32> Oracle::ReadUnsigned(const QByteArray& address) {
  const std::optional<Reply> reply = ReadDigits(address);
  if (!reply) return {};
  const int number = Number(reply->payload);
  Judge(*reply, number == reply->exchange->heldBefore || number == reply->exchange->heldAfter);
  return number;
}

bool Oracle::Write(qint32 value, const QByteArray& address) {
  const Reply reply = WithRetries(kWriteLetter + address.right(4) + Hex4(value));
  if (!reply.error.isEmpty()) {
    Add(reply.error);
    return false;
  }
  Judge(reply, reply.exchange->heldAfter == (value & 0xFFFF));
  return true;
}

Oracle::Reply Oracle::WithRetries(const QByteArray& body) {
  Reply reply;
  for (int attempt = 0; attempt < 3; ++attempt) {
    reply = Transact(body);
    if (reply.error.isEmpty()) break;
  }
  return reply;
}

const Exchange& Oracle::NextExchange() {
  Require(next_ < line_.log.size(), u"the exchange is missing"_s);
  const Exchange& exchange = line_.log[next_++];
  Require(exchange.port == 1 && exchange.settings == settings_, u"settings are "_s + exchange.settings);
  return exchange;
}

Oracle::Reply Oracle::Transact(const QByteArray& body) {
  Reply reply;
  reply.number = static_cast<int>(next_);
  const Exchange& exchange = NextExchange();
  reply.exchange = &exchange;
  if (reply.number > 0) {
    const double closed_s = line_.log[next_ - 2].closedAt_s;
    Require(exchange.openedAt_s - closed_s >= kPause_s || clock_.Disturbed(closed_s, exchange.openedAt_s),
            u"no pause of 20 ms"_s);
  }
  if (!exchange.opened || !exchange.cleared) {
    Require(!exchange.frame, u"sent on a port that could not be opened"_s);
    reply.error = WithEvent(u"ERROR: COM 1 nicht verfügber"_s, {}, exchange);
    return reply;
  }
  QByteArray frame = "#0102" + body;
  frame += Sum(frame) + '\r';
  Require(exchange.frame.has_value(), u"nothing was sent instead of "_s + Text(frame));
  Require(*exchange.frame == frame, Text(*exchange.frame) + u" was sent instead of "_s + Text(frame));
  Require(exchange.closedAt_s - exchange.sentAt_s <= kLongestExchange_s + kTolerance_s ||
              clock_.Disturbed(exchange.sentAt_s, exchange.closedAt_s),
          u"it took too long"_s);

  Receive(exchange, reply);
  if (!reply.error.isEmpty()) return reply;
  const QByteArray& line = reply.line;
  if (line.size() < 9) {
    reply.error = u"ERROR: unvollständige Antwort: "_s + Text(line);
  } else if (line.at(5) == '?') {
    reply.error = u"ERROR: "_s + CodeText(line.mid(6, 2));
  } else if (Sum(line.chopped(3)) != line.mid(line.size() - 3, 2)) {
    reply.error = u"ERROR:  Checksumme Falsch"_s;
  } else {
    reply.payload = line.mid(6, line.size() - 9);
    ++expected_.accepted;
  }
  return reply;
}

// What the characters come to: a line, or an error. Each is looked at by itself, whatever it came with.
void Oracle::Receive(const Exchange& exchange, Reply& reply) {
  const double begun_s = exchange.sentShown_s;
  double since_s = begun_s;  // of the present wait, or of the first character
  bool inLine = false;
  QByteArray line;
  std::vector<int> origins;
  for (std::size_t i = 0; i < exchange.takes.size(); ++i) {
    const Taken& taken = exchange.takes[i];
    const bool last = i + 1 == exchange.takes.size();
    const bool late = inLine && (taken.gone || Expired(since_s, taken.shown_s, kReplyTime_s));
    Require(inLine || !taken.bytes.isEmpty(), u"the buffer was empty"_s);
    for (qsizetype at = 0; at < taken.bytes.size(); ++at) {
      if (!inLine) {
        line.clear();
        origins.clear();
        since_s = taken.shown_s;
      }
      line += taken.bytes.at(at);
      origins.push_back(taken.origins[static_cast<std::size_t>(at)]);
      inLine = static_cast<unsigned char>(line.back()) > 13;
      if (inLine) continue;
      if (late) break;
      if (line.front() == '#') {
        const qsizetype echo = std::min(line.size(), exchange.frame->size());
        line.remove(0, echo);
        origins.erase(origins.begin(), origins.begin() + echo);
        if (line.isEmpty() || line.back() < 10 || line.back() > 13) {
          since_s = taken.shown_s;
          continue;
        }
      }
      Require(last, u"went on after the reply"_s);
      reply.line = line;
      reply.origins = origins;
      return;
    }
    if (late) {
      Require(last, u"went on after the time was over"_s);
      reply.error = WithEvent(u"ERROR: ungültiger Empfang:  ("_s + Text(line) + u")."_s, line, exchange);
      return;
    }
  }
  const bool overLong =
      !exchange.takes.empty() && Expired(begun_s, exchange.takes.back().shown_s, kLongestExchange_s);
  if (inLine) {
    Require(overLong, u"given up in the middle of a reply"_s);
  } else {
    Require(overLong || (exchange.endsWaiting &&
                         (exchange.endsGone || Expired(since_s, exchange.endShown_s, kReplyTime_s) ||
                          Expired(begun_s, exchange.endShown_s, kLongestExchange_s))),
            u"given up too early"_s);
  }
  reply.error = WithEvent(u"ERROR: kein Empfang"_s, {}, exchange);
}

QString Oracle::WithEvent(const QString& result, const QByteArray& reply, const Exchange& exchange) {
  Require(exchange.event.has_value(), u"nobody asked for a line error"_s);
  const QString text = EventText(*exchange.event);
  return text.isEmpty() ? result : result + u" ("_s + Text(reply) + u") "_s + text;
}

void Oracle::Judge(const Reply& reply, bool right) {
  if (right) return;
  ++expected_.wrong[static_cast<std::size_t>(ClassOf(line_, reply.line, reply.origins, reply.number))];
}

void Oracle::Add(const QString& text) {
  expected_.lines.append(text);
  Operation();
}

void Oracle::Dot() {
  expected_.lines.last() += u'.';
  Operation();
}

void Oracle::Operation() {
  if (++operations_ == user_.abortAtOperation) abort_ = true;
}

qint16 Oracle::Ask(const QString& question, const QString& first, const QString& second) {
  const auto number = static_cast<std::size_t>(expected_.questions.size());
  expected_.questions.append(question + u'|' + first + u'|' + second);
  if (user_.abortAtQuestion == static_cast<int>(number)) abort_ = true;
  Require(number < user_.answers.size(), u"the question was not asked"_s);
  return user_.answers[number];
}

}  // namespace kalivor::campaign
