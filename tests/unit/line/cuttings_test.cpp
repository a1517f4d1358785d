// However the characters of an exchange are cut into blocks on their way, it comes to the same: on a double
// and on the simulated line.
#include <gtest/gtest.h>
#include <set>

#include "unit/line/CutExchange.h"
#include "unit/line/PlayedLine.h"

namespace kalivor::test {
namespace {

// `text`, cut at `places`.
Pieces Cut(const QByteArray& text, const std::set<qsizetype>& places) {
  Pieces pieces;
  qsizetype from = 0;
  for (const qsizetype to : places) {
    pieces.push_back(text.sliced(from, to - from));
    from = to;
  }
  pieces.push_back(text.sliced(from));
  return pieces;
}

Pieces SingleCharacters(const QByteArray& text) {
  Pieces pieces;
  for (const char c : text)
    pieces.emplace_back(1, c);
  return pieces;
}

// Calls `use` with all cuttings of `text` into at most four pieces, and with its single characters.
template <typename Use>
void ForEachCutting(const QByteArray& text, Use&& use) {
  const qsizetype size = text.size();
  use(Pieces{text});
  use(SingleCharacters(text));
  for (qsizetype a = 1; a < size; ++a) {
    for (qsizetype b = a; b < size; ++b) {
      for (qsizetype c = b; c < size; ++c)
        use(Cut(text, {a, b, c}));
    }
  }
}

// Calls `use` with every cutting there is.
template <typename Use>
void ForEveryCutting(const QByteArray& text, Use&& use) {
  for (unsigned mask = 0; mask < 1U << (text.size() - 1); ++mask) {
    std::set<qsizetype> places;
    for (qsizetype at = 1; at < text.size(); ++at) {
      if ((mask >> (at - 1) & 1U) != 0) places.insert(at);
    }
    use(Cut(text, places));
  }
}

class Cuttings : public testing::TestWithParam<Row> {};

TEST_P(Cuttings, ComeToTheSameOnADouble) {
  FakeClock clock;
  PlayedLine line(clock);
  Reader reader(line, clock);
  const auto expectResult = [&](const Pieces& pieces) {
    line.answer = [&pieces](const QByteArray&) {
      std::vector<Arrival> arrivals;
      for (const QByteArray& piece : pieces)
        arrivals.push_back({static_cast<double>(arrivals.size() + 1), piece});
      return arrivals;
    };
    ASSERT_EQ(reader.Read(), GetParam().result) << testing::PrintToString(pieces);
  };
  constexpr qsizetype kFewCharacters = 15;
  if (GetParam().received.size() <= kFewCharacters) {
    ForEveryCutting(GetParam().received, expectResult);
  } else {
    ForEachCutting(GetParam().received, expectResult);
  }
}

TEST_P(Cuttings, ComeToTheSameOnTheSimulatedLine) {
  FakeClock clock;
  Station station;
  sim::SimulatedLine line(clock, station.model);
  Reader reader(line, clock);
  ForEachCutting(GetParam().received, [&](const Pieces& pieces) {
    station.pieces = pieces;
    ASSERT_EQ(reader.Read(), GetParam().result) << testing::PrintToString(pieces);
    // What was not taken must not reach the next exchange.
    clock.Advance(1);
  });
}

INSTANTIATE_TEST_SUITE_P(Of, Cuttings, testing::ValuesIn(kRows),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kalivor::test
