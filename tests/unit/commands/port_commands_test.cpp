// Binding a port number to a device.
#include "commands/PortCommands.h"

#include <gtest/gtest.h>

#include "fakes/FakePortDirectory.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/QtPrinters.h"
#include "platform/plain/StoredDevices.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

struct PortCommands : testing::Test {
  FakePortDirectory ports;
  FakeSettingsStore settings;
};

TEST_F(PortCommands, ANumberIsBoundAndStoredAtOnce) {
  EXPECT_EQ(BindPort(ports, settings, 3, u"usb:0403:6001:A12345:0"_s), QString());
  EXPECT_EQ(ports.Binding(3), u"usb:0403:6001:A12345:0"_s);
  EXPECT_EQ(settings.stored, (QMap<QString, QString>{{u"Ports/COM3"_s, u"usb:0403:6001:A12345:0"_s}}));
  EXPECT_EQ(platform::StoredDevices(settings).value(3), u"usb:0403:6001:A12345:0"_s);
}

TEST_F(PortCommands, ANumberIsFreed) {
  ASSERT_EQ(BindPort(ports, settings, 3, u"/dev/ttyUSB0"_s), QString());
  EXPECT_EQ(BindPort(ports, settings, 3, {}), QString());
  EXPECT_EQ(ports.Binding(3), QString());
  EXPECT_TRUE(platform::StoredDevices(settings).isEmpty());
}

TEST_F(PortCommands, WhatCannotBeStoredHoldsForThisRun) {
  settings.failure = u"Kein Platz."_s;
  EXPECT_EQ(BindPort(ports, settings, 1, u"COM9"_s), u"Kein Platz."_s);
  EXPECT_EQ(ports.Binding(1), u"COM9"_s);
  EXPECT_TRUE(settings.stored.isEmpty());
}

TEST_F(PortCommands, WhatCanBeABindingHasNoFault) {
  for (const QString& binding :
       {QString(), u"/dev/ttyUSB0"_s, u"/dev/my line"_s, u"COM12"_s, u"usb:0403:6001:A12345:0"_s,
        u"ort:0000:00:14.0-1.2:1.0"_s, u"socket://192.0.2.7:4001"_s, u"rfc2217://schrank-3.example:1"_s,
        u"RFC2217://[fe80::1%eth0]:65535"_s}) {
    EXPECT_EQ(FaultOf(binding), QString()) << binding.toStdString();
  }
}

TEST_F(PortCommands, WhatCannotBeABindingIsSaid) {
  const QString usb =
      u"Ein Adapter lautet usb:HERSTELLER:PRODUKT:SERIENNUMMER:ANSCHLUSS, zum Beispiel "
      u"usb:0403:6001:A12345:0."_s;
  const struct {
    QString binding;
    QString fault;
  } cases[] = {
      {u"rfc2217://host"_s,
       u"Die Netzadresse „rfc2217://host“ nennt keinen Port von 1 bis 65535. "
       "Erwartet wird socket://RECHNER:PORT oder rfc2217://RECHNER:PORT."_s},
      {u"usb:0403:6001"_s, usb},
      {u"usb:0403:6001::0"_s, usb},
      {u"ort:"_s, u"Hinter ort: fehlt der Steckplatz."_s},
      {u"ort: "_s, u"Hinter ort: fehlt der Steckplatz."_s},
      {u" COM3"_s, u"Vor oder hinter dem Gerät steht ein Leerzeichen."_s},
      {u"COM3 "_s, u"Vor oder hinter dem Gerät steht ein Leerzeichen."_s},
      {u"http://host:80"_s, u"Unbekannte Art von Verbindung. Es gibt socket:// und rfc2217://."_s},
      {u"/dev/tty\nUSB0"_s, u"Die Angabe enthält Steuerzeichen."_s},
  };
  for (const auto& [binding, fault] : cases)
    EXPECT_EQ(FaultOf(binding), fault) << binding.toStdString();
}

}  // namespace
}  // namespace kalivor::test
