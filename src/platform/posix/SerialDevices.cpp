// Which device a serial port number stands for.
#include "platform/posix/SerialDevices.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// Kinds of devices in their order.
constexpr std::array kPrefixes = std::to_array<QByteArrayView>({"ttyS", "ttyUSB", "ttyACM"});
constexpr std::size_t kBuiltIn = 0;

struct Found {
  std::size_t kind = 0;
  int number = 0;
  QByteArray name;

  bool operator<(const Found& other) const {
    return std::pair(kind, number) < std::pair(other.kind, other.number);
  }
};

// True for a known prefix with nothing but a number behind it.
bool Recognise(QByteArrayView name, Found& device) {
  for (std::size_t kind = 0; kind < kPrefixes.size(); ++kind) {
    if (!name.startsWith(kPrefixes[kind])) continue;
    const QByteArrayView digits = name.sliced(kPrefixes[kind].size());
    const bool onlyDigits =
        std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool ok = false;
    const int number = digits.toInt(&ok);
    if (!onlyDigits || !ok) continue;
    device = {kind, number, name.toByteArray()};
    return true;
  }
  return false;
}

// Systems have device files for many more built-in ports than they have ports. The driver writes type 0 for
// one without hardware; drivers that tell no type are bound to real hardware only.
bool HasHardware(const QByteArray& systemFolder, const QByteArray& name) {
  const QByteArray entry = systemFolder + "/class/tty/" + name;
  const Descriptor type(open((entry + "/type").constData(), O_RDONLY | O_CLOEXEC));
  if (!type.Valid()) return access((entry + "/device/driver").constData(), F_OK) == 0;
  char text[16];
  const ssize_t count = read(type.Get(), text, sizeof text);
  return count > 0 && QByteArrayView(text, count).trimmed() != "0";
}

timespec ChangeTime(const QString& folder) {
  struct stat status {};
  if (stat(QFile::encodeName(folder).constData(), &status) != 0) return {};
  return status.st_mtim;
}

bool operator==(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Whether any later change is certain to give the folder another time: times come in coarse steps.
bool IsSettled(const timespec& changeTime) {
  timespec now{};
  (void)clock_gettime(CLOCK_REALTIME, &now);
  return changeTime.tv_sec != 0 && now.tv_sec - changeTime.tv_sec >= 2;
}

}  // namespace

QMap<int, QString> StoredDevices(const SettingsStore& settings) {
  QMap<int, QString> devices;
  for (int number = 1; number <= kLargestPortNumber; ++number) {
    const QString device = settings.Get(u"Ports"_s, u"COM%1"_s.arg(number), QString());
    if (!device.isEmpty()) devices[number] = device;
  }
  return devices;
}

SerialDevices::SerialDevices(QMap<int, QString> overrides, QString deviceFolder, QString systemFolder)
    : overrides_(std::move(overrides)),
      deviceFolder_(std::move(deviceFolder)),
      systemFolder_(std::move(systemFolder)) {}

QString SerialDevices::Device(int number) {
  if (number < 1 || number > kLargestPortNumber) return {};
  QString device = overrides_.value(number);
  if (!device.isEmpty()) return device;

  // The port is opened for every telegram, and to look through all devices costs more than the telegram.
  const timespec changedAt = ChangeTime(deviceFolder_);
  if (!IsSettled(changedAt) || !(changedAt == presentAt_)) {
    present_ = Scan();
    presentAt_ = changedAt;
  }
  return present_.value(number - 1);
}

QStringList SerialDevices::Scan() const {
  const QByteArray systemFolder = QFile::encodeName(systemFolder_);
  std::vector<Found> found;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(QFile::encodeName(deviceFolder_).constData()),
                                                    closedir);
  while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
    Found device;
    if (!Recognise(entry->d_name, device)) continue;
    if (device.kind == kBuiltIn && !HasHardware(systemFolder, device.name)) continue;
    found.push_back(device);
  }
  std::sort(found.begin(), found.end());

  QStringList paths;
  for (const Found& device : found)
    paths.append(deviceFolder_ + u'/' + QFile::decodeName(device.name));
  return paths;
}

}  // namespace kalivor::platform
