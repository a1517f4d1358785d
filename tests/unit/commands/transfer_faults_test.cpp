// Every kind of fault at every exchange of a small transfer, with and without echo: the transfer ends, its
// report holds known lines only, and no wrong value passes unnoticed unless the telegram cannot show it.
#include <QRegularExpression>

#include "commands/TransferCommands.h"
#include "fakes/Installation.h"

namespace kalivor::test {
namespace {

/// A transfer hit by one fault.
struct FaultCase {
  sim::Fault fault;
  int position = 1;  ///< of the exchange that is hit, counted from 1
  bool echo = false;
  quint32 seed = 0;
};

// Version query, plant number, and one exchange for each word of the parameters; sending also reads the word
// that a byte shares, so it has one more.
constexpr int kExchanges = 9;
constexpr quint32 kSeeds = 4;

std::vector<sim::Fault> AllFaults() {
  using Kind = sim::FaultKind;
  return {{Kind::Silent, 0, {}},      {Kind::Late, 350, {}},      {Kind::Late, 450, {}},
          {Kind::LostByte, 0, {}},    {Kind::DoubledByte, 0, {}}, {Kind::FlippedBit, 0, {}},
          {Kind::BadChecksum, 0, {}}, {Kind::Split, 0, {}},       {Kind::Noise, 0, {}},
          {Kind::Error, 0, "02"},     {Kind::Error, 0, "06"},     {Kind::Error, 0, "99"},
          {Kind::WrongLength, 0, {}}, {Kind::EchoOnly, 0, {}},    {Kind::Unplug, 0, {}},
          {Kind::ForeignReply, 0, {}}};
}

/// The installation of one run; its controller holds other values than the PC.
class FaultyInstallation : public Installation {
 public:
  explicit FaultyInstallation(const FaultCase& run) : Installation(u"AB1-123.4"_s, {0, false, run.echo}) {
    faults = sim::Faults(run.seed);
    faults.Plan(run.position, run.fault);
    StartWithFiles();
  }

  /// The report names a failure of `variable`.
  [[nodiscard]] bool Reported(const QString& variable) const {
    return report.lines.join(u'\n').contains(u"Fehler bei: "_s + variable);
  }
};

void ExpectKnownLines(const QStringList& lines) {
  static const QRegularExpression known(
      u"^(Empfangen\\.\\.|Senden\\.\\.|Vergleichen\\.\\.|Empfangen beendet|Senden beendet|Vergleich beendet|"
      "(Empfangen|Senden|Vergleich) abgebrochen|Fehler bei: (ANL|N[1-4])(\\[[0-2]\\])?|"
      "Unbekannte ReglerVersion: .*|Änderung bei: .*|   PC    : .*|   Regler: .*|"
      "Empfangene Anlagennummer \\( \\d+\\) zu gross|"
      "ERROR: (kein Empfang|COM 1 nicht verfügber|ungültiger Empfang:  \\(.*\\)\\.| Checksumme Falsch|"
      "unvollständige Antwort: .*| Code .*))\\.*$"_s,
      QRegularExpression::DotMatchesEverythingOption);
  for (const QString& line : lines)
    EXPECT_TRUE(known.match(line).hasMatch()) << line.toStdString();
}

template <typename Check>
void ForEveryFault(Check&& check) {
  for (const sim::Fault& fault : AllFaults()) {
    for (int position = 1; position <= kExchanges; ++position) {
      for (const bool echo : {false, true}) {
        for (quint32 seed = 1; seed <= kSeeds; ++seed) {
          SCOPED_TRACE(testing::Message() << sim::FaultName(fault).toStdString() << " at exchange "
                                          << position << (echo ? " with echo" : "") << ", seed " << seed);
          check(FaultCase{fault, position, echo, seed});
          if (testing::Test::HasFailure()) return;
        }
      }
    }
  }
}

// A foreign reply is intact, so nothing can tell it from the right one: at most one value is wrong then.
int MostWrongValues(const sim::Fault& fault) {
  return fault.kind == sim::FaultKind::ForeignReply ? 1 : 0;
}

TEST(TransferFaults, ReceivingTakesOverNoWrongValueUnnoticed) {
  ForEveryFault([](const FaultCase& run) {
    FaultyInstallation pc(run);
    const Module1 before = pc.module;
    const TransferOutcome outcome = CommandEmpfangen_Click(pc.core);

    EXPECT_TRUE(pc.Rests());
    ExpectKnownLines(pc.report.lines);
    EXPECT_TRUE(pc.report.lines.last() == u"Empfangen beendet" ||
                pc.report.lines.last() == u"Empfangen abgebrochen");
    int wrong = 0;
    const qint32 held[] = {0, 0x04D2, 65538, 0x22};
    for (int i = 1; i <= 3; ++i) {
      const qint32 value = pc.module.Par[i].Wert;
      if (value == held[i]) continue;
      if (value == before.Par[i].Wert && (!outcome.transferred || pc.Reported(before.Par[i].Variable)))
        continue;
      ++wrong;
    }
    const QString text = pc.module.Par[4].WertText;
    if (text != u"WXYZ" && !pc.Reported(u"N4"_s) && !(text == before.Par[4].WertText && !outcome.transferred))
      ++wrong;
    EXPECT_LE(wrong, MostWrongValues(run.fault));
    (void)pc.box.Take();
  });
}

TEST(TransferFaults, SendingLeavesNoWrongWordUnnoticed) {
  ForEveryFault([](const FaultCase& run) {
    FaultyInstallation pc(run);
    const TransferOutcome outcome = CommandSenden_Click(pc.core);

    EXPECT_TRUE(pc.Rests());
    ExpectKnownLines(pc.report.lines);
    const struct {
      QString variable;
      quint16 address;
      quint16 sent;
      quint16 before;
    } words[] = {{u"N1"_s, 0x1F00, 1500, 0x04D2},   {u"N2"_s, 0x1F02, 1, 1},
                 {u"N2"_s, 0x1F04, 0, 2},           {u"N3"_s, 0x1F06, 0x112D, 0x1122},
                 {u"N4"_s, 0x1F08, 0x4142, 0x5758}, {u"N4"_s, 0x1F0A, 0x4344, 0x595A}};
    int wrong = 0;
    for (const auto& word : words) {
      const quint16 held = pc.memory.Word(word.address);
      if (held == word.sent) continue;
      if (held == word.before && (!outcome.transferred || pc.Reported(word.variable))) continue;
      ++wrong;
    }
    EXPECT_LE(wrong, MostWrongValues(run.fault));
    (void)pc.box.Take();
  });
}

TEST(TransferFaults, ComparingReportsNoDeviationThatIsNone) {
  ForEveryFault([](const FaultCase& run) {
    FaultyInstallation pc(run);
    pc.Store(0x1F00, {1500, 1, 0, 0x112D, 0x4142, 0x4344});
    const Module1 before = pc.module;
    const TransferOutcome outcome = CommandVergleichen_Click(pc.core);

    EXPECT_TRUE(pc.Rests());
    ExpectKnownLines(pc.report.lines);
    EXPECT_LE(outcome.walk.Deviations(), MostWrongValues(run.fault));
    if (run.fault.kind != sim::FaultKind::ForeignReply) {
      EXPECT_EQ(pc.module.Par, before.Par);
    }
    (void)pc.box.Take();
  });
}

}  // namespace
}  // namespace kalivor::test
