// What telegrams say: requests, replies, and whole exchanges as lines of a trace.
#include "core/TelegramText.h"

#include <gtest/gtest.h>

#include "fakes/Installation.h"
#include "sim/Telegram.h"

using namespace Qt::StringLiterals;
using kalivor::sim::Sealed;

namespace kalivor {
namespace {

const QString kVersion = u"AB1-123.4"_s;

class TelegramText : public testing::Test {
 protected:
  TelegramText() {
    pc.AddFiles();
    // Two bytes in a word, and a text longer than one word.
    pc.SetDefinitions(u"A.TXT"_s, {u"NoRubrik  Anlage  0  9  0  -  0  0  int  2000  ANL  -  -"_s,
                                   u"Antrieb  Drehzahl  0  30000  1500  1/m  1  0  int  1F00  N1  Luft  -"_s,
                                   u"Antrieb  Laufzeit  0  999999  65536  h  0  0  long  1F02  N2  Luft  -"_s,
                                   u"Klappe  Auf  0  90  45  Grad  0  0  char  1F06  N3  Luft  -"_s,
                                   u"Klappe  Zu  0  90  45  Grad  0  0  char  1F07  N4  Luft  -"_s,
                                   u"Text  Kennwort  -  -  ABCD  -  0  0  string6  1F08  N5  Luft  -"_s});
    pc.Start();
    reader = TelegramReader(pc.module);
  }

  [[nodiscard]] QString Request(const QByteArray& body) const {
    return reader.RequestText(Sealed("#0102" + body), kVersion);
  }
  [[nodiscard]] QString Reply(const QByteArray& body, const QByteArray& received) const {
    const ReplyMeaning meaning = reader.ReplyText(Sealed("#0102" + body), received, kVersion);
    return (meaning.usable ? u"+ "_s : u"- "_s) + meaning.text;
  }
  [[nodiscard]] QString Good(const QByteArray& body, const QByteArray& payload) const {
    return Reply(body, Sealed("10102" + body.left(1) + payload));
  }

