// What the user reads of a safe run: sentences, cells, order of the rows.
#include "commands/SafeTable.h"

#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

struct Written : Installation {
  Written() {
    for (int i = 0; i < 6; ++i) {
      ParameterRecord& record = AddParameter(u"int"_s, u"1F0%1"_s.arg(2 * i), u"V%1"_s.arg(i));
      record.Name = u"Name %1"_s.arg(i + 1);
      record.Zahl1 = 1;
      record.Min = 0;
      record.Max = 1000;
      record.Einheit = u"mm"_s;
    }
  }

  /// Parameter `index` wants 250 and is 200 in the controller.
  SafeValue& Add(SafeRun& run, int index, SafeState state) {
    SafeValue& value = run.values.emplace_back();
    value.index = index;
    value.wanted.number = 250;
    value.controller = ParameterValue{200, {}};
    value.state = state;
    value.chosen = state == SafeState::Different;
    return value;
  }
  SafeRun Run(const std::vector<SafeState>& states, SafeKind kind = SafeKind::Send) {
    SafeRun run;
    run.kind = kind;
    int index = 0;
    for (const SafeState state : states)
      Add(run, ++index, state);
    return run;
  }
  [[nodiscard]] QString Cells(const SafeRun& run, std::size_t at = 0) {
    QStringList cells;
    for (int column = 0; column < kSafeColumns; ++column)
      cells.append(SafeCellText(module.Par[run.values[at].index], run, run.values[at],
                                static_cast<SafeColumn>(column)));
    return cells.join(u'|');
  }
};

constexpr auto kEqual = SafeState::Equal;
constexpr auto kDifferent = SafeState::Different;
constexpr auto kNotRead = SafeState::NotRead;

TEST(SafeTable, SaysHowManyAreDifferentAndWhatBecomesOfThem) {
  Written written;
  SafeRun run = written.Run({kEqual, kDifferent, kDifferent, kDifferent});
  EXPECT_EQ(ChoiceText(run, 0),
            u"3 von 4 angekreuzten Werten sind verschieden; sie werden in den Regler geschrieben."_s);
  run.values[1].chosen = false;
  EXPECT_EQ(ChoiceText(run, 0),
            u"3 von 4 angekreuzten Werten sind verschieden; 2 davon werden in den Regler geschrieben."_s);
  run.values[2].chosen = false;
  EXPECT_EQ(ChoiceText(run, 0),
            u"3 von 4 angekreuzten Werten sind verschieden; 1 davon wird in den Regler geschrieben."_s);
  run.values[3].chosen = false;
  EXPECT_EQ(ChoiceText(run, 0), u"3 von 4 angekreuzten Werten sind verschieden; keiner wird geschrieben."_s);
  EXPECT_EQ(ChoiceText(written.Run({kEqual, kDifferent}), 0),
            u"1 von 2 angekreuzten Werten ist verschieden; er wird in den Regler geschrieben."_s);
  EXPECT_EQ(ChoiceText(written.Run({kDifferent}), 0),
            u"Der Wert ist verschieden; er wird in den Regler geschrieben."_s);
}

TEST(SafeTable, EachKindHasItsWords) {
  Written written;
  const auto sentence = [&](SafeKind kind) { return ChoiceText(written.Run({kDifferent, kEqual}, kind), 0); };
  EXPECT_EQ(sentence(SafeKind::Receive),
            u"1 von 2 angekreuzten Werten ist verschieden; er wird in den PC übernommen."_s);
  EXPECT_EQ(sentence(SafeKind::Restore),
            u"1 von 2 Werten der Sicherung ist verschieden; er wird in den Regler geschrieben."_s);
  EXPECT_EQ(sentence(SafeKind::Finish),
            u"1 von 2 Werten der Sendung ist verschieden; er wird in den Regler geschrieben."_s);
  const auto nothing = [&](SafeKind kind) { return ChoiceText(written.Run({kEqual, kEqual}, kind), 0); };
  EXPECT_EQ(nothing(SafeKind::Send), u"Nichts zu senden: Alle 2 Werte sind gleich."_s);
  EXPECT_EQ(nothing(SafeKind::Receive), u"Nichts zu übernehmen: Alle 2 Werte sind gleich."_s);
  EXPECT_EQ(nothing(SafeKind::Restore), u"Nichts wiederherzustellen: Alle 2 Werte sind gleich."_s);
  EXPECT_EQ(nothing(SafeKind::TakeBack), u"Nichts zurückzunehmen: Alle 2 Werte sind gleich."_s);
  const auto command = [&](SafeKind kind) { return ChoiceCommand(written.Run({kDifferent}, kind)); };
  EXPECT_EQ(command(SafeKind::Send), u"1 Wert &senden"_s);
  EXPECT_EQ(command(SafeKind::Receive), u"1 Wert &übernehmen"_s);
  EXPECT_EQ(command(SafeKind::Restore), u"1 Wert &wiederherstellen"_s);
  EXPECT_EQ(command(SafeKind::Finish), u"1 Wert &senden"_s);
  EXPECT_EQ(command(SafeKind::TakeBack), u"1 Wert &zurückschreiben"_s);
  EXPECT_EQ(ChoiceCommand(written.Run({kDifferent, kDifferent})), u"2 Werte &senden"_s);
}

