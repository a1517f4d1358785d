// The windows on a screen in memory: tree, parameter list, report, printing.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <optional>

#include "HistoryFile.h"
#include "WindowSite.h"
#include "core/Refresh.h"
#include "history/CurvePicture.h"
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

// What a receive of all parameters does with them: another value for each.
void ReceiveAll(ui::Desktop& desktop) {
  desktop.guard([&] {
    for (int i = 1; i < desktop.module.ParCount; ++i)
      desktop.module.SetNumber(i, desktop.module.Par[i].Wert + 1, ValueSource::Received);
    Refresh(desktop.core, 2);
  });
}

// A receive of all parameters taken back, and done again, until the window is painted.
void Undo(benchmark::State& state) {
  WindowSite site(static_cast<int>(state.range(0)));
  ui::Desktop& desktop = *site.desktop;
  ReceiveAll(desktop);
  bool undo = true;
  for (auto _ : state) {
    desktop.guard([&] { undo ? desktop.undo.Undo() : desktop.undo.Redo(); });
    undo = !undo;
    site.Repaint();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(Undo)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// The open list of all parameters. Each of them is checked, differs from its standard value, with which it is
// compared, is changed and outside its limits, so that every filter lets all pass.
struct ListSite : WindowSite {
  ListSite() : WindowSite(kLastParameter) {
    Module1& module = desktop->module;
    desktop->guard([&] {
      for (int i = 1; i < module.ParCount; ++i) {
        module.SetNumber(i, module.Par[i].Max + i, ValueSource::Edited);
        module.ParNode[i] = kTrue;
      }
    });
    desktop->main.findChild<QAction*>(u"mnuWerkzeugeListe"_s)->trigger();
    rows = Of<QAbstractItemView>(u"parameters"_s).viewport();
    rows->installEventFilter(&painting);
    auto& comparison = Of<QComboBox>(u"comparison"_s);
    Q_EMIT comparison.activated(1);
    Paint();
  }

  template <typename Widget>
  Widget& Of(const QString& name) const {
    return *desktop->list->findChild<Widget*>(name);
  }

  void SetFilters(bool pressed) const {
    for (const auto& name : {u"filterChecked"_s, u"filterDifferent"_s, u"filterNonStandard"_s,
                             u"filterChanged"_s, u"filterOutside"_s})
      Of<QPushButton>(name).setChecked(pressed);
  }

  // Waits until the rows are painted, and nothing is left to be done.
  void Paint() {
    painting.count = 0;
    while (painting.count == 0)
      QApplication::processEvents();
    QApplication::processEvents();
  }

  struct Painting : QObject {
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      if (event->type() == QEvent::Paint) ++count;
      return false;
    }
    int count = 0;
  };

  Painting painting;
  QWidget* rows = nullptr;
};

// One key in the search field, from the event until the rows are painted: the letter of that number of a
// word. Half of the words occur in every parameter, the others in ever fewer.
void ListTyping(benchmark::State& state) {
  constexpr std::array kWords{u"parameter", u"r123 _gru"};
  ListSite site;
  const QString word = QString::fromUtf16(kWords[static_cast<std::size_t>(state.range(1))]);
  const QString typed = word.left(state.range(0) - 1);
  const QString letter = word.sliced(state.range(0) - 1, 1);
  site.SetFilters(state.range(2) != 0);
  auto& search = site.Of<QLineEdit>(u"search"_s);
  for (auto _ : state) {
    state.PauseTiming();
    search.setText(u"nothing"_s);
    search.setText(typed);
    site.Paint();
    state.ResumeTiming();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, letter);
    QApplication::sendEvent(&search, &key);
    site.Paint();
  }
}
BENCHMARK(ListTyping)->ArgsProduct({benchmark::CreateDenseRange(1, 9, 1), {0, 1}, {0, 1}});

// Esc, which shows all again.
void ListClearing(benchmark::State& state) {
  ListSite site;
  auto& search = site.Of<QLineEdit>(u"search"_s);
  for (auto _ : state) {
    state.PauseTiming();
    search.setText(u"r1234"_s);
    site.Paint();
    state.ResumeTiming();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(site.desktop->list.get(), &key);
    site.Paint();
  }
}
BENCHMARK(ListClearing);

