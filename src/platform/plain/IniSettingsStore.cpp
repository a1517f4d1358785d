#include "platform/plain/IniSettingsStore.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

QString OwnFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/KALIVOR/KALIVOR.ini"_s;
}

// The library reads whatever stands under the name, also what never ends or never answers.
bool IsUsable(const QString& path) {
  constexpr qint64 kLargestFile_bytes = 1024 * 1024;
  const QFileInfo file(path);
  return !file.exists() || (file.isFile() && file.size() <= kLargestFile_bytes);
}

}  // namespace

IniSettingsStore::IniSettingsStore() : IniSettingsStore(OwnFile()) {}

IniSettingsStore::IniSettingsStore(const QString& path) : path_(path) {
  if (IsUsable(path)) settings_.emplace(path, QSettings::IniFormat);
}

QString IniSettingsStore::Get(const QString& section, const QString& key, const QString& fallback) const {
  if (!settings_) return fallback;
  const QVariant stored = settings_->value(section + u'/' + key);
  if (!stored.isValid()) return fallback;
  // A comma in a value written by hand makes the library see a list; it is one text all the same.
  return stored.typeId() == QMetaType::QStringList ? stored.toStringList().join(u',') : stored.toString();
}

void IniSettingsStore::Save(const QString& section, const QString& key, const QString& value) {
  if (settings_) settings_->setValue(section + u'/' + key, value);
}

QString IniSettingsStore::Flush() {
  if (settings_) settings_->sync();
  // Damaged content is no failure: it has been replaced.
  if (settings_ && settings_->status() != QSettings::AccessError) return {};
  return u"Die Einstellungen konnten nicht gespeichert werden:\r\n"_s + path_;
}

}  // namespace kalivor::platform
