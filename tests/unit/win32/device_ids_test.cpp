// What the identifiers of Windows tell about a serial port.
#include "platform/win32/DeviceIds.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// "vendor:product serial/interface", or "-".
QString Parsed(const QString& instance, const QString& parent = {}) {
  const std::optional<UsbPort> port = UsbPortOfInstance(instance, parent);
  if (!port) return u"-"_s;
  return u"%1:%2 %3/%4"_s.arg(port->vendor, port->product, port->serialNumber,
                              QString::number(port->interfaceNumber));
}

TEST(DeviceIds, AnAdapterHasItsSerialNumberInItsName) {
  EXPECT_EQ(Parsed(u"USB\\VID_2341&PID_0043\\75630313536351A0"_s), u"2341:0043 75630313536351A0/0"_s);
  EXPECT_EQ(Parsed(u"usb\\vid_067B&pid_23A3\\CKBCb18"_s), u"067b:23a3 CKBCb18/0"_s);
}

TEST(DeviceIds, WhatWindowsHasMadeUpIsNoSerialNumber) {
  EXPECT_EQ(Parsed(u"USB\\VID_1A86&PID_7523\\5&2a8b3c4d&0&2"_s), u"1a86:7523 /0"_s);
  EXPECT_EQ(Parsed(u"FTDIBUS\\VID_0403+PID_6001+5&2A8B3C4D&0&2\\0000"_s), u"0403:6001 /0"_s);
}

TEST(DeviceIds, OneOfSeveralInterfacesHasThatOfItsAdapter) {
  const QString port = u"USB\\VID_2341&PID_8036&MI_0A\\6&1b2c3d4e&0&0002"_s;
  EXPECT_EQ(Parsed(port, u"USB\\VID_2341&PID_8036\\HIDPC"_s), u"2341:8036 HIDPC/10"_s);
  EXPECT_EQ(Parsed(port, u"USB\\VID_2341&PID_8036\\5&2a8b3c4d&0&2"_s), u"2341:8036 /10"_s);
  EXPECT_EQ(Parsed(port), u"2341:8036 /10"_s);
}

TEST(DeviceIds, ALetterCountsThePortsOfFtdi) {
  EXPECT_EQ(Parsed(u"FTDIBUS\\VID_0403+PID_6001+A5069RR4A\\0000"_s), u"0403:6001 A5069RR4/0"_s);
  EXPECT_EQ(Parsed(u"FTDIBUS\\VID_0403+PID_6011+FT4XYZD\\0000"_s), u"0403:6011 FT4XYZ/3"_s);
}

TEST(DeviceIds, OtherPortsAreNoAdapters) {
  for (const QString& instance :
       {u"ACPI\\PNP0501\\0"_s, u"PCI\\VEN_8086&DEV_A13D&SUBSYS_1&REV_31\\3&11583659&0&B3"_s,
        u"COM0COM\\PORT\\CNCA0"_s, u"USB\\VID_2341\\1"_s, u"USB\\VID_2341&PID_0043"_s, QString()}) {
    EXPECT_EQ(Parsed(instance), u"-"_s) << instance.toStdString();
  }
}

TEST(DeviceIds, APlaceIsTheChainOfSockets) {
  EXPECT_EQ(ShownPlace(u"PCIROOT(0)#PCI(1400)#USBROOT(0)#USB(2)#USB(11)"_s), u"USB 2.11"_s);
  EXPECT_EQ(ShownPlace(u"PCIROOT(0)#PCI(1400)#USBROOT(0)#USB(2)#USBMI(1)"_s), u"USB 2"_s);
  EXPECT_EQ(ShownPlace(u"PCIROOT(0)#PCI(1F00)"_s), QString());
  EXPECT_EQ(ShownPlace(QString()), QString());
}

TEST(DeviceIds, ADescriptionNamesMakerAndProductOnce) {
  EXPECT_EQ(PortDescription(u"FTDI"_s, u"USB Serial Port (COM12)"_s), u"FTDI USB Serial Port"_s);
  EXPECT_EQ(PortDescription(u"Prolific"_s, u"Prolific USB-to-Serial Comm Port (COM3)"_s),
            u"Prolific USB-to-Serial Comm Port"_s);
  EXPECT_EQ(PortDescription(u"(Standardanschlusstypen)"_s, u"Kommunikationsanschluss (COM1)"_s),
            u"Kommunikationsanschluss"_s);
  EXPECT_EQ(PortDescription(QString(), u"Modem"_s), u"Modem"_s);
  EXPECT_EQ(PortDescription(u"FTDI"_s, QString()), u"FTDI"_s);
}

}  // namespace
}  // namespace kalivor::platform
