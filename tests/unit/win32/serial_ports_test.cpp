// Which port a number stands for. A port of the test's own is made by giving its name to the system.
#include "platform/win32/SerialPorts.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

/// While it lives, programs find a device of that name.
class DeviceName {
 public:
  explicit DeviceName(const wchar_t* name) : name_(name) {
    EXPECT_NE(DefineDosDeviceW(DDD_RAW_TARGET_PATH, name_, kTarget), 0) << GetLastError();
  }
  ~DeviceName() {
    EXPECT_NE(DefineDosDeviceW(DDD_REMOVE_DEFINITION | DDD_RAW_TARGET_PATH | DDD_EXACT_MATCH_ON_REMOVE, name_,
                               kTarget),
              0);
  }
  DeviceName(const DeviceName&) = delete;
  DeviceName& operator=(const DeviceName&) = delete;

 private:
  static constexpr wchar_t kTarget[] = L"\\Device\\Null";
  const wchar_t* name_;
};

QStringList Names() {
  QStringList names;
  for (const PortEntry& port : SerialPorts({}).List())
    names.append(port.device);
  return names;
}

TEST(SerialPorts, OnlyOneToEightAreNumbersOfPorts) {
  SerialPorts ports({{0, u"COM40"_s}, {9, u"COM41"_s}});
  for (const int number : {-32768, -1, 0, 9, 32767})
    EXPECT_EQ(ports.Device(number), QString()) << number;
}

TEST(SerialPorts, WhatTheUserHasSetIsNotLookedFor) {
  SerialPorts ports({{2, u"COM14"_s}, {8, u"CNCA0"_s}});
  EXPECT_EQ(ports.Device(2), u"COM14"_s);
  EXPECT_EQ(ports.Device(8), u"CNCA0"_s);
  ports.Override(2, u"COM15"_s);
  ports.Override(1, u"\\\\.\\COM16"_s);
  EXPECT_EQ(ports.Device(2), u"COM15"_s);
  EXPECT_EQ(ports.Device(1), u"\\\\.\\COM16"_s);
  EXPECT_EQ(ports.Shown(8), QString()) << "it is not there";
}

TEST(SerialPorts, ANumberStandsForThePortOfItsNameWhileThatIsThere) {
  SerialPorts ports({{6, QString()}});
  const QString before = ports.Device(6);
  ASSERT_EQ(before, QString()) << "this machine has a COM6 of its own";
  {
    const DeviceName device(L"COM6");
    EXPECT_EQ(ports.Device(6), u"COM6"_s);
    EXPECT_EQ(ports.Shown(6), u"COM6"_s);
    const QList<PortEntry> entries = ports.List();
    const auto entry = std::ranges::find(entries, u"COM6"_s, &PortEntry::device);
    ASSERT_NE(entry, entries.end());
    EXPECT_EQ(entry->number, 6);
    EXPECT_EQ(entry->state, PortState::Free);
    EXPECT_EQ(entry->remark,
              u"Ob ein anderes Programm sie benutzt, zeigt sich unter Windows erst beim Öffnen."_s);
  }
  EXPECT_EQ(ports.Device(6), QString());
}

TEST(SerialPorts, AreListedByTheirNumbers) {
  const QStringList before = Names();
  const DeviceName ten(L"COM10");
  const DeviceName seven(L"COM7");
  QStringList names = Names();
  EXPECT_LT(names.indexOf(u"COM7"_s), names.indexOf(u"COM10"_s));
  for (const QString& name : {u"COM7"_s, u"COM10"_s})
    EXPECT_EQ(names.removeAll(name), 1) << name.toStdString();
  EXPECT_EQ(names, before);
}

TEST(SerialPorts, APortBehindTheLastNumberIsListedWithoutOne) {
  const DeviceName ten(L"COM10");
  const QList<PortEntry> unbound = SerialPorts({}).List();
  const auto without = std::ranges::find(unbound, u"COM10"_s, &PortEntry::device);
  ASSERT_NE(without, unbound.end());
  EXPECT_EQ(without->number, 0);
  SerialPorts bound({{2, u"\\\\.\\com10"_s}});
  EXPECT_EQ(bound.Device(2), u"\\\\.\\com10"_s);
  const QList<PortEntry> entries = bound.List();
  const auto entry = std::ranges::find(entries, u"COM10"_s, &PortEntry::device);
  ASSERT_NE(entry, entries.end()) << "however it is written";
  EXPECT_EQ(entry->number, 2);
}

TEST(SerialPorts, WhatIsBoundAndNotThereIsMissing) {
  SerialPorts ports({{1, u"COM77"_s}, {2, u"usb:0403:6001:A5069RR4:0"_s}});
  EXPECT_EQ(ports.Device(1), u"COM77"_s);
  EXPECT_EQ(ports.Device(2), QString());
  const QList<PortEntry> entries = ports.List();
  ASSERT_GE(entries.size(), 2);
  EXPECT_EQ(entries.last().device, u"usb:0403:6001:A5069RR4:0"_s);
  EXPECT_EQ(entries.last().state, PortState::Missing);
  EXPECT_EQ(entries[entries.size() - 2].device, u"COM77"_s);
}

}  // namespace
}  // namespace kalivor::platform
