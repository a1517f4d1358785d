// The tables that the commands print, as text and as JSON.
#pragma once

#include <QJsonDocument>
#include <QString>

#include "commands/TransferCommands.h"
#include "core/ValueFileFormat.h"

namespace kalivor::cli {

/// Columns are separated by TAB, lines end with LF; TAB, CR, LF and backslash inside a text are written as
/// a backslash and t, r, n or a second backslash.
[[nodiscard]] QString VersionsText(const Module1& module);
[[nodiscard]] QString PlantsText(Core& core);
[[nodiscard]] QString ParametersText(const Module1& module);
[[nodiscard]] QString TreeText(Core& core);
/// Layout, stored count and version in the first line, then the records, numbered from 2.
[[nodiscard]] QString ValueFileText(const ValueFileContent& content);

[[nodiscard]] QJsonDocument VersionsJson(const Module1& module);
[[nodiscard]] QJsonDocument PlantsJson(Core& core);
[[nodiscard]] QJsonDocument ParametersJson(const Module1& module);
[[nodiscard]] QJsonDocument ValueFileJson(const ValueFileContent& content);

/// A comparison; `report` are its lines, separated by CR LF.
[[nodiscard]] QJsonDocument CompareJson(const Module1& module, const TransferOutcome& outcome,
                                        const QString& report);

}  // namespace kalivor::cli
