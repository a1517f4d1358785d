#include "core/Deed.h"

namespace kalivor {

std::vector<ParameterValue> ValuesOf(const ParameterTable& table) {
  std::vector<ParameterValue> values;
  values.reserve(static_cast<std::size_t>(table.ParCount));
  for (int i = 0; i < table.ParCount; ++i)
    values.push_back({table.Par[i].Wert, table.Par[i].WertText});
  return values;
}

}  // namespace kalivor
