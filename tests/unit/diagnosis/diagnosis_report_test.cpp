// The report for a support desk.
#include "diagnosis/DiagnosisReport.h"

#include <gtest/gtest.h>
#include <QRegularExpression>

#include "comm/COM_T_frm.h"
#include "core/LineHint.h"
#include "core/TelegramText.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFileSystem.h"
#include "fakes/FakePortDirectory.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

const QDateTime kNow(QDate(2026, 11, 22), QTime(14, 3, 7));

// A page whose every text is `text`.
Diagnosis AllOf(const QString& text) {
  Diagnosis diagnosis;
  diagnosis.time = kNow;
  diagnosis.system = {{text, text}, {text, text}};
  platform::PortEntry port{3, text, text, text, text, platform::PortState::InUse, text, text, text};
  diagnosis.ports = {port};
  diagnosis.settings = {{text, text}};
  diagnosis.findings = {{text, 7, true, text}};
  diagnosis.report = text;
  diagnosis.exchanges = 1;
  diagnosis.telegrams = text + u'\n';
  return diagnosis;
}

// What a reader of the page sees, without its elements.
QString Read(const QString& html) {
  static const QRegularExpression notRead(u"<style>.*</style>|<[^>]*>"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
  return QString(html)
      .remove(notRead)
      .replace(u"&lt;"_s, u"<"_s)
      .replace(u"&gt;"_s, u">"_s)
      .replace(u"&quot;"_s, u"\""_s)
      .replace(u"&amp;"_s, u"&"_s);
}

struct DiagnosisTest : testing::Test {
  DiagnosisTest() {
    module.Inipath = u"/d/"_s;
    files.AddText(u"/d/VF.INI"_s, u"Kopf\r\nAB1-123.4  -  D1.TXT  Heizung  WR\r\n"_s);
    files.AddText(u"/d//D1.TXT"_s, u"Kopf\r\nGruppe  Name  0  9  0  -  0  0  foo  1E00  p  -  -\r\n"_s);
  }

  [[nodiscard]] Diagnosis Collected() {
    return Collect({module, log, ports, files, report, {{u"Programm"_s, u"KALIVOR 1.2.3"_s}}}, kNow);
  }

  void Exchange(const QByteArray& received) {
    PortRecord port;
    port.PortNr = 2;
    port.Settings = u"9600,o,7,1"_s;
    port.Adr = 17;
    log.Begin(port, u"#1102v00BD\r");
    log.Received(received);
    log.End(received.isEmpty() ? u"ERROR: kein Empfang"_s : u"11102vHZL-0128\r"_s, true, {});
    log.Settle();
  }

  Module1 module;
  FakeClock clock;
  ExchangeLog log{clock};
  FakePortDirectory ports;
  FakeFileSystem files;
  QString report;
};

TEST_F(DiagnosisTest, SaysEverything) {
  module.Adresse = 17;
  module.Schnittstelle = 2;
  module.Userpath = u"/w"_s;
  ports.entries = {platform::PortEntry{2, u"/dev/ttyUSB0"_s, u"FTDI FT232R"_s, u"A12345"_s, u"USB 1-1"_s}};
  ports.Bind(2, u"usb:0403:6001:A12345:0"_s);
  report = u"Zeile 1\r\nZeile 2\r\n"_s;
  Exchange({});
  const Diagnosis diagnosis = Collected();
  const QString page = Read(DiagnosisHtml(diagnosis, {}));
  for (const QString& text :
       {u"Erstellt am 22.11.2026 um 14:03:07 Uhr."_s, u"KALIVOR 1.2.3"_s, u"/dev/ttyUSB0"_s, u"FTDI FT232R"_s,
        u"A12345"_s, u"USB 1-1"_s, u"frei"_s, u"COM2 zugeordnet"_s, u"usb:0403:6001:A12345:0"_s,
        u"/d/VF.INI"_s, u"Zeile 1\nZeile 2"_s, QString(HintOf(diagnosis.sinceStart).texts.first()),
        u"Anfragen seit dem Start: 1. Hier stehen die letzten, höchstens 1000, mit ihren Antworten."_s,
        diagnosis.telegrams.trimmed()}) {
    EXPECT_TRUE(page.contains(text)) << text.toStdString();
  }
  EXPECT_TRUE(diagnosis.telegrams.contains(u"#1102v00BD"_s));
  ASSERT_FALSE(diagnosis.findings.empty());
  EXPECT_TRUE(page.contains(diagnosis.findings.front().text));
  EXPECT_TRUE(DiagnosisHtml(diagnosis, {}).contains(QualitySvg(diagnosis.sinceStart)));
}

TEST_F(DiagnosisTest, SaysWhatIsNotThere) {
  files.files.clear();
  const QString page = Read(DiagnosisHtml(Collected(), {}));
  for (const QString& text : {u"Es ist keine serielle Schnittstelle da."_s, u"COM1: nicht vorhanden"_s,
                              u"Es gab noch keinen."_s, u"Seit dem Start wurde nichts gesendet."_s}) {
    EXPECT_TRUE(page.contains(text)) << text.toStdString();
  }
  EXPECT_FALSE(Collected().findingsFailure.isEmpty());
  EXPECT_TRUE(page.contains(Collected().findingsFailure));
  EXPECT_FALSE(page.contains(u"Keine Beanstandungen"_s)) << "nobody has looked";
}

TEST_F(DiagnosisTest, TellsTheLastThousandExchanges) {
  for (int i = 0; i < kToldExchanges; ++i)
    Exchange({});
  const QString before = Collected().telegrams;
  Exchange("11102vHZL-0128\r");
  const Diagnosis diagnosis = Collected();
  EXPECT_EQ(diagnosis.exchanges, kToldExchanges + 1);
  EXPECT_EQ(diagnosis.telegrams.count(u"#1102v00"_s), kToldExchanges);
  EXPECT_EQ(before.count(u"#1102v00"_s), kToldExchanges);
  EXPECT_TRUE(diagnosis.telegrams.trimmed().section(u'\n', -1).contains(u"11102vHZL"_s))
      << "the last is the last";
}

// Whatever a file, a controller or an adapter says of itself.
TEST_F(DiagnosisTest, NoTextBecomesAnElement) {
  const QString clean = DiagnosisHtml(AllOf(u"x"_s), {});
  const auto elements = [](const QString& html) { return html.count(u'<'); };
  for (const QString& hostile :
       {u"<script>alert(1)</script>"_s, u"</pre></td></table><img src=x onerror=alert(1)>"_s, u"&lt;b&gt;"_s,
        u"\"><svg onload=alert(1)>"_s, u"</style></title><h1>"_s, u"<!--"_s, u"%1 %2 %3"_s}) {
    const QString html = DiagnosisHtml(AllOf(hostile), {});
    EXPECT_EQ(elements(html), elements(clean)) << hostile.toStdString();
    EXPECT_EQ(Read(html).count(hostile), Read(clean).count(u">x<"_s) + html.count(hostile.toHtmlEscaped()))
        << hostile.toStdString();
  }
}

TEST_F(DiagnosisTest, ControlCharactersAreBlanks) {
  const QString html = DiagnosisHtml(AllOf(u"a\x01"
                                           u"b\x7F"
                                           u"c\u0085d"_s),
                                     {});
  EXPECT_TRUE(html.contains(u"a b c d"_s));
  for (const QChar character : html)
    EXPECT_TRUE(character == u'\n' || (character >= u' ' && character != u'\x7F'));
}

TEST_F(DiagnosisTest, WhatIsLeftOutIsNowhere) {
  const QString text = u"/home/meier/Kunde an PC17, sagt Meier"_s;
  const LeftOut leftOut{{u"meier"_s, u"pc17"_s}, {u"/home/meier"_s}};
  const QString html = DiagnosisHtml(AllOf(text), leftOut);
  for (const QString& secret : {u"meier"_s, u"pc17"_s})
    EXPECT_FALSE(html.contains(secret, Qt::CaseInsensitive)) << secret.toStdString();
  EXPECT_EQ(html.count(u"…/Kunde an …, sagt …"_s), DiagnosisHtml(AllOf(text), {}).count(text));
  EXPECT_GT(html.count(u"…/Kunde an …, sagt …"_s), 12);
}

TEST_F(DiagnosisTest, NeedsNothingFromElsewhere) {
  Exchange({});
  const QString html = DiagnosisHtml(Collected(), {});
  for (const QString& word : {u"src="_s, u"href="_s, u"url("_s, u"<script"_s, u"@import"_s})
    EXPECT_FALSE(html.contains(word)) << word.toStdString();
  EXPECT_TRUE(html.contains(u"default-src 'none'"_s));
}

TEST_F(DiagnosisTest, APictureIsDrawnWhereThereIsSomethingToDraw) {
  int drawn = 0;
  const auto picture = [&](const LineQuality&) { return QString::number(++drawn) + u". Bild"_s; };
  EXPECT_FALSE(DiagnosisHtml(Collected(), {}, picture).contains(u"Bild"_s));
  Exchange({});
  EXPECT_TRUE(DiagnosisHtml(Collected(), {}, picture).contains(u"2. Bild"_s));
}

TEST_F(DiagnosisTest, OpensNoPortAndWritesNothing) {
  (void)Collected();
  EXPECT_EQ(files.writes, 0);
}

}  // namespace
}  // namespace kalivor::test
