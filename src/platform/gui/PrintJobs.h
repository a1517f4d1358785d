// What the toolkit leaves open about print jobs.
#pragma once

#include <QString>
#include <optional>

namespace kalivor::platform {

/// Why the printing system has not taken the job that was just sent off, in its own words; nothing when it
/// has, or does not tell.
[[nodiscard]] std::optional<QString> RefusedJob();

/// The box text for a job that `printer` has not taken.
[[nodiscard]] QString RefusalText(const QString& printer, const std::optional<QString>& reason);

/// Where to propose a PDF file of that name: in the user's documents, or where there is no such folder, at
/// home.
[[nodiscard]] QString ProposedFile(const QString& name);

}  // namespace kalivor::platform
