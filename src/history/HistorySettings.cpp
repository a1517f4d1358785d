#include "history/HistorySettings.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

const QString kSection = u"Verlauf"_s;
const QString kKeeps = u"Fuehren"_s;
const QString kPlant = u"Anlage"_s;

struct TextKey {
  QStringView key;
  QString HistorySettings::*member = nullptr;
};
constexpr TextKey kTexts[] = {
    {u"Techniker", &HistorySettings::technician},          {u"Server", &HistorySettings::server},
    {u"Namensparameter", &HistorySettings::nameParameter}, {u"Briefkopf", &HistorySettings::letterhead},
    {u"Briefbild", &HistorySettings::letterPicture},       {u"Vorlage", &HistorySettings::reportTemplate}};

}  // namespace

HistorySettings LoadHistorySettings(const platform::SettingsStore& store) {
  HistorySettings settings;
  settings.keeps = store.Get(kSection, kKeeps, {}) == u"1";
  settings.plant = QUuid::fromString(store.Get(kSection, kPlant, {}));
  for (const auto& [key, member] : kTexts)
    settings.*member = store.Get(kSection, key.toString(), {});
  return settings;
}

void SaveHistorySettings(const HistorySettings& settings, platform::SettingsStore& store) {
  store.Save(kSection, kKeeps, settings.keeps ? u"1"_s : u"0"_s);
  store.Save(kSection, kPlant,
             settings.plant.isNull() ? QString() : settings.plant.toString(QUuid::WithoutBraces));
  for (const auto& [key, member] : kTexts)
    store.Save(kSection, key.toString(), settings.*member);
}

}  // namespace kalivor::history