  test::Installation pc;
  TelegramReader reader;
};

TEST_F(TelegramText, ControlCharactersAreVisible) {
  EXPECT_EQ(ShownCharacters("#0102v00BC\r\n\x01\x7F"), u"#0102v00BC␍␊␁␡");
  EXPECT_EQ(ShownCharacters("\xE4\x81"), u"ä\uFFFD");
  KeptCharacters<4> many;
  many.Append("abc\rdef");
  EXPECT_EQ(ShownCharacters(many), u"abc␍ … (7 Zeichen)");
}

TEST_F(TelegramText, RequestsNameStationCommandAndParameter) {
  EXPECT_EQ(Request("v00"), u"Gerät 1: Versionsabfrage");
  EXPECT_EQ(Request("R1F00"), u"Gerät 1: Lesen 1F00, Drehzahl");
  EXPECT_EQ(Request("W1F0004D2"), u"Gerät 1: Schreiben 1F00 = 04D2, Drehzahl = 123.4 1/m");
  EXPECT_EQ(Request("R1F04"), u"Gerät 1: Lesen 1F04, Laufzeit, Wort 2 von 2");
  EXPECT_EQ(Request("R2000"), u"Gerät 1: Lesen 2000, Anlage");
  EXPECT_EQ(Request("R3000"), u"Gerät 1: Lesen 3000") << "no parameter lies there";
  EXPECT_EQ(reader.RequestText(Sealed("#FF02v00"), kVersion), u"Gerät 255: Versionsabfrage");
}

TEST_F(TelegramText, WhatIsNoRequestIsSaid) {
  for (const char* body : {"Q1F00", "R1F0", "W1F00", "R1F0X", "", "v01"})
    EXPECT_EQ(Request(body), u"Gerät 1: unbekannter Befehl") << body;
  for (const QByteArray& frame :
       {QByteArray("#0102v00BD\r"), QByteArray("#0102v00BC"), QByteArray("x\r"), QByteArray()})
    EXPECT_EQ(reader.RequestText(frame, kVersion), u"keine gültige Anfrage") << frame.constData();
}

TEST_F(TelegramText, ValuesStandInTheirUnits) {
  EXPECT_EQ(Good("R1F00", "FFFF"), u"+ Drehzahl = -0.1 1/m");
  EXPECT_EQ(Good("R1F02", "0001"), u"+ Laufzeit, Wort 1 von 2 = 0001");
  EXPECT_EQ(Good("R1F06", "051E"), u"+ Auf = 5 Grad; Zu = 30 Grad");
  EXPECT_EQ(Good("R1F07", "051E"), u"+ Auf = 5 Grad; Zu = 30 Grad") << "the byte's own address";
  EXPECT_EQ(Good("R1F0A", "4142"), u"+ Kennwort, Wort 2 von 3 = „AB“");
  EXPECT_EQ(Good("R1F0A", "0007"), u"+ Kennwort, Wort 2 von 3 = 0007");
  EXPECT_EQ(Good("R1F0A", "FFFF"), u"+ Kennwort, Wort 2 von 3 = FFFF");
  EXPECT_EQ(Good("R3000", "04D2"), u"+ Wort 04D2");
  EXPECT_EQ(Good("R1F00", "0Z12"), u"+ Wort 0Z12");
  EXPECT_EQ(Good("W1F0004D2", ""), u"+ geschrieben");
  EXPECT_EQ(Good("v00", "AB1-04D2"), u"+ Version AB1-123.4");
  EXPECT_EQ(Good("Q", "12"), u"+ Inhalt „12“");
}

TEST_F(TelegramText, WhatIsWrongWithAReplyIsSaid) {
  const QByteArray request = Sealed("#0102R1F00");
  EXPECT_EQ(Reply("R1F00", ""), u"- keine Antwort");
  EXPECT_EQ(Reply("R1F00", request), u"- nur das Echo der Anfrage");
  EXPECT_EQ(Reply("R1F00", "10102R04D221\r"), u"- Prüfsumme falsch, 21 statt 20");
  EXPECT_EQ(Reply("R1F00", "10102R04D220"), u"- unvollständig, ohne Zeilenende");
  EXPECT_EQ(Reply("R1F00", "10102R\r"), u"- zu kurz, 7 von mindestens 9 Zeichen");
  EXPECT_EQ(Reply("R1F00", Sealed("10102R04D21")), u"- falsche Länge, 5 statt 4 Stellen");
  EXPECT_EQ(Reply("R1F00", Sealed("10102?07")), u"- Abgelehnt: Code 07 Falsche Datensatznummer");
  EXPECT_EQ(Reply("R1F00", "10102?0300\r"), u"- Abgelehnt: Code 03") << "whatever its sum";
}

TEST_F(TelegramText, AnEchoIsNoReply) {
  const QByteArray request = Sealed("#0102R1F00");
  const QByteArray reply = Sealed("10102R04D2");
  EXPECT_EQ(Reply("R1F00", request + reply), u"+ Drehzahl = 123.4 1/m (nach dem Echo)");
  EXPECT_EQ(Reply("R1F00", request + request + reply), u"+ Drehzahl = 123.4 1/m (nach dem Echo)");
  EXPECT_EQ(Reply("R1F00", request.chopped(1) + reply), u"- Prüfsumme falsch, 20 statt EF (nach dem Echo)")
      << "cut off by its length, as the program does it";
  EXPECT_EQ(Reply("R1F00", request + "10102"), u"- unvollständig, ohne Zeilenende (nach dem Echo)");
  EXPECT_EQ(Reply("R1F00", reply + "10102"), u"+ Drehzahl = 123.4 1/m") << "what stands behind it is dropped";
}

TEST_F(TelegramText, AnotherVersionHasOtherLettersAndNoNames) {
  pc.SetVersions({u"AB1-123.4  -  A.TXT  Luft -  WR"_s, u"AB1-124.0  -  A.TXT  -  SL"_s});
  pc.Start();
  reader = TelegramReader(pc.module);
  ASSERT_EQ(reader.Version(), kVersion);
  const QByteArray request = Sealed("#0102L1F00");
  EXPECT_EQ(reader.RequestText(request, u"AB1-124.0"_s), u"Gerät 1: Lesen 1F00");
  EXPECT_EQ(reader.ReplyText(request, Sealed("10102L04D2"), u"AB1-124.0"_s).text, u"Wort 04D2");
  EXPECT_EQ(reader.RequestText(request, kVersion), u"Gerät 1: unbekannter Befehl");
  EXPECT_EQ(reader.RequestText(request, u"fremd"_s), u"Gerät 1: unbekannter Befehl");
  EXPECT_EQ(TelegramReader().RequestText(Sealed("#0102v00"), QString()), u"Gerät 1: Versionsabfrage");
}

TEST_F(TelegramText, TheReaderKeepsTheDefinitionsThatItWasMadeFor) {
  pc.module.Par[1].Name = u"Anderes"_s;
  EXPECT_EQ(Request("R1F00"), u"Gerät 1: Lesen 1F00, Drehzahl");
}

TEST_F(TelegramText, TimesOfDay) {
  EXPECT_EQ(TimeOfDay(0), u"00:00:00.000");
  EXPECT_EQ(TimeOfDay(14 * 3600 + 3 * 60 + 7.1205), u"14:03:07.120");
  EXPECT_EQ(TimeOfDay(86400.25), u"00:00:00.250");
}

// --- whole exchanges ---

class ExchangeText : public TelegramText {
 protected:
  ExchangeText() {
    pc.Store(0x1F00, {0x04D2});
    pc.host.Exchanges.OnSettled = [this](const Exchange& exchange) { text += lines.Of(reader, exchange); };
    pc.clock.now = 12 * 3600;
    (void)pc.host.ConfigurePort(kSlot, kControllerProtocol, 1, 1, kSettings9600.toString());
  }

