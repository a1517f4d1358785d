// Which port a number stands for, whatever the system: counted, bound, missing, claimed twice.
#include "platform/plain/SystemPorts.h"

#include <gtest/gtest.h>
#include <QStringList>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

const QString kFirst = u"usb:0403:6001:A1:0"_s;
const QString kSecond = u"usb:0403:6001:B2:0"_s;

/// A system whose ports are counted as they are listed here.
class MadeUpPorts final : public SystemPorts {
 public:
  explicit MadeUpPorts(const QMap<int, QString>& bindings = {}) : SystemPorts(bindings) {}

  QList<PortEntry> there;
  QMap<QString, QString> links;  ///< other names of them, and devices that are no serial ports
  int looks = 0;

  void Add(const QString& device, const QString& bySerialNumber = {}, const QString& byPlace = {}) {
    PortEntry entry;
    entry.device = device;
    entry.bySerialNumber = bySerialNumber;
    entry.byPlace = byPlace;
    there.append(entry);
  }

 protected:
  void LookAnew() override { ++looks; }
  [[nodiscard]] QList<PortEntry> Present() override {
    QList<PortEntry> entries = there;
    for (qsizetype i = 0; i < entries.size() && i < 8; ++i)
      entries[i].number = static_cast<int>(i) + 1;
    return entries;
  }
  [[nodiscard]] QString Counted(int number) override { return there.value(number - 1).device; }
  [[nodiscard]] QString Find(const QString& device) override {
    for (const PortEntry& entry : there) {
      if (entry.device == device) return device;
    }
    return links.value(device);
  }
  [[nodiscard]] QString ShownDevice(const QString& device) override { return u"Gerät "_s + device; }
  void Examine(QList<PortEntry>& entries) override {
    for (PortEntry& entry : entries)
      entry.remark = u"angesehen"_s;
  }
};

// "1 a" for number and device, "- a" without a number, "3 !usb:…" for what is missing.
QStringList Lines(SystemPorts& ports) {
  QStringList lines;
  for (const PortEntry& entry : ports.List()) {
    lines.append((entry.number > 0 ? QString::number(entry.number) : u"-"_s) + u' ' +
                 (entry.state == PortState::Missing ? u"!"_s : QString()) + entry.device);
  }
  return lines;
}

PortEntry Numbered(SystemPorts& ports, int number) {
  for (const PortEntry& entry : ports.List()) {
    if (entry.number == number) return entry;
  }
  return {};
}

TEST(SystemPorts, WhatIsNotBoundIsCounted) {
  MadeUpPorts ports;
  ports.Add(u"a"_s);
  ports.Add(u"b"_s);
  EXPECT_EQ(Lines(ports), QStringList({u"1 a"_s, u"2 b"_s}));
  EXPECT_EQ(ports.Device(2), u"b"_s);
  EXPECT_EQ(ports.Shown(2), u"Gerät b"_s);
  EXPECT_EQ(ports.Device(3), QString());
  EXPECT_EQ(ports.Shown(3), QString());
}

TEST(SystemPorts, ThoseBehindTheLastNumberHaveNone) {
  MadeUpPorts ports;
  for (int i = 1; i <= 9; ++i)
    ports.Add(QString::number(i));
  EXPECT_EQ(Lines(ports).last(), u"- 9"_s);
  EXPECT_EQ(Numbered(ports, 8).device, u"8"_s);
}

TEST(SystemPorts, EveryListIsAFreshOne) {
  MadeUpPorts ports;
  (void)ports.List();
  (void)ports.List();
  EXPECT_EQ(ports.looks, 2);
  (void)ports.Device(1);
  EXPECT_EQ(ports.looks, 2) << "what was seen is good enough for a telegram";
}

TEST(SystemPorts, ABindingFollowsItsAdapter) {
  MadeUpPorts ports({{5, kSecond}});
  ports.Add(u"a"_s, kFirst);
  ports.Add(u"b"_s, kSecond);
  EXPECT_EQ(ports.Device(5), u"b"_s);
  EXPECT_EQ(Lines(ports), QStringList({u"1 a"_s, u"5 b"_s})) << "listed with the number of the binding";
  EXPECT_EQ(ports.Device(2), u"b"_s) << "and counted all the same";
  ports.there.swapItemsAt(0, 1);
  ports.there[0].device = u"c"_s;
  EXPECT_EQ(ports.Device(5), u"c"_s);
}

TEST(SystemPorts, ABindingFollowsItsPlace) {
  MadeUpPorts ports({{1, u"ort:x-1.2:1.0"_s}});
  ports.Add(u"a"_s, kFirst, u"ort:x-1.1:1.0"_s);
  ports.Add(u"b"_s, kSecond, u"ort:x-1.2:1.0"_s);
  EXPECT_EQ(ports.Device(1), u"b"_s);
  EXPECT_EQ(Lines(ports), QStringList({u"1 b"_s, u"- a"_s})) << "the first one is counted no more";
}

