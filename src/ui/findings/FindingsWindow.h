// The findings about the definition files as a table.
#pragma once

#include <QLabel>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <functional>
#include <vector>

#include "check/DefinitionCheck.h"
#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

class FindingsModel;

/// Keeps its place and columns in the settings, under "BefundePlatz" and "BefundeSpalten".
class FindingsWindow final : public Form {
 public:
  /// What is checked, and how: may throw a RuntimeError.
  struct Check {
    std::function<QString()> table;  ///< path of the version table
    std::function<std::vector<Finding>()> run;
  };

  /// `guard` runs what the user sets off. All must outlive the window.
  FindingsWindow(Check check, const platform::EventGuard& guard, platform::SettingsStore& settings);

  /// Checks, and shows the window with the findings. A RuntimeError passes, and then it is not shown unless
  /// it was.
  void CheckAndShow();

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildTable();
  void BuildButtons(const platform::EventGuard& guard);
  void RunCheck();
  void Copy() const;

  Check check_;
  platform::SettingsStore& settings_;
  FindingsModel* model_ = nullptr;
  QSortFilterProxyModel* sorted_ = nullptr;
  QTableView* table_ = nullptr;
  QLabel* summary_;
  QLabel* checked_;  // which version table, and when
};

}  // namespace kalivor::ui
