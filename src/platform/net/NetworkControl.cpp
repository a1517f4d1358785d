#include "platform/net/NetworkControl.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kMillisecondsPerSecond = 1e3;

// A server that refuses says so as soon as it can: after this time, and as often the way there and back.
constexpr double kGreeting_s = 0.005;
constexpr double kGreetingWays = 2;
// What was said is followed by the end of the connection, if that is what it was about.
constexpr double kEnd_s = 0.1;

constexpr qsizetype kLongestLastWords = 200;

QDeadlineTimer In(double seconds) {
  constexpr double kLongest_s = 86400;
  const double bounded_s = seconds > 0 ? std::min(seconds, kLongest_s) : 0;
  return {std::chrono::nanoseconds(static_cast<qint64>(bounded_s * kNanosecondsPerSecond)), Qt::PreciseTimer};
}

// Answers are lines, and a line ends with its first character of these.
bool EndsLine(char character) {
  return static_cast<unsigned char>(character) <= '\r';
}

// What a server has said, as a text in one line; "" when it is none.
QString Words(const QByteArray& characters) {
  const QString text = QString::fromUtf8(characters);
  const bool printable = std::all_of(text.begin(), text.end(), [](QChar c) {
    return (c.isPrint() && c != QChar::ReplacementCharacter) || c == u'\r' || c == u'\n' || c == u'\t';
  });
  return printable ? text.simplified() : QString();
}

// Servers say in English that somebody else has the port.
bool MeansInUse(const QString& words) {
  return words.contains(u"in use"_s, Qt::CaseInsensitive) || words.contains(u"busy"_s, Qt::CaseInsensitive);
}

}  // namespace

NetworkControl::NetworkControl(DeviceResolver resolver, NetworkTimes times)
    : resolver_(std::move(resolver)), times_(times) {
  keep_.setSingleShot(true);
  QObject::connect(&keep_, &QTimer::timeout, &keep_, [this] { Release(); });
}

NetworkControl::~NetworkControl() {
  Close();
}

bool NetworkControl::Open(int number, const QString& settings) {
  Close();
  events_.Clear();
  fault_.clear();
  keep_.stop();
  const std::optional<LineSettings> wanted = ParseLineSettings(settings);
  if (!wanted) return false;
  const ParsedNetworkAddress parsed = ParseNetworkAddress(resolver_(number));
  if (!parsed.address) return Fail(parsed.fault);

  const QDeadlineTimer bound = In(times_.opening_s);
  if (!Reuse(*parsed.address) && !Connect(*parsed.address, bound)) return false;
  if (!Settle(*wanted, bound)) return false;
  if (owed_ && !WaitOut(*wanted)) return false;
  input_.clear();
  gone_ = false;
  open_ = true;
  line_->proven = true;
  line_->used = false;
  line_->answered = true;
  return true;
}

// The kept connection, when it leads there, still stands, and nothing is under way on it.
bool NetworkControl::Reuse(const NetworkAddress& address) {
  if (!line_ || line_->address != address) return false;
  TcpConnection& connection = *line_->connection;
  QByteArray late;
  while (ReadPiece(late) && late.size() < kInputLimit_bytes) {
  }
  const bool raw = !line_->comPort;
  const bool underWay = raw && (!line_->answered || (line_->used && !late.isEmpty()));
  return !connection.Ended() && connection.Unsent() == 0 && late.size() < kInputLimit_bytes && !underWay;
}

bool NetworkControl::Connect(const NetworkAddress& address, QDeadlineTimer bound) {
  // Before the new one: servers mostly let in one at a time.
  line_.reset();
  if (address == unanswered_ && !unansweredUntil_.hasExpired())
    return Fail(
        u"Der Rechner „%1“ hat eben nicht geantwortet: In wenigen Sekunden wird er wieder gefragt."_s.arg(
            address.host));
  unanswered_ = address;
  unansweredUntil_ = QDeadlineTimer(0);

  QElapsedTimer way;
  way.start();
  TcpConnection::Opened opened = TcpConnection::Open(address, bound);
  if (!opened.connection) return opened.unanswered ? FailUnanswered(opened.fault) : Fail(opened.fault);
  line_ = std::make_unique<Line>();
  line_->address = address;
  line_->connection = std::move(opened.connection);
  if (address.kind == NetworkAddress::Kind::ComPort) {
    line_->comPort = std::make_unique<ComPort>();
    return AgreeOnControl(bound);
  }
  const double way_s = static_cast<double>(way.nsecsElapsed()) / kNanosecondsPerSecond;
  return WaitForGreeting(std::min(kGreeting_s + kGreetingWays * way_s, SecondsLeft(bound)));
}

