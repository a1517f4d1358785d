#include "comm/LineQuality.h"

#include <algorithm>

#include "comm/ExchangeLog.h"

namespace kalivor {

void LineQuality::Count(const Exchange& exchange) {
  switch (exchange.end) {
    case ExchangeEnd::Good: {
      ++(exchange.attempt > 1 ? repeated : good);
      const auto step = static_cast<int>(exchange.answer_s * 1000 / kStep_ms);
      ++answers[static_cast<std::size_t>(std::clamp(step, 0, kSteps - 1))];
      slowest_s = std::max(slowest_s, exchange.answer_s);
      break;
    }
    case ExchangeEnd::NoPort:
      ++noPort;
      break;
    case ExchangeEnd::Silent:
      ++silent;
      break;
    case ExchangeEnd::EchoOnly:
      ++echoOnly;
      break;
    case ExchangeEnd::Damaged:
      ++damaged;
      break;
    case ExchangeEnd::Refused:
      ++refused;
      break;
  }
}

}  // namespace kalivor
