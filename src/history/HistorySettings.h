// What the user has set for the history.
#pragma once

#include <QString>
#include <QUuid>

#include "platform/SettingsStore.h"

namespace kalivor::history {

/// The section "Verlauf" of the stored settings.
struct HistorySettings {
  bool keeps = false;      ///< what is done is recorded ("Verlauf führen")
  QString technician;      ///< who works here; may be ""
  QUuid plant;             ///< that entries belong to from now on; null: none was named
  QString server;          ///< of the department: a connection string or the name of a service; "": none
  QString nameParameter;   ///< variable of the parameter whose text is the plant's name; "": none
  QString letterhead;      ///< of reports for customers; may have several lines
  QString letterPicture;   ///< path; "": none
  QString reportTemplate;  ///< path; "": the built-in one

  bool operator==(const HistorySettings&) const = default;
};

/// What is missing or no value has its default.
[[nodiscard]] HistorySettings LoadHistorySettings(const platform::SettingsStore& store);

void SaveHistorySettings(const HistorySettings& settings, platform::SettingsStore& store);

}  // namespace kalivor::history
