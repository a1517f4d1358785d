// The texts that bind a port number to a device.
#include "platform/PortBinding.h"

#include <gtest/gtest.h>
#include <QStringList>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

TEST(PortBinding, ItsBeginningSaysOfWhichKindItIs) {
  const struct {
    QString binding;
    BindingKind kind;
  } cases[] = {{QString(), BindingKind::None},
               {u"/dev/ttyUSB0"_s, BindingKind::Device},
               {u"COM7"_s, BindingKind::Device},
               {u"usb"_s, BindingKind::Device},
               {u"/dev/usb:0"_s, BindingKind::Device},
               {u"socket://host:1"_s, BindingKind::Network},
               {u"SOCKET://host:1"_s, BindingKind::Network},
               {u"rfc2217://[::1]:1"_s, BindingKind::Network},
               {u"usb:0403:6001:A12345:0"_s, BindingKind::Usb},
               {u"ort:0000:00:14.0-1.2:1.0"_s, BindingKind::Place}};
  for (const auto& [binding, kind] : cases)
    EXPECT_EQ(KindOf(binding), kind) << binding.toStdString();
}

TEST(PortBinding, AnAdapterIsWrittenAndRead) {
  const UsbPort port{u"0403"_s, u"6011"_s, u"A12345"_s, 3};
  EXPECT_EQ(BindingTo(port), u"usb:0403:6011:A12345:3"_s);
  EXPECT_EQ(UsbPortOf(BindingTo(port)), port);
}

TEST(PortBinding, AnInterfaceMayHaveSeveralPorts) {
  const UsbPort port{u"110a"_s, u"1410"_s, u"A1"_s, 0, 3};
  EXPECT_EQ(BindingTo(port), u"usb:110a:1410:A1:0.3"_s);
  EXPECT_EQ(UsbPortOf(BindingTo(port)), port);
}

TEST(PortBinding, ASerialNumberMayHoldAnything) {
  for (const QString& number : {u"AA:BB:CC"_s, u"1:0"_s, u"Ä b"_s, u":"_s}) {
    const UsbPort port{u"0403"_s, u"6001"_s, number, 12};
    EXPECT_EQ(UsbPortOf(BindingTo(port)), port) << number.toStdString();
  }
}

TEST(PortBinding, WhatIsIncompleteNamesNoAdapter) {
  for (const QString& text :
       {u""_s, u"usb:"_s, u"usb:0403:6001:0"_s, u"usb:0403:6001::0"_s, u"usb:0403:6001: :0"_s,
        u"usb:403:6001:A:0"_s, u"usb:0403:600x:A:0"_s, u"usb:0403:6001:A:"_s, u"usb:0403:6001:A:-1"_s,
        u"usb:0403:6001:A:0 "_s, u"/dev/usb:0403:6001:A:0"_s}) {
    EXPECT_EQ(UsbPortOf(text), std::nullopt) << text.toStdString();
  }
}

TEST(PortBinding, APlaceIsWrittenAndRead) {
  EXPECT_EQ(BindingToPlace(u"0000:00:14.0-1.2:1.0"_s), u"ort:0000:00:14.0-1.2:1.0"_s);
  EXPECT_EQ(PlaceOf(u"ort:0000:00:14.0-1.2:1.0"_s), u"0000:00:14.0-1.2:1.0"_s);
  EXPECT_EQ(PlaceOf(u"/dev/ort:1"_s), QString());
}

TEST(PortBinding, TheSameAdapterMayBeWrittenInAnotherCase) {
  EXPECT_TRUE(SameBinding(u"usb:04D8:00DF:a1:0"_s, u"USB:04d8:00df:A1:0"_s));
  EXPECT_FALSE(SameBinding(u"usb:04D8:00DF:a1:0"_s, u"usb:04D8:00DF:a1:1"_s));
}

TEST(PortBinding, ARawNetworkLineAloneCarriesNoSettings) {
  EXPECT_FALSE(CarriesRate(u"socket://host:1"_s));
  for (const QString& binding : {u"rfc2217://host:1"_s, u"/dev/ttyS0"_s, u"usb:0403:6001:A1:0"_s})
    EXPECT_TRUE(CarriesRate(binding)) << binding.toStdString();
}

}  // namespace
}  // namespace kalivor::platform
