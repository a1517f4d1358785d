// The walk over the parameters that receiving, sending and comparing share.
#pragma once

#include <functional>

#include "core/Engines.h"

namespace kalivor {

/// Calls `handle` for every checked parameter with an address, in table order, and marks progress with a dot.
/// Parameters that the plant type hides are transferred as well. Ends early when an abort is requested.
/// `handle` returns false when it added a failure line.
WalkResult Walk(Core& core, const std::function<bool(ParameterRecord&)>& handle);

/// Adds "Fehler bei: <Variable>" to the report, with "[word]" for word 1.. of a string; returns false.
bool ReportFailure(Core& core, const ParameterRecord& record);
bool ReportFailure(Core& core, const ParameterRecord& record, int word);
[[nodiscard]] QString FailureText(const ParameterRecord& record, int word);

}  // namespace kalivor
