// What the exchanges of a port without a controller are called, and which of them is told.
#include "core/LineFinding.h"

#include <gtest/gtest.h>

#include "comm/COM_T_frm.h"
#include "fakes/FakeClock.h"
#include "fakes/QtPrinters.h"
#include "platform/SerialControl.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;
using platform::PortEntry;
using platform::PortState;

const QByteArray kRequest = "#0102v000D\r";

class LineFindings : public testing::Test {
 protected:
  FakeClock clock;
  ExchangeLog log{clock};
  PortEntry port{1, u"/dev/ttyUSB0"_s};

  /// One exchange as the telegram layer notes it; `received` is all that came.
  void Note(const QByteArray& received, const QString& failure, qint16 address = 1,
            const QString& settings = u"9600,o,7,1"_s) {
    log.Begin({kFalse, 1, kControllerProtocol, address, settings}, QString::fromLatin1(kRequest));
    if (!received.isEmpty()) log.Received(received);
    log.End(failure, true, {});
    log.Settle();
  }
  void NoteNoPort(const QString& fault = {}) {
    log.Begin({kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s}, QString::fromLatin1(kRequest));
    log.End(u"ERROR: COM 1 nicht verfügber"_s, false, fault);
    log.Settle();
  }
  void NoteSilence() { Note({}, u"ERROR: kein Empfang"_s); }

  [[nodiscard]] PortFinding Finding() const { return FindingOf(log, log.First(), log.Last(), port); }
  [[nodiscard]] PortFinding Newest() const { return FindingOf(log, log.Last(), log.Last(), port); }
  [[nodiscard]] LineFinding Kind() const { return Finding().kind; }
};

TEST_F(LineFindings, NothingIsSilence) {
  NoteSilence();
  EXPECT_EQ(Kind(), LineFinding::Silent);
}

TEST_F(LineFindings, TheRequestAloneIsTheEcho) {
  Note(kRequest, u"ERROR: kein Empfang"_s);
  EXPECT_EQ(Kind(), LineFinding::EchoOnly);
}

TEST_F(LineFindings, ARefusalNamesItsTextAndTheAddress) {
  Note(kRequest + "10702?0427\r", u"ERROR:  Code 04 Falsches Kennzeichen"_s, 7, u"19200,o,7,1"_s);
  EXPECT_EQ(Finding(),
            (PortFinding{LineFinding::Refused, u"Code 04 Falsches Kennzeichen"_s, 7, u"19200,o,7,1"_s}));
}

TEST_F(LineFindings, AReplyWithAWrongSumIsADamagedOne) {
  for (const QByteArray& reply : {QByteArray("10102vAB1-04D200\r"), QByteArray("0102vAB1-04D2E1\r"),
                                  QByteArray("xK10102vAB1-04D2E1\r"), QByteArray("10102vAB1-04D2E1")}) {
    Note(kRequest + reply, u"ERROR:  Checksumme Falsch"_s, 3);
    EXPECT_EQ(Newest().kind, LineFinding::Damaged) << reply.toStdString();
    EXPECT_EQ(Newest().address, 3);
  }
}

TEST_F(LineFindings, TextIsThatOfAnotherDevice) {
  Note("OK\r\nModem ready > \r\n", u"ERROR: unvollständige Antwort: OK"_s);
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::OtherText, u"OK Modem ready >"_s, -1, u"9600,o,7,1"_s}));
}

TEST_F(LineFindings, LongTextIsShortened) {
  Note(QByteArray("login prompt ").repeated(10), u"ERROR: ungültiger Empfang"_s);
  EXPECT_EQ(Finding().detail.size(), 61);
  EXPECT_TRUE(Finding().detail.endsWith(u"…"_s));
}

TEST_F(LineFindings, CharactersThatMeanNothingAreGarbled) {
  for (const QByteArray& noise : {QByteArray("\x01\x7f?x?"), QByteArray("?A?0?1??v?"), QByteArray("x"),
                                  QByteArray("~|{}%&\x02"
                                             "abc")}) {
    Note(noise, u"ERROR: ungültiger Empfang"_s);
    EXPECT_EQ(Newest().kind, LineFinding::Garbled) << noise.toHex().toStdString();
  }
}

TEST_F(LineFindings, APortThatCouldNotBeOpenedIsWhatTheDirectorySays) {
  const struct {
    PortState state;
    LineFinding kind;
  } states[] = {{PortState::InUse, LineFinding::InUse},
                {PortState::NoPermission, LineFinding::NoPermission},
                {PortState::Missing, LineFinding::Missing},
                {PortState::Free, LineFinding::NotOpened}};
  NoteNoPort(u"Das Gerät antwortet nicht."_s);
  for (const auto& [state, kind] : states) {
    port.state = state;
    port.remark = u"Bemerkung"_s;
    EXPECT_EQ(Finding(), (PortFinding{kind, u"Bemerkung"_s}));
  }
  // Else what the port says, unless the directory knows better.
  port.remark.clear();
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::NotOpened, u"Das Gerät antwortet nicht."_s}));
  port.state = PortState::InUse;
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::InUse}));
}

TEST_F(LineFindings, APortThatCannotBeOpenedAnyMoreIsUnplugged) {
  NoteSilence();
  NoteNoPort(u"Das Gerät ist weg."_s);
  EXPECT_EQ(Finding(), (PortFinding{LineFinding::Unplugged, u"Das Gerät ist weg."_s}));
}

