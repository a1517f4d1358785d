// What a deed tells about the values of a controller, or of the PC's table.
#pragma once

#include <optional>

#include "history/Store.h"

namespace kalivor::history {

/// The values of the deed, its kind, outcome and remark; the rest of the entry's head is left to the caller.
/// `table` is the PC's, as it is after the deed: it is copied. Nothing where no value was read, written or
/// changed.
///
/// Received and sent: what was before is left to the store to look up. Compared: before is the PC's value.
/// Written safely: before is what was read before the writing. Values that were to be read or written and
/// were not are there with their state.
[[nodiscard]] std::optional<Observation> ObservationOf(const Deed& deed, const ParameterTable& table);

}  // namespace kalivor::history
