#include "commands/SettingsTable.h"

#include "base/Numbers.h"
#include "commands/EventBoundary.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// Calls `visit` with every row of the table.
template <typename Visit>
void ForEachSetting(Visit&& visit) {
  for (const NumberSetting* number : kNumberSettings)
    visit(*number);
  for (const TextSetting& text : kTextSettings)
    visit(text);
}

QString ToText(qint16 number) {
  return QString::number(number);
}

QString ToText(const QString& text) {
  return text;
}

// Each takes over a stored text; RuntimeError when it cannot be converted.

void FromText(qint16& number, const QString& text) {
  number = StrictInt16(text);
}

void FromText(QString& member, const QString& text) {
  member = text;
}

Settings Defaults(const QString& programFolder) {
  Settings defaults;
  for (const TextSetting& text : kTextSettings) {
    if (text.programFolder) defaults.*text.member = programFolder;
  }
  return defaults;
}

}  // namespace

void LoadSettings(Settings& settings, const platform::SettingsStore& store, platform::MessageBox& box,
                  const QString& programFolder) {
  settings = Defaults(programFolder);
  ForEachSetting([&](const auto& setting) {
    auto& member = settings.*setting.member;
    RunHandler(box,
               [&] { FromText(member, store.Get(u"Settings"_s, setting.key.toString(), ToText(member))); });
  });
}

void SaveSettings(const Settings& settings, platform::SettingsStore& store) {
  ForEachSetting([&](const auto& setting) {
    store.Save(u"Settings"_s, setting.key.toString(), ToText(settings.*setting.member));
  });
}

void TakeRunSettings(Settings& settings, const RunSettings& run) {
  ForEachSetting([&](const auto& setting) {
    if (setting.run == nullptr) return;
    if (const auto& given = run.*setting.run) settings.*setting.member = *given;
  });
}

Settings SettingsToStore(const Settings& now, const Settings& begun, const Settings& stored) {
  Settings result = stored;
  ForEachSetting([&](const auto& setting) {
    if (now.*setting.member != begun.*setting.member) result.*setting.member = now.*setting.member;
  });
  return result;
}

QString TakePort(const QString& text, RunSettings& run, QString& device) {
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  if (!isNumber) {
    device = text;
  } else if (kSchnittstelle.Offers(number)) {
    run.port = static_cast<qint16>(number);
  } else {
    return u"Keine Schnittstelle von 1 bis 8: "_s + text;
  }
  return {};
}

}  // namespace kalivor
