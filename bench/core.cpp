// Files, tables and the report's rules, without windows.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "Site.h"
#include "core/DefinitionFiles.h"
#include "core/ParameterList.h"
#include "core/Refresh.h"
#include "core/TransferReport.h"
#include "core/TreeTexts.h"
#include "core/ValueFiles.h"
#include "history/Filter.h"
#include "history/Recorder.h"
#include "platform/posix/PosixFileSystem.h"

namespace kalivor::bench {
namespace {

using namespace Qt::StringLiterals;

// Before the site, which connects itself with the line.
struct NoWorld {
  test::NoLine noLine;
  test::FakeClock clock;
};

// A site that reads its definitions from real files, as the program does.
struct FileSite : NoWorld, Site {
  FileSite(int parameters, int addressLines) : Site(noLine, clock) {
    Write(u"VF.INI"_s, VersionTable(addressLines > 0));
    Write(u"DEF.TXT"_s, DefinitionFile(parameters));
    if (addressLines > 0) Write(u"LIST.ADR"_s, AddressList(addressLines));
    module.Inipath = folder.path();
    Refresh(onDisk.core, 5);
    Refresh(onDisk.core, 4);
  }

  void Write(const QString& name, const QByteArray& content) const {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) std::abort();
  }

  QTemporaryDir folder;
  platform::PosixFileSystem disk;
  Wiring onDisk{module, timers, noLine, {main, report, choice, editors, box, disk, events}};
};

void DefinitionFiles(benchmark::State& state) {
  FileSite site(static_cast<int>(state.range(0)), 0);
  for (auto _ : state)
    ReadSelectedDefinitions(site.onDisk.core);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(DefinitionFiles)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

void AddressLists(benchmark::State& state) {
  FileSite site(kLastParameter, static_cast<int>(state.range(0)));
  for (auto _ : state)
    ReadSelectedAddresses(site.onDisk.core);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(AddressLists)->Arg(1000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Complexity(benchmark::oN);

struct ValueSite : NoWorld, Site {
  explicit ValueSite(int parameters) : Site(noLine, clock) {
    files.files[kDefinitions] = DefinitionFile(parameters);
    Start();
    WriteValueFile(core);
  }
};

void ValueFileWriting(benchmark::State& state) {
  ValueSite site(static_cast<int>(state.range(0)));
  for (auto _ : state)
    WriteValueFile(site.core);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ValueFileWriting)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// With the rebuilding of a tree without window.
void ValueFileReading(benchmark::State& state) {
  ValueSite site(static_cast<int>(state.range(0)));
  for (auto _ : state)
    ReadValueFile(site.core);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ValueFileReading)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// The table against a file that it was saved to; every eighth value differs.
void ValueSetComparing(benchmark::State& state) {
  ValueSite site(static_cast<int>(state.range(0)));
  const ValueSet left = TableValues(site.module);
  const SetResult file = ReadFileValues(site.files, site.module.Dateiname);
  ValueSet right = file.set;
  for (std::size_t i = 0; i < right.values.size(); i += 8)
    ++right.values[i].value.number;
  for (auto _ : state)
    benchmark::DoNotOptimize(CompareSets(site.module, left, right));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ValueSetComparing)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// What opening the list and sorting it by name cost without their window.
void ListRowMaking(benchmark::State& state) {
  const ValueSite site(static_cast<int>(state.range(0)));
  const ValueSet standard = StandardValues(site.module);
  for (auto _ : state)
    benchmark::DoNotOptimize(ListRows(site.module, &standard));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ListRowMaking)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

void ListRowSorting(benchmark::State& state) {
  const ValueSite site(static_cast<int>(state.range(0)));
  const std::vector<ListRow> rows = ListRows(site.module, nullptr);
  for (auto _ : state) {
    std::vector<ListKey> keys;
    keys.reserve(rows.size());
    for (const ListRow& row : rows)
      keys.push_back(KeyOf(site.module, row, ListColumn::Name));
    std::ranges::sort(keys, std::less<>());
    benchmark::DoNotOptimize(keys);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ListRowSorting)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oNLogN);

// For how long a transfer's end is held up by its entry in the history, which is added elsewhere.
void DeedRecording(benchmark::State& state) {
  ValueSite site(static_cast<int>(state.range(0)));
  const QTemporaryDir folder;
  history::Recorder recorder({site.core,
                              site.wiring.host.Exchanges,
                              {},
                              {history::FileIn(folder.path()), {}, {}},
                              [](const QString&) {}});
  history::HistorySettings settings;
  settings.keeps = true;
  recorder.Use(settings);
  WalkResult walk;
  for (int i = 1; i < site.module.ParCount; ++i)
    walk.results.push_back({i, ParameterResult::Outcome::Received});
  for (auto _ : state) {
    site.core.OnDeed.Tell({.kind = DeedKind::Received, .walk = &walk});
    state.PauseTiming();
    recorder.Settle();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(DeedRecording)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Complexity(benchmark::oN);

// A keystroke in the search of so many entries.
void EntryFiltering(benchmark::State& state) {
  std::vector<history::Entry> entries(static_cast<std::size_t>(state.range(0)));
  for (history::Entry& entry : entries) {
    entry.id = QUuid::createUuid();
    entry.stamp.time = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC);
    entry.version = u"HZL-012.0"_s;
    entry.outcome = u"1990 Werte, 9 nicht gelesen"_s;
    entry.port = u"COM1 /dev/ttyUSB0"_s;
  }
  const std::vector<QString> texts = history::SearchedTexts(entries, {}, {});
  history::EntryFilter filter;
  filter.words = SearchWords(u"werte meier"_s);
  for (auto _ : state) {
    qsizetype shown = 0;
    for (std::size_t i = 0; i < entries.size(); ++i)
      shown += Shows(filter, entries[i], texts[i]) ? 1 : 0;
    benchmark::DoNotOptimize(shown);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(EntryFiltering)->Arg(1250)->Arg(2500)->Arg(5000)->Arg(10000)->Complexity(benchmark::oN);

}  // namespace
}  // namespace kalivor::bench

BENCHMARK_MAIN();
