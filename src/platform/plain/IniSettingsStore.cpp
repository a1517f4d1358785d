#include "platform/plain/IniSettingsStore.h"

#include <QFileInfo>
#include <QIODevice>
#include <QStandardPaths>

#include "platform/plain/IniText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// A settings file holds some hundred bytes; a larger one is something else.
constexpr qint64 kLargestFile_bytes = qint64{1024} * 1024;

QString OwnFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/KALIVOR/KALIVOR.ini"_s;
}

// The library reads whatever stands under the name, also what never ends or never answers.
bool IsUsable(const QString& path) {
  const QFileInfo file(path);
  return !file.exists() || (file.isFile() && file.size() <= kLargestFile_bytes);
}

bool ReadFile(QIODevice& file, QSettings::SettingsMap& map) {
  if (file.size() > kLargestFile_bytes) return false;
  map = ReadIni(file.readAll());
  return true;
}

bool WriteFile(QIODevice& file, const QSettings::SettingsMap& map) {
  const QByteArray bytes = WriteIni(map);
  return file.write(bytes) == bytes.size();
}

// The library's own INI format also takes values of other types apart, the stored images of any objects
// included; a damaged file makes it ask for gigabytes of memory.
QSettings::Format TextFormat() {
  static const QSettings::Format format = QSettings::registerFormat(u"ini"_s, ReadFile, WriteFile);
  return format;
}

}  // namespace

IniSettingsStore::IniSettingsStore() : IniSettingsStore(OwnFile()) {}

IniSettingsStore::IniSettingsStore(const QString& path) : path_(path) {
  if (IsUsable(path)) settings_.emplace(path, TextFormat());
}

QString IniSettingsStore::Get(const QString& section, const QString& key, const QString& fallback) const {
  return settings_ ? settings_->value(section + u'/' + key, fallback).toString() : fallback;
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
