// However the characters of an exchange are cut into blocks on their way, it comes to the same: on a double,
// on the simulated line and at a real terminal device.
#include <sys/eventfd.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <set>
#include <thread>

#include "comm/COM_T.h"
#include "platform/posix/PosixSerialControl.h"
#include "platform/posix/SystemClock.h"
#include "sim/PtyLine.h"
#include "sim/SimulatedLine.h"
#include "unit/line/PlayedLine.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const QByteArray kEcho = "#0102R1F000F\r";
const QByteArray kGood = "10102R04D220\r";
const QString kValue = u"04D2"_s;

struct Row {
  std::string name;
  QByteArray received;
  QString result;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

const Row kRows[] = {
    {"GoodReply", kGood, kValue},
    {"EchoAndReply", kEcho + kGood, kValue},
    {"EchoTwice", kEcho + kEcho + kGood, kValue},
    {"EchoThreeCharactersShort", kEcho.left(9) + '\r' + kGood, kValue},
    {"EchoSixCharactersShort", kEcho.left(6) + '\r' + kGood, kValue},
    {"EchoWithoutItsEnd", kEcho.chopped(1) + 'x' + kGood, kValue},
    {"EchoAloneWithAFragment", kEcho.chopped(1) + "xyz\x03" + kGood, kValue},
    {"OtherLineBehindTheReply", kGood + "10102R000187\r", kValue},
    {"EmptyPayloadInFrontOfAnotherLine", "10102R46\r" + kGood, u""_s},
    {"ShortLineInFront", "x\r" + kGood, u"ERROR: unvollständige Antwort: x\r"_s},
    {"ShortLineInFrontWhoseSumIsNothing", "yz\r" + kGood, u"ERROR: unvollständige Antwort: yz\r"_s},
    {"EndOfLineInFront", "\n" + kGood, u"ERROR: unvollständige Antwort: \n"_s},
    {"ZeroInFront", QByteArray(1, '\0') + kGood, u"ERROR: unvollständige Antwort: "_s + QChar(0)},
    {"LetterBecomesAControlCharacter", "10102R0\x01" + QByteArray("BC5C\r"),
     u"ERROR: unvollständige Antwort: 10102R0\u0001"_s},
    {"ShortLineBehindTheEcho", kEcho + "10102R\x03" + kGood,
     u"ERROR: unvollständige Antwort: 10102R\u0003"_s},
    {"RefusalInFrontOfAReply", "10102?0700\r" + kGood, u"ERROR:  Code 07 Falsche Datensatznummer"_s},
    {"DamagedSumInFrontOfAReply", "10102R04D221\r" + kGood, u"ERROR:  Checksumme Falsch"_s},
};

using Pieces = std::vector<QByteArray>;

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

// A program that reads one word at one end of `line`.
class Reader {
 public:
  Reader(platform::SerialControl& line, platform::Clock& clock)
      : timers_(clock), host_(module_, line, timers_) {
    host_.Ports[kSlot] = {kFalse, 1, kControllerProtocol, 1, kSettings9600.toString()};
  }
  QString Read() { return transport_.Transact(kSlot, u"R1F00"_s, true); }

 private:
  Module1 module_;
  TH timers_;
  COM_T_frm host_;
  COM_T transport_{host_};
};

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

// A controller that answers everything with the same characters.
class Station {
 public:
  explicit Station(const sim::LineOptions& options = {}) : model(controller_, faults_, options) {
    model.OnResponse = [this](const QByteArray&, sim::Response& response) {
      response = {};
      for (const QByteArray& piece : pieces)
        response.chunks.push_back({1, piece});
    };
  }
  Pieces pieces;

 private:
  sim::Memory memory_;
  sim::Controller controller_{memory_, 1, u"WR"_s, "AB1-04D2"};
  sim::Faults faults_;

 public:
  sim::LineModel model;
};

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

// What a program reads at a pseudo-terminal with `station` at its other end.
QString ReadAtTerminal(Station& station) {
  const int stop = eventfd(0, EFD_CLOEXEC);
  sim::PtyLine terminal(station.model, stop);
  EXPECT_EQ(terminal.Open(), QString());
  std::thread far([&] { (void)terminal.Run(); });
  platform::SystemClock clock;
  platform::PosixSerialControl line([&](int) { return terminal.DeviceName(); });
  QString result = Reader(line, clock).Read();
  const quint64 one = 1;
  EXPECT_EQ(write(stop, &one, sizeof one), static_cast<ssize_t>(sizeof one));
  far.join();
  close(stop);
  return result;
}

TEST_P(Cuttings, ComeToTheSameAtATerminal) {
  Station inOneBlock;
  inOneBlock.pieces = {GetParam().received};
  EXPECT_EQ(ReadAtTerminal(inOneBlock), GetParam().result) << "in one block";
  Station atLineRate({0, true, false});
  atLineRate.pieces = {GetParam().received};
  EXPECT_EQ(ReadAtTerminal(atLineRate), GetParam().result) << "at the line's rate";
}

INSTANTIATE_TEST_SUITE_P(Of, Cuttings, testing::ValuesIn(kRows),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kalivor::test
