#include "platform/posix/DeviceFacts.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

#include "platform/PortBinding.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// What stands in a file of the system, without the line end; "" where there is none.
QString Told(const QString& path) {
  constexpr qint64 kLongest_bytes = 1024;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return {};
  return QString::fromUtf8(file.read(kLongest_bytes)).trimmed();
}

// The adapter and the interface of it that a device hangs on, by their folders; empty where it is built in.
struct UsbFolders {
  QString adapter;
  QString interface;
};

// The folders stand in each other as the hardware does: controller, hubs, adapter, interface, device.
UsbFolders FindUsb(const QString& device) {
  UsbFolders found;
  for (QString folder = device; folder.contains(u'/'); folder = folder.section(u'/', 0, -2)) {
    if (found.interface.isEmpty()) {
      if (QFileInfo::exists(folder + u"/bInterfaceNumber"_s)) found.interface = folder;
    } else if (QFileInfo::exists(folder + u"/idVendor"_s)) {
      found.adapter = folder;
      return found;
    }
  }
  return {};
}

// Maker and product as they call themselves. Many products repeat their maker's name.
QString DescriptionOf(const QString& adapter, const QString& vendor, const QString& product) {
  const QString maker = Told(adapter + u"/manufacturer"_s);
  const QString name = Told(adapter + u"/product"_s);
  if (maker.isEmpty() && name.isEmpty()) return u"USB %1:%2"_s.arg(vendor, product);
  return name.startsWith(maker, Qt::CaseInsensitive) ? name : (maker + u' ' + name).trimmed();
}

// The controller, the chain of sockets behind it, configuration and interface: a bus is numbered anew at each
// start of the system, these are not. "" where the folders are others than usual.
QString StablePlace(const UsbFolders& usb) {
  static const QRegularExpression pattern(
      u"/([^/]+)/usb[0-9]+/(?:[^/]+/)*[0-9]+-([0-9.]+)/[^/:]+:([0-9.]+)\\z"_s);
  const QRegularExpressionMatch match = pattern.match(usb.interface);
  return match.hasMatch() ? u"%1-%2:%3"_s.arg(match.captured(1), match.captured(2), match.captured(3))
                          : QString();
}

}  // namespace

bool HasHardware(const QString& systemFolder, const QString& name) {
  const QString entry = systemFolder + u"/class/tty/"_s + name;
  QFile type(entry + u"/type"_s);
  // The driver writes type 0 for a port without hardware; drivers that tell no type are bound to real
  // hardware only.
  if (!type.open(QIODevice::ReadOnly)) return QFileInfo::exists(entry + u"/device/driver"_s);
  const QByteArray text = type.readAll().trimmed();
  return !text.isEmpty() && text != "0";
}

void DescribeDevice(const QString& systemFolder, const QString& name, PortEntry& entry) {
  const QString device = QFileInfo(systemFolder + u"/class/tty/"_s + name + u"/device"_s).canonicalFilePath();
  const UsbFolders usb = FindUsb(device);
  if (usb.adapter.isEmpty()) {
    if (name.startsWith(u"ttyS"_s)) entry.description = u"Eingebaute Schnittstelle"_s;
    return;
  }
  UsbPort port;
  port.vendor = Told(usb.adapter + u"/idVendor"_s);
  port.product = Told(usb.adapter + u"/idProduct"_s);
  port.serialNumber = Told(usb.adapter + u"/serial"_s);
  port.interfaceNumber = Told(usb.interface + u"/bInterfaceNumber"_s).toInt(nullptr, 16);
  port.portNumber = Told(device + u"/port_number"_s).toInt();

  entry.description = DescriptionOf(usb.adapter, port.vendor, port.product);
  entry.place = u"USB "_s + usb.adapter.section(u'/', -1);
  entry.serialNumber = port.serialNumber;
  if (!port.serialNumber.isEmpty()) entry.bySerialNumber = BindingTo(port);
  const QString place = StablePlace(usb);
  if (place.isEmpty()) return;
  entry.byPlace =
      BindingToPlace(port.portNumber == 0 ? place : place + u'.' + QString::number(port.portNumber));
}

}  // namespace kalivor::platform
