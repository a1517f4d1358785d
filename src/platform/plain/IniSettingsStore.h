// The settings store: one INI file in the user's configuration folder.
#pragma once

#include <QSettings>

#include "platform/SettingsStore.h"

namespace kalivor::platform {

class IniSettingsStore final : public SettingsStore {
 public:
  /// The user's own file (on Linux ~/.config/KALIVOR/KALIVOR.ini).
  IniSettingsStore();

  /// A file of the caller's choice.
  explicit IniSettingsStore(const QString& path);

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override;
  void Save(const QString& section, const QString& key, const QString& value) override;

 private:
  QSettings settings_;
};

}  // namespace kalivor::platform
