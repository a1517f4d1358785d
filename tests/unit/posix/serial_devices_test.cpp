// Which device a serial port number stands for.
#include "platform/posix/SerialDevices.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <utility>

#include "fakes/QtPrinters.h"
#include "unit/posix/AsOrdinaryUser.h"

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
    return SerialDevices(overrides, {folder_.filePath(u"dev"_s),
                                     folder_.filePath(u"sys"_s),
                                     folder_.filePath(u"proc"_s),
                                     {folder_.filePath(u"lock"_s)}});
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

  // ---- the system's folders as it fills them

  [[nodiscard]] QString Sys(const QString& name) const { return folder_.filePath(u"sys/"_s + name); }
  [[nodiscard]] QString Proc(const QString& name) const { return folder_.filePath(u"proc/"_s + name); }

  void Link(const QString& target, const QString& path) const {
    QDir().mkpath(QFileInfo(path).path());
    ASSERT_TRUE(QFile::link(target, path)) << path.toStdString();
  }

  struct Adapter {
    QString folder;  ///< below sys: controller, bus, hubs, adapter
    QByteArray vendor = "0403";
    QByteArray product = "6001";
    QByteArray maker = "FTDI";
    QByteArray name = "FT232R USB UART";
    QByteArray serialNumber = "A12345";
  };

  static inline const QString kFirstSocket = u"devices/pci0000:00/0000:00:14.0/usb1/1-1"_s;
  static inline const QString kSecondSocket = u"devices/pci0000:00/0000:00:14.0/usb1/1-2"_s;

  void PlugIn(const Adapter& adapter) const {
    const auto tell = [&](const QString& what, const QByteArray& text) {
      if (!text.isEmpty()) WriteFile(Sys(adapter.folder + u'/' + what), text + '\n');
    };
    tell(u"idVendor"_s, adapter.vendor);
    tell(u"idProduct"_s, adapter.product);
    tell(u"manufacturer"_s, adapter.maker);
    tell(u"product"_s, adapter.name);
    tell(u"serial"_s, adapter.serialNumber);
  }

  // One serial port of an adapter; the drivers of most adapters put a folder of the port's own below the
  // interface.
  void AddPort(const QString& name, const QString& adapter, int interface = 0, int port = 0) const {
    const QString own =
        Sys(adapter + u'/' + adapter.section(u'/', -1) + u":1."_s + QString::number(interface));
    WriteFile(own + u"/bInterfaceNumber"_s, QByteArray::number(interface, 16).rightJustified(2, '0') + '\n');
    const bool isModem = name.startsWith(u"ttyACM"_s);
    if (!isModem) WriteFile(own + u'/' + name + u"/port_number"_s, QByteArray::number(port) + '\n');
    const QString device = isModem ? own : own + u'/' + name;
    QDir().mkpath(device + u"/tty/"_s + name);
    Link(device, device + u"/tty/"_s + name + u"/device"_s);
    Link(device + u"/tty/"_s + name, Sys(u"class/tty/"_s + name));
    AddDevice(name);
  }

  void UnplugPort(const QString& name) const {
    QFile::remove(Dev(name));
    QFile::remove(Sys(u"class/tty/"_s + name));
  }

  void AddProcess(int process, const QByteArray& name) const {
    WriteFile(Proc(u"%1/comm"_s.arg(process)), name + '\n');
    QDir().mkpath(Proc(u"%1/fd"_s.arg(process)));
  }

  QTemporaryDir folder_;
};

