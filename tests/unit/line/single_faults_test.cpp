// Every single fault of every telegram: each character changed into each other one, lost, doubled, each
// character added at each place, every split and delay; on the reply, on the echo and on the request. The
// outcome is the one that the rules give, and no wrong value is among them.
#include <gtest/gtest.h>

#include "base/Windows1252.h"
#include "comm/COM_T.h"
#include "sim/Controller.h"
#include "unit/line/PlayedLine.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

struct Telegram {
  std::string name;
  QString body;
  QByteArray content;  // of the good reply, without the sum
};

void PrintTo(const Telegram& telegram, std::ostream* out) {
  *out << telegram.name;
}

const Telegram kTelegrams[] = {{"Version", u"v00"_s, "10102vAB1-04D2"},
                               {"ReadWord", u"R1F00"_s, "10102R04D2"},
                               {"ReadNegativeWord", u"R1F02"_s, "10102RFB2E"},
                               {"WriteWord", u"W1F0404D2"_s, "10102W"},
                               {"RefusedRead", u"R1F"_s, "10102?05"}};

// How the characters come.
enum class Way { Block, EchoThenBlock, EchoAndBlock, Characters, EchoThenCharacters };
constexpr Way kWays[] = {Way::Block, Way::EchoThenBlock, Way::EchoAndBlock, Way::Characters,
                         Way::EchoThenCharacters};

// One at a time, a millisecond each.
void AppendCharacters(std::vector<Arrival>& arrivals, double from_ms, const QByteArray& characters) {
  for (const char c : characters)
    arrivals.push_back({from_ms += 1, QByteArray(1, c)});
}

std::vector<Arrival> Arrivals(Way way, const QByteArray& echo, const QByteArray& reply) {
  std::vector<Arrival> arrivals;
  switch (way) {
    case Way::Block:
      arrivals = {{5, reply}};
      break;
    case Way::EchoThenBlock:
      arrivals = {{1, echo}, {5, reply}};
      break;
    case Way::EchoAndBlock:
      arrivals = {{5, echo + reply}};
      break;
    case Way::Characters:
      AppendCharacters(arrivals, 5, reply);
      break;
    case Way::EchoThenCharacters:
      AppendCharacters(arrivals, 0, echo);
      AppendCharacters(arrivals, 50, reply);
      break;
  }
  std::erase_if(arrivals, [](const Arrival& arrival) { return arrival.characters.isEmpty(); });
  return arrivals;
}

// Calls `use` with `good` after every single change.
template <typename Use>
void ForEveryChange(const QByteArray& good, Use&& use) {
  for (qsizetype at = 0; at < good.size(); ++at) {
    for (int c = 0; c < 256; ++c) {
      QByteArray changed = good;
      changed[at] = static_cast<char>(c);
      if (changed != good) use(changed);
    }
    use(QByteArray(good).remove(at, 1));
    use(QByteArray(good).insert(at, good.at(at)));
  }
  for (qsizetype at = 0; at <= good.size(); ++at) {
    for (int c = 0; c < 256; ++c)
      use(QByteArray(good).insert(at, static_cast<char>(c)));
  }
}

class SingleFaults : public testing::TestWithParam<Telegram> {
 protected:
  SingleFaults() {
    host_.Ports[kSlot] = {kFalse, 1, kControllerProtocol, 1, kSettings9600.toString()};
    line_.answer = [this](const QByteArray&) { return arrivals_; };
  }

  // One attempt with these arrivals. Fails unless the outcome is that of the rules. Returns whether a value
  // was taken over that is not the right one.
  bool TakesWrongValue(const std::vector<Arrival>& arrivals) {
    ++cases_;
    arrivals_ = arrivals;
    const QString result = transport_.Transact(kSlot, GetParam().body, true);
    const Verdict verdict = VerdictByRules(line_.request, arrivals);
    EXPECT_EQ(result, verdict.failure.isEmpty() ? Text(verdict.payload) : verdict.failure);
    if (!verdict.failure.isEmpty()) return false;
    // A word has four digits, anything else is no value. Of a version the first eight characters count, and
    // what the reply to a write holds does not matter.
    const QByteArray right = GetParam().content.mid(6);
    if (GetParam().body.startsWith(u'R')) return result.size() == 4 && BytesFromText(result) != right;
    return GetParam().body.startsWith(u'v') && BytesFromText(result).left(8) != right;
  }

