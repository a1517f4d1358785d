#include "platform/posix/SerialDevices.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/SerialControl.h"
#include "platform/posix/DeviceFacts.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// What this user can do about a device that he may not open.
QString PermissionRemark(const QString& device) {
  struct stat status {};
  const bool known = stat(QFile::encodeName(device).constData(), &status) == 0;
  constexpr mode_t kGroupMay = S_IRGRP | S_IWGRP;
  const bool groupMay = known && status.st_gid != 0 && (status.st_mode & kGroupMay) == kGroupMay;
  const group* const owner = groupMay ? getgrgid(status.st_gid) : nullptr;
  if (owner == nullptr) return u"Nur der Verwalter des Rechners darf die Schnittstelle öffnen."_s;
  const QString name = QString::fromLocal8Bit(owner->gr_name);
  QStringList members;
  for (char** member = owner->gr_mem; *member != nullptr; ++member)
    members.append(QString::fromLocal8Bit(*member));
  const passwd* const entry = getpwuid(getuid());
  const QString user = entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : u"NAME"_s;
  if (members.contains(user)) {
    return u"Die Aufnahme in die Gruppe %1 gilt erst nach dem nächsten Anmelden: einmal ab- und wieder "
           "anmelden."_s.arg(name);
  }
  return u"Nur die Gruppe %1 darf die Schnittstelle öffnen. Abhilfe: „sudo usermod --append --groups %1 "
         "%2“, dann neu anmelden."_s.arg(name, user);
}

QString UserRemark(const PortUser& user) {
  if (user.program.isEmpty()) return u"Ein anderes Programm benutzt die Schnittstelle; es zuerst beenden."_s;
  return u"Das Programm %1 (Prozess %2) benutzt die Schnittstelle; es zuerst beenden."_s.arg(
      user.program, QString::number(user.process));
}

// The ports of one adapter are told apart by counting them.
void CountPlaces(QList<PortEntry>& entries) {
  const QList<PortEntry> all = entries;
  for (PortEntry& entry : entries) {
    if (entry.place.isEmpty() || std::ranges::count(all, entry.place, &PortEntry::place) < 2) continue;
    const auto before = [&](const PortEntry& other) {
      return other.place == entry.place && other.byPlace < entry.byPlace;
    };
    entry.place += u", Anschluss "_s + QString::number(1 + std::ranges::count_if(all, before));
  }
}

}  // namespace

SerialDevices::SerialDevices(QMap<int, QString> bindings, SystemFolders folders)
    : SystemPorts(std::move(bindings)),
      folders_(std::move(folders)),
      users_(folders_.processes, folders_.locks) {}

void SerialDevices::LookAnew() {
  seenAt_ = {};
  present_.reset();
}

// The port is opened for every telegram, and to look through all devices costs more than the telegram.
void SerialDevices::Look() {
  std::error_code error;
  const FileTime changedAt = std::filesystem::last_write_time(folders_.devices.toStdString(), error);
  // Times come in coarse steps: only a later change of an older folder is certain to give it another time.
  const bool settled = !error && FileTime::clock::now() - changedAt >= std::chrono::seconds(2);
  if (settled && changedAt == seenAt_) return;
  names_ = Scan();
  seenAt_ = changedAt;
  present_.reset();
}

QList<PortEntry> SerialDevices::Present() {
  Look();
  if (present_) return *present_;
  QList<PortEntry> entries;
  for (const QString& name : std::as_const(names_)) {
    PortEntry& entry = entries.emplace_back();
    if (entries.size() <= kLargestPortNumber) entry.number = static_cast<int>(entries.size());
    entry.device = folders_.devices + u'/' + name;
    DescribeDevice(folders_.knowledge, name, entry);
  }
  CountPlaces(entries);
  present_ = entries;
  return entries;
}

QString SerialDevices::Counted(int number) {
  Look();
  return number <= names_.size() ? folders_.devices + u'/' + names_.at(number - 1) : QString();
}

QString SerialDevices::Find(const QString& device) {
  return QFileInfo(device).canonicalFilePath();
}

void SerialDevices::Examine(QList<PortEntry>& entries) {
  QStringList devices;
  for (PortEntry& entry : entries) {
    if (access(QFile::encodeName(entry.device).constData(), R_OK | W_OK) == 0) {
      // The far end of a pseudo-terminal holds it open as well.
      if (!entry.device.startsWith(folders_.devices + u"/pts/"_s)) devices.append(entry.device);
    } else if (errno == EACCES) {
      entry.state = PortState::NoPermission;
      entry.remark = PermissionRemark(entry.device);
    }
  }
  const QHash<QString, PortUser> users = users_.Find(devices);
  for (PortEntry& entry : entries) {
    const auto user = users.constFind(entry.device);
    if (user == users.cend()) continue;
    entry.state = PortState::InUse;
    entry.remark = UserRemark(*user);
  }
}

QStringList SerialDevices::Scan() const {
  static const QRegularExpression pattern(u"^tty(S|USB|ACM)([0-9]+)\\z"_s);
  static const QStringList kinds{u"S"_s, u"USB"_s, u"ACM"_s};
  std::set<std::tuple<qsizetype, int, QString>> found;
  const QStringList all = QDir(folders_.devices).entryList(QDir::AllEntries | QDir::System);
  for (const QString& name : all) {
    const QRegularExpressionMatch match = pattern.match(name);
    bool isNumber = false;
    const int number = match.captured(2).toInt(&isNumber);
    if (!isNumber) continue;
    const qsizetype kind = kinds.indexOf(match.captured(1));
    if (kind == 0 && !HasHardware(folders_.knowledge, name)) continue;
    found.emplace(kind, number, name);
  }

  QStringList names;
  for (const auto& [kind, number, name] : found)
    names.append(name);
  return names;
}

}  // namespace kalivor::platform
