// Fixed pieces of work, of which script/bench counts the instructions: "start", "receive" or "tree". "build"
// tells what the counts depend on besides the program.
#include <QApplication>
#include <cstdio>
#include <string_view>

#include "WindowSite.h"
#include "commands/TransferCommands.h"
#include "core/ChangeLog.h"
#include "core/Refresh.h"
#include "sim/SimulatedLine.h"
#include "ui/about/frmSplash.h"

namespace kalivor::bench {
namespace {

using namespace Qt::StringLiterals;

// From the splash screen to the drawn main window.
bool Start(int argc, char** argv) {
  const QApplication application(argc, argv);
  ui::frmSplash splash;
  splash.ShowNow();
  WindowSite site(kLastParameter);
  splash.close();
  site.Repaint();
  return site.desktop->module.ParCount == kLastParameter + 1;
}

// All parameters over a line in virtual time, recorded as one step.
bool ReceiveAll() {
  test::FakeClock clock;
  sim::Memory memory;
  sim::Controller station(memory, 1, FixedText<2>(u"WR"_s), *sim::VersionPayload(u"AB1-123.4"_s));
  sim::Faults faults;
  sim::LineModel model(station, faults, {});
  sim::SimulatedLine line(clock, model);
  Site site(line, clock);
  site.files.files[kDefinitions] = DefinitionFile(kLastParameter);
  site.Start();
  (void)site.controller.Configure(kSlot, kSettings9600);
  ChangeLog changes(site.module);
  changes.Begin();
  const TransferOutcome outcome = CommandEmpfangen_Click(site.core);
  changes.End();
  return outcome.transferred && outcome.walk.Failures() == 0;
}

bool RebuildTree(int argc, char** argv) {
  constexpr int kTimes = 10;
  const QApplication application(argc, argv);
  WindowSite site(kLastParameter);
  for (int i = 0; i < kTimes; ++i) {
    Refresh(site.desktop->core, 2);
    site.Repaint();
  }
  return site.desktop->main.Tree().Count() == kLastParameter + kGroups + 1;
}

}  // namespace
}  // namespace kalivor::bench

int main(int argc, char** argv) {
  using namespace kalivor::bench;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const std::string_view work = argc == 2 ? argv[1] : "";
  bool done = false;
  if (work == "build") done = std::printf(KALIVOR_BUILD ", gcc " __VERSION__ ", Qt %s\n", qVersion()) > 0;
  if (work == "start") done = Start(argc, argv);
  if (work == "receive") done = ReceiveAll();
  if (work == "tree") done = RebuildTree(argc, argv);
  if (!done) std::fputs("bench-work: the work was not done\n", stderr);
  return done ? 0 : 1;
}
