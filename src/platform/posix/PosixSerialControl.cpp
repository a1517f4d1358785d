// A serial port through the terminal driver.
#include "platform/posix/PosixSerialControl.h"

#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/posix/MonotonicTime.h"
#include "platform/posix/TerminalSettings.h"
#include "platform/posix/Uninterrupted.h"

namespace kalivor::platform {
namespace {

constexpr tcflag_t kCharacterFlags = CSIZE | PARENB | PARODD | CMSPAR;

// The device numbers reserved for pseudo-terminals.
bool IsPseudoTerminal(int fd) {
  struct stat status {};
  if (fstat(fd, &status) != 0) return false;
  const unsigned int number = major(status.st_rdev);
  return number >= 136 && number <= 143;
}

Descriptor OpenDevice(const QByteArray& name) {
  constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
  return Descriptor(Uninterrupted([&] { return open(name.constData(), kFlags); }));
}

// Raw characters with marked errors, no flow control, no modem lines.
termios WithSettings(termios attributes, const LineSettings& settings) {
  cfmakeraw(&attributes);
  attributes.c_iflag &= ~static_cast<tcflag_t>(IGNPAR | IXOFF | IXANY);
  attributes.c_iflag |= INPCK | PARMRK;
  attributes.c_cflag &= ~static_cast<tcflag_t>(kCharacterFlags | CSTOPB | CRTSCTS);
  attributes.c_cflag |= CREAD | CLOCAL | ControlFlags(settings);
  // One character satisfies a read: so nothing waiting is an error of its own, and only a line that is gone
  // reads as the end of the file.
  attributes.c_cc[VMIN] = 1;
  attributes.c_cc[VTIME] = 0;
  (void)cfsetispeed(&attributes, SpeedOf(settings.baud));
  (void)cfsetospeed(&attributes, SpeedOf(settings.baud));
  return attributes;
}

PortFault FaultOfOpening(int error, const QString& device) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENXIO:
    case ENODEV:
    case EIO:
      return {PortFault::Kind::Absent, device};
    case EACCES:
    case EPERM:
    case EROFS:
      return {PortFault::Kind::NoPermission, device};
    case EBUSY:
      return {PortFault::Kind::InUse, device};
    case EISDIR:
      return {PortFault::Kind::NoSerialPort, device};
    default:
      return {PortFault::Kind::Other, device, {}, error};
  }
}

bool SameSettings(const termios& a, const termios& b, tcflag_t overlooked) {
  return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_lflag == b.c_lflag &&
         ((a.c_cflag ^ b.c_cflag) & ~overlooked) == 0 && a.c_cc[VMIN] == b.c_cc[VMIN] &&
         a.c_cc[VTIME] == b.c_cc[VTIME] && cfgetispeed(&a) == cfgetispeed(&b) &&
         cfgetospeed(&a) == cfgetospeed(&b);
}

}  // namespace

PosixSerialControl::PosixSerialControl(DeviceResolver resolver, std::unique_ptr<SerialDriver> driver)
    : resolver_(std::move(resolver)), driver_(std::move(driver)) {}

PosixSerialControl::~PosixSerialControl() {
  Close();
}

bool PosixSerialControl::Open(int number, const QString& settings) {
  Close();
  events_.Clear();
  fault_ = OpenPort(number, settings);
  return fault_.kind == PortFault::Kind::None;
}

PortFault PosixSerialControl::OpenPort(int number, const QString& settings) {
  const std::optional<LineSettings> wanted = ParseLineSettings(settings);
  if (!wanted) return {PortFault::Kind::SettingsRefused, kAnyPort.toString(), settings};
  const QString path = resolver_(number);
  if (path.isEmpty()) return {PortFault::Kind::NoPort};

  Descriptor device = OpenDevice(QFile::encodeName(path));
  if (!device.Valid()) return FaultOfOpening(errno, path);
  termios present{};
  if (tcgetattr(device.Get(), &present) != 0) return {PortFault::Kind::NoSerialPort, path};
  // Before anything is touched: another program may be in the middle of a transfer.
  if (flock(device.Get(), LOCK_EX | LOCK_NB) != 0) return {PortFault::Kind::InUse, path};

  port_ = std::move(device);
  isPseudoTerminal_ = IsPseudoTerminal(port_.Get());
  if (ioctl(port_.Get(), TIOCEXCL) != 0 || !Configure(*wanted, present)) {
    Close();
    return {PortFault::Kind::SettingsRefused, path, settings};
  }
  if (!isPseudoTerminal_) LowerLatency();
  hasParity_ = wanted->HasParity();
  lineGone_ = false;
  device_ = path;
  unsent_ = false;
  driverCountsErrors_ = false;
  counted_ = driver_->ErrorCounts(port_.Get());
  // Opening has raised it. A port that has no such line is as good as any other.
  rts_.reset();
  (void)SetRts(false);
  return {};
}

