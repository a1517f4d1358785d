// What the counts of a line mean, and what to do about it: in German.
#pragma once

#include <QStringList>

#include "comm/LineQuality.h"

namespace kalivor {

struct LineHint {
  enum class Judgement {
    None,  ///< too little was seen
    Good,
    Bad,
  };
  Judgement judgement = Judgement::None;
  QStringList texts;  ///< whole sentences, one paragraph each, never empty; the most important one first

  bool operator==(const LineHint&) const = default;
};

/// So many attempts are needed before shares mean something. Where every single attempt fails in the same
/// way, a few are enough.
inline constexpr qint64 kEnoughForShares = 20;
inline constexpr qint64 kEnoughOfOneKind = 3;

/// Less than one in so many is not worth a word.
inline constexpr int kWorthMentioning = 50;

/// Answers that take so long come near the time-out of 400 ms.
inline constexpr int kSlow_ms = 350;

[[nodiscard]] LineHint HintOf(const LineQuality& quality);

/// "1234 Versuche: 1200 gut, 20 wiederholt, 14 fehlgeschlagen (10 beschädigt, 4 ohne Antwort)"; "" where
/// there were none.
[[nodiscard]] QString QualityLine(const LineQuality& quality);

/// Good and repeated exchanges that took `ms` milliseconds or longer; a multiple of the steps they are
/// counted in.
[[nodiscard]] qint64 AnswersFrom(const LineQuality& quality, int ms);

}  // namespace kalivor