bool NetworkControl::AgreeOnControl(QDeadlineTimer bound) {
  const ComPort& comPort = *line_->comPort;
  SendControl();
  while (comPort.State() == ComPort::Control::Offered && !comPort.Broken()) {
    const bool inTime = line_->connection->Wait(SecondsLeft(bound));
    if (!inTime || !Hear()) break;
  }
  if (comPort.State() == ComPort::Control::Agreed) {
    // Whoever opens a port raises it, the server too.
    line_->comPort->SetRts(false);
    return true;
  }
  if (line_->connection->Ended()) return FailEnded();
  const QString fault =
      u"Der Server steuert keine Schnittstelle nach RFC 2217: Geben Sie die Adresse mit socket:// an, und "
      "stellen Sie Baudrate und Parität am Server ein."_s;
  return comPort.State() == ComPort::Control::Offered ? FailUnanswered(fault) : Fail(fault);
}

// A server that refuses a raw connection sends a text, if anything, and ends it. Other greetings are dropped
// like everything that comes in front of a request.
bool NetworkControl::WaitForGreeting(double seconds) {
  double left_s = seconds;
  while (line_->connection->Wait(left_s) && Hear())
    left_s = kEnd_s;
  return line_->connection->Ended() ? FailEnded() : true;
}

// The line as it is wanted, and nothing on it that came before.
bool NetworkControl::Settle(const LineSettings& settings, QDeadlineTimer bound) {
  if (!line_->comPort) return true;
  ComPort& comPort = *line_->comPort;
  comPort.SetLine(settings);
  SendControl();
  while (!comPort.Settled()) {
    const bool inTime = line_->connection->Wait(SecondsLeft(bound));
    const bool heard = Hear();
    if (line_->connection->Ended()) return FailEnded();
    if (comPort.Broken() || comPort.State() != ComPort::Control::Agreed)
      return Fail(u"Der Server hat die Steuerung der Schnittstelle abgebrochen."_s);
    if (!inTime || !heard)
      return FailUnanswered(u"Der Server bestätigt die Einstellungen der Schnittstelle nicht."_s);
  }
  if (const QString refused = comPort.Refusal(); !refused.isEmpty())
    return Fail(u"Der Server stellt die Schnittstelle nicht wie verlangt ein: "_s + refused + u'.');
  (void)comPort.TakeLineError();
  return true;
}

// A request that was late on its way may have come to the controller only now, together with the purge or the
// end of the connection behind it: the controller gets its time, and whatever it answers is dropped.
bool NetworkControl::WaitOut(const LineSettings& settings) {
  const QDeadlineTimer bound = In(times_.reply_s);
  while (line_->connection->Wait(SecondsLeft(bound)) && Hear()) {
  }
  if (line_->connection->Ended()) return FailEnded();
  owed_ = false;
  if (!line_->comPort) return true;
  line_->comPort->Purge();
  return Settle(settings, In(times_.opening_s));
}

// Drops what has come in front of a request, but notes the beginning. False when the connection has ended, or
// it does not stop.
bool NetworkControl::Hear() {
  QByteArray dropped;
  while (dropped.size() < kInputLimit_bytes && ReadPiece(dropped)) {
  }
  Note(dropped);
  return !line_->connection->Ended() && dropped.size() < kInputLimit_bytes;
}

void NetworkControl::Note(QByteArrayView characters) {
  const qsizetype room = kLongestLastWords - line_->heard.size();
  line_->heard += characters.first(std::min(characters.size(), room));
}

bool NetworkControl::Fail(const QString& fault) {
  fault_ = fault;
  line_.reset();
  return false;
}

bool NetworkControl::FailUnanswered(const QString& fault) {
  unansweredUntil_ = In(times_.unanswered_s);
  return Fail(fault);
}

bool NetworkControl::FailEnded() {
  const QString words = Words(line_->heard);
  if (line_->proven || words.isEmpty() || MeansInUse(words)) return Fail(FaultOfEnd());
  return Fail(u"Der Server hat die Verbindung beendet und meldet: "_s + words);
}

QString NetworkControl::FaultOfEnd() const {
  if (const QString words = Words(line_->heard); MeansInUse(words))
    return u"Die Schnittstelle des Servers ist belegt; der Server meldet: "_s + words;
  return line_->connection->EndedInOrder() ? u"Der Server hat die Verbindung beendet."_s
                                           : u"Die Verbindung zum Server ist abgebrochen."_s;
}

