#include "platform/posix/PortUsers.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

Folder OpenFolder(int at, const char* name) {
  Descriptor descriptor(openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor.Valid()) return {};
  Folder folder(fdopendir(descriptor.Get()));
  // The folder owns it from now on.
  if (folder) (void)descriptor.Release();
  return folder;
}

// Where a link leads; "" for what is none. Longer ones than a device's name may be are cut.
class LinkTarget {
 public:
  LinkTarget(int at, const char* name) : length_(readlinkat(at, name, text_, sizeof text_)) {}
  [[nodiscard]] QByteArrayView View() const { return {text_, std::max<qsizetype>(0, length_)}; }

 private:
  char text_[256]{};
  ssize_t length_;
};

// The number of a process by the name of its folder; 0 for other names, and for this program itself.
qint64 ForeignProcess(std::string_view name) {
  qint64 process = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  const bool isNumber = error == std::errc() && end == name.data() + name.size();
  return isNumber && process > 0 && process != getpid() ? process : 0;
}

}  // namespace

PortUsers::PortUsers(QString processFolder, QStringList lockFolders)
    : processFolder_(std::move(processFolder)), lockFolders_(std::move(lockFolders)) {}

QHash<QString, PortUser> PortUsers::Find(const QStringList& devices) {
  const Steady::time_point begin = Steady::now();
  if (devices != lookedFor_ || begin >= nextLook_) {
    LookThroughProcesses(devices);
    lookedFor_ = devices;
    constexpr int kShare = 20;
    const Steady::time_point end = Steady::now();
    nextLook_ = end + (kShare - 1) * (end - begin);
  } else {
    ForgetClosed();
  }
  QHash<QString, PortUser> users;
  for (auto open = open_.cbegin(); open != open_.cend(); ++open)
    users[open.key()] = open->user;
  AddLocked(devices, users);
  AddAnnounced(devices, users);
  return users;
}

PortUser PortUsers::User(qint64 process) const {
  QFile name(processFolder_ + u'/' + QString::number(process) + u"/comm"_s);
  PortUser user{{}, process};
  if (name.open(QIODevice::ReadOnly)) user.program = QString::fromUtf8(name.readAll()).trimmed();
  return user;
}

// Each process has a folder of links to what it has open.
void PortUsers::LookThroughProcesses(const QStringList& devices) {
  open_.clear();
  std::vector<std::pair<QByteArray, QString>> wanted;
  wanted.reserve(static_cast<std::size_t>(devices.size()));
  for (const QString& device : devices)
    wanted.emplace_back(QFile::encodeName(device), device);
  const Folder processes =
      wanted.empty() ? Folder() : OpenFolder(AT_FDCWD, QFile::encodeName(processFolder_).constData());
  if (!processes) return;
  while (const dirent* const process = readdir(processes.get())) {
    const qint64 number = ForeignProcess(process->d_name);
    if (number == 0) continue;
    // Other users' are not told.
    const QByteArray name = QByteArray(process->d_name) + "/fd";
    const Folder links = OpenFolder(dirfd(processes.get()), name.constData());
    if (!links) continue;
    while (const dirent* const link = readdir(links.get())) {
      const LinkTarget target(dirfd(links.get()), link->d_name);
      for (const auto& [path, device] : wanted) {
        if (target.View() != path || open_.contains(device)) continue;
        open_[device] = {QFile::encodeName(processFolder_) + '/' + name + '/' + link->d_name, User(number)};
      }
    }
  }
}

void PortUsers::ForgetClosed() {
  for (auto open = open_.begin(); open != open_.end();) {
    const LinkTarget target(AT_FDCWD, open->link.constData());
    open = target.View() == QFile::encodeName(open.key()) ? std::next(open) : open_.erase(open);
  }
}

// "1: FLOCK  ADVISORY  WRITE 1234 00:06:531 0 EOF": process, and file by file system and number.
void PortUsers::AddLocked(const QStringList& devices, QHash<QString, PortUser>& users) const {
  QFile file(processFolder_ + u"/locks"_s);
  if (!file.open(QIODevice::ReadOnly)) return;
  QHash<QByteArray, qint64> holders;
  for (const QByteArray& line : file.readAll().split('\n')) {
    const QList<QByteArray> words = line.simplified().split(' ');
    constexpr qsizetype kProcess = 4;
    // One who waits for a lock has "->" as its second word.
    if (words.size() <= kProcess + 1 || words.at(1) == "->") continue;
    holders[words.at(kProcess + 1)] = words.at(kProcess).toLongLong();
  }
  for (const QString& device : devices) {
    struct stat status {};
    if (users.contains(device) || stat(QFile::encodeName(device).constData(), &status) != 0) continue;
    const QByteArray place = QString::asprintf("%02x:%02x:%llu", major(status.st_dev), minor(status.st_dev),
                                               static_cast<unsigned long long>(status.st_ino))
                                 .toLatin1();
    const auto holder = holders.constFind(place);
    if (holder != holders.cend() && *holder != getpid()) users[device] = User(*holder);
  }
}

// "LCK..ttyUSB0" holds the number of a process, as text or as it is in memory. One that has ended without
// clearing up has no device any more.
void PortUsers::AddAnnounced(const QStringList& devices, QHash<QString, PortUser>& users) const {
  for (const QString& device : devices) {
    for (const QString& folder : lockFolders_) {
      if (users.contains(device)) break;
      QFile file(folder + u"/LCK.."_s + device.section(u'/', -1));
      if (!file.open(QIODevice::ReadOnly)) continue;
      constexpr qint64 kLongest_bytes = 64;
      const QByteArray content = file.read(kLongest_bytes);
      qint64 process = content.simplified().split(' ').first().toLongLong();
      if (qint32 number = 0; process == 0 && content.size() == sizeof number) {
        std::memcpy(&number, content.constData(), sizeof number);
        process = number;
      }
      const bool lives = process > 0 && process != getpid() &&
                         QFile::exists(processFolder_ + u'/' + QString::number(process));
      if (lives) users[device] = User(process);
    }
  }
}

}  // namespace kalivor::platform
