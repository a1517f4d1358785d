#include "platform/PortBinding.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr QStringView kUsb = u"usb:";
constexpr QStringView kPlace = u"ort:";
constexpr QStringView kRawLine = u"socket://";
constexpr QStringView kTelnetLine = u"rfc2217://";

}  // namespace

BindingKind KindOf(const QString& binding) {
  const auto begins = [&](QStringView with) { return binding.startsWith(with, Qt::CaseInsensitive); };
  if (binding.isEmpty()) return BindingKind::None;
  if (begins(kRawLine) || begins(kTelnetLine)) return BindingKind::Network;
  if (begins(kUsb)) return BindingKind::Usb;
  return begins(kPlace) ? BindingKind::Place : BindingKind::Device;
}

QString BindingTo(const UsbPort& port) {
  const QString text = u"usb:%1:%2:%3:%4"_s.arg(port.vendor, port.product, port.serialNumber,
                                                QString::number(port.interfaceNumber));
  return port.portNumber == 0 ? text : text + u'.' + QString::number(port.portNumber);
}

std::optional<UsbPort> UsbPortOf(const QString& binding) {
  static const QRegularExpression pattern(
      u"^usb:([0-9a-f]{4}):([0-9a-f]{4}):(.*\\S.*):([0-9]{1,3})(?:\\.([0-9]{1,3}))?\\z"_s,
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = pattern.match(binding);
  if (!match.hasMatch()) return {};
  return UsbPort{match.captured(1), match.captured(2), match.captured(3), match.captured(4).toInt(),
                 match.captured(5).toInt()};
}

QString BindingToPlace(const QString& place) {
  return kPlace.toString() + place;
}

QString PlaceOf(const QString& binding) {
  return KindOf(binding) == BindingKind::Place ? binding.sliced(kPlace.size()) : QString();
}

bool SameBinding(const QString& a, const QString& b) {
  return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool CarriesRate(const QString& binding) {
  return !binding.startsWith(kRawLine, Qt::CaseInsensitive);
}

QString PortKey(int number) {
  return u"COM%1"_s.arg(number);
}

}  // namespace kalivor::platform
