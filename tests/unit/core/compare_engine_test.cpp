// The compare engine: what counts as a deviation, and how it is reported.
#include "fakes/Installation.h"
#include "fakes/Walks.h"

namespace kalivor::test {
namespace {

struct Comparing : Installation {
  Comparing() { StartEmpty(); }

  /// Compares and checks that the table stays as it was.
  WalkResult Run() {
    const auto before = module.Par;
    WalkResult result = Compare(core);
    EXPECT_EQ(module.Par, before);
    return result;
  }
};

TEST(Compare, EqualValuesGiveDotsOnly) {
  Comparing site;
  site.Store(0x1F00, {0x04D2, 0x0001, 0x0002, 0x1122, 0x4142, 0x4320});
  site.AddParameter(u"int"_s, u"1F00"_s).Wert = 1234;
  site.AddParameter(u"long"_s, u"1F02"_s).Wert = 65538;
  site.AddParameter(u"char"_s, u"1F06"_s).Wert = 0x11;
  site.AddParameter(u"char"_s, u"1F07"_s).Wert = 0x22;
  site.AddParameter(u"string4"_s, u"1F08"_s).WertText = u"ABC "_s;
  site.AddParameter(u"float"_s, u"1F08"_s).Wert = 1;
  const WalkResult result = site.Run();
  EXPECT_EQ(result.Deviations(), 0);
  EXPECT_EQ(result.Failures(), 0);
  EXPECT_EQ(Lines(site.report.lines), u"Start......"_s);
}

TEST(Compare, ReportsDeviationsInDisplayUnits) {
  struct {
    QString type;
    qint16 decimals, dropped;
    qint32 pc;
    std::vector<quint16> controller;
    QString pcLine, controllerLine;
  } const cases[] = {
      {u"int"_s, 1, 0, 123, {124}, u"   PC    :     12.3 "_s, u"   Regler:     12.4 ."_s},
      {u"int"_s, 0, 0, -1, {1}, u"   PC    :     -1   "_s, u"   Regler:      1   ."_s},
      {u"int"_s, 1, 1, 1234, {1235}, u"   PC    :     12.3 "_s, u"   Regler:     12.3 ."_s},
      {u"char"_s, 0, 0, 65, {0x4242}, u"   PC    :     65   "_s, u"   Regler:     66   ."_s},
      {u"long"_s, 0, 0, 65536, {0, 1}, u"   PC    :  65536   "_s, u"   Regler:      1   ."_s},
  };
  for (const auto& example : cases) {
    Comparing site;
    site.Store(0x1F00, example.controller);
    ParameterRecord& record = site.AddParameter(example.type, u"1F00"_s);
    record.Name = u"Drehzahl"_s;
    record.Wert = example.pc;
    record.Zahl1 = example.decimals;
    record.Zahl2 = example.dropped;
    EXPECT_EQ(site.Run().Deviations(), 1);
    EXPECT_EQ(site.report.lines,
              (QStringList{u"Start"_s, u"Änderung bei: Drehzahl"_s, example.pcLine, example.controllerLine}));
  }
}

TEST(Compare, ComparesTextsInTheLengthOfTheType) {
  struct {
    QString type, pc;
    std::vector<quint16> controller;
    QStringList lines;  // behind "Start"
  } const cases[] = {
      {u"string4"_s, u"A   "_s, {0x4120, 0x2020}, {}},
      {u"string4"_s, u"ABCD                "_s, {0x4142, 0x4344}, {}},  // as loaded from a value file
      {u"string4"_s, u"abcd"_s, {0x4142, 0x4344}, {u"   PC    : abcd"_s, u"   Regler: ABCD."_s}},
      // A shorter text differs from the padded one, even if it was just sent.
      {u"string4"_s, u"A"_s, {0x4120, 0x2020}, {u"   PC    : A"_s, u"   Regler: A   ."_s}},
      // The PC's text is shown whole.
      {u"string2"_s, u"ABCDEF"_s, {0x4244}, {u"   PC    : ABCDEF"_s, u"   Regler: BD."_s}},
      {u"string4"_s, u"AB  "_s, {0x4142, 0xFFFF}, {u"   PC    : AB  "_s, u"   Regler: AB ."_s}},
  };
  for (const auto& example : cases) {
    Comparing site;
    site.Store(0x1F00, example.controller);
    ParameterRecord& record = site.AddParameter(example.type, u"1F00"_s);
    record.Name = u"Kennwort"_s;
    record.WertText = example.pc;
    EXPECT_EQ(site.Run().Deviations(), example.lines.isEmpty() ? 0 : 1);
    const QStringList expected = example.lines.isEmpty()
                                     ? QStringList{u"Start."_s}
                                     : QStringList{u"Start"_s, u"Änderung bei: Kennwort"_s} + example.lines;
    EXPECT_EQ(site.report.lines, expected) << testing::PrintToString(example.pc);
  }
}

TEST(Compare, ATextOfNegativeLengthIsAlwaysEqual) {
  Comparing site;
  site.AddParameter(u"string-1"_s, u"1F00"_s).WertText = u"ABCD"_s;
  const WalkResult result = site.Run();
  EXPECT_EQ(result.Deviations(), 0);
  EXPECT_EQ(result.Failures(), 0);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(Lines(site.report.lines), u"Start."_s);
}

TEST(Compare, DoesNotCompareWhatItCouldNotRead) {
  struct {
    QString type, failure;
    int failing;
  } const cases[] = {
      {u"int"_s, u"Fehler bei: V.."_s, 1},        {u"long"_s, u"Fehler bei: V.."_s, 1},
      {u"long"_s, u"Fehler bei: V.."_s, 2},       {u"char"_s, u"Fehler bei: V.."_s, 1},
      {u"string4"_s, u"Fehler bei: V[1].."_s, 1}, {u"string4"_s, u"Fehler bei: V[2].."_s, 2},
  };
  for (const auto& example : cases) {
    Comparing site;
    ParameterRecord& record = site.AddParameter(example.type, u"1F00"_s);
    record.Wert = 99;
    record.WertText = u"other"_s;
    site.AddParameter(u"int"_s, u"3000"_s);
    site.Silence(example.failing, 3);
    const WalkResult result = site.Run();
    EXPECT_EQ(result.Failures(), 1);
    EXPECT_EQ(result.Deviations(), 0);
    EXPECT_EQ(site.report.lines, (QStringList{u"Start"_s, u"ERROR: kein Empfang"_s, example.failure}));
    EXPECT_EQ(site.Requests().last(), u"R3000"_s) << "the others are compared all the same";
  }
}

TEST(Compare, ReadsAsReceivingDoes) {
  const auto add = [](Installation& site) {
    site.AddParameter(u"long"_s, u"1F00"_s);
    site.AddParameter(u"char"_s, u"1F05"_s);
    site.AddParameter(u"int"_s, u"1F10"_s);
    site.AddParameter(u"string6"_s, u"1F20"_s);
    site.module.ParNode[3] = kFalse;
  };
  Comparing comparing;
  Comparing receiving;
  add(comparing);
  add(receiving);
  comparing.Run();
  Receive(receiving.core);
  EXPECT_EQ(comparing.Requests(), receiving.Requests());
}

TEST(Compare, ReportsANegativeLongThatWasJustSent) {
  Comparing site;
  site.AddParameter(u"long"_s, u"1F00"_s).Wert = -1;
  Send(site.core);
  EXPECT_EQ(site.Run().Deviations(), 1);
  EXPECT_EQ(site.report.lines.last(), u"   Regler:  65535   ."_s);
}

TEST(Compare, WritesNothing) {
  Comparing site;
  site.AddParameter(u"char"_s, u"1F00"_s).Wert = 5;
  site.Run();
  EXPECT_EQ(site.memory.Dump(), QString());
}

}  // namespace
}  // namespace kalivor::test
