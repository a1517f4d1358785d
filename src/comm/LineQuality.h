// How good a line is, counted.
#pragma once

#include <QtGlobal>
#include <array>

namespace kalivor {

struct Exchange;

struct LineQuality {
  /// Times of answer are counted in steps of 10 ms; the last step has all that took longer.
  static constexpr int kSteps = 45;
  static constexpr double kStep_ms = 10;

  qint64 good = 0;      ///< answered at the first attempt
  qint64 repeated = 0;  ///< answered, but at a later one
  // Attempts that failed, and why.
  qint64 silent = 0;    ///< nothing came
  qint64 echoOnly = 0;  ///< nothing but the request itself came back
  qint64 damaged = 0;   ///< what came was not in order
  qint64 refused = 0;   ///< the controller said no
  qint64 noPort = 0;
  std::array<qint64, kSteps> answers{};  ///< good exchanges by their time of answer
  double slowest_s = 0;                  ///< of them

  [[nodiscard]] qint64 Failed() const { return silent + echoOnly + damaged + refused + noPort; }
  [[nodiscard]] qint64 All() const { return good + repeated + Failed(); }

  void Count(const Exchange& exchange);
  bool operator==(const LineQuality&) const = default;
};

}  // namespace kalivor
