#include "platform/win32/DeviceIds.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// "USB\VID_0403&PID_6001[&MI_01]\…": what stands behind is the adapter's serial number, or what Windows has
// made up, which holds a "&".
struct UsbInstance {
  QString vendor;
  QString product;
  std::optional<int> interfaceNumber;
  QString serialNumber;
};

std::optional<UsbInstance> ParseUsb(const QString& instance) {
  static const QRegularExpression pattern(
      u"^USB\\\\VID_([0-9a-f]{4})&PID_([0-9a-f]{4})(?:&MI_([0-9a-f]{2}))?\\\\(.+)\\z"_s,
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = pattern.match(instance);
  if (!match.hasMatch()) return {};
  UsbInstance parsed{match.captured(1).toLower(), match.captured(2).toLower(), {}, match.captured(4)};
  if (match.hasCaptured(3)) parsed.interfaceNumber = match.captured(3).toInt(nullptr, 16);
  if (parsed.serialNumber.contains(u'&')) parsed.serialNumber.clear();
  return parsed;
}

// Drivers of FTDI put their ports on a bus of their own; behind the serial number a letter counts the ports.
std::optional<UsbPort> ParseFtdi(const QString& instance) {
  static const QRegularExpression pattern(
      u"^FTDIBUS\\\\VID_([0-9a-f]{4})\\+PID_([0-9a-f]{4})\\+([^\\\\]+?)([A-H])?\\\\[0-9]+\\z"_s,
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = pattern.match(instance);
  if (!match.hasMatch()) return {};
  UsbPort port{match.captured(1).toLower(), match.captured(2).toLower(), match.captured(3), 0, 0};
  const QString letter = match.captured(4).toUpper();
  if (!letter.isEmpty()) port.interfaceNumber = letter.at(0).unicode() - u'A';
  if (port.serialNumber.contains(u'&')) port.serialNumber.clear();
  return port;
}

}  // namespace

std::optional<UsbPort> UsbPortOfInstance(const QString& instance, const QString& parent) {
  if (std::optional<UsbPort> port = ParseFtdi(instance)) return port;
  const std::optional<UsbInstance> usb = ParseUsb(instance);
  if (!usb) return {};
  UsbPort port{usb->vendor, usb->product, usb->serialNumber, 0, 0};
  if (usb->interfaceNumber) {
    // One of several interfaces: the number belongs to the adapter, which stands above it.
    port.interfaceNumber = *usb->interfaceNumber;
    const std::optional<UsbInstance> adapter = ParseUsb(parent);
    port.serialNumber = adapter ? adapter->serialNumber : QString();
  }
  return port;
}

QString ShownPlace(const QString& locationPath) {
  static const QRegularExpression pattern(u"#USB\\(([0-9]+)\\)"_s);
  QStringList sockets;
  for (const QRegularExpressionMatch& match : pattern.globalMatch(locationPath))
    sockets.append(match.captured(1));
  return sockets.isEmpty() ? QString() : u"USB "_s + sockets.join(u'.');
}

QString PortDescription(const QString& maker, const QString& friendlyName) {
  static const QRegularExpression nameInBrackets(u"\\s*\\(COM[0-9]+\\)\\z"_s);
  QString product = friendlyName;
  product.remove(nameInBrackets);
  // What is no maker stands in brackets: "(Standardanschlusstypen)".
  if (maker.startsWith(u'(') || product.startsWith(maker, Qt::CaseInsensitive)) return product;
  return (maker + u' ' + product).trimmed();
}

}  // namespace kalivor::platform
