// What was done with which controller, when, and what it changed.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/BackupText.h"
#include "core/Core.h"
#include "core/ValueSets.h"
#include "history/HistorySettings.h"
#include "history/Proposal.h"
#include "history/ServiceReport.h"
#include "history/Store.h"
#include "history/Writer.h"
#include "ui/history/CurveWindow.h"
#include "ui/history/EntryFilterBar.h"
#include "ui/history/EntryView.h"
#include "ui/history/KeepingBar.h"
#include "ui/history/PlantDialog.h"
#include "ui/history/PlantsView.h"
#include "ui/list/ExportMenu.h"

namespace kalivor::ui {

/// What the window works with. Everything must outlive it.
struct HistorySurroundings {
  Core& core;
  platform::SettingsStore& settings;
  platform::EventGuard guard;  ///< runs what the user sets off
  history::StoreWorld place;   ///< of the file that is read

  std::function<history::HistorySettings()> used = {};
  std::function<void(const history::HistorySettings& settings)> use = {};

  /// Adds to the history without waiting for it; `added` runs in the window's thread when it is done.
  std::function<void(history::Writer::Task task, std::function<void()> added)> add = {};

  std::vector<ListExport> exports = {};
  std::function<void(ValueSet values)> compare = {};                    ///< with those of the PC
  std::function<void(const QByteArray& image)> saveValues = {};         ///< asks for a value file
  std::function<void(const QString& svg)> savePicture = {};             ///< asks for a file
  std::function<void(const Backup& backup)> restore = {};               ///< into the controller
  std::function<void(const history::ServiceVisit& visit)> report = {};  ///< for a customer
  std::function<void()> synchronize = {};                               ///< with a department's server
};

/// Reads the history with a connection of its own while it is open. Keeps its place and columns in the
/// settings, under "VerlaufPlatz", "VerlaufSpalten", "VerlaufBreiten" and "VerlaufHoehen".
class HistoryWindow final : public Form {
 public:
  explicit HistoryWindow(HistorySurroundings surroundings);

  void Open();

  /// Shows what has been added since, whoever did; nothing while the window is closed. To be called after
  /// every event.
  void Update();

  /// The windows that belong to this one.
  [[nodiscard]] std::vector<Form*> Companions() { return {&curve_, &plantDialog_, &plantForm_}; }

  /// The entries of a day and the plant that is chosen, for a report without choosing entries.
  [[nodiscard]] history::ServiceVisit VisitOf(const QDate& day);

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  [[nodiscard]] platform::EventGuard WhenReady() const;
  [[nodiscard]] KeepingBar* NewKeeping();
  [[nodiscard]] PlantsView* NewPlants();
  [[nodiscard]] EntryFilterBar* NewFilters();
  [[nodiscard]] QWidget* NewEntriesSide();
  [[nodiscard]] QLayout* NewCommandRow();
  QPushButton* NewCommand(const QString& name, const QString& caption, const std::function<void()>& command);
  void OrderTabs();

  // What is read.
  void Reload();
  [[nodiscard]] bool OpenStore();
  void ShowKeeping();
  void TakeFilter();
  void ShowCount();
  void ShowEntry();
  void ShowCommands();
  [[nodiscard]] QStringList ParameterNames() const;

  [[nodiscard]] const history::Entry* Current() const;
  [[nodiscard]] std::vector<history::Entry> Chosen() const;
  void GoTo(const QUuid& entry);

  // Commands.
  void Change(const std::function<void(history::HistorySettings& settings)>& change);
  void Add(history::Writer::Task task, std::function<void()> added = {});
  void ChoosePlant();
  void Describe(const history::Plant& plant);
  void AskForNewPlant(const QString& name, std::function<void(const QUuid& plant)> then);
  void Assign();
  void AssignTo(const std::vector<history::Entry>& entries, const QUuid& plant);
  void CompareEntry();
  void SaveEntry();
  void RestoreEntry();
  void Report();
  void ShowCurve(const history::Change& change);
  void Copy(const ListTable& table);
  [[nodiscard]] ListTable EntriesTable() const;
  [[nodiscard]] history::ServiceVisit VisitOf(const std::vector<history::Entry>& entries);
  [[nodiscard]] history::SeenController SeenNow() const;
  [[nodiscard]] QUuid ProposedPlant(QString& doubt);
  [[nodiscard]] PlantQuestion WhichPlant();

  HistorySurroundings surroundings_;
  std::unique_ptr<history::Store> store_;
  QString unreadable_;      // why there is no store, "" where there is one or none was begun
  qint64 generation_ = -1;  // of the store that is shown
  bool waits_ = false;      // until the writer has come so far
  QUuid shownEntry_;
  std::function<void(const QUuid& plant)> withPlant_;  // what the plant that is being described is for

  EntriesModel entries_;
  CurveWindow curve_;
  PlantDialog plantDialog_;
  PlantForm plantForm_;

  KeepingBar* keeping_ = nullptr;
  PlantsView* plants_ = nullptr;
  EntryFilterBar* filters_ = nullptr;
  QSplitter* sides_ = nullptr;
  QSplitter* halves_ = nullptr;
  QTableView* table_ = nullptr;
  QLabel* count_ = nullptr;
  EntryView* entry_ = nullptr;
  QPushButton* compare_ = nullptr;
  QPushButton* save_ = nullptr;
  QPushButton* restore_ = nullptr;
  QPushButton* report_ = nullptr;
  QPushButton* export_ = nullptr;
  QPushButton* synchronize_ = nullptr;
  QPushButton* close_ = nullptr;
};

}  // namespace kalivor::ui
