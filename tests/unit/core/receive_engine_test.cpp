// The receive engine: how each type is read, and the walk that sending and comparing share.
#include "core/ParameterTypes.h"
#include "fakes/Installation.h"
#include "fakes/Walks.h"
#include "sim/Telegram.h"

namespace kalivor::test {
namespace {

using Kind = RuntimeError::Kind;

struct Receiving : Installation {
  Receiving() { StartEmpty(); }
};

// --- how each type is read ---

TEST(Receive, TakesOverNumbers) {
  struct {
    QString type, address;
    std::vector<quint16> words;
    qint32 expected;
  } const cases[] = {
      {u"long"_s, u"1F00"_s, {0xFFFF, 0xFFFF}, -1},
      {u"long"_s, u"1F00"_s, {0x0001, 0x0000}, 65536},
      {u"long"_s, u"1F00"_s, {0x8000, 0x0000}, -2147483647 - 1},
      {u"long"_s, u"1F00"_s, {0xFFFF, 0x0000}, -65536},
      {u"long"_s, u"1F00"_s, {0x7FFF, 0xFFFF}, 2147483647},
      {u"int"_s, u"1F00"_s, {0x04D2}, 1234},
      {u"int"_s, u"1F00"_s, {0x7FFF}, 32767},
      {u"int"_s, u"1F00"_s, {0x8000}, -32768},
      {u"integer"_s, u"1F00"_s, {0x0007}, 7},  // three letters decide
      {u"char"_s, u"1F00"_s, {0x4142}, 65},
      {u"char"_s, u"1F01"_s, {0x4142}, 66},
      // The high byte is cut out by a division that truncates toward zero.
      {u"char"_s, u"1F00"_s, {0x8041}, -127},
      {u"char"_s, u"1F00"_s, {0xC841}, -55},
      {u"char"_s, u"1F00"_s, {0xFFFF}, 0},
      {u"char"_s, u"1F01"_s, {0x8041}, 65},
      {u"char"_s, u"1F01"_s, {0xFFFF}, 255},
      {u"char"_s, u"1f0b"_s, {}, 0},  // odd by its last digit
  };
  for (const auto& example : cases) {
    Receiving site;
    site.Store(0x1F00, example.words);
    const ParameterRecord& record = site.AddParameter(example.type, example.address);
    EXPECT_EQ(Receive(site.core).Failures(), 0);
    EXPECT_EQ(record.Wert, example.expected) << testing::PrintToString(example.type + example.address);
    EXPECT_EQ(site.report.lines.last(), u"Start."_s);
  }
}

TEST(Receive, ReadsTheHighWordOfALongFirst) {
  struct {
    QString address;
    QStringList requests;
  } const cases[] = {
      {u"1F00"_s, {u"R1F00"_s, u"R1F02"_s}},
      {u"FFFE"_s, {u"RFFFE"_s, u"R0000"_s}},
      {u"00021F00"_s, {u"R1F00"_s, u"R1F02"_s}},
  };
  for (const auto& example : cases) {
    Receiving site;
    site.AddParameter(u"long"_s, example.address);
    Receive(site.core);
    EXPECT_EQ(site.Requests(), example.requests);
  }
}

TEST(Receive, AddressesTheLowWordWithEightDigits) {
  struct {
    QString address, low;
  } const cases[] = {{u"1F00"_s, u"00001F02"_s}, {u"FFFE"_s, u"00010000"_s}, {u"FFFFFFFE"_s, u"00000000"_s}};
  for (const auto& example : cases) {
    ParameterRecord record;
    record.VarAdresse = example.address;
    EXPECT_EQ(WordAddress(record, TypeOf(u"long"_s), 1), example.low);
  }
}

TEST(Receive, KeepsALongWhoseLowWordFails) {
  Receiving site;
  ParameterRecord& record = site.AddParameter(u"long"_s, u"1F00"_s, u"V3"_s);
  record.Wert = 77;
  site.Silence(2, 3);
  EXPECT_EQ(Receive(site.core).Failures(), 1);
  EXPECT_EQ(record.Wert, 77);
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V3."_s);
}

TEST(Receive, DoesNotReadTheLowWordAfterTheHighWordFailed) {
  Receiving site;
  site.AddParameter(u"long"_s, u"1F00"_s);
  site.SilenceAll();
  Receive(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"R1F00"_s, u"R1F00"_s, u"R1F00"_s}));
}

