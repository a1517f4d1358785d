// The windows on a screen in memory: tree, report, printing.
#include <benchmark/benchmark.h>

#include <QApplication>

#include "WindowSite.h"
#include "core/Refresh.h"
#include "print/painter/PdfPrint.h"

namespace kalivor::bench {
namespace {

using namespace Qt::StringLiterals;

// What follows every transfer: the texts of all nodes, and the window painted with them.
void RebuildTree(benchmark::State& state, bool expanded) {
  WindowSite site(static_cast<int>(state.range(0)));
  for (int group = 0; group <= kGroups; ++group)
    site.desktop->module.NodeState[group] = expanded ? kTrue : kFalse;
  for (auto _ : state) {
    Refresh(site.desktop->core, 2);
    site.Repaint();
  }
  state.SetComplexityN(state.range(0));
}
void TreeCollapsed(benchmark::State& state) {
  RebuildTree(state, false);
}
void TreeExpanded(benchmark::State& state) {
  RebuildTree(state, true);
}
BENCHMARK(TreeCollapsed)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);
BENCHMARK(TreeExpanded)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// A receive of all parameters taken back, and done again, until the window is painted.
void Undo(benchmark::State& state) {
  WindowSite site(static_cast<int>(state.range(0)));
  ui::Desktop& desktop = *site.desktop;
  desktop.guard([&] {
    for (int i = 1; i < desktop.module.ParCount; ++i)
      desktop.module.SetNumber(i, desktop.module.Par[i].Wert + 1, ValueSource::Received);
    Refresh(desktop.core, 2);
  });
  bool undo = true;
  for (auto _ : state) {
    desktop.guard([&] { undo ? desktop.undo.Undo() : desktop.undo.Redo(); });
    undo = !undo;
    site.Repaint();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(Undo)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// Lines of a report that is shown, each painted at once.
void ReportAdd(benchmark::State& state) {
  WindowSite site(1);
  Report& report = site.desktop->report;
  report.Show();
  for (auto _ : state) {
    for (int i = 0; i < state.range(0); ++i)
      report.Add(u"Fehler bei: _Gruppe1Parameter1"_s);
    state.PauseTiming();
    report.OKButton_Click();
    report.Show();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ReportAdd)->Arg(1250)->Arg(2500)->Arg(5000)->Arg(10'000)->Iterations(1)->Complexity(benchmark::oN);

// Dots, as the walks add them: a line for every failure, here after each 2000 dots as many as a line ever
// has.
void ReportAddC(benchmark::State& state) {
  WindowSite site(1);
  Report& report = site.desktop->report;
  report.Show();
  for (auto _ : state) {
    for (int i = 0; i < state.range(0); ++i) {
      if (i % kLastParameter == 0) report.Add(u"Empfangen.."_s);
      report.AddC(u"."_s);
    }
    state.PauseTiming();
    report.OKButton_Click();
    report.Show();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ReportAddC)
    ->Arg(12'500)
    ->Arg(25'000)
    ->Arg(50'000)
    ->Arg(100'000)
    ->Iterations(1)
    ->Complexity(benchmark::oN);

// Landscape pages hold the fewest lines: as many parameters as fill 60 pages, which is the longest list.
constexpr int kPages = 60;
constexpr int kListLines = kPages * print::LinesPerPage(print::kLandscape) - 1;

struct PrintSite : WindowSite {
  PrintSite() : WindowSite(kLastParameter) {
    // The rest of the lines are groups: the more groups, the more lines.
    Module1& module = desktop->module;
    const int wanted = kListLines - 1 - (module.ParCount - 1);
    for (int i = 1; i < module.ParCount; ++i)
      module.Par[i].Rubrik = u"Gruppe %1"_s.arg(i * wanted / module.ParCount);
  }
};

void Pdf(benchmark::State& state) {
  PrintSite site;
  const QString file = site.folder.filePath(u"list.pdf"_s);
  const print::PrintInput input{{}, QDate(2026, 1, 1), print::kLandscape};
  const int pages = static_cast<int>(print::PagesText(site.desktop->core, input).count(u"=== Seite"));
  if (pages != kPages) state.SkipWithError("the list has not 60 pages");
  for (auto _ : state) {
    if (!print::PrintPdf(site.desktop->core, {input, file, 1, {}}).isEmpty())
      state.SkipWithError("cannot print");
  }
}
BENCHMARK(Pdf);

void PreviewTurn(benchmark::State& state) {
  PrintSite site;
  const print::PrintWorld world{site.desktop->core, site.printer, [] { return QString(); },
                                [] { return QDate(2026, 1, 1); }};
  print::MDIFormPrint frame(world, [](const std::function<void()>& handler) { handler(); });
  frame.ShowForm();
  frame.Initialize_MDIPP();
  QApplication::processEvents();
  bool forward = true;
  for (auto _ : state) {
    print::FormPrintPreview& preview = *frame.Preview();
    if (preview.Page == (forward ? kPages - 1 : 1)) forward = !forward;
    frame.Toolbar1_ButtonClick(forward ? u"fwd"_s : u"back"_s);
    QApplication::processEvents();
    preview.repaint();
  }
}
BENCHMARK(PreviewTurn);

}  // namespace
}  // namespace kalivor::bench

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
