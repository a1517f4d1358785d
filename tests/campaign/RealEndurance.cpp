// The real serial port, clock and files; only the user is missing.
#include "campaign/RealEndurance.h"

#include <unistd.h>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "campaign/Pc.h"
#include "campaign/Usage.h"
#include "commands/TransferCommands.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixSerialControl.h"
#include "platform/posix/SystemClock.h"
#include "sim/Line.h"

using namespace Qt::StringLiterals;

namespace kalivor::campaign {
namespace {

// What the allocator and the kernel may keep on top without it being growth: a page here and there.
constexpr qint64 kAllowance_kib = 512;

// Counts the telegrams, as each opens the port once.
class CountedLine final : public platform::SerialControl {
 public:
  qint64 openings = 0;

  explicit CountedLine(platform::SerialControl& line) : line_(line) {
    line_.OnComm = [this] {
      if (OnComm) OnComm();
    };
  }

  [[nodiscard]] bool Open(int number, const QString& settings) override {
    ++openings;
    return line_.Open(number, settings);
  }
  void Close() override { line_.Close(); }
  [[nodiscard]] bool IsOpen() const override { return line_.IsOpen(); }
  bool SetRts(bool raised) override { return line_.SetRts(raised); }
  bool ClearInBuffer() override { return line_.ClearInBuffer(); }
  bool ClearOutBuffer() override { return line_.ClearOutBuffer(); }
  void SetSThreshold(int characters) override { line_.SetSThreshold(characters); }
  void Output(const QByteArray& characters) override { line_.Output(characters); }
  [[nodiscard]] int InBufferCount() override { return line_.InBufferCount(); }
  [[nodiscard]] QByteArray Input() override { return line_.Input(); }
  [[nodiscard]] platform::InputWait WaitForInput(double seconds) override {
    return line_.WaitForInput(seconds);
  }
  [[nodiscard]] int CommEvent() override { return line_.CommEvent(); }

 private:
  platform::SerialControl& line_;
};

struct Round {
  const char* name;
  TransferOutcome (*command)(Core&);
  QString end;
};

// What went wrong in one transfer, "" for nothing.
QString RunOne(Pc& pc, const Round& round) {
  pc.report.OKButton_Click();
  const TransferOutcome outcome = round.command(pc.core);
  if (!outcome.transferred || outcome.walk.Failures() != 0 || pc.view.lines.last() != round.end) {
    return pc.view.lines.join(u'\n');
  }
  if (!pc.box.texts.isEmpty()) return pc.box.texts.join(u'\n');
  return pc.Rests() ? QString() : u"the program is not at rest"_s;
}

}  // namespace

int RunRealEndurance(double seconds) {
  const QTemporaryDir folder;
  QString device = folder.filePath(u"regler"_s);
  QProcess simulator;
  simulator.start(QStringLiteral(KALIVOR_BINARY_DIR "/src/kalivor-sim"),
                  {u"--ini-path"_s, QStringLiteral(KALIVOR_SOURCE_DIR "/examples"), u"--link"_s, device});
  if (!simulator.waitForStarted() || (!simulator.canReadLine() && !simulator.waitForReadyRead(60'000))) {
    (void)std::fprintf(stderr, "kalivor-sim does not start\n");
    return 1;
  }

  platform::SystemClock clock;
  platform::PosixFileSystem files;
  platform::PosixSerialControl port([&device](int) { return device; });
  CountedLine line(port);
  Pc pc(line, clock, files);
  pc.module.Inipath = QStringLiteral(KALIVOR_SOURCE_DIR "/examples");
  pc.Start();
  constexpr int few = 20;
  for (int i = few; seconds <= 0 && i <= kLastParameter; ++i)
    pc.module.ParNode[i] = kFalse;

  const Round rounds[] = {{"receive", CommandEmpfangen_Click, u"Empfangen beendet"_s},
                          {"compare", CommandVergleichen_Click, u"Vergleich beendet"_s},
                          {"send", CommandSenden_Click, u"Senden beendet"_s}};
  Course own, far;
  int transfers = 0;
  double shown = 0;
  const double start = sim::Line::Seconds();
  for (int number = 0; number < 2 || sim::Line::Seconds() - start < seconds; ++number) {
    for (const Round& round : rounds) {
      const QString fault = RunOne(pc, round);
      if (!fault.isEmpty()) {
        (void)std::fprintf(stderr, "round %d, %s:\n%s\n", number, round.name, qPrintable(fault));
        return 1;
      }
      ++transfers;
    }
    const double passed = sim::Line::Seconds() - start;
    // The first round touches everything for the first time.
    own.Add(UsageOf(getpid()));
    far.Add(UsageOf(simulator.processId()));
    if (passed - shown >= 60) {
      shown = passed;
      std::printf("%5.0f min: %d transfers, %lld telegrams; %s\n", passed / 60, transfers,
                  static_cast<long long>(line.openings), qPrintable(own.Text()));
      (void)std::fflush(stdout);
    }
  }
  const double passed = sim::Line::Seconds() - start;
  simulator.terminate();
  simulator.waitForFinished(60'000);

  std::printf("%.1f s in real time: %d transfers, %lld openings of the port, one a telegram\n", passed,
              transfers, static_cast<long long>(line.openings));
  std::printf("  the program:             %s\n", qPrintable(own.Text()));
  std::printf("  the simulated controller: %s\n", qPrintable(far.Text()));
  const bool constant = own.Constant(kAllowance_kib) && far.Constant(kAllowance_kib);
  std::printf("%s\n", constant ? "constant" : "NOT CONSTANT");
  return constant ? 0 : 1;
}

}  // namespace kalivor::campaign
