#include "platform/win32/Win32SerialControl.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace kalivor::platform {
namespace {

using Steady = std::chrono::steady_clock;

// "\\.\COM3": the short name serves the first nine ports only.
std::wstring SystemName(const QString& name) {
  return (QStringLiteral("\\\\.\\") + name).toStdWString();
}

BYTE ParityCode(char parity) {
  switch (parity) {
    case 'o':
      return ODDPARITY;
    case 'e':
      return EVENPARITY;
    case 'm':
      return MARKPARITY;
    case 's':
      return SPACEPARITY;
    default:
      return NOPARITY;
  }
}

// Raw characters, damaged ones marked, no flow control, no modem lines.
DCB StateOf(const LineSettings& settings) {
  DCB state{};
  state.DCBlength = sizeof state;
  state.BaudRate = static_cast<DWORD>(settings.baud);
  state.ByteSize = static_cast<BYTE>(settings.dataBits);
  state.Parity = ParityCode(settings.parity);
  state.StopBits = settings.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
  state.fBinary = TRUE;
  state.fParity = settings.parity != 'n';
  state.fErrorChar = state.fParity;
  state.ErrorChar = '?';
  state.fDtrControl = DTR_CONTROL_ENABLE;
  state.fRtsControl = RTS_CONTROL_DISABLE;
  return state;
}

// ERROR_NO_SUCH_DEVICE; not every set of headers has it.
constexpr DWORD kNoSuchDevice = 433;

PortFault FaultOfOpening(DWORD error, const QString& device) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DEV_NOT_EXIST:
    case kNoSuchDevice:
    case ERROR_DEVICE_NOT_CONNECTED:
      return {PortFault::Kind::Absent, device};
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY:
      // Windows refuses a port that another program has open in these words; it knows no other reason.
      return {PortFault::Kind::InUse, device};
    default:
      return {PortFault::Kind::Other, device, {}, static_cast<int>(error)};
  }
}

// The error that explains the others: a break also looks like damaged characters.
int EventOf(DWORD errors) {
  if ((errors & CE_BREAK) != 0) return kCommEventBreak;
  if ((errors & CE_RXPARITY) != 0) return kCommEventParity;
  if ((errors & CE_FRAME) != 0) return kCommEventFraming;
  if ((errors & CE_OVERRUN) != 0) return kCommEventOverrun;
  if ((errors & CE_RXOVER) != 0) return kCommEventReceiveOverflow;
  return kCommEventNone;
}

}  // namespace

Win32SerialControl::Win32SerialControl(NameResolver resolver, SerialCalls& calls)
    : resolver_(std::move(resolver)), calls_(calls) {}

Win32SerialControl::~Win32SerialControl() {
  Close();
}

bool Win32SerialControl::Open(int number, const QString& settings) {
  Close();
  events_.Clear();
  lineGone_ = false;
  waiting_ = 0;
  fault_ = OpenPort(number, settings);
  return fault_.kind == PortFault::Kind::None;
}

PortFault Win32SerialControl::OpenPort(int number, const QString& settings) {
  const std::optional<LineSettings> wanted = ParseLineSettings(settings);
  if (!wanted) return {PortFault::Kind::SettingsRefused, kAnyPort.toString(), settings};
  const QString name = resolver_(number);
  if (name.isEmpty()) return {PortFault::Kind::NoPort};
  port_ = calls_.Open(SystemName(name).c_str());
  if (!IsOpen()) return FaultOfOpening(calls_.LastError(), name);
  if (!Configure(*wanted)) {
    Close();
    return {PortFault::Kind::SettingsRefused, name, settings};
  }
  device_ = name;
  // A port that has no such line is as good as any other.
  (void)SetRts(false);
  return {};
}

void Win32SerialControl::NoteLineGone() {
  lineGone_ = true;
  fault_ = {PortFault::Kind::Vanished, device_};
}

bool Win32SerialControl::Configure(const LineSettings& settings) {
  // A read ends with the first character, and waits for it as long as it takes.
  constexpr COMMTIMEOUTS kTimeouts{MAXDWORD, MAXDWORD, MAXDWORD - 1, 0, 0};
  const DCB wanted = StateOf(settings);
  DCB actual{};
  const bool taken = calls_.SetState(port_, wanted) || !calls_.IsRealPort();
  return taken && calls_.GetState(port_, actual) && actual.BaudRate == wanted.BaudRate &&
         calls_.SetTimeouts(port_, kTimeouts);
}

void Win32SerialControl::Close() {
  if (!IsOpen()) return;
  // Without it, closing waits for unsent characters.
  (void)calls_.Purge(port_, PURGE_TXABORT | PURGE_TXCLEAR | PURGE_RXABORT | PURGE_RXCLEAR);
  Cancel(read_);
  Cancel(write_);
  calls_.Close(std::exchange(port_, INVALID_HANDLE_VALUE));
  output_.clear();
  input_.clear();
  events_.DropOutput();
}

bool Win32SerialControl::SetRts(bool raised) {
  return IsOpen() && !lineGone_ && (calls_.Escape(port_, raised ? SETRTS : CLRRTS) || !calls_.IsRealPort());
}

bool Win32SerialControl::ClearInBuffer() {
  if (!IsOpen()) return false;
  Cancel(read_);
  waiting_ = 0;
  input_.clear();
  return !lineGone_ && calls_.Purge(port_, PURGE_RXABORT | PURGE_RXCLEAR);
}

