// Each kind of fault between the two real programs: the transfer ends with a status that fits its report.
#include "e2e/Programs.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

struct FaultyLine {
  QString fault;
  bool echo;
};

void PrintTo(const FaultyLine& line, std::ostream* out) {
  *out << line.fault.toStdString();
}

class FaultyLines : public testing::TestWithParam<FaultyLine> {};

TEST_P(FaultyLines, EndWithAStatusThatFitsTheReport) {
  QStringList options = {u"--seed"_s, u"7"_s, u"--fault"_s, GetParam().fault + u":0.4:6"_s};
  if (GetParam().echo) options.append(u"--echo"_s);
  const Simulator simulator(options);
  const Outcome outcome =
      Cli(simulator.Device())
          .Run({u"receive"_s, u"--uncheck"_s, u"all"_s, u"--check"_s, u"group=Warmwasser"_s});
  const bool finished = outcome.out.endsWith(u"\nEmpfangen beendet\n"_s);
  const bool failed = outcome.out.contains(u"Fehler bei"_s);
  const bool otherPlant = failed && outcome.out.contains(u"ANLAGE"_s);
  const int expected = !finished || otherPlant ? 3 : failed ? 1 : 0;
  EXPECT_EQ(outcome.status, expected) << outcome.out.toStdString() << outcome.err.toStdString();
  EXPECT_TRUE(finished || outcome.out.endsWith(u"\nEmpfangen abgebrochen\n"_s)) << outcome.out.toStdString();
}

std::vector<FaultyLine> AllLines() {
  std::vector<FaultyLine> lines;
  for (const QString& fault : {u"silent"_s, u"late:350"_s, u"late:450"_s, u"lost-byte"_s, u"doubled-byte"_s,
                               u"flipped-bit"_s, u"bad-checksum"_s, u"split"_s, u"noise"_s, u"error-06"_s,
                               u"wrong-length"_s, u"echo-only"_s, u"unplug"_s}) {
    lines.push_back({fault, false});
    lines.push_back({fault, true});
  }
  return lines;
}

INSTANTIATE_TEST_SUITE_P(Each, FaultyLines, testing::ValuesIn(AllLines()), [](const auto& test) {
  QString name = test.param.fault + (test.param.echo ? u"_echo"_s : u""_s);
  return name.replace(u'-', u'_').replace(u':', u'_').toStdString();
});

TEST(FaultySimulator, AcknowledgesWritesThatItDoesNotKeep) {
  const Simulator simulator({u"--fault"_s, u"ignore-write"_s});
  Cli cli(simulator.Device());
  const QStringList edited = {u"--set"_s,   u"_Hk1RaumSollTag=22.5"_s, u"--uncheck"_s, u"all"_s,
                              u"--check"_s, u"_Hk1RaumSollTag"_s};
  EXPECT_EQ(cli.Run(QStringList(u"send"_s) + edited).status, 0);
  EXPECT_EQ(cli.Run(QStringList(u"compare"_s) + edited).status, 1);
}

TEST(FaultySimulator, IsAnotherControllerFromATelegramOn) {
  const Simulator simulator({u"--fault"_s, u"swap:2"_s});
  Cli cli(simulator.Device());
  const QString first = cli.Run({u"identify"_s}).out;
  const QString second = cli.Run({u"identify"_s}).out;
  EXPECT_NE(first, second);
  EXPECT_EQ(cli.Run({u"identify"_s}).out, second);
}

}  // namespace
}  // namespace kalivor::test