void NetworkControl::Close() {
  if (!std::exchange(open_, false)) return;
  owed_ = owed_ || !line_->answered;
  input_.clear();
  events_.DropOutput();
  if (line_->connection->Unsent() > 0 || gone_) {
    line_.reset();
    return;
  }
  if (line_->comPort && std::exchange(line_->rts, false)) line_->comPort->SetRts(false);
  Purge();
  if (QCoreApplication::instance() != nullptr)
    keep_.start(static_cast<int>(times_.keep_s * kMillisecondsPerSecond));
}

void NetworkControl::Release() {
  if (!open_) line_.reset();
}

// What the control of the port has to say.
void NetworkControl::SendControl() {
  if (!line_->comPort) return;
  if (const QByteArray bytes = line_->comPort->TakeOutgoing(); !bytes.isEmpty())
    line_->connection->Send(bytes);
}

bool NetworkControl::SetRts(bool raised) {
  if (!Usable()) return false;
  if (line_->comPort && line_->rts != raised) {
    line_->rts = raised;
    line_->comPort->SetRts(raised);
    SendControl();
  }
  return true;
}

bool NetworkControl::ClearInBuffer() {
  if (!Usable()) return false;
  ReadAll();
  input_.clear();
  Purge();
  return !gone_;
}

// What has not gone out cannot be cut out of the stream: closing gives the connection up with it.
bool NetworkControl::ClearOutBuffer() {
  if (!Usable()) return false;
  events_.DropOutput();
  return true;
}

// Has the other side discard what it holds of either direction, if there can be something.
void NetworkControl::Purge() {
  if (!line_->comPort) return;
  if (std::exchange(line_->used, false)) line_->comPort->Purge();
  SendControl();
}

void NetworkControl::SetSThreshold(int characters) {
  events_.SetThreshold(characters);
  NoteSent();
}

void NetworkControl::Output(const QByteArray& characters) {
  if (!Usable() || characters.isEmpty()) return;
  if (line_->connection->Unsent() + characters.size() > kOutputLimit_bytes) {
    events_.Report(kCommEventTransmitFull);
    return;
  }
  events_.NoteOutput();
  line_->used = true;
  line_->answered = false;
  if (line_->comPort) {
    line_->comPort->Send(characters);
    SendControl();
  } else {
    line_->connection->Send(characters);
  }
  NoteSent();
}

void NetworkControl::NoteSent() {
  if (open_ && line_->connection->Unsent() == 0) events_.NoteAllSent();
}

// Takes what one read gives; false when that is nothing.
bool NetworkControl::ReadPiece(QByteArray& characters) {
  Line& line = *line_;
  if (!line.comPort) return line.connection->Receive(characters);
  QByteArray bytes;
  if (!line.connection->Receive(bytes)) return false;
  line.comPort->Receive(bytes, characters);
  SendControl();
  return true;
}

// Takes what has arrived, up to the limit.
void NetworkControl::ReadAll() {
  Line& line = *line_;
  const qsizetype before = input_.size();
  while (input_.size() < kInputLimit_bytes && ReadPiece(input_)) {
  }
  if (const qsizetype count = input_.size() - before; count > 0) {
    line.used = true;
    line.answered = EndsLine(input_.back());
    Note(QByteArrayView(input_).last(count));
  }
  if (line.comPort) {
    if (const int error = line.comPort->TakeLineError(); error != kCommEventNone) events_.Report(error);
    gone_ = line.comPort->Broken() || line.comPort->State() != ComPort::Control::Agreed;
  }
  gone_ = gone_ || line.connection->Ended();
  if (gone_ && fault_.isEmpty()) fault_ = FaultOfEnd();
}

int NetworkControl::InBufferCount() {
  if (Usable()) ReadAll();
  return static_cast<int>(input_.size());
}

QByteArray NetworkControl::Input() {
  // The wait has read all that there was.
  if (input_.isEmpty() && Usable()) ReadAll();
  return std::exchange(input_, {});
}

InputWait NetworkControl::WaitForInput(double seconds) {
  if (!open_) return InputWait::LineGone;
  const QDeadlineTimer bound = In(seconds);
  while (input_.isEmpty()) {
    if (gone_) return InputWait::LineGone;
    const bool inTime = line_->connection->Wait(SecondsLeft(bound));
    NoteSent();
    if (!inTime) {
      if (line_->used) line_->answered = false;
      return InputWait::TimedOut;
    }
    ReadAll();
  }
  return InputWait::Input;
}

int NetworkControl::CommEvent() {
  if (open_ && gone_ && !events_.ReportsSent()) events_.Note(kCommEventDeviceControlBlock);
  return events_.Event();
}

}  // namespace kalivor::platform
