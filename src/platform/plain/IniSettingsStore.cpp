#include "platform/plain/IniSettingsStore.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {

IniSettingsStore::IniSettingsStore()
    : settings_(QSettings::IniFormat, QSettings::UserScope, u"KALIVOR"_s, u"KALIVOR"_s) {
  settings_.setFallbacksEnabled(false);
}

IniSettingsStore::IniSettingsStore(const QString& path) : settings_(path, QSettings::IniFormat) {}

QString IniSettingsStore::Get(const QString& section, const QString& key, const QString& fallback) const {
  const QVariant stored = settings_.value(section + u'/' + key);
  if (!stored.isValid()) return fallback;
  // A comma in a value written by hand makes the library see a list; it is one text all the same.
  return stored.typeId() == QMetaType::QStringList ? stored.toStringList().join(u',') : stored.toString();
}

void IniSettingsStore::Save(const QString& section, const QString& key, const QString& value) {
  settings_.setValue(section + u'/' + key, value);
}

}  // namespace kalivor::platform