TEST(Receive, TakesOverTexts) {
  struct {
    QString type;
    std::vector<quint16> words;
    QString expected;
  } const cases[] = {
      {u"string4"_s, {0x4142, 0x4344}, u"ABCD"_s},
      {u"string4"_s, {0x4142, 0xFFFF}, u"AB "_s},  // one blank for a whole empty word
      // A low byte of 128 or more raises the character in front of it by one.
      {u"string2"_s, {0x41C8}, u"BÈ"_s},
      {u"string2"_s, {0x20E4}, u"!ä"_s},
      {u"string2"_s, {0xE441}, u"äA"_s},
      {u"string2"_s, {0x4180}, u"B€"_s},
      {u"string2"_s, {0x4280}, u"C€"_s},
      {u"string2"_s, {0x417F}, u"A\u007F"_s},
      {u"string2"_s, {0xFF80}, QString(QChar(0)) + u'€'},
      {u"string2"_s, {0xFEFF}, u"ÿÿ"_s},
      // An odd length leaves its last character out.
      {u"string5"_s, {0x4142, 0x4344, 0x4546}, u"ABCD"_s},
      {u"string1"_s, {0x4142}, QString()},
      {u"string"_s, {0x4142}, QString()},
      {u"str20"_s, {0x4142}, QString()},  // the length is read from the seventh character on
  };
  for (const auto& example : cases) {
    Receiving site;
    site.Store(0x1F00, example.words);
    ParameterRecord& record = site.AddParameter(example.type, u"1F00"_s);
    record.WertText = u"old"_s;
    EXPECT_EQ(Receive(site.core).Failures(), 0);
    EXPECT_EQ(record.WertText, example.expected) << testing::PrintToString(example.type);
    EXPECT_EQ(site.report.lines.last(), u"Start."_s);
  }
}

TEST(Receive, ATextOfNegativeLengthHasNoWordsAndBecomesEmpty) {
  Receiving site;
  ParameterRecord& record = site.AddParameter(u"string-1"_s, u"1F00"_s);
  record.WertText = u"ABCD"_s;
  EXPECT_EQ(Receive(site.core).Failures(), 0);
  EXPECT_EQ(record.WertText, QString());
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(Lines(site.report.lines), u"Start."_s);
}

TEST(Receive, ReadsTheWordsOfATextTwoAddressesApart) {
  Receiving site;
  site.AddParameter(u"string7"_s, u"FFFC"_s);
  Receive(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"RFFFC"_s, u"RFFFE"_s, u"R0000"_s}));
}

TEST(Receive, ATextStopsAtItsFirstFailedWordAndKeepsWhatWasRead) {
  Receiving site;
  site.Store(0x1F00, {0x4142, 0x4344, 0x4546});
  ParameterRecord& record = site.AddParameter(u"string6"_s, u"1F00"_s);
  record.WertText = u"before"_s;
  site.Silence(2, 3);
  EXPECT_EQ(Receive(site.core).Failures(), 1);
  EXPECT_EQ(record.WertText, u"AB"_s);
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V[2]."_s);
  EXPECT_EQ(site.Requests().count(u"R1F04"_s), 0);
}

TEST(Receive, ATextWithoutAReadableWordBecomesEmpty) {
  Receiving site;
  ParameterRecord& record = site.AddParameter(u"string6"_s, u"1F00"_s);
  record.WertText = u"before"_s;
  site.SilenceAll();
  Receive(site.core);
  EXPECT_EQ(record.WertText, QString());
  EXPECT_EQ(site.report.lines.last(), u"Fehler bei: V[1]."_s);
}

TEST(Receive, PassesOverOtherTypesButMarksProgress) {
  for (const QString& type : {u"float"_s, u"INT"_s, u"in"_s, QString()}) {
    Receiving site;
    ParameterRecord& record = site.AddParameter(type, u"1F00"_s);
    record.Wert = 5;
    EXPECT_EQ(Receive(site.core).Failures(), 0);
    EXPECT_EQ(record.Wert, 5);
    EXPECT_EQ(site.Requests(), QStringList());
    EXPECT_EQ(Lines(site.report.lines), u"Start."_s);
  }
}

