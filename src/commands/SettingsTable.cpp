#include "commands/SettingsTable.h"

#include <QVariant>

#include "base/Numbers.h"
#include "commands/EventBoundary.h"
#include "platform/NetworkAddress.h"

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

// Each takes over a stored text; RuntimeError when it cannot be converted.

void FromText(qint16& number, const QString& text) {
  number = StrictInt16(text);
}

void FromText(QString& member, const QString& text) {
  member = text;
}

}  // namespace

void LoadSettings(Settings& settings, const platform::SettingsStore& store, platform::MessageBox& box,
                  const QString& programFolder) {
  settings = {};
  for (const TextSetting& text : kTextSettings) {
    if (text.programFolder) settings.*text.member = programFolder;
  }
  ForEachSetting([&](const auto& setting) {
    auto& member = settings.*setting.member;
    const QString standard = QVariant(member).toString();
    RunHandler(box, [&] {
      FromText(member, store.Get(setting.section.toString(), setting.key.toString(), standard));
    });
  });
}

void SaveSettings(const Settings& settings, platform::SettingsStore& store) {
  ForEachSetting([&](const auto& setting) {
    store.Save(setting.section.toString(), setting.key.toString(),
               QVariant(settings.*setting.member).toString());
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
    // Others show when they are opened; this one cannot be looked for at all.
    if (platform::IsNetworkAddress(text)) return platform::ParseNetworkAddress(text).fault;
  } else if (kSchnittstelle.Offers(number)) {
    run.port = static_cast<qint16>(number);
  } else {
    return u"Keine Schnittstelle von 1 bis 8: "_s + text;
  }
  return {};
}

}  // namespace kalivor
