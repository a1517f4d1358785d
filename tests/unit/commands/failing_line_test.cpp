// Every transfer with a failure at every one of its telegrams: the report, the values, the state afterwards.
#include "commands/TransferCommands.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

using Command = TransferOutcome (*)(Core&);

/// Four parameters, one of every type, with their own values on the PC and in the controller.
struct Site : Installation {
  Site() { StartWithFiles(); }

  /// The values of the four parameters.
  QString Values() const {
    const auto& par = module.Par;
    return u"%1 %2 %3 %4"_s.arg(par[1].Wert).arg(par[2].Wert).arg(par[3].Wert).arg(par[4].WertText);
  }

  /// The words of the controller that hold them.
  QString Words() const {
    QStringList words;
    for (int address = 0x1F00; address <= 0x1F0A; address += 2)
      words.append(
          QString::number(memory.Word(static_cast<quint16>(address)), 16).toUpper().rightJustified(4, u'0'));
    return words.join(u' ');
  }

  QString Report() const { return Lines(report.lines); }
};

const QString kPcValues = u"1500 65536 45 ABCD"_s;
const QString kPcWords = u"05DC 0001 0000 112D 4142 4344"_s;
const QString kControllerWords = u"04D2 0001 0002 1122 5758 595A"_s;

/// What a transfer leads to whose n-th telegram fails in all three attempts; n counts from 1.
struct Failure {
  QString report;
  QString values;  ///< afterwards on the PC
  QString words;   ///< afterwards in the controller
};

// Runs `command` with the n-th telegram unanswered once, twice and three times, for every n.
void RunWithEveryFailure(
    Command command, const std::vector<Failure>& failures, const Failure& success,
    const std::function<void(Site&)>& prepare = [](Site&) {}) {
  Site undisturbed;
  prepare(undisturbed);
  undisturbed.line.sent.clear();
  command(undisturbed.core);
  ASSERT_EQ(undisturbed.Requests().size(), static_cast<qsizetype>(failures.size()));

  for (int n = 1; n <= static_cast<int>(failures.size()); ++n) {
    for (int attempts = 0; attempts <= 3; ++attempts) {
      SCOPED_TRACE(testing::Message() << "telegram " << n << " silent " << attempts << " times");
      Site site;
      prepare(site);
      site.Silence(n, attempts);
      command(site.core);
      const Failure& expected = attempts == 3 ? failures[static_cast<std::size_t>(n - 1)] : success;
      EXPECT_EQ(site.Report(), expected.report);
      EXPECT_EQ(site.Values(), expected.values);
      EXPECT_EQ(site.Words(), expected.words);
      // A failed text is the one that interrupts the user as well.
      const bool box = command == CommandSenden_Click && expected.report.contains(u"N4["_s);
      EXPECT_EQ(TakeBoxes(site.box).size(), box ? 1 : 0);
      EXPECT_TRUE(site.Rests());
    }
  }
}

TEST(FailingLine, Receiving) {
  const QString& words = kControllerWords;
  const QString error = u"ERROR: kein Empfang"_s;
  RunWithEveryFailure(
      CommandEmpfangen_Click,
      {
          {u"Empfangen.. | %1 | Empfangen abgebrochen"_s.arg(error), kPcValues, words},
          {u"Empfangen.. | %1 | Fehler bei: ANL[0] | Empfangen beendet"_s.arg(error), kPcValues, words},
          {u"Empfangen.. | %1 | Fehler bei: N1.... | Empfangen beendet"_s.arg(error), u"1500 65538 34 WXYZ"_s,
           words},
          {u"Empfangen... | %1 | Fehler bei: N2... | Empfangen beendet"_s.arg(error), u"1234 65536 34 WXYZ"_s,
           words},
          {u"Empfangen... | %1 | Fehler bei: N2... | Empfangen beendet"_s.arg(error), u"1234 65536 34 WXYZ"_s,
           words},
          {u"Empfangen.... | %1 | Fehler bei: N3.. | Empfangen beendet"_s.arg(error), u"1234 65538 45 WXYZ"_s,
           words},
          // A text keeps what could be read.
          {u"Empfangen..... | %1 | Fehler bei: N4[1]. | Empfangen beendet"_s.arg(error), u"1234 65538 34 "_s,
           words},
          {u"Empfangen..... | %1 | Fehler bei: N4[2]. | Empfangen beendet"_s.arg(error),
           u"1234 65538 34 WX"_s, words},
      },
      {u"Empfangen...... | Empfangen beendet"_s, u"1234 65538 34 WXYZ"_s, words});
}

