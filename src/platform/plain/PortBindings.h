// What the user has bound to port numbers, and what the command line puts in its place.
#pragma once

#include <QMap>
#include <QString>
#include <utility>

#include "platform/PortDirectory.h"

namespace kalivor::platform {

/// The part of a directory that is the same on every system.
class PortBindings : public PortDirectory {
 public:
  /// `bindings`: by port number, "" for none.
  explicit PortBindings(QMap<int, QString> bindings) : bindings_(std::move(bindings)) {}

  [[nodiscard]] QString Binding(int number) const override { return bindings_.value(number); }
  void Bind(int number, const QString& binding) override { bindings_[number] = binding; }
  void Override(int number, const QString& device) override { overrides_[number] = device; }
  [[nodiscard]] QString Overriding(int number) const override { return overrides_.value(number); }

 protected:
  /// What stands for the number by the user's will: the override, or else the binding.
  [[nodiscard]] QString Wanted(int number) const {
    const QString device = overrides_.value(number);
    return device.isEmpty() ? bindings_.value(number) : device;
  }

 private:
  QMap<int, QString> bindings_;
  QMap<int, QString> overrides_;
};

}  // namespace kalivor::platform
