// The texts that bind a port number to a device, and where they are stored.
#pragma once

#include <QString>
#include <optional>

namespace kalivor::platform {

/// A USB adapter, or one of the ports of one that has several.
struct UsbPort {
  QString vendor;        ///< four hexadecimal digits
  QString product;       ///< four hexadecimal digits
  QString serialNumber;  ///< not empty
  int interfaceNumber = 0;
  int portNumber = 0;  ///< of several behind the same interface

  bool operator==(const UsbPort&) const = default;
};

/// What a binding means (see PortDirectory).
enum class BindingKind {
  None,     ///< the empty text
  Device,   ///< a device by its path or name
  Network,  ///< socket://… or rfc2217://…
  Usb,      ///< usb:…: an adapter by its serial number, wherever it is plugged in
  Place,    ///< ort:…: whatever is plugged in there
};

[[nodiscard]] BindingKind KindOf(const QString& binding);

/// "usb:0403:6001:A12345:0"; another than the first port behind the interface: "usb:0403:6001:A12345:0.1"
[[nodiscard]] QString BindingTo(const UsbPort& port);

/// The adapter that a binding of the kind Usb names; none where the text is no such binding. The serial
/// number may hold colons.
[[nodiscard]] std::optional<UsbPort> UsbPortOf(const QString& binding);

/// "ort:0000:00:14.0-1.2:1.0"
[[nodiscard]] QString BindingToPlace(const QString& place);

/// The place that a binding of the kind Place names; "" where the text is no such binding.
[[nodiscard]] QString PlaceOf(const QString& binding);

/// Whether two bindings name the same adapter or place: the system does not always keep to one case.
[[nodiscard]] bool SameBinding(const QString& a, const QString& b);

/// Line settings reach the far end of every line but of a raw network line.
[[nodiscard]] bool CarriesRate(const QString& binding);

/// Where the binding of a number is stored: the section, and its keys "COM1" to "COM8".
inline constexpr QStringView kPortsSection = u"Ports";
[[nodiscard]] QString PortKey(int number);

}  // namespace kalivor::platform
