// How long safe transfers take on a line of 9600 baud: counted by the clock of the simulated line.
#include "commands/TransferCommands.h"
#include "core/Refresh.h"
#include "core/SafeTransfer.h"
#include "fakes/Installation.h"
#include "fakes/NullForms.h"

namespace kalivor::test {
namespace {

constexpr int kParameters = 1999;  // all that a table holds
// What 26 characters of a read or a write and the pause behind them take.
constexpr double kExchange_s = 26 * 10 / 9600.0 + 0.020;

class NothingKept final : public SafeKeeper {
 public:
  QString Begin(const Module1& /*module*/, SafeRun& /*run*/) override { return {}; }
  QString Before(quint16 /*address*/) override { return {}; }
  void End(const SafeRun& /*run*/) override {}
};

class SafeTransferTime : public testing::Test, protected Installation {
 protected:
  SafeTransferTime() : Installation(u"AB1-123.4"_s, {9600, true, false}) {
    SetVersions({u"AB1-123.4  -  A.TXT  Luft -  WR"_s});
    QStringList lines{u"NoRubrik  Anlage  0  9  0  -  0  0  int  1000  ANL  -  -"_s};
    for (int i = 1; i <= kParameters; ++i) {
      const int address = 0x2000 + 2 * i;
      lines.append(u"G  P%1  0  9999  0  -  0  0  int  %2  P%1  -  -"_s.arg(i).arg(
          QString::number(address, 16).toUpper()));
    }
    SetDefinitions(u"A.TXT"_s, lines);
    Start();
  }

  /// Gives the first `count` parameters another value than the controller has.
  void Change(int count) {
    for (int i = 1; i <= count; ++i)
      module.SetNumber(i, module.Par[i].Wert + 1, ValueSource::Edited);
  }

  /// Seconds on the line that `work` takes.
  template <typename Work>
  double Took(Work work) {
    const double before = clock.passed;
    work();
    return clock.passed - before;
  }

  double SafeSend(int expected) {
    return Took([&] {
      PlainProgress form;
      NothingKept keeper;
      SafeRun run = WantedOfTable(module, SafeKind::Send);
      ReadWords(core, run, form);
      WriteWords(core, run, keeper, form);
      EXPECT_EQ(run.error, QString());
      EXPECT_EQ(run.Count(SafeState::Verified), expected);
    });
  }
};

TEST_F(SafeTransferTime, AFewValuesTakeHalfOfSendingAndComparing) {
  Change(10);
  const double safe_s = SafeSend(10);
  Change(10);
  const double plain_s = Took([&] { EXPECT_TRUE(CommandSenden_Click(core).transferred); }) +
                         Took([&] { EXPECT_TRUE(CommandVergleichen_Click(core).transferred); });
  RecordProperty("safe_ms", static_cast<int>(safe_s * 1000));
  RecordProperty("plain_ms", static_cast<int>(plain_s * 1000));
  EXPECT_LE(safe_s, 0.55 * plain_s);
}

TEST_F(SafeTransferTime, AllValuesTakeTheirTelegramsAndPauses) {
  Change(kParameters);
  const double safe_s = SafeSend(kParameters);
  // Each word is read twice as it differs, read again before it is written, written, and read back.
  const double needed_s = 5 * kParameters * kExchange_s;
  RecordProperty("safe_ms", static_cast<int>(safe_s * 1000));
  RecordProperty("needed_ms", static_cast<int>(needed_s * 1000));
  EXPECT_LE(safe_s, 1.02 * needed_s);
}

}  // namespace
}  // namespace kalivor::test
