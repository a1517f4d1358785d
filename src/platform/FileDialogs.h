// Asking the user for a file.
#pragma once

#include <QString>

namespace kalivor::platform {

class FileDialogs {
 public:
  virtual ~FileDialogs() = default;

  /// Asks for an existing file, beginning in `folder`. `filter`: pairs of a description and its patterns, all
  /// separated by "|". Returns the full path, or "" when the user cancelled.
  [[nodiscard]] virtual QString OpenFile(const QString& title, const QString& folder,
                                         const QString& filter) = 0;

  /// Asks for a file to write, existing or not, without asking back before one is overwritten, and without
  /// adding a suffix. Returns the full path, or "" when the user cancelled.
  [[nodiscard]] virtual QString SaveFile(const QString& title, const QString& filter) = 0;
};

}  // namespace kalivor::platform