// A click on the heading of each column, which turns the order at every further one.
void ListSorting(benchmark::State& state) {
  ListSite site;
  auto& header = site.Of<QHeaderView>(u"columns"_s);
  const int column = static_cast<int>(state.range(0));
  header.showSection(column);
  header.setOffset(header.sectionPosition(column));
  const QPointF place(header.sectionSize(column) / 2.0, header.height() / 2.0);
  for (auto _ : state) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QMouseEvent click(type, place, header.viewport()->mapToGlobal(place), Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
      QApplication::sendEvent(header.viewport(), &click);
    }
    site.Paint();
  }
  if (header.sortIndicatorSection() != column) state.SkipWithError("the click sorted by another column");
}
BENCHMARK(ListSorting)->DenseRange(0, kListColumns - 1);

// What every event costs while the list is open, though it changes nothing.
void ListUpdate(benchmark::State& state) {
  const ListSite site;
  for (auto _ : state)
    site.desktop->list->Update();
}
BENCHMARK(ListUpdate);

// A receive taken back, and done again, with the list open.
void ListUndo(benchmark::State& state) {
  ListSite site;
  ui::Desktop& desktop = *site.desktop;
  ReceiveAll(desktop);
  bool undo = true;
  for (auto _ : state) {
    desktop.guard([&] { undo ? desktop.undo.Undo() : desktop.undo.Redo(); });
    undo = !undo;
    site.Paint();
  }
}
BENCHMARK(ListUndo);

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

// The window with a history of this many entries. The file is the one of KALIVOR_BENCH_HISTORY, as
// bench-history leaves it, because making it takes longer than all measurements; else a small one.
struct HistorySite {
  HistorySite() {
    if (!qEnvironmentVariableIsSet("KALIVOR_BENCH_HISTORY")) AddHistory(file, kFewEntries);
    site.emplace(kHistoryParameters, file);
    Open();
  }

  void Open() const {
    site->desktop->main.findChild<QAction*>(u"mnuWerkzeugeVerlauf"_s)->trigger();
    QApplication::processEvents();
  }

  [[nodiscard]] QLineEdit& Search() const {
    return *site->desktop->history->findChild<QLineEdit*>(u"search"_s);
  }

  static constexpr int kFewEntries = 100;
  QTemporaryDir folder;
  QString file = qEnvironmentVariable("KALIVOR_BENCH_HISTORY", folder.filePath(u"Verlauf.sqlite"_s));
  std::optional<WindowSite> site;
};

// From the menu until the window is painted.
void HistoryOpening(benchmark::State& state) {
  const HistorySite history;
  for (auto _ : state) {
    state.PauseTiming();
    history.site->desktop->history.reset();
    state.ResumeTiming();
    history.Open();
  }
}
BENCHMARK(HistoryOpening)->Unit(benchmark::kMillisecond);

// A letter that narrows the search, and taking it back.
void HistoryTyping(benchmark::State& state) {
  const HistorySite history;
  history.Search().setText(u"heizwerk"_s);
  QApplication::processEvents();
  bool longer = true;
  for (auto _ : state) {
    history.Search().setText(longer ? u"heizwerk 1"_s : u"heizwerk"_s);
    QApplication::processEvents();
    longer = !longer;
  }
}
BENCHMARK(HistoryTyping)->Unit(benchmark::kMillisecond);

// The first letter makes the texts that are searched.
void HistoryFirstLetter(benchmark::State& state) {
  const HistorySite history;
  for (auto _ : state) {
    state.PauseTiming();
    history.site->desktop->history.reset();
    history.Open();
    state.ResumeTiming();
    history.Search().setText(u"h"_s);
    QApplication::processEvents();
  }
}
BENCHMARK(HistoryFirstLetter)->Unit(benchmark::kMillisecond);

void CurveOfManyPoints(benchmark::State& state) {
  history::Curve curve{u"Solltemperatur"_s, u"°C"_s, 1};
  const QDateTime first(QDate(2020, 1, 1), QTime(0, 0));
  for (int i = 0; i < state.range(0); ++i) {
    const QDateTime time = first.addSecs(i * 3600LL);
    curve.points.push_back({{}, time, time.toMSecsSinceEpoch(), i * 7919 % 1000 / 10.0});
  }
  for (auto _ : state)
    benchmark::DoNotOptimize(history::CurvePicture(curve, {760, 360}, 5));
}
BENCHMARK(CurveOfManyPoints)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

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
