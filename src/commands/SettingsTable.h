// The stored settings as a table: start, store, options and command line go by it.
#pragma once

#include <optional>

#include "base/Module1.h"
#include "platform/MessageBox.h"
#include "platform/SerialControl.h"
#include "platform/SettingsStore.h"

namespace kalivor {

/// What the command line sets: it holds for one run and is not stored.
struct RunSettings {
  std::optional<QString> iniPath;
  std::optional<QString> iniFile;
  std::optional<qint16> port;
  std::optional<qint16> address;
};

/// A stored setting. Its default is that of the member in Settings, unless it is the program's folder; its
/// type decides how it is converted to and from text.
template <typename Value>
struct Setting {
  QStringView key;
  Value Settings::*member = nullptr;                 ///< where the program has it
  std::optional<Value> RunSettings::*run = nullptr;  ///< the option that stands for it; nullptr: none
  QStringView section = u"Settings";
};

/// A number, and those that the options offer and the command line takes. A stored one may be any other.
struct NumberSetting : Setting<qint16> {
  qint16 lowest = 0;
  qint16 highest = 0;

  [[nodiscard]] constexpr bool Offers(int number) const { return number >= lowest && number <= highest; }
};

struct TextSetting : Setting<QString> {
  bool programFolder = false;  ///< the default is the program's folder
};

inline constexpr NumberSetting kAdresse{{u"Adresse", &Settings::Adresse, &RunSettings::address}, 0, 255};
inline constexpr NumberSetting kSchnittstelle{
    {u"Schnittstelle", &Settings::Schnittstelle, &RunSettings::port}, 1, platform::kLargestPortNumber};
inline constexpr NumberSetting kRuhezeit{
    {u"Ruhezeit", &Settings::Ruhezeit, nullptr, u"SicherSenden"}, 500, 30000};
inline constexpr const NumberSetting* kNumberSettings[] = {&kAdresse, &kSchnittstelle, &kRuhezeit};
inline constexpr TextSetting kTextSettings[] = {
    {{u"Userpath", &Settings::Userpath}, true},
    {{u"Inipath", &Settings::Inipath, &RunSettings::iniPath}, true},
    {{u"Inifile", &Settings::Inifile, &RunSettings::iniFile}, false},
};

/// Reads the settings that are no window geometry. One that cannot be read is reported in a box and replaced
/// by its default. `programFolder` is the default of both folders.
void LoadSettings(Settings& settings, const platform::SettingsStore& store, platform::MessageBox& box,
                  const QString& programFolder);

/// Stores the same.
void SaveSettings(const Settings& settings, platform::SettingsStore& store);

/// Puts what the command line sets in the place of what is stored.
void TakeRunSettings(Settings& settings, const RunSettings& run);

/// What is to be stored after a run that began with the settings `begun`, in place of the stored ones: what
/// the run has changed is stored as it is `now`, the rest stays `stored`.
[[nodiscard]] Settings SettingsToStore(const Settings& now, const Settings& begun, const Settings& stored);

/// "--port": a number is the port's, any other text a device that stands for the stored one. Returns "" or
/// the fault in German.
[[nodiscard]] QString TakePort(const QString& text, RunSettings& run, QString& device);

}  // namespace kalivor