TEST(Receive, AReplyOfTheWrongLengthFailsWithoutALineOfTheTransport) {
  Receiving site;
  ParameterRecord& record = site.AddParameter(u"int"_s, u"1F00"_s);
  record.Wert = 5;
  site.model.OnResponse = [](const QByteArray&, sim::Response& response) {
    response.chunks = {{0, sim::Sealed("10102R04D20")}};
  };
  EXPECT_EQ(Receive(site.core).Failures(), 1);
  EXPECT_EQ(record.Wert, 5);
  EXPECT_EQ(Lines(site.report.lines), u"Start | Fehler bei: V."_s);
}

TEST(Receive, AReplyThatIsNoWordEndsTheWalk) {
  Receiving site;
  site.AddParameter(u"int"_s, u"1F00"_s).Wert = 5;
  site.model.OnResponse = [](const QByteArray&, sim::Response& response) {
    response.chunks = {{0, sim::Sealed("10102RG000")}};
  };
  EXPECT_EQ(ThrownKind([&] { Receive(site.core); }), Kind::Overflow);
  EXPECT_EQ(site.module.Par[1].Wert, 5);
  EXPECT_FALSE(site.line.IsOpen());
}

// --- the walk ---

TEST(Walk, FollowsTheTable) {
  Receiving site;
  for (const QString& address : {u"2000"_s, u"1000"_s, u"3000"_s})
    site.AddParameter(u"int"_s, address);
  Receive(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"R2000"_s, u"R1000"_s, u"R3000"_s}));
  EXPECT_EQ(Lines(site.report.lines), u"Start..."_s);
}

TEST(Walk, LeavesOutUncheckedParameters) {
  Receiving site;
  for (const QString& address : {u"2000"_s, u"1000"_s, u"3000"_s})
    site.AddParameter(u"int"_s, address);
  site.module.ParNode[2] = kFalse;
  Receive(site.core);
  EXPECT_EQ(site.Requests(), (QStringList{u"R2000"_s, u"R3000"_s}));
  EXPECT_EQ(Lines(site.report.lines), u"Start.."_s);
}

TEST(Walk, LeavesOutThePlantType) {
  Receiving site;
  site.module.Par[0].VarAdresse = u"2000"_s;
  site.module.Par[0].Typ = u"int"_s;
  site.module.ParNode[0] = kTrue;
  Receive(site.core);
  EXPECT_EQ(site.Requests(), QStringList());
}

TEST(Walk, LeavesOutTheFreeSlotBehindTheLastParameter) {
  Receiving site;
  site.AddParameter(u"int"_s, u"1000"_s);
  site.AddParameter(u"int"_s, u"2000"_s);
  site.module.ParCount = 2;
  Receive(site.core);
  EXPECT_EQ(site.Requests(), QStringList{u"R1000"_s});
}

TEST(Walk, WithoutACheckedParameterThereIsNothingToDo) {
  Receiving site;
  site.AddParameter(u"int"_s, u"1000"_s);
  site.AddParameter(u"int"_s, QString());
  site.module.ParNode[1] = site.module.ParNode[2] = kFalse;
  EXPECT_EQ(Receive(site.core).Failures(), 0);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(Lines(site.report.lines), u"Start"_s);
}

TEST(Walk, WarnsOfAParameterWithoutAddressAndMarksNoProgress) {
  Receiving site;
  site.AddParameter(u"int"_s, QString(), u"N2"_s).Name = u"Zwei"_s;
  EXPECT_EQ(Receive(site.core).Failures(), 1);
  EXPECT_EQ(site.Requests(), QStringList());
  EXPECT_EQ(Lines(site.report.lines), u"Start | Warnung: Variabel <N2> nicht bekannt. | Fehler bei Zwei"_s);
}

