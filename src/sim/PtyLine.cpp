// A pseudo-terminal, its poll loop and its link.
#include "sim/PtyLine.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "platform/posix/FileErrors.h"
#include "platform/posix/MonotonicTime.h"
#include "platform/posix/TerminalSettings.h"

using namespace Qt::StringLiterals;

namespace kalivor::sim {
namespace {

bool MakeRaw(int terminal) {
  termios settings{};
  if (tcgetattr(terminal, &settings) != 0) return false;
  cfmakeraw(&settings);
  cfsetspeed(&settings, B9600);
  return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

}  // namespace

int StopSignalDescriptor() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  if (pthread_sigmask(SIG_BLOCK, &signals, nullptr) != 0) return -1;
  return signalfd(-1, &signals, SFD_CLOEXEC);
}

QString PtyLine::Open() {
  Close();
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  std::array<char, 128> name{};
  if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0 &&
      ptsname_r(master_, name.data(), name.size()) == 0) {
    // Held open for good: while nobody has the device open, the master would report nothing but a hang-up.
    slave_ = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  if (slave_ < 0 || !MakeRaw(slave_)) {
    QString error = u"Kein Pseudo-Terminal (Systemfehler %1)."_s.arg(errno);
    Close();
    return error;
  }
  deviceName_ = QFile::decodeName(name.data());
  return {};
}

QString PtyLine::Link(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  const QByteArray device = QFile::encodeName(deviceName_);
  struct stat existing {};
  const bool exists = lstat(name.constData(), &existing) == 0;
  if (exists && !S_ISLNK(existing.st_mode)) {
    return path + u" ist keine symbolische Verknüpfung und wird nicht ersetzt."_s;
  }
  // An existing link is replaced by renaming, so that the name always leads somewhere.
  const QByteArray fresh = exists ? name + '.' + QByteArray::number(getpid()) : name;
  if (symlink(device.constData(), fresh.constData()) != 0 ||
      (exists && std::rename(fresh.constData(), name.constData()) != 0)) {
    QString error =
        u"Die Verknüpfung "_s + path + u" kann nicht angelegt werden: "_s + platform::DescribeWriting(errno);
    if (exists) unlink(fresh.constData());
    return error;
  }
  link_ = path;
  return {};
}

Line::End PtyLine::Run() {
  // Bytes are to leave at their time, not up to 50 µs later.
  prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
  for (;;) {
    const double now = Seconds();
    const QByteArray due = model_.TakeDue(now);
    if (!due.isEmpty()) SendToPc(due);
    if (model_.Unplugged(now)) {
      Close();
      return End::Unplugged;
    }
    if (!exclusiveUseChecked_ && now >= lastTraffic_ + staleAfter_s_) ReleaseStaleExclusiveUse();

    std::optional<double> wake = model_.NextTime();
    if (!wake && !exclusiveUseChecked_) wake = lastTraffic_ + staleAfter_s_;
    const double sleep_s = wake.value_or(now) - Seconds();
    const timespec left = platform::ToTimespec(platform::NanosecondsOf(sleep_s));
    std::array<pollfd, 2> watched = {{{master_, POLLIN, 0}, {stopDescriptor_, POLLIN, 0}}};
    if (ppoll(watched.data(), watched.size(), wake ? &left : nullptr, nullptr) < 0 && errno != EINTR) {
      return End::Failed;
    }
    if (watched[1].revents != 0) return End::Stopped;
    if ((watched[0].revents & POLLIN) != 0) {
      ReceiveFromPc();
    } else if (watched[0].revents != 0) {
      return End::Failed;
    }
  }
}

void PtyLine::ReceiveFromPc() {
  const double now = Seconds();
  std::array<char, 1024> buffer{};
  const ssize_t length = read(master_, buffer.data(), buffer.size());
  if (length <= 0) return;
  model_.Receive(now, QByteArrayView(buffer.data(), length), Baud());
  lastTraffic_ = now;
  exclusiveUseChecked_ = false;
}

// What nobody fetches is lost, as on a real line.
void PtyLine::SendToPc(const QByteArray& bytes) const {
  if (write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size())) < 0) return;
}

// The rate at which the PC has set the device; both ends of a pseudo-terminal share it.
int PtyLine::Baud() const {
  termios settings{};
  return tcgetattr(slave_, &settings) == 0 ? platform::BaudOf(cfgetospeed(&settings)) : 0;
}

void PtyLine::ReleaseStaleExclusiveUse() {
  ioctl(slave_, TIOCNXCL);
  exclusiveUseChecked_ = true;
}

void PtyLine::Close() {
  if (!link_.isEmpty() && QFile::symLinkTarget(link_) == deviceName_) QFile::remove(link_);
  link_.clear();
  for (int* descriptor : {&slave_, &master_}) {
    if (*descriptor >= 0) close(*descriptor);
    *descriptor = -1;
  }
  deviceName_.clear();
}

}  // namespace kalivor::sim
