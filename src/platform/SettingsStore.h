// Per-user settings, each a text under a section and a key.
#pragma once

#include <QString>

namespace kalivor::platform {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// The stored text, or `fallback` when the key is absent.
  [[nodiscard]] virtual QString Get(const QString& section, const QString& key,
                                    const QString& fallback) const = 0;

  /// Stores `value`; it is on disk at the latest when the store is destroyed.
  virtual void Save(const QString& section, const QString& key, const QString& value) = 0;

  /// Brings everything that was saved to the disk now, all of it or nothing. Returns "" or a German
  /// description of the failure.
  [[nodiscard]] virtual QString Flush() { return {}; }
};

}  // namespace kalivor::platform
