// The serial ports that there are, and which of them a port number stands for.
#pragma once

#include <QList>
#include <QString>

namespace kalivor::platform {

enum class PortState {
  Free,          ///< nothing is known that keeps the program from opening it
  InUse,         ///< by another program
  NoPermission,  ///< this user may not open it
  Missing,       ///< a number is bound to it, and it is not there
};

/// One port: present, or missing although a number is bound to it.
struct PortEntry {
  int number = 0;             ///< the port number that stands for it now; 0: none
  QString device = {};        ///< how it is opened: "/dev/ttyUSB0", "COM3", "socket://192.0.2.7:4001"
  QString description = {};   ///< maker and product as they call themselves; may be empty
  QString serialNumber = {};  ///< may be empty
  QString place = {};         ///< where it is plugged in, for the user; may be empty
  PortState state = PortState::Free;
  QString remark = {};  ///< German: which program has it, what to do about the permission; may be empty
  QString bySerialNumber = {};  ///< what binds a number to this very device; "" where it has no serial number
  QString byPlace = {};     ///< what binds a number to whatever is plugged in there; "" where that is unknown
  bool carriesRate = true;  ///< false: its line settings cannot be chosen from here (a raw network line)

  bool operator==(const PortEntry&) const = default;
};

/// A number that the user has bound stands for that device alone; when it is missing, for none. One that is
/// not bound stands for what the system counts. A binding is the text that is stored:
///   /dev/ttyUSB0, COM7                         a device, by its path or name
///   socket://HOST:PORT, rfc2217://HOST:PORT    a network line
///   usb:0403:6001:A12345:0                     the adapter of this vendor, product and serial number, its
///                                              interface of this number, wherever it is plugged in
///   ort:0000:00:14.0-1.2:1.0                   whatever is plugged in at this place: on Linux
///                                              controller, chain of sockets, configuration and interface;
///                                              on Windows the path of the location
class PortDirectory {
 public:
  virtual ~PortDirectory() = default;

  /// The ports in the order in which they are numbered, those without a number behind them, what is missing
  /// last. Looks at the system anew; opens nothing.
  [[nodiscard]] virtual QList<PortEntry> List() = 0;

  /// What is opened for `number`: "" when there is nothing, or the number is not 1..8. A path, a name and a
  /// network address are not looked for.
  [[nodiscard]] virtual QString Device(int number) = 0;

  /// The same for the user to see; "" when it is not there now.
  [[nodiscard]] virtual QString Shown(int number) = 0;

  /// What the user has bound to `number`; "" for nothing.
  [[nodiscard]] virtual QString Binding(int number) const = 0;

  /// Binds `number` from now on, or frees it with "". Nothing is stored.
  virtual void Bind(int number, const QString& binding) = 0;

  /// Lets a device stand for `number` in this run, whatever it is bound to; "" ends that.
  virtual void Override(int number, const QString& device) = 0;
  [[nodiscard]] virtual QString Overriding(int number) const = 0;
};

/// Lets a device stand for a number as long as it lives.
class StandIn {
 public:
  StandIn(PortDirectory& ports, int number, const QString& device)
      : ports_(ports), number_(number), before_(ports.Overriding(number)) {
    ports_.Override(number_, device);
  }
  ~StandIn() { ports_.Override(number_, before_); }
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

 private:
  PortDirectory& ports_;
  int number_;
  QString before_;
};

}  // namespace kalivor::platform