TEST(SystemPorts, AMissingAdapterIsReplacedByNone) {
  MadeUpPorts ports({{1, kSecond}, {3, u"ort:x-1.2:1.0"_s}, {4, u"b"_s}});
  ports.Add(u"a"_s, kFirst, u"ort:x-1.1:1.0"_s);
  EXPECT_EQ(ports.Device(1), QString());
  EXPECT_EQ(ports.Shown(1), QString());
  EXPECT_EQ(ports.Device(3), QString());
  EXPECT_EQ(ports.Device(4), u"b"_s) << "a device is not looked for";
  EXPECT_EQ(ports.Shown(4), QString());
  EXPECT_EQ(Lines(ports), QStringList({u"- a"_s, u"1 !"_s + kSecond, u"3 !ort:x-1.2:1.0"_s, u"4 !b"_s}));
  EXPECT_EQ(Numbered(ports, 1).serialNumber, u"B2"_s);
  EXPECT_EQ(Numbered(ports, 1).remark,
            u"Der Adapter mit der Seriennummer B2 ist nicht angeschlossen. Ihn einstecken oder COM1 anders "
            "zuordnen."_s);
  EXPECT_EQ(Numbered(ports, 3).remark,
            u"Am Steckplatz x-1.2:1.0 ist nichts angeschlossen. Den Adapter dort einstecken oder COM3 anders "
            "zuordnen."_s);
  EXPECT_EQ(Numbered(ports, 4).remark, u"b ist nicht da. Das Gerät anschließen oder COM4 anders zuordnen."_s);
}

TEST(SystemPorts, OfTwoThatClaimTheSameSerialNumberNoneIsTaken) {
  MadeUpPorts ports({{2, kFirst}});
  ports.Add(u"a"_s, kFirst, u"ort:1"_s);
  ports.Add(u"b"_s, kFirst.toLower(), u"ort:2"_s);
  EXPECT_EQ(ports.Device(2), QString());
  const QList<PortEntry> entries = ports.List();
  ASSERT_EQ(entries.size(), 3);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(entries[i].bySerialNumber, QString()) << "it would not do";
    EXPECT_EQ(entries[i].remark,
              u"angesehen Ein zweiter Adapter nennt dieselbe Seriennummer; nur ihr Steckplatz unterscheidet "
              "sie."_s);
  }
  EXPECT_EQ(entries[2].state, PortState::Missing);
  EXPECT_EQ(entries[2].remark,
            u"Mehrere Adapter nennen die Seriennummer A1; keiner von ihnen wird genommen. Alle bis auf einen "
            "abziehen oder COM2 nach dem Steckplatz zuordnen."_s);
  ports.there.removeLast();
  EXPECT_EQ(ports.Device(2), u"a"_s);
}

TEST(SystemPorts, OfSeveralNumbersTheBoundAndLowestIsListed) {
  MadeUpPorts ports({{7, u"a"_s}, {4, u"link"_s}});
  ports.links[u"link"_s] = u"a"_s;
  ports.Add(u"a"_s);
  EXPECT_EQ(Lines(ports), QStringList({u"4 a"_s}));
  EXPECT_EQ(ports.Device(1), u"a"_s);
  EXPECT_EQ(ports.Device(4), u"link"_s);
  EXPECT_EQ(ports.Device(7), u"a"_s);
}

TEST(SystemPorts, ADeviceOfAnotherKindIsListedWhenItIsBound) {
  MadeUpPorts ports({{2, u"/dev/pts/5"_s}});
  ports.links[u"/dev/pts/5"_s] = u"/dev/pts/5"_s;
  EXPECT_EQ(Lines(ports), QStringList({u"2 /dev/pts/5"_s}));
  EXPECT_EQ(ports.List().first().remark, u"angesehen"_s);
}

TEST(SystemPorts, ANetworkLineIsNotLookedFor) {
  MadeUpPorts ports({{1, u"socket://192.0.2.7:4001"_s}, {2, u"rfc2217://schrank:1"_s}});
  ports.Add(u"a"_s);
  EXPECT_EQ(ports.Device(1), u"socket://192.0.2.7:4001"_s);
  EXPECT_EQ(ports.Shown(1), u"socket://192.0.2.7:4001"_s);
  EXPECT_EQ(Lines(ports),
            QStringList({u"1 socket://192.0.2.7:4001"_s, u"2 rfc2217://schrank:1"_s, u"- a"_s}));
  EXPECT_FALSE(Numbered(ports, 1).carriesRate);
  EXPECT_TRUE(Numbered(ports, 2).carriesRate);
  EXPECT_EQ(Numbered(ports, 1).remark, QString());
}

TEST(SystemPorts, WhatStandsInForANumberIsUnderstoodLikeABinding) {
  MadeUpPorts ports({{1, kFirst}});
  ports.Add(u"a"_s, kFirst);
  ports.Add(u"b"_s, kSecond);
  {
    const StandIn standIn(ports, 1, kSecond);
    EXPECT_EQ(ports.Device(1), u"b"_s);
    EXPECT_EQ(Lines(ports), QStringList({u"1 b"_s, u"- a"_s}));
  }
  EXPECT_EQ(ports.Device(1), u"a"_s);
}

}  // namespace
}  // namespace kalivor::platform
