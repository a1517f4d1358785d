// The parameter list: finding, comparing, choosing and editing parameters.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <array>
#include <functional>
#include <optional>

#include "commands/Selections.h"
#include "core/ControllerValues.h"
#include "core/Core.h"
#include "platform/FileDialogs.h"
#include "platform/SettingsStore.h"
#include "platform/qt/ElidedLabel.h"
#include "platform/qt/EventGuard.h"
#include "ui/list/ChoiceBox.h"
#include "ui/list/ExportMenu.h"
#include "ui/list/ParameterListModel.h"
#include "ui/list/ParameterListProxy.h"
#include "ui/list/ParameterListView.h"

namespace kalivor::ui {

/// What the list works with. Everything must outlive it.
struct ListWorld {
  Core& core;
  platform::FileDialogs& dialogs;
  ProgressForm& progress;
  Selections& selections;
  platform::EventGuard guard;                ///< runs what the user sets off
  std::function<bool(int index)> isChanged;  ///< since it was loaded or received; empty: nothing is
  std::vector<ListExport> exports;
};

/// It keeps nothing but how it is shown and what it compares with. The marks are the tree's.
class ParameterListWindow final : public QMainWindow {
 public:
  explicit ParameterListWindow(ListWorld world);
  ~ParameterListWindow() override;
  ParameterListWindow(const ParameterListWindow&) = delete;
  ParameterListWindow& operator=(const ParameterListWindow&) = delete;

  /// Shows the list in front, with the keyboard in its table or in its search field.
  void Open();
  void OpenSearch();

  /// Shows all parameters that are outside their limits, and no others.
  void OpenOutside();

  /// Shows the list compared with this set of a file, whose name is its path. A version that nobody knows is
  /// told in a box.
  void OpenCompared(ValueSet set);

  /// Takes over what has changed since; nothing while the window is closed. To be called after every event.
  void Update();

  /// Drops a value that is being typed.
  void CloseEditor() { view_->CloseEditor(); }

  /// Place and columns.
  void Load(const platform::SettingsStore& settings);
  void Store(platform::SettingsStore& settings) const;

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// What is compared with, in the order of the box.
  enum class Comparison { Nothing, Standard, File, Controller };

  /// A button that shows some of the rows.
  struct Filter {
    QPushButton* button = nullptr;
    bool ListFilter::*member = nullptr;
    int ListCounts::*count = nullptr;
    QString caption;
  };

  QLayout* NewSearchRow();
  QLayout* NewFilterRow();
  QLayout* NewMarkRow();
  QLayout* NewCountRow();
  QPushButton* NewCommand(const QString& name, const QString& caption, const std::function<void()>& command);
  QMenu* NewSelectionMenu();
  QMenu* NewExportMenu();
  void OrderTabs();

  void Refresh();
  void ShowCounts();
  void ShowNote(const QString& text);
  void TakeFilter();
  void GoToHit(int step);

  void Compare(Comparison comparison);
  void CompareWith(Comparison comparison, SetResult result);
  void CompareWithChosenFile();
  void CompareWithFile(SetResult result);
  void CompareWithController();
  void ForgetComparison();
  void ShowComparison();
  [[nodiscard]] const ValueSet* ComparedSet();

  void Mark(const std::vector<int>& indexes, bool checked);
  [[nodiscard]] std::vector<int> ShownIndexes() const;
  void TakeOverShown();
  void OpenEditor(int index);
  void Copy();

  ListWorld world_;
  ParameterListModel model_;
  ParameterListProxy proxy_;
  Comparison comparison_ = Comparison::Nothing;
  ValueSet compared_;  // of a comparison with something
  bool freshSearch_ = true;

  QLineEdit* search_ = nullptr;
  ChoiceBox* comparisonBox_ = nullptr;
  QPushButton* takeOver_ = nullptr;
  std::vector<Filter> filters_;
  ParameterListView* view_;
  std::vector<QPushButton*> commands_;  // below the table, from the left
  QLabel* countLine_ = nullptr;
  QLabel* note_ = nullptr;  // what came of the last command, for a while
  QTimer noteEnds_;
  platform::ElidedLabel* account_ = nullptr;
  QPointer<QWidget> lastFocus_;
};

}  // namespace kalivor::ui
