// What the engines return: for each checked parameter what happened to it.
#include "core/TransferReport.h"
#include "fakes/Installation.h"
#include "fakes/Walks.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

using Outcome = ParameterResult::Outcome;

/// One parameter of every outcome: two that fail, one without address, one of no type, one unchecked, one
/// good.
struct Mixed : Installation {
  Mixed() {
    StartEmpty();
    Store(0x1F00, {1234});
    AddParameter(u"int"_s, u"3000"_s, u"FAILS"_s);
    AddParameter(u"string4"_s, u"3002"_s, u"TEXT"_s).WertText = u"ABCD"_s;
    AddParameter(u"int"_s, u""_s, u"NOWHERE"_s);
    AddParameter(u"float"_s, u"1F00"_s);
    AddParameter(u"int"_s, u"1F00"_s);
    module.ParNode[5] = kFalse;
    AddParameter(u"int"_s, u"1F00"_s).Wert = 1234;
    Silence(1, 3);  // the number
    Silence(5, 3);  // the text's second word
  }
};

struct Expected {
  int index;
  Outcome outcome;
  std::optional<int> failedWord = {};
};

void ExpectResults(const WalkResult& walk, const std::vector<Expected>& expected) {
  ASSERT_EQ(walk.results.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(walk.results[i].index, expected[i].index) << i;
    EXPECT_EQ(walk.results[i].outcome, expected[i].outcome) << i;
    EXPECT_EQ(walk.results[i].failedWord, expected[i].failedWord) << i;
  }
}

TEST(TransferResults, OfAReceive) {
  Mixed site;
  const WalkResult walk = Receive(site.core);
  ExpectResults(walk, {{1, Outcome::NotRead},
                       {2, Outcome::NotRead, 2},
                       {3, Outcome::NoAddress},
                       {4, Outcome::PassedOver},
                       {6, Outcome::Received}});
  EXPECT_EQ(walk.Failures(), 3);
  EXPECT_EQ(walk.Deviations(), 0);
}

TEST(TransferResults, OfASend) {
  Mixed site;
  const WalkResult walk = Send(site.core);
  ExpectResults(walk, {{1, Outcome::NotSent},
                       {2, Outcome::NotSent, 2},
                       {3, Outcome::NoAddress},
                       {4, Outcome::PassedOver},
                       {6, Outcome::Sent}});
  EXPECT_EQ(walk.Failures(), 3);
  EXPECT_EQ(TakeBoxes(site.box), QStringList{u"Fehler bei: TEXT[2]"_s});
}

TEST(TransferResults, OfAComparison) {
  Mixed site;
  const WalkResult walk = Compare(site.core);
  ExpectResults(walk, {{1, Outcome::NotRead},
                       {2, Outcome::NotRead, 2},
                       {3, Outcome::NoAddress},
                       {4, Outcome::PassedOver},
                       {6, Outcome::Equal}});
  EXPECT_EQ(walk.Failures(), 3);
  EXPECT_EQ(walk.Deviations(), 0);
}

TEST(TransferResults, ADeviationHoldsBothSides) {
  Installation site;
  site.StartEmpty();
  site.Store(0x1F00, {124, 0x4142});
  ParameterRecord& number = site.AddParameter(u"int"_s, u"1F00"_s);
  number.Wert = 123;
  number.Zahl1 = 1;
  site.AddParameter(u"string2"_s, u"1F02"_s).WertText = u"AX"_s;
  const WalkResult walk = Compare(site.core);
  ExpectResults(walk, {{1, Outcome::Differs}, {2, Outcome::Differs}});
  EXPECT_EQ(walk.Deviations(), 2);
  EXPECT_EQ(walk.results[0].pc.number, 123);
  EXPECT_EQ(walk.results[0].controller.number, 124);
  EXPECT_EQ(ShownValue(site.module.Par[1], walk.results[0].controller), u"    12.4 "_s);
  EXPECT_EQ(walk.results[1].pc.text, u"AX"_s);
  EXPECT_EQ(walk.results[1].controller.text, u"AB"_s);
  EXPECT_EQ(ShownValue(site.module.Par[2], walk.results[1].controller), u"AB"_s);
}

TEST(TransferResults, StayWhereAnErrorEndsTheWalk) {
  Installation site;
  site.StartEmpty();
  site.AddParameter(u"int"_s, u"1F00"_s).Wert = 1;
  site.AddParameter(u"int"_s, u"1F02"_s);
  int replies = 0;
  site.model.OnResponse = [&](const QByteArray&, sim::Response& response) {
    if (++replies == 2) response.chunks = {{0, sim::Sealed("10102RG000")}};
  };
  WalkResult walk;
  EXPECT_EQ(ThrownKind([&] { Compare(site.core, walk); }), RuntimeError::Kind::Overflow);
  ExpectResults(walk, {{1, Outcome::Differs}});
}

}  // namespace
}  // namespace kalivor::test