  /// The lines of reading one word, without times.
  QStringList Read() {
    qint16 value = 0;
    text.clear();
    (void)pc.controller.ReadInt(kSlot, value, u"1F00"_s);
    pc.host.Exchanges.Settle();
    QStringList found;
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts))
      found.append(line.startsWith(u'L') ? line : line.mid(14));
    return found;
  }

  TelegramLines lines;
  QString text;
};

TEST_F(ExchangeText, ARequestAndItsReplyAreALineEach) {
  EXPECT_EQ(Read(), (QStringList{u"Leitung: COM1, 9600,o,7,1; ausgewählte Version: AB1-123.4"_s,
                                 u"PC     > #0102R1F000F␍       Gerät 1: Lesen 1F00, Drehzahl"_s,
                                 u"Regler < 10102R04D220␍       Drehzahl = 123.4 1/m (0 ms)"_s}));
  EXPECT_EQ(text.section(u'\n', 1, 1).first(14), u"12:00:00.020  ");
  EXPECT_EQ(Read().size(), 2) << "the line is the same";
  (void)pc.host.ConfigurePort(kSlot, kControllerProtocol, 1, 1, kSettings19200.toString());
  EXPECT_EQ(Read().value(0), u"Leitung: COM1, 19200,o,7,1; ausgewählte Version: AB1-123.4");
}

TEST_F(ExchangeText, AttemptsAndSilence) {
  pc.Silence(1);
  const QStringList found = Read();
  EXPECT_EQ(found.size(), 5);
  EXPECT_EQ(found.value(2), u"Regler <                     keine Antwort (400 ms)");
  EXPECT_EQ(found.value(3), u"PC     > #0102R1F000F␍       Gerät 1: Lesen 1F00, Drehzahl (2. Versuch)");
}

TEST_F(ExchangeText, APortThatCannotBeOpenedSentNothing) {
  pc.line.openable = false;
  const QStringList found = Read();
  EXPECT_EQ(found.value(1), u"PC     > #0102R1F000F␍       Gerät 1: Lesen 1F00, Drehzahl (nicht gesendet)");
  EXPECT_EQ(
      found.value(2),
      u"Regler <                     COM 1 nicht verfügber: Die simulierte Leitung ist nicht zu öffnen. "
      "(0 ms)");
}

TEST_F(ExchangeText, LineErrorsAreSaid) {
  pc.Silence(1, 3);
  pc.line.lineError = platform::kCommEventParity;
  EXPECT_EQ(Read().value(2),
            u"Regler <                     keine Antwort: Paritätsfehler (Parity Error). Die Hardware hat "
            "einen Paritätsfehler entdeckt. (400 ms)");
  pc.line.lineError = 0;
  EXPECT_EQ(Read().value(1), u"Regler < 10102R04D220␍       Drehzahl = 123.4 1/m (0 ms)")
      << "the error is gone";
}

TEST_F(ExchangeText, WhatFailedWithGoodCharactersSaysWhy) {
  Exchange exchange;
  exchange.version = kVersion;
  exchange.request.Append(Sealed("#0102R1F00"));
  exchange.received.Append(Sealed("10102R04D2"));
  EXPECT_EQ(reader.ReplyText(exchange), u"Drehzahl = 123.4 1/m");
  exchange.end = ExchangeEnd::Damaged;
  exchange.failure = u"ERROR: ungültiger Empfang:  (10102R04D220)."_s;
  EXPECT_EQ(reader.ReplyText(exchange), u"ungültiger Empfang:  (10102R04D220).");
  exchange.fault = u"Die Verbindung ist abgebrochen."_s;
  EXPECT_EQ(reader.ReplyText(exchange),
            u"ungültiger Empfang:  (10102R04D220).: Die Verbindung ist abgebrochen.");
  exchange.fault.clear();
  exchange.received.Append(QByteArray(200, 'x'));
  EXPECT_EQ(reader.ReplyText(exchange), u"zu viele Zeichen");
}

}  // namespace
}  // namespace kalivor
