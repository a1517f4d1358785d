// Ports that a test makes up.
#pragma once

#include "platform/plain/PortBindings.h"

namespace kalivor::test {

class FakePortDirectory final : public platform::PortBindings {
 public:
  FakePortDirectory() : PortBindings({}) {}

  QList<platform::PortEntry> entries;  ///< what there is, with numbers

  [[nodiscard]] QList<platform::PortEntry> List() override { return entries; }
  [[nodiscard]] QString Device(int number) override {
    const QString wanted = Wanted(number);
    return wanted.isEmpty() ? Shown(number) : wanted;
  }
  [[nodiscard]] QString Shown(int number) override {
    for (const platform::PortEntry& entry : entries) {
      if (entry.number == number) return entry.device;
    }
    return {};
  }
};

}  // namespace kalivor::test
