#include "comm/COM_T.h"

#include <QScopeGuard>
#include <algorithm>

#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "base/su.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr QChar kLineFeed = u'\n';
constexpr QChar kCarriageReturn = u'\r';

// How long a reply, the next character of raw reception, and a reply that nobody wants are waited for.
constexpr int kReplyTime_ms = 400;
constexpr int kRawQuiet_ms = 1000;
constexpr int kNoReplyTime_ms = 100;

// Slot 2 waits longer. kept: nothing here uses it; it is the slot for a station that is slower.
constexpr qint16 kPatientSlot = 2;
constexpr int kPatientTime_ms = 1200;

// An exchange takes so many of these times at most, however often an echo comes.
constexpr int kMostTimeOuts = 3;

// The start character of a request, by which its echo is known.
QChar EchoStart(qint16 protocol) {
  return protocol == 18 ? QChar(2) : QChar(u'#');
}

bool ReceivesLines(qint16 protocol) {
  return protocol >= 15 && protocol <= 17;
}

bool IsTerminator(QChar c) {
  return c >= kLineFeed && c <= kCarriageReturn;
}

}  // namespace

QString TelegramSum(QStringView characters) {
  qint16 sum = 0;
  for (const QChar c : characters)
    sum = ToInt16(sum + ByteFromCharacter(c));
  return su::HexPad(sum, 2);
}

QString RefusalText(const QString& code) {
  if (code == u"02") return u" Code 02 Falscher Serialmode"_s;
  if (code == u"04") return u" Code 04 Falsches Kennzeichen"_s;
  if (code == u"05") return u" Code 05 Falsche Anzahl Parameter"_s;
  if (code == u"06") return u" Code 06 Falsches Zeichen"_s;
  if (code == u"07") return u" Code 07 Falsche Datensatznummer"_s;
  return u" Code "_s + code;
}

QString LineErrorText(int event) {
  switch (event) {
    case platform::kCommEventBreak:
      return u" Es wurde ein Anhaltesignal (Break-Signal) empfangen."_s;
    case platform::kCommEventFraming:
      return u" Datenblockfehler (Framing Error). Die Hardware hat einen Datenblockfehler entdeckt."_s;
    case platform::kCommEventOverrun:
      return u" Anschlußüberlauf (Port Overrun). Es ist ein Zeichen verlorengegangen, da die Hardware nicht "
             "in der Lage war, dieses Zeichen zu lesen, bevor das nächste Zeichen eintraf."_s;
    case platform::kCommEventReceiveOverflow:
      return u" Überlauf des Empfangspuffers (Receive Buffer Overflow). Der Empfangspuffer ist voll."_s;
    case platform::kCommEventParity:
      return u" Paritätsfehler (Parity Error). Die Hardware hat einen Paritätsfehler entdeckt."_s;
    case platform::kCommEventTransmitFull:
      return u" Sendepuffer voll (Transmit Buffer Full). Bei dem Versuch, ein Zeichen in die Warteschlange "
             "aufzunehmen, wurde festgestellt, daß der Sendepuffer voll war."_s;
    case platform::kCommEventDeviceControlBlock:
      return u" Unerwarteter Fehler beim Abrufen des Device Control Block (DCB) für den Anschluß."_s;
    default:
      return {};
  }
}

QString COM_T::SendWithRetry(qint16 slot, QStringView body, bool wantReply, int maxTries) {
  QString result = Transact(slot, body, wantReply);
  for (int tries = 1; IsError(result) && tries < maxTries; ++tries) {
    host_.Exchanges.NextIsAttempt(tries + 1);
    result = Transact(slot, body, wantReply);
  }
  return result;
}

QString COM_T::Frame(qint16 slot, QStringView body) {
  QString frame = u'#' + su::HexPad(host_.Ports[slot].Adr, 2) + u"02"_s;
  frame += body;
  frame += TelegramSum(frame) + kCarriageReturn;
  return frame;
}

QString COM_T::Transact(qint16 slot, QStringView body, bool wantReply) {
  const QString frame = Frame(slot, body);
  // The request is ready by now, so that the line rests no longer than it must.
  host_.Timers().Wait(kPauseTimer);
  QString reply = SendReceive(slot, frame, wantReply);
  if (!wantReply) return reply;
  QString payload = PayloadOf(reply);
  host_.Exchanges.Judge(payload);
  return payload;
}

QString COM_T::PayloadOf(const QString& reply) {
  if (IsError(reply)) return reply;
  if (reply.size() < kShortestReply) return u"ERROR: unvollständige Antwort: "_s + reply;
  // An error reply counts as such even when its checksum is wrong.
  if (reply.at(5) == u'?') return u"ERROR: "_s + RefusalText(reply.mid(6, 2));
  const QStringView summed = QStringView(reply).chopped(3);
  if (TelegramSum(summed) != QStringView(reply).sliced(summed.size(), 2))
    return u"ERROR:  Checksumme Falsch"_s;
  return summed.mid(6).toString();
}

