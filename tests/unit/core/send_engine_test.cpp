// The send engine: which words each type becomes, and what a failed write leads to.
#include "fakes/Installation.h"
#include "fakes/Walks.h"

namespace kalivor::test {
namespace {

struct Sending : Installation {
  Sending() { StartEmpty(); }
};

TEST(Send, WritesNumbers) {
  struct {
    QString type;
    qint32 value;
    QStringList requests;
  } const cases[] = {
      {u"long"_s, 65536, {u"W1F000001"_s, u"W1F020000"_s}},
      {u"long"_s, 2147483647, {u"W1F007FFF"_s, u"W1F02FFFF"_s}},
      // The truncating division loses the sign of the high word; controllers know it this way.
      {u"long"_s, -1, {u"W1F000000"_s, u"W1F02FFFF"_s}},
      {u"long"_s, -65537, {u"W1F00FFFF"_s, u"W1F02FFFF"_s}},
      {u"long"_s, -40000, {u"W1F000000"_s, u"W1F0263C0"_s}},
      {u"long"_s, -2147483647 - 1, {u"W1F008000"_s, u"W1F020000"_s}},
      {u"int"_s, 1234, {u"W1F0004D2"_s}},
      {u"int"_s, -32768, {u"W1F008000"_s}},
      {u"int"_s, 70000, {u"W1F001170"_s}},  // the low 16 bits
      {u"float"_s, 1, {}},
  };
  for (const auto& example : cases) {
    Sending site;
    site.AddParameter(example.type, u"1F00"_s).Wert = example.value;
    EXPECT_EQ(Send(site.core).Failures(), 0);
    EXPECT_EQ(site.Requests(), example.requests) << example.value;
    EXPECT_EQ(Lines(site.report.lines), u"Start."_s);
  }
}

TEST(Send, WritesTheLowWordOfALongTwoFurtherOn) {
  Sending site;
  site.AddParameter(u"long"_s, u"FFFE"_s).Wert = 65537;
  Send(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"WFFFE0001"_s, u"W00000001"_s}));
}

TEST(Send, WritesAByteIntoTheWordThatItReadBefore) {
  struct {
    QString address;
    quint16 old;
    qint32 value;
    QString written;
  } const cases[] = {
      {u"1F01"_s, 0x4142, 67, u"4143"_s},
      {u"1F00"_s, 0x4142, 67, u"4342"_s},
      {u"1F00"_s, 0x4142, 200, u"C842"_s},
      {u"1F01"_s, 0x4142, -1, u"40FF"_s},
      // In words from 8000 on the truncating division changes the high byte: the one that is kept at an odd
      // address, the one that is sent at an even address.
      {u"1F01"_s, 0xFF41, 67, u"0043"_s},
      {u"1F01"_s, 0x8041, 67, u"8143"_s},
      {u"1F00"_s, 0xFF41, 67, u"4241"_s},
      {u"1F00"_s, 0x8041, 67, u"4241"_s},
      // Nothing is truncated where the low byte is 0.
      {u"1F01"_s, 0x8000, 67, u"8043"_s},
      {u"1F00"_s, 0x8000, 67, u"4300"_s},
  };
  for (const auto& example : cases) {
    Sending site;
    site.Store(0x1F00, {example.old});
    site.AddParameter(u"char"_s, example.address).Wert = example.value;
    EXPECT_EQ(Send(site.core).Failures(), 0);
    EXPECT_EQ(site.Requests(),
              (QStringList{u"R"_s + example.address, u"W"_s + example.address + example.written}));
  }
}

TEST(Send, AByteThatMakesNoWordEndsTheWalk) {
  Sending site;
  site.AddParameter(u"char"_s, u"1F00"_s).Wert = 2147483647;
  EXPECT_EQ(ThrownKind([&] { Send(site.core); }), RuntimeError::Kind::Overflow);
  EXPECT_EQ(site.Requests(), QStringList{u"R1F00"_s});
}

TEST(Send, WritesTexts) {
  struct {
    QString type, text;
    QStringList requests;
  } const cases[] = {
      {u"string4"_s, u"A"_s, {u"W1F004120"_s, u"W1F022020"_s}},
      {u"string4"_s, u"ABCDEF"_s, {u"W1F004142"_s, u"W1F024344"_s}},  // more than fits
      {u"string5"_s, u"ABCDE"_s, {u"W1F004142"_s, u"W1F024344"_s}},   // the last of an odd length is lost
      {u"string3"_s, u""_s, {u"W1F002020"_s}},
      {u"string4"_s, u"Öl€"_s, {u"W1F00D66C"_s, u"W1F028020"_s}},
      {u"string2"_s, u"\u03A9A"_s, {u"W1F003F41"_s}},  // a character outside the code page
      {u"string1"_s, u"A"_s, {}},
      {u"string-1"_s, u"ABCD"_s, {}},
      {u"str20"_s, u"A"_s, {}},
  };
  for (const auto& example : cases) {
    Sending site;
    site.AddParameter(example.type, u"1F00"_s).WertText = example.text;
    EXPECT_EQ(Send(site.core).Failures(), 0);
    EXPECT_EQ(site.Requests(), example.requests) << testing::PrintToString(example.text);
    EXPECT_EQ(Lines(site.report.lines), u"Start."_s);
  }
}

