// Random numbers that are the same for the same seed on every system.
#pragma once

#include <QtGlobal>

namespace kalivor::campaign {

class Random {
 public:
  explicit Random(quint64 seed) : state_(seed) {}

  quint64 Next() {
    quint64 mixed = state_ += 0x9E3779B97F4A7C15ULL;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
    return mixed ^ (mixed >> 31);
  }

  /// 0..bound-1; `bound` is positive.
  int Below(int bound) { return static_cast<int>((Next() >> 32) * static_cast<quint64>(bound) >> 32); }
  int Between(int least, int most) { return least + Below(most - least + 1); }
  bool Chance(double probability) { return Fraction() < probability; }

  /// 0 <= x < 1.
  double Fraction() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

 private:
  quint64 state_;
};

}  // namespace kalivor::campaign