bool PosixSerialControl::Configure(const LineSettings& settings, const termios& present) {
  const termios wanted = WithSettings(present, settings);
  // A pseudo-terminal does not keep these.
  const tcflag_t overlooked = isPseudoTerminal_ ? kCharacterFlags : 0;
  // Setting costs an adapter several transfers on its bus, and a port mostly comes back as it was left.
  if (SameSettings(present, wanted, overlooked)) return true;
  if (tcsetattr(port_.Get(), TCSANOW, &wanted) != 0 && !(isPseudoTerminal_ && errno == EINVAL)) return false;
  // Success means that something was set, not that everything was.
  termios actual{};
  return tcgetattr(port_.Get(), &actual) == 0 && SameSettings(actual, wanted, overlooked);
}

// USB adapters otherwise keep a reply back for up to 16 ms. Where the driver cannot, it stays as it is.
void PosixSerialControl::LowerLatency() const {
  serial_struct driver{};
  if (ioctl(port_.Get(), TIOCGSERIAL, &driver) != 0 ||
      (static_cast<unsigned>(driver.flags) & ASYNC_LOW_LATENCY) != 0)
    return;
  driver.flags |= ASYNC_LOW_LATENCY;
  (void)ioctl(port_.Get(), TIOCSSERIAL, &driver);
}

void PosixSerialControl::Close() {
  if (!port_.Valid()) return;
  // Without unsent characters there is nothing that closing could wait for.
  if (unsent_) (void)tcflush(port_.Get(), TCOFLUSH);
  (void)ioctl(port_.Get(), TIOCNXCL);
  port_.Close();
  output_.clear();
  input_.clear();
  marks_.Reset();
  events_.DropOutput();
}

bool PosixSerialControl::SetRts(bool raised) {
  if (!port_.Valid()) return false;
  if (rts_ == raised) return true;
  const int error = driver_->SetRts(port_.Get(), raised);
  const bool done = error == 0 || (isPseudoTerminal_ && (error == ENOTTY || error == EINVAL));
  if (done) rts_ = raised;
  return done;
}

bool PosixSerialControl::ClearInBuffer() {
  if (!port_.Valid()) return false;
  input_.clear();
  marks_.Reset();
  return tcflush(port_.Get(), TCIFLUSH) == 0;
}

bool PosixSerialControl::ClearOutBuffer() {
  if (!port_.Valid()) return false;
  output_.clear();
  events_.DropOutput();
  if (tcflush(port_.Get(), TCOFLUSH) != 0) return false;
  unsent_ = false;
  return true;
}

void PosixSerialControl::SetSThreshold(int characters) {
  events_.SetThreshold(characters);
  if (output_.isEmpty()) events_.NoteAllSent();
}

void PosixSerialControl::Output(const QByteArray& characters) {
  if (!port_.Valid() || characters.isEmpty()) return;
  if (output_.size() + characters.size() > kOutputLimit_bytes) {
    events_.Report(kCommEventTransmitFull);
    return;
  }
  output_.append(characters);
  events_.NoteOutput();
  FlushOutput();
}

void PosixSerialControl::FlushOutput() {
  qsizetype taken = 0;
  while (taken < output_.size()) {
    const ssize_t count =
        write(port_.Get(), output_.constData() + taken, static_cast<size_t>(output_.size() - taken));
    if (count > 0) {
      unsent_ = true;
      taken += count;
    } else if (count == 0 || errno == EAGAIN) {
      break;
    } else if (errno != EINTR) {
      // The device is gone, which the next wait reports; nothing can be sent any more.
      output_.clear();
      events_.DropOutput();
      return;
    }
  }
  output_.remove(0, taken);
  if (output_.isEmpty()) events_.NoteAllSent();
}