bool Win32SerialControl::ClearOutBuffer() {
  if (!IsOpen()) return false;
  Cancel(write_);
  output_.clear();
  events_.DropOutput();
  return !lineGone_ && calls_.Purge(port_, PURGE_TXABORT | PURGE_TXCLEAR);
}

void Win32SerialControl::SetSThreshold(int characters) {
  events_.SetThreshold(characters);
  if (!write_.underWay && !lineGone_) events_.NoteAllSent();
}

void Win32SerialControl::Output(const QByteArray& characters) {
  if (!IsOpen() || lineGone_ || characters.isEmpty()) return;
  if (leaving_.size() + output_.size() + characters.size() > kOutputLimit_bytes) {
    events_.Report(kCommEventTransmitFull);
    return;
  }
  output_ += characters;
  events_.NoteOutput();
  StartWrite();
  TakeEnded(0);
}

int Win32SerialControl::InBufferCount() {
  if (!IsOpen()) return 0;
  StartRead();
  TakeEnded(0);
  return static_cast<int>(input_.size());
}

QByteArray Win32SerialControl::Input() {
  if (input_.isEmpty()) (void)InBufferCount();
  return std::exchange(input_, {});
}

InputWait Win32SerialControl::WaitForInput(double seconds) {
  if (!IsOpen()) return InputWait::LineGone;
  const auto end = Steady::now() + std::chrono::duration<double>(std::max(0.0, seconds));
  for (;;) {
    StartRead();
    const double left_ms = std::chrono::duration<double, std::milli>(end - Steady::now()).count();
    TakeEnded(left_ms <= 0 ? 0 : static_cast<DWORD>(std::min(std::ceil(left_ms), 1e9)));
    if (!input_.isEmpty()) return InputWait::Input;
    if (lineGone_) return InputWait::LineGone;
    if (Steady::now() >= end) return InputWait::TimedOut;
  }
}

int Win32SerialControl::CommEvent() {
  if (IsOpen() && !events_.ReportsSent()) {
    LookAtPort();
    if (lineGone_) events_.Note(kCommEventDeviceControlBlock);
  }
  return events_.Event();
}

// Looks for the next characters, one read at a time: for as many as wait, or for the first one. Not every
// driver lets a longer read end with less.
void Win32SerialControl::StartRead() {
  if (read_.underWay || lineGone_) return;
  const DWORD count = std::clamp<DWORD>(waiting_, 1, kArrivingSize);
  ResetEvent(read_.overlapped.hEvent);
  read_.underWay = calls_.StartRead(port_, arriving_.data(), count, read_.overlapped);
  if (!read_.underWay) NoteLineGone();
}

// Sends what is queued, one write at a time.
void Win32SerialControl::StartWrite() {
  if (write_.underWay || lineGone_ || output_.isEmpty()) return;
  leaving_ = std::exchange(output_, {});
  ResetEvent(write_.overlapped.hEvent);
  write_.underWay =
      calls_.StartWrite(port_, leaving_.constData(), static_cast<DWORD>(leaving_.size()), write_.overlapped);
  if (!write_.underWay) {
    // Nothing can be sent any more; the next wait reports it.
    leaving_.clear();
    events_.DropOutput();
    NoteLineGone();
  }
}

// Waits until the read or the write has ended, or the time is over, and takes over what has.
void Win32SerialControl::TakeEnded(DWORD time_ms) {
  std::array<HANDLE, 2> events{};
  std::size_t count = 0;
  for (const Operation* operation : {&read_, &write_}) {
    if (operation->underWay) events[count++] = operation->overlapped.hEvent;
  }
  if (count == 0) return;
  calls_.Wait(std::span(events).first(count), time_ms);
  const auto ended = [](const Operation& operation) {
    return operation.underWay && WaitForSingleObject(operation.overlapped.hEvent, 0) == WAIT_OBJECT_0;
  };
  if (ended(write_)) TakeWritten();
  if (ended(read_)) TakeRead();
}

void Win32SerialControl::TakeRead() {
  DWORD count = 0;
  read_.underWay = false;
  if (!calls_.Result(port_, read_.overlapped, count)) {
    NoteLineGone();
    return;
  }
  input_.append(arriving_.data(), static_cast<qsizetype>(count));
  LookAtPort();
}

void Win32SerialControl::TakeWritten() {
  DWORD count = 0;
  write_.underWay = false;
  if (!calls_.Result(port_, write_.overlapped, count)) NoteLineGone();
  leaving_.clear();
  StartWrite();
  if (!write_.underWay && !lineGone_) events_.NoteAllSent();
}

void Win32SerialControl::Cancel(Operation& operation) {
  if (!std::exchange(operation.underWay, false)) return;
  calls_.Cancel(port_, operation.overlapped);
  if (&operation == &write_) leaving_.clear();
}

// Counts the characters that wait, and reports the line errors since the last look.
void Win32SerialControl::LookAtPort() {
  DWORD errors = 0;
  COMSTAT status{};
  if (!calls_.ClearError(port_, errors, status)) {
    NoteLineGone();
    return;
  }
  waiting_ = status.cbInQue;
  if (const int error = EventOf(errors); error != kCommEventNone) events_.Report(error);
}

}  // namespace kalivor::platform
