// What one exchange has to come to, where it is known beforehand which characters will arrive and when.
#pragma once

#include <vector>

#include "rules/ExchangeRules.h"

namespace kalivor::test {

/// Characters that arrive together, so many milliseconds after the request went out.
struct Arrival {
  double at_ms;
  QByteArray characters;
};

/// What the program is to make of it when it takes everything as it arrives. No arrival may fall on the very
/// end of a waiting time.
inline Verdict VerdictByRules(const QByteArray& request, const std::vector<Arrival>& arrivals) {
  ExchangeReading reading(request.size(), 0);
  for (const Arrival& arrival : arrivals) {
    const double at_s = arrival.at_ms / 1000;
    if (at_s >= reading.Until_s()) break;
    reading.Take(at_s, arrival.characters);
    if (reading.GetState() == ExchangeReading::State::Complete) break;
  }
  constexpr double rounding_s = 1e-6;
  if (reading.GetState() == ExchangeReading::State::Waiting) reading.Take(reading.Until_s() + rounding_s, {});
  constexpr int noEvent = 0;
  return reading.Result(noEvent);
}

}  // namespace kalivor::test
