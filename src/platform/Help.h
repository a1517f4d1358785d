// The help viewer of the system.
#pragma once

#include <QString>

namespace kalivor::platform {

/// What the viewer is to do; the numbers are those that help viewers know.
enum class HelpCommand : int { Contents = 3, PartialKey = 261 };

class Help {
 public:
  virtual ~Help() = default;

  /// The help file assigned to the program, "" when there is none.
  [[nodiscard]] virtual QString HelpFile() const = 0;

  /// Opens the viewer on the help file. Throws RuntimeError when it cannot be opened.
  virtual void Open(HelpCommand command) = 0;
};

/// No help file is assigned.
class NoHelp final : public Help {
 public:
  [[nodiscard]] QString HelpFile() const override { return {}; }
  void Open(HelpCommand /*command*/) override {}
};

}  // namespace kalivor::platform