TEST(SafeTable, NamesWhatIsNotReadOrNotKnown) {
  Written written;
  EXPECT_EQ(ChoiceText(written.Run({kEqual}), 0), u"Nichts zu senden: Der Wert ist gleich."_s);
  EXPECT_EQ(ChoiceText(written.Run({kEqual, kNotRead}), 0),
            u"Nichts zu senden: 1 Wert ist gleich. 1 Wert konnte nicht gelesen werden."_s);
  EXPECT_EQ(ChoiceText(written.Run({kEqual, kEqual, kNotRead, kNotRead}), 0),
            u"Nichts zu senden: 2 Werte sind gleich. 2 Werte konnten nicht gelesen werden."_s);
  EXPECT_EQ(ChoiceText(written.Run({kNotRead}), 0),
            u"Nichts zu senden. 1 Wert konnte nicht gelesen werden."_s);
  EXPECT_EQ(ChoiceText(written.Run({kEqual}, SafeKind::Restore), 1),
            u"Nichts wiederherzustellen: Der Wert ist gleich. 1 weiterer steht nicht in den Definitionen."_s);
  EXPECT_TRUE(ChoiceText(written.Run({kEqual}, SafeKind::Restore), 3)
                  .endsWith(u"3 weitere stehen nicht in den Definitionen."_s));
}

TEST(SafeTable, CellsOfBothDirections) {
  Written written;
  SafeRun run = written.Run({kDifferent});
  EXPECT_EQ(written.Cells(run), u"|1|Name 1|20.0|25.0|20.0|mm|verschieden"_s);
  run.kind = SafeKind::Receive;
  EXPECT_EQ(written.Cells(run), u"|1|Name 1|25.0|20.0|20.0|mm|verschieden"_s);
  run.kind = SafeKind::Send;
  run.values[0].before = ParameterValue{190, {}};
  run.values[0].state = SafeState::Deviating;
  run.values[0].reason = u"Grund"_s;
  run.values[0].outside = true;
  EXPECT_EQ(written.Cells(run),
            u"|1|Name 1|19.0|25.0|20.0|mm|abweichend: Grund, außerhalb der Grenzen 0.0 bis 100.0"_s);
}

TEST(SafeTable, WhatIsReceivedIsJudgedByTheControllersValue) {
  Written written;
  SafeRun run = written.Run({kDifferent}, SafeKind::Receive);
  run.values[0].outside = true;
  EXPECT_FALSE(IsNewOutside(written.module.Par[1], run, run.values[0]));
  run.values[0].controller->number = 1001;
  EXPECT_TRUE(IsNewOutside(written.module.Par[1], run, run.values[0]));
}

TEST(SafeTable, ShowsWhatIsToBeDecidedAndWhatWasDone) {
  Written written;
  const SafeRun choice = written.Run({kEqual, kDifferent, kNotRead});
  EXPECT_EQ(SafeRows(choice, SafePhase::Choice), (std::vector<std::size_t>{1, 2}));
  const SafeRun account = written.Run({SafeState::Verified, kDifferent, SafeState::Failed, kEqual,
                                       SafeState::Unverified, SafeState::Deviating});
  EXPECT_EQ(SafeRows(account, SafePhase::Account), (std::vector<std::size_t>{2, 4, 5, 0}));
}

