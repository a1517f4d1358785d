// Settings in memory.
#pragma once

#include <QMap>

#include "platform/SettingsStore.h"

namespace kalivor::test {

class FakeSettingsStore final : public platform::SettingsStore {
 public:
  QMap<QString, QString> values;  ///< by "section/key"
  QMap<QString, QString> stored;  ///< what Flush() has brought to the disk
  QString failure;                ///< why it cannot

  [[nodiscard]] QString Get(const QString& section, const QString& key,
                            const QString& fallback) const override {
    return values.value(section + u'/' + key, fallback);
  }
  void Save(const QString& section, const QString& key, const QString& value) override {
    values[section + u'/' + key] = value;
  }
  [[nodiscard]] QString Flush() override {
    if (failure.isEmpty()) stored = values;
    return failure;
  }
};

}  // namespace kalivor::test