  [[nodiscard]] QByteArray Request() const { return Summed("#0102" + BytesFromText(GetParam().body)); }
  [[nodiscard]] QByteArray Reply() const { return Summed(GetParam().content); }

  void ReportCases() { std::printf("cases: %d\n", cases_); }

  int cases_ = 0;

 private:
  Module1 module_;
  FakeClock clock_;
  PlayedLine line_{clock_};
  TH timers_{clock_};
  COM_T_frm host_{module_, line_, timers_};
  COM_T transport_{host_};
  std::vector<Arrival> arrivals_;
};

TEST_P(SingleFaults, OfTheReply) {
  for (const Way way : kWays) {
    int wrong = 0;
    ForEveryChange(Reply(), [&](const QByteArray& changed) {
      if (TakesWrongValue(Arrivals(way, Request(), changed))) ++wrong;
    });
    EXPECT_EQ(wrong, 0) << "way " << static_cast<int>(way);
  }
  ReportCases();
}

TEST_P(SingleFaults, OfTheEcho) {
  for (const Way way : {Way::EchoThenBlock, Way::EchoAndBlock, Way::EchoThenCharacters}) {
    int wrong = 0;
    ForEveryChange(Request(), [&](const QByteArray& changed) {
      if (TakesWrongValue(Arrivals(way, changed, Reply()))) ++wrong;
    });
    EXPECT_EQ(wrong, 0) << "way " << static_cast<int>(way);
  }
  ReportCases();
}

TEST_P(SingleFaults, OfTime) {
  const QByteArray reply = Reply();
  for (const bool echo : {false, true}) {
    std::vector<Arrival> before;
    if (echo) before.push_back({1, Request()});
    // The whole reply late. What comes after 400 ms belongs to no exchange any more.
    for (const double delay_ms : {0.5, 2.0, 50.0, 398.0, 402.0, 800.0, 1199.0, 1300.0}) {
      std::vector<Arrival> arrivals = before;
      arrivals.push_back({1 + delay_ms, reply});
      EXPECT_FALSE(TakesWrongValue(arrivals));
    }
    // A pause at every place.
    for (qsizetype first = 1; first < reply.size(); ++first) {
      for (const double pause_ms : {0.5, 50.0, 398.0, 402.0, 1300.0}) {
        for (const double delay_ms : {2.0, 300.0}) {
          std::vector<Arrival> arrivals = before;
          arrivals.push_back({1 + delay_ms, reply.left(first)});
          arrivals.push_back({1 + delay_ms + pause_ms, reply.mid(first)});
          EXPECT_FALSE(TakesWrongValue(arrivals));
        }
      }
    }
  }
  ReportCases();
}

// What the controller takes of damaged characters: from the last start character to the first end.
QByteArray Heard(const QByteArray& characters) {
  const QByteArray line = characters.left(characters.indexOf('\r') + 1);
  return line.mid(std::max<qsizetype>(0, line.lastIndexOf('#')));
}

// The controller, which checks the sum of a request, obeys an intact one only.
TEST_P(SingleFaults, OfTheRequest) {
  const QByteArray good = Request();
  sim::Memory memory;
  sim::Controller station(memory, 1, FixedText<2>(u"WR"_s), "AB1-04D2");
  memory.SetWord(0x1F00, 0x04D2);
  memory.SetWord(0x1F02, 0xFB2E);
  ForEveryChange(good, [&](const QByteArray& changed) {
    const QByteArray heard = Heard(changed);
    const QByteArray reply = station.Reply(heard).value_or(QByteArray());
    if (reply.mid(5, 1) == "W") {
      EXPECT_EQ(heard, good);
    }
    EXPECT_FALSE(TakesWrongValue(Arrivals(Way::Block, {}, reply)));
  });
  ReportCases();
}

INSTANTIATE_TEST_SUITE_P(Each, SingleFaults, testing::ValuesIn(kTelegrams),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kalivor::test
