#include "ui/about/SystemInformation.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kValueCapacity_bytes = 1024;
constexpr auto kHive = platform::Registry::Hive::LocalMachine;

QString HexadecimalForm(QByteArray bytes) {
  std::reverse(bytes.begin(), bytes.end());
  return u"&h"_s + QString::fromLatin1(bytes.toHex().toUpper());
}

QString Converted(const platform::Registry::Value& value) {
  if (value.type == platform::Registry::Type::Number32) return HexadecimalForm(value.bytes);
  const qsizetype end = value.bytes.indexOf('\0');
  return QString::fromLocal8Bit(end < 0 ? value.bytes : value.bytes.first(end));
}

// The program's path; empty when none is known.
QString FindProgram(const SystemInformation& system) {
  if (system.registry == nullptr) return {};
  QString path;
  if (GetKeyValue(*system.registry, kHive, u"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO"_s, u"PATH"_s, path))
    return path;
  if (!GetKeyValue(*system.registry, kHive, u"SOFTWARE\\Microsoft\\Shared Tools Location"_s, u"MSINFO"_s,
                   path)) {
    return {};
  }
  path += u"\\MSINFO32.EXE"_s;
  return system.fileExists(path) ? path : QString();
}

}  // namespace

bool GetKeyValue(platform::Registry& registry, platform::Registry::Hive hive, const QString& keyPath,
                 const QString& valueName, QString& result) {
  const platform::Registry::Key key = registry.OpenKey(hive, keyPath);
  if (key == 0) return false;
  const auto value = registry.QueryValue(key, valueName, kValueCapacity_bytes);
  registry.CloseKey(key);
  if (!value) return false;
  result = Converted(*value);
  return true;
}

void StartSysInfo(const SystemInformation& system, platform::MessageBox& box) {
  const QString program = FindProgram(system);
  if (!program.isEmpty()) {
    system.start(program);
  } else {
    box.Show(u"Systeminformationsprogramm zur Zeit nicht verfügbar."_s);
  }
}

}  // namespace kalivor::ui
