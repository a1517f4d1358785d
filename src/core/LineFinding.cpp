#include "core/LineFinding.h"

#include <algorithm>

#include "base/Windows1252.h"
#include "comm/COM_T_frm.h"
#include "platform/SerialControl.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr qsizetype kLongestShownText = 60;
constexpr qsizetype kShortestTelegram = 7;  // with a character or two lost
constexpr qsizetype kLongestTelegram = 32;
constexpr qsizetype kShortestText = 4;
constexpr int kMostUnreadable = 8;  // one of so many characters may be

// A character that came with a parity error.
constexpr QChar kUnreadable = u'?';

bool IsBlank(QChar c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool IsPrintable(QChar c) {
  return c > u' ' && c <= u'~';
}

bool IsUpperHex(QChar c) {
  return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
}

// What came behind the echo of the request, without the end of the line.
QString ReceivedText(const Exchange& exchange) {
  const QByteArrayView request = exchange.request.View();
  QByteArrayView received = exchange.received.View();
  if (received.startsWith(request)) received = received.sliced(request.size());
  return TextFromBytes(received.toByteArray()).trimmed();
}

// A controller's reply has nothing but printable characters and no blanks, and most of it is hexadecimal.
// Nothing more is known of one that is damaged.
bool LooksLikeTelegram(const QString& text) {
  return text.size() >= kShortestTelegram && text.size() <= kLongestTelegram &&
         std::ranges::all_of(text, IsPrintable) &&
         std::ranges::count_if(text, IsUpperHex) * 3 >= text.size() * 2;
}

// Nobody writes control characters into a text; what another rate or parity makes of one has them, and
// characters that could not be read.
bool LooksLikeText(const QString& text) {
  if (text.size() < kShortestText) return false;
  if (!std::ranges::all_of(text, [](QChar c) { return IsPrintable(c) || IsBlank(c); })) return false;
  const auto unreadable = std::ranges::count(text, kUnreadable);
  const auto letters =
      std::ranges::count_if(text, [](QChar c) { return c.isLetterOrNumber() || IsBlank(c); });
  return unreadable * kMostUnreadable <= text.size() && letters * 2 >= text.size();
}

QString Shortened(const QString& text) {
  const QString line = text.simplified();
  return line.size() <= kLongestShownText ? line : line.left(kLongestShownText) + u'…';
}

LineFinding WhyNotOpened(platform::PortState state) {
  switch (state) {
    case platform::PortState::InUse:
      return LineFinding::InUse;
    case platform::PortState::NoPermission:
      return LineFinding::NoPermission;
    case platform::PortState::Missing:
      return LineFinding::Missing;
    case platform::PortState::Free:
      break;
  }
  return LineFinding::NotOpened;
}

PortFinding FindingOfDamaged(const Exchange& exchange) {
  const QString text = ReceivedText(exchange);
  if (LooksLikeTelegram(text)) return {LineFinding::Damaged, {}, exchange.address, exchange.settings};
  if (LooksLikeText(text)) return {LineFinding::OtherText, Shortened(text), -1, exchange.settings};
  return {LineFinding::Garbled};
}

PortFinding FindingOf(const Exchange& exchange, bool first, const platform::PortEntry& port) {
  if (exchange.end == ExchangeEnd::NoPort) {
    // It could be opened a moment ago.
    if (!first) return {LineFinding::Unplugged, exchange.fault};
    const LineFinding why = WhyNotOpened(port.state);
    return {why, port.remark.isEmpty() && why == LineFinding::NotOpened ? exchange.fault : port.remark};
  }
  // An open port that has something to say about itself is gone.
  if (!exchange.fault.isEmpty() || exchange.lineError == platform::kCommEventDeviceControlBlock)
    return {LineFinding::Unplugged, exchange.fault};
  switch (exchange.end) {
    case ExchangeEnd::Refused:
      return {LineFinding::Refused, ReasonOf(exchange.failure), exchange.address, exchange.settings};
    case ExchangeEnd::Damaged:
      return FindingOfDamaged(exchange);
    case ExchangeEnd::EchoOnly:
      return {LineFinding::EchoOnly};
    default:
      return {LineFinding::Silent};
  }
}

// What was seen, and what to do: in the words of the port or the system where they have some.
QString WithAdvice(const QString& seen, const QString& detail, const QString& otherwise) {
  return seen + u' ' + (detail.isEmpty() ? otherwise : detail);
}

}  // namespace

QString RateOf(const QString& settings) {
  return settings.section(u',', 0, 0);
}

PortFinding FindingOf(const ExchangeLog& log, qint64 first, qint64 last, const platform::PortEntry& port) {
  PortFinding telling;
  for (qint64 number = first; number <= last; ++number) {
    const PortFinding one = FindingOf(log.Numbered(number), number == first, port);
    if (one.kind < telling.kind) telling = one;
  }
  return telling;
}

