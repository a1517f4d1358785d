// The settings store: one INI file in the user's configuration folder.
#pragma once

#include <QSettings>
#include <optional>

#include "platform/SettingsStore.h"

namespace kalivor::platform {

/// The file is replaced as a whole, so that an interruption leaves the old or the new settings. One that
/// cannot be read, is damaged or is no file at all holds none, and the program starts with its defaults.
class IniSettingsStore final : public SettingsStore {
 public:
  /// The user's own file: KALIVOR/KALIVOR.ini in ~/.config, on Windows in %LOCALAPPDATA%.
  IniSettingsStore();

  /// A file of the caller's choice.
  explicit IniSettingsStore(const QString& path);

  [[nodiscard]] const QString& Path() const { return path_; }

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override;
  void Save(const QString& section, const QString& key, const QString& value) override;
  [[nodiscard]] QString Flush() override;

 private:
  QString path_;
  std::optional<QSettings> settings_;  ///< empty when what stands there is no file of a sensible size
};

}  // namespace kalivor::platform
