// What a customer is told of a visit.
#include "history/ServiceReport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

Stamp At(int minute, const QString& technician = u"Anna Kühn"_s) {
  const QDateTime time(QDate(2026, 3, 9), QTime(8, 0), Qt::OffsetFromUTC, 3600);
  return {1'000'000 + minute * 60'000, time.addSecs(minute * 60), technician};
}

Change Changed(int number, const QString& before, const QString& after, const QString& state = {}) {
  return {number,
          u"Heizung"_s,
          u"Wert %1"_s.arg(number),
          u"w%1"_s.arg(number),
          u"int"_s,
          u"1F%1"_s.arg(number),
          u"°C"_s,
          before,
          after,
          state};
}

ServiceEntry Done(int minute, DeedKind kind, std::vector<Change> changes) {
  ServiceEntry entry;
  entry.entry.stamp = At(minute);
  entry.entry.kind = kind;
  entry.entry.version = u"AB1-123.4"_s;
  entry.entry.plantType = u"A"_s;
  entry.entry.address = 1;
  entry.entry.outcome = u"3 Werte"_s;
  entry.entry.quality = u"4 Versuche: 4 gut"_s;
  entry.changes = std::move(changes);
  return entry;
}

ServiceVisit Visit(std::vector<ServiceEntry> entries) {
  return {{QUuid::createUuid(), u"Werk Süd"_s, u"Halle 3"_s, u"Tor 2"_s}, std::move(entries)};
}

// Of each value: number, found, left, state.
QStringList Summary(const ServiceVisit& visit) {
  QStringList lines;
  for (const FoundAndLeft& value : FoundAndLeftValues(visit))
    lines << u"%1: %2 > %3 %4"_s
                 .arg(QString::number(value.parameter.number), value.found, value.left, value.state)
                 .trimmed();
  return lines;
}

QString Filled(const QByteArray& html, const ServiceVisit& visit, const ServiceTexts& texts = {}) {
  const ServiceTemplate::Parsed parsed = ServiceTemplate::Parse(html, ServiceScope());
  EXPECT_EQ(parsed.error.toStdString(), "");
  return parsed.page.Render(ServiceValues(visit, texts)).html;
}

TEST(FoundAndLeft, IsTheFirstBeforeAndTheLastAfter) {
  EXPECT_EQ(Summary(Visit({Done(5, DeedKind::SentSafely, {Changed(1, u"30"_s, u"40"_s, u"geprüft"_s)}),
                           Done(1, DeedKind::Sent, {Changed(1, u"20"_s, u"30"_s), Changed(2, {}, u"7"_s)})})),
            (QStringList{u"1: 20 > 40 geprüft"_s, u"2:  > 7"_s}))
      << "by time, in whatever order they come";
}

// What was known before the visit is not what was found.
TEST(FoundAndLeft, WhatWasReadFirstWasFound) {
  for (const DeedKind kind : {DeedKind::Received, DeedKind::Compared}) {
    EXPECT_EQ(Summary(Visit({Done(1, kind, {Changed(1, u"10"_s, u"20"_s)}),
                             Done(2, DeedKind::Sent, {Changed(1, u"20"_s, u"25"_s)})})),
              QStringList{u"1: 20 > 25"_s});
  }
  EXPECT_EQ(Summary(Visit({Done(1, DeedKind::Compared, {Changed(1, u"10"_s, u"20"_s, u"verschieden"_s)})})),
            QStringList{u"1: 20 > 20"_s});
  EXPECT_EQ(Summary(Visit({Done(1, DeedKind::Received, {Changed(1, u"10"_s, u"20"_s, u"nicht gelesen"_s)})})),
            QStringList())
      << "what was not read tells nothing";
}

TEST(FoundAndLeft, WhatConcernsThePcAloneDoesNotCount) {
  for (const DeedKind kind : {DeedKind::Loaded, DeedKind::Saved, DeedKind::Reset})
    EXPECT_EQ(Summary(Visit({Done(1, kind, {Changed(1, u"1"_s, u"2"_s)})})), QStringList());
}

TEST(FoundAndLeft, ControllersAreKeptApart) {
  ServiceEntry other = Done(2, DeedKind::Sent, {Changed(1, u"5"_s, u"6"_s)});
  other.entry.address = 2;
  const ServiceVisit visit = Visit({Done(1, DeedKind::Sent, {Changed(1, u"1"_s, u"2"_s)}), other});
  EXPECT_EQ(Summary(visit), (QStringList{u"1: 1 > 2"_s, u"1: 5 > 6"_s}));
  EXPECT_EQ(Filled("{{#werte}}{{regler}};{{/werte}}", visit),
            u"AB1-123.4, Adresse 1;AB1-123.4, Adresse 2;"_s);
  EXPECT_EQ(Filled("{{#aenderungen}}{{regler}};{{/aenderungen}}", visit),
            u"AB1-123.4, Adresse 1;AB1-123.4, Adresse 2;"_s);
  EXPECT_EQ(Filled("{{#regler}}{{version}} {{anlageart}} {{adresse}};{{/regler}}", visit),
            u"AB1-123.4 A 1;AB1-123.4 A 2;"_s);
}

// Every name stands for what it says: a value of its own each.
TEST(ServiceReport, EachNameHasItsValue) {
  ServiceEntry entry = Done(5, DeedKind::SentSafely, {Changed(7, u"20"_s, u"21"_s, u"geprüft"_s)});
  entry.entry.port = u"COM3"_s;
  entry.entry.remark = u"a.par"_s;
  entry.remarks = {{QUuid::createUuid(), {}, At(90, u"Bo"_s), u"Pumpe laut"_s}};
  const ServiceVisit visit = Visit({entry});
  const ServiceTexts texts{u"Protokoll"_s, u"Gut."_s, u"Firma\nOrt"_s, u"bild:1"_s, 30, 40};
  EXPECT_EQ(Filled("{{titel}}|{{bemerkung}}|{{briefkopf}}|{{briefbild}}|{{bildbreite}}|{{bildhoehe}}|{{"
                   "anlage}}|{{ort}}|"
                   "{{zuranlage}}|{{techniker}}|{{datum}}",
                   visit, texts),
            u"Protokoll|Gut.|Firma<br>Ort|bild:1|30|40|Werk Süd|Halle 3|Tor 2|Anna Kühn|09.03.2026"_s);
  EXPECT_EQ(Filled("{{#regler}}{{version}}|{{anlageart}}|{{adresse}}{{/regler}}", visit), u"AB1-123.4|A|1"_s);
  EXPECT_EQ(Filled("{{#werte}}{{regler}}|{{nr}}|{{gruppe}}|{{name}}|{{variable}}|{{einheit}}|{{vorgefunden}}|"
                   "{{hinterlassen}}{{/werte}}",
                   visit),
            u"|7|Heizung|Wert 7|w7|°C|20|21"_s);
  const QByteArray change =
      "{{#aenderungen}}{{zeit}}|{{vorgang}}|{{regler}}|{{nr}}|{{gruppe}}|{{name}}|{{variable}}|{{einheit}}|{{"
      "vorher}}|"
      "{{nachher}}|{{zustand}}{{/aenderungen}}";
  const QString changeText = u"09.03.2026 08:05|sicher gesendet||7|Heizung|Wert 7|w7|°C|20|21|geprüft"_s;
  EXPECT_EQ(Filled(change, visit), changeText);
  const QByteArray remark = "{{#bemerkungen}}{{zeit}}|{{techniker}}|{{text}}{{/bemerkungen}}";
  const QString remarkText = u"09.03.2026 09:30|Bo|Pumpe laut"_s;
  EXPECT_EQ(Filled(remark, visit), remarkText);
  EXPECT_EQ(
      Filled("{{#eintraege}}{{zeit}}|{{vorgang}}|{{ergebnis}}|{{techniker}}|{{version}}|{{anlageart}}|{{"
             "adresse}}|"
             "{{schnittstelle}}|{{leitung}}|{{notiz}}/" +
                 change + "/" + remark + "{{/eintraege}}",
             visit),
      u"09.03.2026 08:05|sicher gesendet|3 Werte|Anna Kühn|AB1-123.4|A|1|COM3|4 Versuche: 4 gut|a.par/%1/%2"_s
          .arg(changeText, remarkText));
}

TEST(ServiceReport, TheTimeIsTheOneThatTheClockShowedThere) {
  ServiceEntry entry = Done(0, DeedKind::Sent, {});
  entry.entry.stamp.time = QDateTime(QDate(2026, 7, 1), QTime(23, 59), Qt::OffsetFromUTC, 7200);
  EXPECT_EQ(Filled("{{datum}} {{#eintraege}}{{zeit}}{{/eintraege}}", Visit({entry})),
            u"01.07.2026 01.07.2026 23:59"_s);
}

TEST(ServiceReport, SeveralDaysAndTechniciansAreAllNamedOnce) {
  ServiceEntry later = Done(2 * 24 * 60, DeedKind::Sent, {});
  later.entry.stamp.technician = u"Bo"_s;
  ServiceEntry nobody = Done(9, DeedKind::Sent, {});
  nobody.entry.stamp.technician.clear();
  const ServiceVisit visit = Visit({later, nobody, Done(1, DeedKind::Sent, {}), Done(2, DeedKind::Sent, {})});
  EXPECT_EQ(Filled("{{techniker}} / {{datum}}", visit), u"Anna Kühn, Bo / 09.03.2026 – 11.03.2026"_s);
}

TEST(ServiceReport, AValueThatIsNotSureToBeThereSaysSo) {
  const auto left = [](const QString& state) {
    return Filled("{{#werte}}{{hinterlassen}}{{/werte}}",
                  Visit({Done(1, DeedKind::SentSafely, {Changed(1, u"1"_s, u"2"_s, state)})}));
  };
  EXPECT_EQ(left({}), u"2"_s);
  EXPECT_EQ(left(u"geprüft"_s), u"2"_s);
  EXPECT_EQ(left(u"fehlgeschlagen"_s), u"2 (fehlgeschlagen)"_s);
}

TEST(ServiceReport, WhatDiffersInAComparisonIsNoChange) {
  const ServiceVisit visit = Visit({Done(1, DeedKind::Compared, {Changed(1, u"1"_s, u"2"_s)}),
                                    Done(2, DeedKind::Loaded, {Changed(1, u"1"_s, u"3"_s)}),
                                    Done(3, DeedKind::Received, {Changed(1, u"1"_s, u"4"_s)})});
  EXPECT_EQ(Filled("{{#aenderungen}}{{nachher}};{{/aenderungen}}", visit), u"4;"_s);
}

TEST(ServiceReport, WithoutEntriesThereIsAPageAllTheSame) {
  const QString page = Filled(BuiltInServiceTemplate(), {});
  EXPECT_TRUE(page.contains(u"Es wurde kein Wert geändert."_s));
  EXPECT_TRUE(page.contains(u"Kein Eintrag gewählt."_s));
}

TEST(ServiceReport, HostileTextsStayTexts) {
  const QString hostile = u"<img src=x onerror=alert(1)>{{titel}}</td>"_s;
  ServiceEntry entry = Done(1, DeedKind::Sent, {Changed(1, hostile, hostile, hostile)});
  entry.entry.stamp.technician = hostile;
  entry.entry.outcome = entry.entry.quality = entry.entry.version = entry.entry.plantType = hostile;
  entry.changes[0].name = entry.changes[0].group = entry.changes[0].unit = hostile;
  entry.remarks = {{QUuid::createUuid(), {}, At(2, hostile), hostile}};
  ServiceVisit visit{{QUuid::createUuid(), hostile, hostile, hostile}, {entry}};
  const QString page = Filled(BuiltInServiceTemplate(), visit, {hostile, hostile, hostile, {}, 0, 0});
  EXPECT_FALSE(page.contains(u"<img"_s));
  EXPECT_GE(page.count(hostile.toHtmlEscaped()), 15);
}

}  // namespace
}  // namespace kalivor::history
