// Two years of a plant, for the demonstration.
#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>

#include "base/Module1.h"
#include "core/ValueFileFormat.h"

namespace kalivor {

/// What the demonstration's controller holds after them, where that is not the standard value.
[[nodiscard]] ValueFileContent DemoValues();

/// Adds to the history in `file` what two technicians have done in the two years before `now`. `module` has
/// the definitions of the demonstration's controller. Returns the plant that it
/// belongs to; null where the file cannot be written.
[[nodiscard]] QUuid WriteDemoHistory(const QString& file, const Module1& module, const QDateTime& now);

}  // namespace kalivor