TEST_F(LineFindings, AnOpenPortThatSpeaksOfItselfIsUnplugged) {
  log.Begin({kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s}, QString::fromLatin1(kRequest));
  log.End(u"ERROR: kein Empfang"_s, true, u"Das Gerät ist weg."_s);
  log.Settle();
  EXPECT_EQ(Kind(), LineFinding::Unplugged);
}

TEST_F(LineFindings, APortThatReportsItsDriverGoneIsUnplugged) {
  log.Begin({kFalse, 1, kControllerProtocol, 1, u"9600,o,7,1"_s}, QString::fromLatin1(kRequest));
  log.LineError(platform::kCommEventDeviceControlBlock);
  log.End(u"ERROR: kein Empfang"_s, true, {});
  log.Settle();
  EXPECT_EQ(Kind(), LineFinding::Unplugged);
}

TEST_F(LineFindings, TheMostTellingOneWins) {
  // From the least telling to the most; each comes before what was there already, and after it.
  const std::vector<std::pair<QByteArray, QString>> exchanges{
      {{}, u"ERROR: kein Empfang"_s},
      {kRequest, u"ERROR: kein Empfang"_s},
      {"\x01?\x02", u"ERROR: ungültiger Empfang"_s},
      {"Hello world\r", u"ERROR: unvollständige Antwort"_s},
      {"10102vAB1-04D200\r", u"ERROR:  Checksumme Falsch"_s},
      {"10102?04E7\r", u"ERROR:  Code 04 Falsches Kennzeichen"_s}};
  const LineFinding kinds[] = {LineFinding::Silent,    LineFinding::EchoOnly, LineFinding::Garbled,
                               LineFinding::OtherText, LineFinding::Damaged,  LineFinding::Refused};
  for (std::size_t i = 0; i < exchanges.size(); ++i) {
    Note(exchanges[i].first, exchanges[i].second);
    EXPECT_EQ(Kind(), kinds[i]);
    NoteSilence();
    EXPECT_EQ(Kind(), kinds[i]);
  }
  NoteNoPort();
  EXPECT_EQ(Kind(), LineFinding::Unplugged);
}

TEST_F(LineFindings, WithoutAnExchangeNobodyWasAsked) {
  EXPECT_EQ(Kind(), LineFinding::NotAsked);
}

TEST_F(LineFindings, OnlyTheGivenExchangesCount) {
  Note("10102?04E7\r", u"ERROR:  Code 04 Falsches Kennzeichen"_s);
  NoteSilence();
  EXPECT_EQ(FindingOf(log, 2, 2, port).kind, LineFinding::Silent);
}

TEST(LineFindingTexts, EachKindHasOneOfItsOwn) {
  QStringList texts;
  QStringList names;
  for (int kind = 0; kind <= static_cast<int>(LineFinding::NotAsked); ++kind) {
    const PortFinding finding{static_cast<LineFinding>(kind), u"EINZELHEIT."_s, 12, u"19200,o,7,1"_s};
    texts.append(FindingText(finding, false));
    names.append(FindingName(finding.kind));
    EXPECT_FALSE(texts.last().isEmpty()) << kind;
    EXPECT_TRUE(texts.last().endsWith(u'.')) << texts.last().toStdString();
    EXPECT_FALSE(texts.last().contains(u'%')) << texts.last().toStdString();
    EXPECT_EQ(FindingText(finding, true).contains(u"EINZELHEIT"_s), texts.last().contains(u"EINZELHEIT"_s));
  }
  EXPECT_EQ(texts.removeDuplicates(), 0);
  EXPECT_EQ(names.removeDuplicates(), 0);
}

TEST(LineFindingTexts, LeaveTheAdviceToTheSystemWhereItHasSome) {
  EXPECT_EQ(
      FindingText({LineFinding::InUse, u"Das Programm minicom benutzt sie; es zuerst beenden."_s}, false),
      u"Die Schnittstelle ist belegt. Das Programm minicom benutzt sie; es zuerst beenden."_s);
  EXPECT_EQ(
      FindingText({LineFinding::InUse}, false),
      u"Die Schnittstelle ist belegt. Das Programm beenden, das sie geöffnet hat, und noch einmal suchen."_s);
}

TEST(LineFindingTexts, NameWhoRefused) {
  const QString text =
      FindingText({LineFinding::Refused, u"Code 04 Falsches Kennzeichen"_s, 12, u"19200,o,7,1"_s}, false);
  EXPECT_TRUE(text.startsWith(u"Ein Regler mit der Adresse 12 ist da (19200 Baud)"_s));
  EXPECT_TRUE(text.contains(u"Code 04 Falsches Kennzeichen"_s));
}

TEST(LineFindingTexts, DoNotSendTheUserToWhatHasBeenDone) {
  EXPECT_TRUE(FindingText({LineFinding::Silent}, false).contains(u"alle Adressen fragen"_s));
  EXPECT_FALSE(FindingText({LineFinding::Silent}, true).contains(u"alle Adressen fragen"_s));
  EXPECT_TRUE(FindingText({LineFinding::EchoOnly}, false).contains(u"die Geräteadresse stimmt"_s));
  EXPECT_FALSE(FindingText({LineFinding::EchoOnly}, true).contains(u"die Geräteadresse stimmt"_s));
}

}  // namespace
}  // namespace kalivor::test