// Takes what one read gives; false when that is nothing.
bool PosixSerialControl::ReadPiece() {
  if (lineGone_ || input_.size() >= kInputLimit_bytes) return false;
  char piece[4096];
  const ssize_t count = Uninterrupted([&] { return read(port_.Get(), piece, sizeof piece); });
  if (count <= 0) {
    if (count == 0 || errno != EAGAIN) NoteLineGone();
    return false;
  }
  NoteMark(marks_.Decode(QByteArrayView(piece, count), input_));
  return true;
}

void PosixSerialControl::NoteLineGone() {
  lineGone_ = true;
  fault_ = {PortFault::Kind::Vanished, device_};
}

void PosixSerialControl::ReadAll() {
  if (!port_.Valid()) return;
  while (ReadPiece()) {
  }
}

int PosixSerialControl::InBufferCount() {
  ReadAll();
  return static_cast<int>(input_.size());
}

QByteArray PosixSerialControl::Input() {
  // Characters come one by one as a rule, and the wait has read them: there is nothing behind.
  if (input_.isEmpty()) ReadAll();
  return std::exchange(input_, {});
}

InputWait PosixSerialControl::WaitForInput(double seconds) {
  if (!port_.Valid()) return InputWait::LineGone;
  const std::int64_t end_ns = MonotonicNow_ns() + NanosecondsOf(seconds);
  while (input_.isEmpty()) {
    if (lineGone_) return InputWait::LineGone;
    pollfd wait{port_.Get(), POLLIN, 0};
    if (!output_.isEmpty()) wait.events |= POLLOUT;
    const timespec left = ToTimespec(std::max<std::int64_t>(0, end_ns - MonotonicNow_ns()));
    const int ready = ppoll(&wait, 1, &left, nullptr);
    if (ready == 0) return InputWait::TimedOut;
    if (ready < 0) {
      // Interrupted by a signal: goes on with the time that is left.
      if (errno == EINTR) continue;
      return InputWait::LineGone;
    }
    if ((wait.revents & POLLOUT) != 0) FlushOutput();
    if ((wait.revents & POLLIN) != 0) ReadPiece();
    if ((wait.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
      // What came before the end is delivered first.
      ReadAll();
      NoteLineGone();
    }
  }
  return InputWait::Input;
}

int PosixSerialControl::CommEvent() {
  if (!port_.Valid() || events_.ReportsSent()) return events_.Event();
  if (const int error = NewlyCountedError(); error != kCommEventNone) events_.Note(error);
  termios attributes{};
  if (tcgetattr(port_.Get(), &attributes) != 0) events_.Note(kCommEventDeviceControlBlock);
  return events_.Event();
}

// Marks do not tell a parity from a framing error. Where the driver counts them, its counters do.
void PosixSerialControl::NoteMark(MarkedInput::Mark mark) {
  if (mark == MarkedInput::Mark::None) return;
  if (const int error = NewlyCountedError(); error != kCommEventNone) {
    events_.Report(error);
  } else if (!driverCountsErrors_) {
    const int damage = hasParity_ ? kCommEventParity : kCommEventFraming;
    events_.Report(mark == MarkedInput::Mark::Break ? kCommEventBreak : damage);
  }
}

// The error whose counter has moved since the last call. Of several, the one that explains the others: a
// break also looks like damaged characters.
int PosixSerialControl::NewlyCountedError() {
  if (!counted_) return kCommEventNone;
  const std::optional<LineErrorCounts> now = driver_->ErrorCounts(port_.Get());
  if (!now) return kCommEventNone;
  const LineErrorCounts before = std::exchange(counted_, now).value_or(*now);
  int error = kCommEventNone;
  if (now->buf_overrun != before.buf_overrun) error = kCommEventReceiveOverflow;
  if (now->overrun != before.overrun) error = kCommEventOverrun;
  if (now->frame != before.frame) error = kCommEventFraming;
  if (now->parity != before.parity) error = kCommEventParity;
  if (now->brk != before.brk) error = kCommEventBreak;
  if (error != kCommEventNone) driverCountsErrors_ = true;
  return error;
}

}  // namespace kalivor::platform