TEST(SafeTable, OnlyAnotherValueThatCanBeSentCanBeChosen) {
  Written written;
  SafeRun run = written.Run({kDifferent, kEqual, kNotRead});
  EXPECT_TRUE(CanBeChosen(run, run.values[0]));
  EXPECT_FALSE(CanBeChosen(run, run.values[1]));
  EXPECT_FALSE(CanBeChosen(run, run.values[2]));
  run.values[0].sendable = false;
  EXPECT_FALSE(CanBeChosen(run, run.values[0]));
  run.kind = SafeKind::Receive;
  EXPECT_TRUE(CanBeChosen(run, run.values[0])) << "it is the PC's value that cannot be sent";
  run.values[0].controller.reset();
  EXPECT_FALSE(CanBeChosen(run, run.values[0]));
}

TEST(SafeTable, AdvisesByWhatHappened) {
  Written written;
  SafeRun run = written.Run({SafeState::Verified});
  run.error = u"Erste Zeile.\r\nZweite."_s;
  EXPECT_EQ(AdviceText(run),
            u"Erste Zeile. Zweite. Es wurde nichts geschrieben; der Regler ist, wie er war."_s);
  run.error.clear();
  run.begun.insert(0x1F00);
  EXPECT_EQ(AdviceText(run), u"Was geschrieben wurde, ist zurückgelesen: Es steht so im Regler."_s);
  run.values[0].state = SafeState::Failed;
  run.aborted = true;
  EXPECT_TRUE(AdviceText(run).startsWith(
      u"Abgebrochen. Nicht alle Werte stehen sicher im Regler. „Fehlgeschlagene"_s));
}

TEST(SafeTable, LeavesTheProgramWithItsHeading) {
  Written written;
  SafeRun run = written.Run({kDifferent});
  const ListTable choice = SafeTable(written.module, run, SafePhase::Choice, QDate(2026, 11, 12));
  EXPECT_EQ(choice.heading.front(), u"Sicher senden"_s);
  EXPECT_EQ(choice.heading.back(), u"Datum: 12.11.2026"_s);
  EXPECT_EQ(choice.titles.join(u'|'), u"Kreuz|Nr|Name|Regler (alt)|PC (neu)|Einheit|Zustand"_s);
  EXPECT_EQ(choice.rows.at(0).at(0), (TableCell{u"x"_s, false}));
  EXPECT_EQ(choice.rows.at(0).at(3), (TableCell{u"20.0"_s, true}));
  run.values[0].state = SafeState::Verified;
  run.backup = u"/werte/a.qpf"_s;
  const ListTable account = SafeTable(written.module, run, SafePhase::Account, QDate(2026, 11, 12));
  EXPECT_EQ(account.heading.sliced(account.heading.size() - 2),
            (QStringList{u"Ergebnis: 1 geprüft"_s, u"Sicherung: /werte/a.qpf"_s}));
  EXPECT_EQ(account.titles.join(u'|'), u"Nr|Name|Regler (alt)|PC (neu)|Regler (jetzt)|Einheit|Zustand"_s);
}

TEST(SafeTable, AnUnfinishedSendingNamesItsControllerAndWhatIsSetOtherwise) {
  Written written;
  Module1& module = written.module;
  Sending sending;
  sending.head = {QDateTime(QDate(2026, 11, 12), QTime(16, 40)),
                  module.VersionList.SelectedText(),
                  module.PlantTypeList.SelectedText(),
                  0,
                  module.Adresse,
                  u"COM1"_s,
                  {}};
  EXPECT_EQ(ControllerText({{}, u"AB1"_s, u"A"_s, 1, 3, u"COM1 (x)"_s, {}}),
            u"AB1, Anlageart A, Adresse 3, COM1 (x)"_s);
  const QString text = UnfinishedSentence(module, sending, u"1 von 2 Werten geschrieben"_s);
  EXPECT_TRUE(
      text.startsWith(u"Eine Sendung an den Regler wurde unterbrochen: 1 von 2 Werten geschrieben.\n"_s));
  EXPECT_TRUE(text.contains(u"\nBegonnen: 12.11.2026 16:40\n"_s));
  EXPECT_FALSE(text.contains(u"Eingestellt"_s));
  EXPECT_FALSE(text.contains(u"werden dafür gewählt"_s));
  sending.head.address = module.Adresse + 1;
  sending.head.version = u"andere"_s;
  const QString other = UnfinishedSentence(module, sending, {});
  EXPECT_TRUE(other.startsWith(u"Eine Sendung an den Regler wurde unterbrochen.\n"_s));
  EXPECT_TRUE(other.contains(u"Eingestellt ist jetzt die Adresse %1;"_s.arg(module.Adresse)));
  EXPECT_TRUE(other.contains(u"werden dafür gewählt"_s));
}

}  // namespace
}  // namespace kalivor::test
