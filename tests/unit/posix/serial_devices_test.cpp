// Which device a serial port number stands for.
#include "platform/posix/SerialDevices.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

class SerialDevicesTest : public testing::Test {
 protected:
  SerialDevicesTest() {
    QDir().mkpath(Dev(QString()));
    QDir().mkpath(folder_.filePath(u"sys/class/tty"_s));
  }

  [[nodiscard]] QString Dev(const QString& name) const { return folder_.filePath(u"dev/"_s + name); }

  void WriteFile(const QString& path, const QByteArray& bytes) const {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  void AddDevice(const QString& name) const { WriteFile(Dev(name), {}); }

  // A built-in port with the type that its driver tells; 0 stands for no hardware.
  void AddBuiltIn(const QString& name, int type) const {
    AddDevice(name);
    WriteFile(folder_.filePath(u"sys/class/tty/%1/type"_s.arg(name)), QByteArray::number(type) + '\n');
    // Newer systems bind a driver to every port, with hardware or not.
    QDir().mkpath(folder_.filePath(u"sys/class/tty/%1/device/driver"_s.arg(name)));
  }

  [[nodiscard]] SerialDevices Devices(const QMap<int, QString>& overrides = {}) const {
    return SerialDevices(overrides, folder_.filePath(u"dev"_s), folder_.filePath(u"sys"_s));
  }

  [[nodiscard]] QStringList All(SerialDevices devices) const {
    QStringList names;
    for (int number = 1; number <= 8; ++number) {
      const QString device = devices.Device(number);
      names.append(device.isEmpty() ? u"-"_s : device.mid(Dev(QString()).size()));
    }
    while (!names.isEmpty() && names.last() == u"-")
      names.removeLast();
    return names;
  }

  QTemporaryDir folder_;
};

TEST_F(SerialDevicesTest, NoDevices) {
  EXPECT_EQ(All(Devices()), QStringList());
  SerialDevices nowhere({}, folder_.filePath(u"missing"_s), folder_.filePath(u"missing"_s));
  EXPECT_EQ(nowhere.Device(1), QString());
}

TEST_F(SerialDevicesTest, BuiltInBeforeUsbEachByNumber) {
  for (const char* name : {"ttyACM1", "ttyUSB10", "ttyUSB9", "ttyACM0"})
    AddDevice(QString::fromUtf8(name));
  AddBuiltIn(u"ttyS10"_s, 4);
  AddBuiltIn(u"ttyS2"_s, 4);
  EXPECT_EQ(All(Devices()),
            QStringList({u"ttyS2"_s, u"ttyS10"_s, u"ttyUSB9"_s, u"ttyUSB10"_s, u"ttyACM0"_s, u"ttyACM1"_s}));
}

TEST_F(SerialDevicesTest, BuiltInPortsNeedHardware) {
  AddBuiltIn(u"ttyS0"_s, 0);
  AddBuiltIn(u"ttyS1"_s, 4);
  AddDevice(u"ttyS2"_s);  // the system knows nothing about it
  AddDevice(u"ttyS3"_s);  // a driver that tells no type
  QDir().mkpath(folder_.filePath(u"sys/class/tty/ttyS3/device/driver"_s));
  AddBuiltIn(u"ttyS4"_s, 10);
  EXPECT_EQ(All(Devices()), QStringList({u"ttyS1"_s, u"ttyS3"_s, u"ttyS4"_s}));
}

TEST_F(SerialDevicesTest, OtherNamesAreNoDevices) {
  for (const char* name : {"ttyUSB", "ttyUSBx", "ttyUSB1x", "ttyUSB-1", "ttyUSB+1", "ttyUSB 1", "xttyUSB1",
                           "tty1", "ttyUSB99999999999", "TTYUSB1"}) {
    AddDevice(QString::fromUtf8(name));
  }
  AddBuiltIn(u"ttySAC0"_s, 4);
  EXPECT_EQ(All(Devices()), QStringList());
}

TEST_F(SerialDevicesTest, NumbersOutsideTheRangeHaveNoDevice) {
  for (int i = 0; i < 12; ++i)
    AddDevice(u"ttyUSB%1"_s.arg(i));
  SerialDevices devices = Devices({{0, u"/dev/a"_s}, {9, u"/dev/b"_s}});
  EXPECT_EQ(devices.Device(8), Dev(u"ttyUSB7"_s));
  for (const int number : {-32768, -1, 0, 9, 32767})
    EXPECT_EQ(devices.Device(number), QString()) << number;
}

TEST_F(SerialDevicesTest, OverridesComeFirstAndDoNotShiftTheOthers) {
  for (int i = 0; i < 3; ++i)
    AddDevice(u"ttyUSB%1"_s.arg(i));
  SerialDevices devices = Devices({{2, u"/dev/my line"_s}, {3, QString()}, {8, u"/dev/last"_s}});
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB0"_s));
  EXPECT_EQ(devices.Device(2), u"/dev/my line"_s);
  EXPECT_EQ(devices.Device(3), Dev(u"ttyUSB2"_s));
  EXPECT_EQ(devices.Device(8), u"/dev/last"_s);
  devices.Override(2, u"/dev/pts/5"_s);
  devices.Override(1, u"/dev/pts/6"_s);
  EXPECT_EQ(devices.Device(2), u"/dev/pts/5"_s);
  EXPECT_EQ(devices.Device(1), u"/dev/pts/6"_s);
}

TEST_F(SerialDevicesTest, SeesDevicesComeAndGo) {
  AddDevice(u"ttyUSB1"_s);
  SerialDevices devices = Devices();
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB1"_s));
  AddDevice(u"ttyUSB0"_s);
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB0"_s));
  EXPECT_EQ(devices.Device(2), Dev(u"ttyUSB1"_s));
  QFile::remove(Dev(u"ttyUSB0"_s));
  QFile::remove(Dev(u"ttyUSB1"_s));
  EXPECT_EQ(devices.Device(1), QString());
}

// The same with a folder that has been unchanged for long, so that the last look is still good.
TEST_F(SerialDevicesTest, SeesAChangeOfASettledFolder) {
  const QByteArray dev = QFile::encodeName(folder_.filePath(u"dev"_s));
  const auto letFolderRest = [&] {
    const timespec old[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, dev.constData(), old, 0), 0);
  };
  AddDevice(u"ttyUSB1"_s);
  letFolderRest();
  SerialDevices devices = Devices();
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB1"_s));
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB1"_s));
  // Without a trace in the folder's time nobody looks again: the scan is spared.
  AddDevice(u"ttyUSB0"_s);
  letFolderRest();
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB1"_s));
  QFile::remove(Dev(u"ttyUSB1"_s));
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB0"_s));
}

// Times come in steps: a second change within the same step shows nowhere in the folder's time.
TEST_F(SerialDevicesTest, SeesASecondChangeAtTheSameTime) {
  const QByteArray dev = QFile::encodeName(folder_.filePath(u"dev"_s));
  timespec now{};
  ASSERT_EQ(clock_gettime(CLOCK_REALTIME, &now), 0);
  const timespec times[2] = {now, now};
  AddDevice(u"ttyUSB1"_s);
  ASSERT_EQ(utimensat(AT_FDCWD, dev.constData(), times, 0), 0);
  SerialDevices devices = Devices();
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB1"_s));
  AddDevice(u"ttyUSB0"_s);
  ASSERT_EQ(utimensat(AT_FDCWD, dev.constData(), times, 0), 0);
  EXPECT_EQ(devices.Device(1), Dev(u"ttyUSB0"_s));
}

}  // namespace
}  // namespace kalivor::platform