TEST(Send, ReachesTheControllersMemory) {
  Sending site;
  site.AddParameter(u"long"_s, u"1F00"_s).Wert = 65538;
  site.AddParameter(u"string2"_s, u"1F04"_s).WertText = u"AB"_s;
  Send(site.core);
  EXPECT_EQ(site.memory.Dump(), u"1F00\t0001\n1F02\t0002\n1F04\t4142\n"_s);
}

TEST(Send, ChangesNothingInTheTable) {
  Sending site;
  site.AddParameter(u"char"_s, u"1F00"_s).Wert = 67;
  site.AddParameter(u"string4"_s, u"1F02"_s).WertText = u"A"_s;
  site.Silence(4, 3);
  const auto before = site.module.Par;
  Send(site.core);
  EXPECT_EQ(site.module.Par, before);
  EXPECT_EQ(TakeBoxes(site.box), QStringList{u"Fehler bei: V[2]"_s});
}

TEST(Send, FollowsTheWalkOfTheTable) {
  Sending site;
  site.AddParameter(u"int"_s, u"1000"_s).Wert = 1;
  site.AddParameter(u"int"_s, u"2000"_s).Wert = 2;
  site.AddParameter(u"int"_s, QString(), u"N3"_s).Name = u"Drei"_s;
  site.AddParameter(u"int"_s, u"4000"_s).Wert = 4;
  site.AddParameter(u"int"_s, u"5000"_s).Wert = 5;
  site.module.ParNode[2] = kFalse;
  site.report.onDot = [&] {
    if (site.Requests().size() == 2) site.module.Abbruch = kTrue;
  };
  EXPECT_EQ(Send(site.core).Failures(), 1);
  EXPECT_EQ(site.Requests(), (QStringList{u"W10000001"_s, u"W40000004"_s}));
  EXPECT_EQ(Lines(site.report.lines), u"Start. | Warnung: Variabel <N3> nicht bekannt. | Fehler bei Drei."_s);
}

TEST(Send, ReportsAFailedNumberOnceAndGoesOn) {
  struct {
    QString type;
    int failing;  // the exchange that fails in all three attempts
    QStringList requests;
  } const cases[] = {
      {u"int"_s, 1, {u"W1F000041"_s, u"W1F000041"_s, u"W1F000041"_s}},
      // No low word after a failed high word.
      {u"long"_s, 1, {u"W1F000000"_s, u"W1F000000"_s, u"W1F000000"_s}},
      {u"long"_s, 2, {u"W1F000000"_s, u"W1F020041"_s, u"W1F020041"_s, u"W1F020041"_s}},
      // No write of a byte whose word could not be read.
      {u"char"_s, 1, {u"R1F00"_s, u"R1F00"_s, u"R1F00"_s}},
      {u"char"_s, 2, {u"R1F00"_s, u"W1F004100"_s, u"W1F004100"_s, u"W1F004100"_s}},
  };
  for (const auto& example : cases) {
    Sending site;
    site.AddParameter(example.type, u"1F00"_s, u"V1"_s).Wert = 65;
    site.AddParameter(u"int"_s, u"3000"_s).Wert = 7;
    site.Silence(example.failing, 3);
    EXPECT_EQ(Send(site.core).Failures(), 1);
    EXPECT_EQ(site.Requests(), example.requests + QStringList{u"W30000007"_s});
    EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V1.."_s);
  }
}

TEST(Send, InterruptsTheUserForAFailedText) {
  Sending site;
  site.AddParameter(u"string6"_s, u"1F00"_s).WertText = u"ABCDEF"_s;
  site.AddParameter(u"int"_s, u"3000"_s).Wert = 7;
  site.Silence(2, 3);
  EXPECT_EQ(Send(site.core).Failures(), 1);
  const auto boxes = site.box.Take();
  ASSERT_EQ(boxes.size(), 1U);
  EXPECT_EQ(boxes[0].text, u"Fehler bei: V[2]"_s);
  EXPECT_EQ(boxes[0].title, QString());
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V[2].."_s);
  EXPECT_EQ(site.Requests().count(u"W1F044546"_s), 0) << "the text ends";
  EXPECT_EQ(site.Requests().last(), u"W30000007"_s) << "the walk goes on";
}

TEST(Send, TheBoxOfAFailedTextComesBeforeItsLineInTheReport) {
  Sending site;
  site.AddParameter(u"string4"_s, u"1F00"_s).WertText = u"ABCD"_s;
  site.Silence(1, 3);
  QString linesBehindTheBox;
  site.box.onShow = [&] { linesBehindTheBox = Lines(site.report.lines); };
  Send(site.core);
  EXPECT_EQ(linesBehindTheBox, u"Start | ERROR: kein Empfang"_s);
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V[1]."_s);
  EXPECT_EQ(TakeBoxes(site.box), QStringList{u"Fehler bei: V[1]"_s});
}

}  // namespace
}  // namespace kalivor::test
