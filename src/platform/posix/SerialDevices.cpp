// Which device a serial port number stands for.
#include "platform/posix/SerialDevices.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// Systems have device files for many more built-in ports than they have ports. The driver writes type 0 for
// one without hardware; drivers that tell no type are bound to real hardware only.
bool HasHardware(const QString& systemFolder, const QString& name) {
  const QString entry = systemFolder + u"/class/tty/"_s + name;
  QFile type(entry + u"/type"_s);
  if (!type.open(QIODevice::ReadOnly)) return QFileInfo::exists(entry + u"/device/driver"_s);
  const QByteArray text = type.readAll().trimmed();
  return !text.isEmpty() && text != "0";
}

}  // namespace

SerialDevices::SerialDevices(QMap<int, QString> bindings, QString deviceFolder, QString systemFolder)
    : PortBindings(std::move(bindings)),
      deviceFolder_(std::move(deviceFolder)),
      systemFolder_(std::move(systemFolder)) {}

QString SerialDevices::Device(int number) {
  if (number < 1 || number > kLargestPortNumber) return {};
  QString device = Wanted(number);
  if (!device.isEmpty()) return device;

  // The port is opened for every telegram, and to look through all devices costs more than the telegram.
  std::error_code error;
  const FileTime changedAt = std::filesystem::last_write_time(deviceFolder_.toStdString(), error);
  // Times come in coarse steps: only a later change of an older folder is certain to give it another time.
  const bool settled = !error && FileTime::clock::now() - changedAt >= std::chrono::seconds(2);
  if (!settled || changedAt != presentAt_) {
    present_ = Scan();
    presentAt_ = changedAt;
  }
  return present_.value(number - 1);
}

QList<PortEntry> SerialDevices::List() {
  QList<PortEntry> entries;
  for (int number = 1; number <= kLargestPortNumber; ++number) {
    const QString device = Device(number);
    if (!device.isEmpty()) entries.append({number, device});
  }
  return entries;
}

QString SerialDevices::Shown(int number) {
  const QString device = Device(number);
  return QFileInfo::exists(device) ? device : QString();
}

QStringList SerialDevices::Scan() const {
  static const QRegularExpression pattern(u"^tty(S|USB|ACM)([0-9]+)\\z"_s);
  static const QStringList kinds{u"S"_s, u"USB"_s, u"ACM"_s};
  std::set<std::tuple<qsizetype, int, QString>> found;
  const QStringList names = QDir(deviceFolder_).entryList(QDir::AllEntries | QDir::System);
  for (const QString& name : names) {
    const QRegularExpressionMatch match = pattern.match(name);
    bool isNumber = false;
    const int number = match.captured(2).toInt(&isNumber);
    if (!isNumber) continue;
    const qsizetype kind = kinds.indexOf(match.captured(1));
    if (kind == 0 && !HasHardware(systemFolder_, name)) continue;
    found.emplace(kind, number, name);
  }

  QStringList paths;
  for (const auto& [kind, number, name] : found)
    paths.append(deviceFolder_ + u'/' + name);
  return paths;
}

}  // namespace kalivor::platform
