// A history of so many entries: what adding, opening and looking for something take, and its size.
#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <functional>

#include "HistoryFile.h"
#include "history/Store.h"

using namespace Qt::StringLiterals;

namespace {

using namespace kalivor;
using namespace kalivor::history;

void Print(const char* name, double value) {
  std::printf("%s %.4f\n", name, value);
}

double Processor_ms() {
  return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

// The least processor time of some attempts: what was read once is in memory then.
void Measure(const char* name, const std::function<void()>& work) {
  double least_ms = 0;
  for (int i = 0; i < 3; ++i) {
    const double begin_ms = Processor_ms();
    work();
    const double took_ms = Processor_ms() - begin_ms;
    if (i == 0 || took_ms < least_ms) least_ms = took_ms;
  }
  Print(name, least_ms);
}

}  // namespace

// usage: bench-history ENTRIES [FILE]: adds so many, and prints a name and a figure in each line. FILE stays,
// for others to look at; without it a temporary one is used.
int main(int argc, char* argv[]) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const int entries = arguments.value(1).toInt();
  if (arguments.size() < 2 || entries < 0) return 2;
  const QTemporaryDir folder;
  const StoreWorld world{arguments.value(2, folder.filePath(u"Verlauf.sqlite"_s)), u"1.0"_s, u"PC-7"_s};

  if (entries > 0) {
    const bench::HistoryAdded added = bench::AddHistory(world.file, entries);
    Print("changes", static_cast<double>(added.changes));
    Print("add_ms", added.add_ms);
    Print("longest_add_ms", added.longestAdd_ms);
    Print("bytes_per_change",
          static_cast<double>(QFileInfo(world.file).size()) / static_cast<double>(added.changes));
  }
  Measure("open_writing_ms", [&] { (void)Store::Open(world, Access::Write); });
  Measure("open_reading_ms", [&] { (void)Store::Open(world, Access::Read); });
  const std::unique_ptr<Store> store = Store::Open(world, Access::Read).store;
  if (!store) return 1;
  std::vector<Entry> all;
  if (store->Entries().empty()) return 1;
  Measure("entries_ms", [&] { all = store->Entries(); });
  std::vector<Plant> plants;
  Measure("plants_ms", [&] { plants = store->Plants(); });
  Measure("entries_with_ms", [&] { (void)store->EntriesWith(bench::CurveVariable()); });
  QUuid plant;
  for (const Plant& each : plants)
    if (each.name == u"Heizwerk 1"_s) plant = each.id;
  std::size_t points = 0;
  Measure("curve_ms", [&] {
    points = store->Curve(plant, {bench::CurveVariable(), bench::CurveAddress()}).size();
  });
  Print("points", static_cast<double>(points));
  Measure("changes_ms", [&] { (void)store->Changes(all[all.size() / 2].id); });
  Measure("values_ms", [&] { (void)store->Values(all[all.size() / 2], true); });
  const double begin_ms = Processor_ms();
  const QStringList faults = store->Check();
  Print("check_ms", Processor_ms() - begin_ms);
  for (const QString& fault : faults)
    std::fprintf(stderr, "%s\n", qPrintable(fault));
  return faults.isEmpty() ? 0 : 1;
}
