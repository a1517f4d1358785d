// `history` as text: the entries, their changed values, and whether the file is sound.
#pragma once

#include <memory>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Cli.h"
#include "cli/Output.h"
#include "history/Filter.h"
#include "platform/MessageBox.h"

namespace kalivor::cli {

/// Reads the file of --history, or the user's. Each command returns an ExitStatus; they throw BadInput, also
/// where there is no history yet.
class HistoryRun {
 public:
  /// Everything must outlive it.
  HistoryRun(World& world, platform::MessageBox& box, const Arguments& arguments);

  int List();
  int Show();
  int Export();
  int Check();

 private:
  void Open();
  void Read();
  /// What was read is whole, or the user hears why not.
  void RequireRead();
  [[nodiscard]] std::vector<history::Entry> Chosen();
  [[nodiscard]] QSet<QUuid> PlantsNamed(const QString& name) const;
  [[nodiscard]] const history::Entry& Named(const QString& beginning) const;
  [[nodiscard]] Row RowOf(const history::Entry& entry) const;
  void SaveValues(const history::Entry& entry);
  int Print(const QByteArray& text);

  World& world_;
  platform::MessageBox& box_;
  const Arguments& arguments_;
  std::unique_ptr<history::Store> store_;
  std::vector<history::Plant> plants_;
  std::vector<history::Entry> entries_;
  std::vector<history::Remark> remarks_;
};

/// Where the history of this run is: the file of --history, or the user's.
[[nodiscard]] history::StoreWorld HistoryPlace(const World& world, const Arguments& arguments);

}  // namespace kalivor::cli
