// What is the same in the directory of ports of every system: numbers, bindings, what is missing.
#pragma once

#include <QList>
#include <QString>

#include "platform/plain/PortBindings.h"

namespace kalivor::platform {

/// A system says which ports it has; which number stands for which is decided here.
class SystemPorts : public PortBindings {
 public:
  using PortBindings::PortBindings;

  /// A port for which several numbers stand is listed with one that the user has bound, and the lowest.
  [[nodiscard]] QList<PortEntry> List() final;
  [[nodiscard]] QString Device(int number) final;
  [[nodiscard]] QString Shown(int number) final;

 protected:
  /// Forgets what was seen.
  virtual void LookAnew() = 0;

  /// The ports that are there, in their natural order, each with the number that it has unless the user says
  /// otherwise (0: none); state and remark are left out. What was seen before is good as long as nothing can
  /// have changed.
  [[nodiscard]] virtual QList<PortEntry> Present() = 0;

  /// What is opened for a number that is not bound; "" for nothing.
  [[nodiscard]] virtual QString Counted(int number) = 0;

  /// A device that the user names: the name that Present() has for it, or would have; "" when it is not
  /// there.
  [[nodiscard]] virtual QString Find(const QString& device) = 0;

  /// How a device that is there is shown to the user.
  [[nodiscard]] virtual QString ShownDevice(const QString& device) = 0;

  /// Fills in state and remark of ports that are there.
  virtual void Examine(QList<PortEntry>& entries) = 0;
};

}  // namespace kalivor::platform
