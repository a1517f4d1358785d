// The menu of named selections: recall, save, delete.
#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <functional>

#include "commands/Selections.h"
#include "core/Core.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// Asks for the name under which the checked parameters are saved.
class SelectionNameDialog final : public QDialog {
 public:
  explicit SelectionNameDialog(QWidget* parent);

  /// Shows the dialog without waiting. `names` are taken: their selections would be replaced.
  void Ask(const QStringList& names);

  std::function<void(const QString& name)> OnName;

  /// True while nothing may be saved: the dialog then stays as it is.
  std::function<bool()> IsBusy;

 private:
  void Judge();

  QStringList names_;
  QLineEdit* name_;
  QPushButton* save_;
  QPushButton* cancel_;
};

/// Lists the selections of the file as it is when the menu opens.
class SelectionMenu final : public QMenu {
 public:
  /// Everything must outlive the menu.
  SelectionMenu(Core& core, Selections& selections, platform::EventGuard guard, QWidget* parent);

  /// What came of a command, in a few words.
  std::function<void(const QString& text)> OnDone;

 private:
  void Fill();
  void Recall(const QString& name);
  void Save(const QString& name);
  void Delete(const QString& name);

  Core& core_;
  Selections& selections_;
  platform::EventGuard guard_;
  SelectionNameDialog dialog_;
  QMenu deleteMenu_;
};

}  // namespace kalivor::ui
