// Why a port cannot be used, in the same words on every system.
#pragma once

#include <QString>

namespace kalivor::platform {

/// The device of settings that no port takes.
inline constexpr QStringView kAnyPort = u"Die Schnittstelle";

/// What SerialControl::Fault() tells of a port of the system.
struct PortFault {
  enum class Kind {
    None,
    NoPort,           ///< no device stands for the number
    Absent,           ///< the device is not there
    NoPermission,     ///< this user may not open it
    InUse,            ///< another program has it
    NoSerialPort,     ///< it is something else
    SettingsRefused,  ///< it cannot do what was asked for
    Vanished,         ///< it was there, and is gone
    Other,
  };

  Kind kind = Kind::None;
  QString device = {};    ///< as it is named to the user
  QString settings = {};  ///< of the line: "9600,o,7,1"
  int number = 0;         ///< the system's own of an error of the kind Other

  /// One or two sentences in German: what is the matter, and what to do. "" of None.
  [[nodiscard]] QString Text() const;
};

}  // namespace kalivor::platform