TEST(FailingLine, Comparing) {
  const QString& values = kPcValues;
  const QString& words = kPcWords;
  const QString error = u"ERROR: kein Empfang"_s;
  RunWithEveryFailure(
      CommandVergleichen_Click,
      {
          {u"Vergleichen.. | %1 | Vergleich abgebrochen"_s.arg(error), values, words},
          {u"Vergleichen.. | %1 | Fehler bei: ANL[0] | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen.. | %1 | Fehler bei: N1.... | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen... | %1 | Fehler bei: N2... | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen... | %1 | Fehler bei: N2... | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen.... | %1 | Fehler bei: N3.. | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen..... | %1 | Fehler bei: N4[1]. | Vergleich beendet"_s.arg(error), values, words},
          {u"Vergleichen..... | %1 | Fehler bei: N4[2]. | Vergleich beendet"_s.arg(error), values, words},
      },
      {u"Vergleichen...... | Vergleich beendet"_s, values, words}, [](Site& site) {
        site.Store(0x1F00, {0x05DC, 0x0001, 0x0000, 0x112D, 0x4142, 0x4344});
      });
}

// The controller carries out what it does not acknowledge; only what was not asked of it any more stays.
TEST(FailingLine, Sending) {
  const QString& values = kPcValues;
  const QString error = u"ERROR: kein Empfang"_s;
  RunWithEveryFailure(
      CommandSenden_Click,
      {
          {u"Senden.. | Unbekannte ReglerVersion: %1 | Senden abgebrochen"_s.arg(error), values,
           kControllerWords},
          {u"Senden.. | %1 | Fehler bei: ANL[0] | Senden abgebrochen"_s.arg(error), values, kControllerWords},
          {u"Senden.. | %1 | Fehler bei: N1.... | Senden beendet"_s.arg(error), values, kPcWords},
          {u"Senden... | %1 | Fehler bei: N2... | Senden beendet"_s.arg(error), values,
           u"05DC 0001 0002 112D 4142 4344"_s},
          {u"Senden... | %1 | Fehler bei: N2... | Senden beendet"_s.arg(error), values, kPcWords},
          {u"Senden.... | %1 | Fehler bei: N3.. | Senden beendet"_s.arg(error), values,
           u"05DC 0001 0000 1122 4142 4344"_s},
          {u"Senden.... | %1 | Fehler bei: N3.. | Senden beendet"_s.arg(error), values, kPcWords},
          {u"Senden..... | %1 | Fehler bei: N4[1]. | Senden beendet"_s.arg(error), values,
           u"05DC 0001 0000 112D 4142 595A"_s},
          {u"Senden..... | %1 | Fehler bei: N4[2]. | Senden beendet"_s.arg(error), values, kPcWords},
      },
      {u"Senden...... | Senden beendet"_s, values, kPcWords});
}

TEST(FailingLine, ALineThatVanishesAtAnyTelegramEndsTheTransferOrderly) {
  struct {
    Command command;
    int telegrams;
    QString done, aborted;
  } const cases[] = {
      {CommandEmpfangen_Click, 8, u"Empfangen beendet"_s, u"Empfangen abgebrochen"_s},
      {CommandVergleichen_Click, 8, u"Vergleich beendet"_s, u"Vergleich abgebrochen"_s},
      {CommandSenden_Click, 9, u"Senden beendet"_s, u"Senden abgebrochen"_s},
  };
  for (const auto& example : cases) {
    for (int n = 1; n <= example.telegrams; ++n) {
      SCOPED_TRACE(testing::Message() << example.done.toStdString() << ", telegram " << n);
      Site site;
      site.faults.Plan(n, {sim::FaultKind::Unplug, 0, {}});
      example.command(site.core);
      // Without version, or to send without plant type, the transfer is given up.
      const bool aborts = n == 1 || (n == 2 && example.command == CommandSenden_Click);
      EXPECT_EQ(site.report.lines.last(), aborts ? example.aborted : example.done);
      EXPECT_EQ(site.Requests().size(), n) << "nothing more can be sent";
      EXPECT_FALSE(site.report.lines.filter(u"ERROR: COM 1 nicht verfügber"_s).isEmpty());
      EXPECT_EQ(TakeBoxes(site.box).size(), example.command == CommandSenden_Click && n >= 3 ? 1 : 0);
      EXPECT_TRUE(site.Rests());
    }
  }
}

}  // namespace
}  // namespace kalivor::test