TEST(Walk, TransfersWhatThePlantTypeHides) {
  Receiving site;
  site.module.PlantTypeList.Add(u"Luft"_s);
  site.module.PlantTypeList.Select(0);
  site.AddParameter(u"int"_s, u"1000"_s).Zusatz = u"Wasser"_s;
  Receive(site.core);
  EXPECT_EQ(site.Requests(), QStringList{u"R1000"_s});
}

TEST(Walk, GoesOnAfterAFailure) {
  Receiving site;
  site.Store(0x2000, {7});
  site.AddParameter(u"int"_s, u"1000"_s, u"V1"_s);
  const ParameterRecord& second = site.AddParameter(u"int"_s, u"2000"_s);
  site.Silence(1, 3);
  EXPECT_EQ(Receive(site.core).Failures(), 1);
  EXPECT_EQ(second.Wert, 7);
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: V1.."_s);
}

TEST(Walk, StopsAfterTheParameterDuringWhichTheUserAborts) {
  Receiving site;
  site.Store(0x1000, {7, 7, 7});
  for (const QString& address : {u"1000"_s, u"1002"_s, u"1004"_s})
    site.AddParameter(u"int"_s, address).Wert = 1;
  site.report.onDot = [&] {
    if (site.Requests().size() == 2) site.module.Abbruch = kTrue;
  };
  Receive(site.core);
  EXPECT_EQ(site.module.Par[1].Wert, 7);
  EXPECT_EQ(site.module.Par[2].Wert, 7);
  EXPECT_EQ(site.module.Par[3].Wert, 1);
  EXPECT_EQ(Lines(site.report.lines), u"Start.."_s);
}

TEST(Walk, StopsWhereTheUserAbortsDuringTheWarningOfAParameterWithoutAddress) {
  // The abort can arrive with either line of the warning; both are added.
  for (const QString& during : {u"Warnung: "_s, u"Fehler bei Zwei"_s}) {
    Receiving site;
    site.AddParameter(u"int"_s, u"1000"_s);
    site.AddParameter(u"int"_s, QString(), u"N2"_s).Name = u"Zwei"_s;
    site.AddParameter(u"int"_s, u"3000"_s);
    site.report.onLine = [&] {
      if (site.report.lines.last().startsWith(during)) site.module.Abbruch = kTrue;
    };
    EXPECT_EQ(Receive(site.core).Failures(), 1);
    EXPECT_EQ(site.Requests(), QStringList{u"R1000"_s});
    EXPECT_EQ(Lines(site.report.lines),
              u"Start. | Warnung: Variabel <N2> nicht bekannt. | Fehler bei Zwei"_s);
  }
}

TEST(Walk, SeesAnAbortAfterAnUncheckedParameterToo) {
  Receiving site;
  site.AddParameter(u"int"_s, u"1000"_s);
  site.AddParameter(u"int"_s, u"1002"_s);
  site.module.ParNode[1] = kFalse;
  site.module.Abbruch = kTrue;
  Receive(site.core);
  EXPECT_EQ(site.Requests(), QStringList());
}

// --- the plant number ---

TEST(ReadPlantNumber, IsZeroWithoutAnAddressAndAsksNobody) {
  Receiving site;
  EXPECT_EQ(ReadPlantNumber(site.core), 0);
  EXPECT_EQ(site.Requests(), QStringList());
}

TEST(ReadPlantNumber, IsTheSignedWordOfTheController) {
  for (const auto& [word, number] : {std::pair<quint16, qint16>{3, 3}, {0xFFFE, -2}}) {
    Receiving site;
    site.module.Par[0].VarAdresse = u"2000"_s;
    site.Store(0x2000, {word});
    EXPECT_EQ(ReadPlantNumber(site.core), number);
  }
}

TEST(ReadPlantNumber, IsMinusOneWithALineWhenItCannotBeRead) {
  Receiving site;
  site.module.Par[0].VarAdresse = u"2000"_s;
  site.module.Par[0].Variable = u"ANL"_s;
  site.SilenceAll();
  EXPECT_EQ(ReadPlantNumber(site.core), -1);
  EXPECT_EQ(Lines(site.report.lines), u"Start | ERROR: kein Empfang | Fehler bei: ANL[0]"_s);
}

}  // namespace
}  // namespace kalivor::test