TEST_F(SerialDevicesTest, NoDevices) {
  EXPECT_EQ(All(Devices()), QStringList());
  const QString missing = folder_.filePath(u"missing"_s);
  SerialDevices nowhere({}, {missing, missing, missing, {missing}});
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

// ---- what is known about a port

TEST_F(SerialDevicesTest, AnAdapterTellsWhatItIs) {
  PlugIn({kFirstSocket + u"/1-1.2"_s});
  AddPort(u"ttyUSB0"_s, kFirstSocket + u"/1-1.2"_s);
  PortEntry expected;
  expected.number = 1;
  expected.device = Dev(u"ttyUSB0"_s);
  expected.description = u"FTDI FT232R USB UART"_s;
  expected.serialNumber = u"A12345"_s;
  expected.place = u"USB 1-1.2"_s;
  expected.bySerialNumber = u"usb:0403:6001:A12345:0"_s;
  expected.byPlace = u"ort:0000:00:14.0-1.2:1.0"_s;
  EXPECT_EQ(Devices().List(), QList<PortEntry>{expected});
}

TEST_F(SerialDevicesTest, ThePortsOfOneAdapterAreToldApart) {
  PlugIn({kFirstSocket, "0403", "6011", "FTDI", "FTDI Quad RS232", "FT1"});
  AddPort(u"ttyUSB0"_s, kFirstSocket, 0);
  AddPort(u"ttyUSB1"_s, kFirstSocket, 10);
  const QList<PortEntry> entries = Devices().List();
  ASSERT_EQ(entries.size(), 2);
  EXPECT_EQ(entries[0].description, u"FTDI Quad RS232"_s) << "the maker is named once";
  EXPECT_EQ(entries[0].place, u"USB 1-1, Anschluss 1"_s);
  EXPECT_EQ(entries[1].place, u"USB 1-1, Anschluss 2"_s);
  EXPECT_EQ(entries[1].bySerialNumber, u"usb:0403:6011:FT1:10"_s) << "the system counts in hexadecimal";
  EXPECT_EQ(entries[1].byPlace, u"ort:0000:00:14.0-1:1.10"_s);
}

TEST_F(SerialDevicesTest, PortsBehindOneInterfaceAreToldApart) {
  PlugIn({kFirstSocket, "110a", "1410", "MCS", "", "M1"});
  AddPort(u"ttyUSB0"_s, kFirstSocket, 0, 0);
  AddPort(u"ttyUSB1"_s, kFirstSocket, 0, 1);
  const QList<PortEntry> entries = Devices().List();
  ASSERT_EQ(entries.size(), 2);
  EXPECT_EQ(entries[0].bySerialNumber, u"usb:110a:1410:M1:0"_s);
  EXPECT_EQ(entries[1].bySerialNumber, u"usb:110a:1410:M1:0.1"_s);
  EXPECT_EQ(entries[1].byPlace, u"ort:0000:00:14.0-1:1.0.1"_s);
  EXPECT_EQ(Devices({{4, u"usb:110a:1410:M1:0.1"_s}}).Device(4), Dev(u"ttyUSB1"_s));
}

TEST_F(SerialDevicesTest, AModemTellsWhatItIsAsWell) {
  PlugIn({kFirstSocket, "2341", "0043", "Arduino", "", "553"});
  AddPort(u"ttyACM0"_s, kFirstSocket);
  const PortEntry entry = Devices().List().value(0);
  EXPECT_EQ(entry.description, u"Arduino"_s);
  EXPECT_EQ(entry.bySerialNumber, u"usb:2341:0043:553:0"_s);
  EXPECT_EQ(entry.byPlace, u"ort:0000:00:14.0-1:1.0"_s);
}

TEST_F(SerialDevicesTest, AnAdapterWithoutNamesAndSerialNumberHasItsPlace) {
  PlugIn({kFirstSocket, "1a86", "7523", "", "", ""});
  AddPort(u"ttyUSB0"_s, kFirstSocket);
  const PortEntry entry = Devices().List().value(0);
  EXPECT_EQ(entry.description, u"USB 1a86:7523"_s);
  EXPECT_EQ(entry.serialNumber, QString());
  EXPECT_EQ(entry.bySerialNumber, QString());
  EXPECT_EQ(entry.byPlace, u"ort:0000:00:14.0-1:1.0"_s);
}

TEST_F(SerialDevicesTest, ABuiltInPortIsNamedSo) {
  AddBuiltIn(u"ttyS0"_s, 4);
  PortEntry expected;
  expected.number = 1;
  expected.device = Dev(u"ttyS0"_s);
  expected.description = u"Eingebaute Schnittstelle"_s;
  EXPECT_EQ(Devices().List(), QList<PortEntry>{expected});
}

TEST_F(SerialDevicesTest, OfWhatTheSystemTellsNothingThereIsTheDeviceAlone) {
  AddDevice(u"ttyUSB0"_s);
  EXPECT_EQ(Devices().List(), QList<PortEntry>{PortEntry({1, Dev(u"ttyUSB0"_s)})});
}

// ---- bindings

TEST_F(SerialDevicesTest, ABindingFollowsTheAdapterToAnotherPlaceAndName) {
  PlugIn({kFirstSocket});
  AddPort(u"ttyUSB0"_s, kFirstSocket);
  SerialDevices devices = Devices({{5, u"usb:0403:6001:A12345:0"_s}, {6, u"ort:0000:00:14.0-1:1.0"_s}});
  EXPECT_EQ(devices.Device(5), Dev(u"ttyUSB0"_s));
  EXPECT_EQ(devices.Device(6), Dev(u"ttyUSB0"_s));
  UnplugPort(u"ttyUSB0"_s);
  EXPECT_EQ(devices.Device(5), QString());
  // Another one of the same make comes first into the old place.
  QDir(Sys(kFirstSocket)).removeRecursively();
  PlugIn({kFirstSocket, "0403", "6001", "FTDI", "FT232R USB UART", "B77"});
  AddPort(u"ttyUSB0"_s, kFirstSocket);
  EXPECT_EQ(devices.Device(5), QString());
  EXPECT_EQ(devices.Device(6), Dev(u"ttyUSB0"_s)) << "the place is what counts here";
  PlugIn({kSecondSocket});
  AddPort(u"ttyUSB1"_s, kSecondSocket);
  EXPECT_EQ(devices.Device(5), Dev(u"ttyUSB1"_s));
}

TEST_F(SerialDevicesTest, OfTwoWithTheSameSerialNumberNoneIsTaken) {
  for (const auto& [name, socket] : {std::pair(u"ttyUSB0"_s, kFirstSocket), {u"ttyUSB1"_s, kSecondSocket}}) {
    PlugIn({socket});
    AddPort(name, socket);
  }
  SerialDevices devices = Devices({{1, u"usb:0403:6001:A12345:0"_s}});
  EXPECT_EQ(devices.Device(1), QString());
  EXPECT_EQ(devices.List().last().state, PortState::Missing);
}

// The systems offer links that tell adapters apart.
TEST_F(SerialDevicesTest, ALinkLeadsToThePortItself) {
  PlugIn({kFirstSocket});
  AddPort(u"ttyUSB3"_s, kFirstSocket);
  Link(Dev(u"ttyUSB3"_s), Dev(u"serial/by-id/usb-FTDI"_s));
  SerialDevices devices = Devices({{2, Dev(u"serial/by-id/usb-FTDI"_s)}});
  const QList<PortEntry> entries = devices.List();
  ASSERT_EQ(entries.size(), 1);
  EXPECT_EQ(entries[0].number, 2);
  EXPECT_EQ(entries[0].device, Dev(u"ttyUSB3"_s));
  EXPECT_EQ(entries[0].serialNumber, u"A12345"_s);
  EXPECT_EQ(devices.Shown(2), Dev(u"serial/by-id/usb-FTDI"_s));
}

// ---- who may and who does use it

TEST_F(SerialDevicesTest, APortWithoutPermissionNamesTheGroup) {
  AddDevice(u"ttyUSB0"_s);
  AddDevice(u"ttyUSB1"_s);
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can give a file to a group";
  const group* const games = getgrnam("games");
  ASSERT_NE(games, nullptr);
  ASSERT_EQ(chown(QFile::encodeName(Dev(u"ttyUSB0"_s)).constData(), 0, games->gr_gid), 0);
  for (const QString& name : {u"ttyUSB0"_s, u"ttyUSB1"_s})
    ASSERT_EQ(chmod(QFile::encodeName(Dev(name)).constData(), 0660), 0);
  for (const QString& folder : {folder_.path(), Dev(QString())})
    ASSERT_EQ(chmod(QFile::encodeName(folder).constData(), 0755), 0);
  EXPECT_TRUE(test::HoldsAsOrdinaryUser([&] {
    const QList<PortEntry> entries = Devices().List();
    return entries.size() == 2 && entries[0].state == PortState::NoPermission &&
           entries[0].remark ==
               u"Nur die Gruppe games darf die Schnittstelle öffnen. Abhilfe: „sudo usermod --append "
               u"--groups "
               "games nobody“, dann neu anmelden."_s &&
           entries[1].state == PortState::NoPermission &&
           entries[1].remark == u"Nur der Verwalter des Rechners darf die Schnittstelle öffnen."_s;
  }));
  EXPECT_EQ(Devices().List().value(0).state, PortState::Free) << "the superuser may";
}

TEST_F(SerialDevicesTest, AProgramThatHasThePortOpenIsNamed) {
  for (const QString& name : {u"ttyUSB0"_s, u"ttyUSB1"_s, u"ttyUSB10"_s})
    AddDevice(name);
  AddProcess(4711, "minicom");
  Link(u"/dev/null"_s, Proc(u"4711/fd/0"_s));
  Link(Dev(u"ttyUSB1"_s), Proc(u"4711/fd/3"_s));
  const QList<PortEntry> entries = Devices().List();
  ASSERT_EQ(entries.size(), 3);
  EXPECT_EQ(entries[0].state, PortState::Free);
  EXPECT_EQ(entries[1].state, PortState::InUse);
  EXPECT_EQ(entries[1].remark,
            u"Das Programm minicom (Prozess 4711) benutzt die Schnittstelle; es zuerst beenden."_s);
  EXPECT_EQ(entries[2].state, PortState::Free) << "its name begins in the same way";
}

TEST_F(SerialDevicesTest, ThisProgramItselfDoesNotCount) {
  AddDevice(u"ttyUSB0"_s);
  AddProcess(getpid(), "kalivor");
  Link(Dev(u"ttyUSB0"_s), Proc(u"%1/fd/3"_s.arg(getpid())));
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB0"_s), QByteArray::number(getpid()).rightJustified(10) + '\n');
  EXPECT_EQ(Devices().List().value(0).state, PortState::Free);
}

// The system's own folders, and a program that really has it open.
TEST_F(SerialDevicesTest, ARealProgramIsFound) {
  AddDevice(u"ttyUSB0"_s);
  int ready[2];
  int done[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(done), 0);
  const QByteArray device = QFile::encodeName(Dev(u"ttyUSB0"_s));
  const pid_t child = fork();
  if (child == 0) {
    close(done[1]);
    (void)open(device.constData(), O_RDWR);
    char byte = 'x';
    const bool told = write(ready[1], &byte, 1) == 1;
    _exit(told && read(done[0], &byte, 1) == 0 ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  SerialDevices devices({}, {folder_.filePath(u"dev"_s), folder_.filePath(u"sys"_s), u"/proc"_s, {}});
  EXPECT_EQ(
      devices.List().value(0).remark,
      u"Das Programm posix_test (Prozess %1) benutzt die Schnittstelle; es zuerst beenden."_s.arg(child));
  for (const int end : {ready[0], ready[1], done[0], done[1]})
    close(end);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(devices.List().value(0).state, PortState::Free);
}

TEST_F(SerialDevicesTest, AProgramThatClosesThePortIsForgotten) {
  AddDevice(u"ttyUSB0"_s);
  AddProcess(4711, "minicom");
  Link(Dev(u"ttyUSB0"_s), Proc(u"4711/fd/3"_s));
  SerialDevices devices = Devices();
  EXPECT_EQ(devices.List().value(0).state, PortState::InUse);
  EXPECT_EQ(devices.List().value(0).state, PortState::InUse);
  QFile::remove(Proc(u"4711/fd/3"_s));
  EXPECT_EQ(devices.List().value(0).state, PortState::Free);
}

// The system tells everybody who holds a lock, also of other users' programs.
TEST_F(SerialDevicesTest, AProgramThatHoldsALockIsNamed) {
  AddDevice(u"ttyUSB0"_s);
  AddDevice(u"ttyUSB1"_s);
  AddProcess(815, "tio");
  const auto lineOf = [&](const QString& name, const char* waits) {
    struct stat status {};
    EXPECT_EQ(stat(QFile::encodeName(Dev(name)).constData(), &status), 0);
    return QString::asprintf("1: %sFLOCK  ADVISORY  WRITE 815 %02x:%02x:%llu 0 EOF\n", waits,
                             major(status.st_dev), minor(status.st_dev),
                             static_cast<unsigned long long>(status.st_ino))
        .toLatin1();
  };
  WriteFile(Proc(u"locks"_s), lineOf(u"ttyUSB0"_s, "") + lineOf(u"ttyUSB1"_s, "-> "));
  const QList<PortEntry> entries = Devices().List();
  EXPECT_EQ(entries.value(0).remark,
            u"Das Programm tio (Prozess 815) benutzt die Schnittstelle; es zuerst beenden."_s);
  EXPECT_EQ(entries.value(1).state, PortState::Free) << "who waits for a lock does not hold it";
}

TEST_F(SerialDevicesTest, AProgramThatHasLeftALockFileIsNamedWhileItLives) {
  for (int i = 0; i < 4; ++i)
    AddDevice(u"ttyUSB%1"_s.arg(i));
  AddProcess(815, "minicom");
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB0"_s), "       815 minicom root\n");
  const qint32 number = 815;
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB1"_s),
            QByteArray(reinterpret_cast<const char*>(&number), sizeof number));
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB2"_s), "       816\n");
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB3"_s), "?");
  const QList<PortEntry> entries = Devices().List();
  ASSERT_EQ(entries.size(), 4);
  EXPECT_EQ(entries[0].state, PortState::InUse);
  EXPECT_EQ(entries[1].state, PortState::InUse);
  EXPECT_EQ(entries[2].state, PortState::Free) << "it has ended";
  EXPECT_EQ(entries[3].state, PortState::Free) << "whose is it?";
}

TEST_F(SerialDevicesTest, AProgramWithoutANameIsOneAllTheSame) {
  AddDevice(u"ttyUSB0"_s);
  QDir().mkpath(Proc(u"815"_s));
  WriteFile(folder_.filePath(u"lock/LCK..ttyUSB0"_s), "815");
  EXPECT_EQ(Devices().List().value(0).remark,
            u"Ein anderes Programm benutzt die Schnittstelle; es zuerst beenden."_s);
}

// The far end of a pseudo-terminal, which is a program, holds it open as well.
TEST_F(SerialDevicesTest, APseudoTerminalIsNotInUseByItsFarEnd) {
  AddDevice(u"pts/5"_s);
  WriteFile(Dev(u"pts/5"_s), {});
  AddProcess(815, "kalivor-sim");
  Link(Dev(u"pts/5"_s), Proc(u"815/fd/3"_s));
  EXPECT_EQ(Devices({{1, Dev(u"pts/5"_s)}}).List().value(0).state, PortState::Free);
}

}  // namespace
}  // namespace kalivor::platform