QString FindingText(const PortFinding& finding, bool everyAddress) {
  const QString& detail = finding.detail;
  switch (finding.kind) {
    case LineFinding::Unplugged:
      return WithAdvice(
          u"Die Schnittstelle ist während der Suche verschwunden; was bis dahin kam, sagt nichts Sicheres."_s,
          detail, u"Den Adapter einstecken und noch einmal suchen."_s);
    case LineFinding::InUse:
      return WithAdvice(u"Die Schnittstelle ist belegt."_s, detail,
                        u"Das Programm beenden, das sie geöffnet hat, und noch einmal suchen."_s);
    case LineFinding::NoPermission:
      return WithAdvice(u"Die Schnittstelle darf von diesem Benutzer nicht geöffnet werden."_s, detail,
                        u"Das Recht dazu vergibt, wer das System verwaltet."_s);
    case LineFinding::Missing:
      return WithAdvice(u"Das zugeordnete Gerät ist nicht da, und kein anderes nimmt seinen Platz ein."_s,
                        detail, u"Es einstecken oder der Nummer ein anderes zuordnen."_s);
    case LineFinding::NotOpened:
      return WithAdvice(u"Die Schnittstelle ließ sich nicht öffnen."_s, detail,
                        u"Prüfen, ob das Gerät da und eingeschaltet ist und die Angabe stimmt."_s);
    case LineFinding::Refused:
      return u"Ein Regler mit der Adresse %1 ist da (%2 Baud), lehnt die Frage nach seiner Version aber ab: "
             "%3. Dieses Programm kann mit ihm nicht umgehen, oder er ist gerade gesperrt; seine Bauart "
             "prüfen."_s.arg(QString::number(finding.address), RateOf(finding.settings), finding.detail);
    case LineFinding::Damaged:
      return u"Auf die Frage an die Adresse %1 (%2 Baud) kam eine Antwort, aber beschädigt: Ein Regler ist "
             "da, und die Leitung stört. Kabel, Schirm, Stecker und Adapter prüfen und noch einmal "
             "suchen."_s.arg(QString::number(finding.address), RateOf(finding.settings));
    case LineFinding::OtherText:
      return u"Ein anderes Gerät meldet sich mit Text: „%1“. Das ist kein Regler; einen anderen Anschluss "
             "wählen oder das Gerät abklemmen."_s.arg(finding.detail);
    case LineFinding::Garbled:
      return u"Es kamen nur unleserliche Zeichen: Das Gerät sendet mit einer anderen Rate oder Parität, oder "
             "die Leitung ist gestört. Einstellung des Geräts, Schirmung und Masse prüfen."_s;
    case LineFinding::EchoOnly:
      return everyAddress
                 ? u"Nur die eigenen Anfragen kamen zurück: Der Adapter ist in Ordnung, aber unter keiner "
                   "Adresse antwortet ein Regler. Prüfen, ob er eingeschaltet ist und die Adern A und B "
                   "nicht vertauscht sind."_s
                 : u"Nur die eigene Anfrage kam zurück: Der Adapter ist in Ordnung, aber der Regler "
                   "antwortet nicht. Prüfen, ob er eingeschaltet ist, die Adern A und B nicht vertauscht "
                   "sind und die Geräteadresse stimmt."_s;
    case LineFinding::Silent:
      return everyAddress
                 ? u"Es kam gar nichts zurück, unter keiner Adresse: Der Regler ist aus oder nicht "
                   "angeschlossen. Stromversorgung, Kabel und Anschluss prüfen."_s
                 : u"Es kam gar nichts zurück: Der Regler ist aus, nicht angeschlossen oder hat eine "
                   "andere Adresse. Stromversorgung, Kabel und Anschluss prüfen, sonst alle Adressen "
                   "fragen."_s;
    case LineFinding::NotAsked:
      return u"Hier wurde nicht mehr gefragt: Die Suche wurde vorher abgebrochen."_s;
  }
  return {};
}

QString FindingName(LineFinding kind) {
  switch (kind) {
    case LineFinding::Unplugged:
      return u"unplugged"_s;
    case LineFinding::InUse:
      return u"in-use"_s;
    case LineFinding::NoPermission:
      return u"no-permission"_s;
    case LineFinding::Missing:
      return u"missing"_s;
    case LineFinding::NotOpened:
      return u"not-opened"_s;
    case LineFinding::Refused:
      return u"refused"_s;
    case LineFinding::Damaged:
      return u"damaged"_s;
    case LineFinding::OtherText:
      return u"other-text"_s;
    case LineFinding::Garbled:
      return u"garbled"_s;
    case LineFinding::EchoOnly:
      return u"echo-only"_s;
    case LineFinding::Silent:
      return u"silent"_s;
    case LineFinding::NotAsked:
      return u"not-asked"_s;
  }
  return {};
}

}  // namespace kalivor
