// Where a serial line is reached over the network.
#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace kalivor::platform {

struct NetworkAddress {
  enum class Kind {
    Raw,      ///< socket://: the characters and nothing else
    ComPort,  ///< rfc2217://: Telnet with COM port control
  };

  Kind kind = Kind::Raw;
  QString host;  ///< a name or an address; one of IPv6 without its brackets
  quint16 port = 0;

  bool operator==(const NetworkAddress&) const = default;
};

/// True for a device that is meant as a network line: it begins with "socket://" or "rfc2217://".
[[nodiscard]] bool IsNetworkAddress(QStringView device);

/// An address, or why there is none: German, for the user.
struct ParsedNetworkAddress {
  std::optional<NetworkAddress> address;
  QString fault;
};

/// Reads "socket://HOST:PORT" or "rfc2217://HOST:PORT": a name, an address of IPv4, or one of IPv6 in
/// brackets, and a port from 1 to 65535. Nothing is looked for.
[[nodiscard]] ParsedNetworkAddress ParseNetworkAddress(QStringView text);

}  // namespace kalivor::platform
