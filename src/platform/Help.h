// The help viewer of the system, and the manual.
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

  /// Opens a page of the manual: "optionen", or a place on it: "optionen#regler". Returns at once. Throws
  /// RuntimeError (FileError) when there is no manual or nothing to show it with.
  virtual void ShowPage(const QString& page) = 0;
};

}  // namespace kalivor::platform