QString COM_T::SendReceive(qint16 slot, const QString& frame, bool wantReply) {
  // However the exchange ends.
  const auto close = qScopeGuard([this] { host_.ClosePort(); });
  const bool open = !IsError(host_.OpenPort(slot));
  host_.Exchanges.Begin(host_.Ports[slot], frame);
  QString reply;
  if (open) {
    Send(frame);
    reply = Receive(slot, frame.size(), wantReply);
  } else {
    reply =
        WithLineError(u"ERROR: COM"_s + BlankNumber(host_.Ports[slot].PortNr) + u" nicht verfügber"_s, {});
  }
  host_.Exchanges.End(reply, open, host_.Control().Fault());
  return reply;
}

void COM_T::Send(const QString& frame) {
  platform::SerialControl& line = host_.Control();
  line.SetRts(true);
  line.Output(BytesFromText(frame));
  line.SetSThreshold(1);
  host_.SendDone = kFalse;
  received_.clear();
}

// Waits for lines until one of them is the reply.
QString COM_T::Receive(qint16 slot, qsizetype frameLength, bool wantReply) {
  TH& timers = host_.Timers();
  const qint16 protocol = host_.Ports[slot].Protokoll;
  const int timeout_ms = !wantReply             ? kNoReplyTime_ms
                         : slot == kPatientSlot ? kPatientTime_ms
                                                : kReplyTime_ms;
  const SoftTimer bound(timers.GetClock(), kMostTimeOuts * timeout_ms);
  while (bound.Remaining() > 0) {
    timers.StartTimer(kReplyTimer, timeout_ms);
    if (!WaitForFirstCharacter(bound)) break;
    timers.StartTimer(kReplyTimer, timeout_ms);
    if (!ReceivesLines(protocol)) return ReceiveRaw();

    const LineEnd end = ReceiveLine(bound);
    if (end == LineEnd::NotInTime) {
      return WithLineError(u"ERROR: ungültiger Empfang:  ("_s + reply_ + u")."_s, reply_);
    }
    if (end == LineEnd::ExchangeOver) break;
    if (!wantReply) return {};
    if (host_.KeepOpen == kFalse) host_.Control().SetRts(false);
    if (!reply_.startsWith(EchoStart(protocol))) return reply_;
    reply_.remove(0, frameLength);
    if (!reply_.isEmpty() && IsTerminator(reply_.back())) return reply_;
    // It was the echo, with or without a fragment behind it: the next line is taken as a whole.
  }
  return wantReply ? WithLineError(u"ERROR: kein Empfang"_s, {}) : QString();
}

bool COM_T::WaitForFirstCharacter(const SoftTimer& bound) {
  while (received_.isEmpty()) {
    const double left = std::min(host_.Timers().Remaining(kReplyTimer), bound.Remaining());
    const platform::InputWait wait = host_.Control().WaitForInput(left);
    if (wait == platform::InputWait::Input) break;
    if (wait == platform::InputWait::LineGone || left <= 0) return false;
  }
  return true;
}

COM_T::LineEnd COM_T::ReceiveLine(const SoftTimer& bound) {
  platform::SerialControl& line = host_.Control();
  TH& timers = host_.Timers();
  reply_.clear();
  if (received_.isEmpty()) received_ = Taken();
  while (!TakeLine()) {
    if (bound.Remaining() <= 0) return LineEnd::ExchangeOver;
    const double left = std::min(timers.Remaining(kReplyTimer), bound.Remaining());
    const bool gone = line.WaitForInput(left) == platform::InputWait::LineGone;
    received_ += Taken();
    if (gone || timers.TimerExpired(kReplyTimer)) {
      (void)TakeLine();
      return LineEnd::NotInTime;
    }
  }
  return LineEnd::Complete;
}

// Moves characters to the reply, up to the first one that ends the line. How they were cut into blocks on
// their way must not matter: a program that wakes up late finds several at once.
bool COM_T::TakeLine() {
  const auto end = std::find_if(received_.cbegin(), received_.cend(),
                                [](QChar character) { return character <= kCarriageReturn; });
  const bool complete = end != received_.cend();
  const qsizetype length = end - received_.cbegin() + (complete ? 1 : 0);
  reply_ += QStringView(received_).first(length);
  received_.remove(0, length);
  return complete;
}

// What the line has received by now.
QString COM_T::Taken() {
  const QByteArray characters = host_.Control().Input();
  host_.Exchanges.Received(characters);
  return TextFromBytes(characters);
}

QString COM_T::ReceiveRaw() {
  platform::SerialControl& line = host_.Control();
  TH& timers = host_.Timers();
  QString reply;
  do {
    if (line.InBufferCount() != 0) {
      reply += Taken();
      timers.StartTimer(kRawQuietTimer, kRawQuiet_ms);
    }
    if (line.WaitForInput(timers.Remaining(kRawQuietTimer)) == platform::InputWait::LineGone) break;
  } while (line.InBufferCount() != 0 || !timers.TimerExpired(kRawQuietTimer));
  return reply;
}

QString COM_T::WithLineError(const QString& result, const QString& reply) {
  const int event = host_.Control().CommEvent();
  const QString text = LineErrorText(event);
  if (!text.isEmpty()) host_.Exchanges.LineError(event);
  return text.isEmpty() ? result : result + u" ("_s + reply + u") "_s + text;
}

}  // namespace kalivor
