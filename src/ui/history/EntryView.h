// What there is to say of an entry: its head, its changed values, its remarks.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QTableView>
#include <functional>
#include <optional>
#include <vector>

#include "platform/SettingsStore.h"
#include "platform/qt/EventGuard.h"
#include "ui/history/HistoryModels.h"

namespace kalivor::ui {

/// Keeps the columns of its table and its two sides in the settings, under "VerlaufWerteSpalten" and
/// "VerlaufWerteBreiten".
class EntryView final : public QWidget {
 public:
  explicit EntryView(platform::EventGuard guard, QWidget* parent = nullptr);

  void Show(const history::Entry& entry, const std::vector<history::Plant>& plants,
            std::vector<history::Change> changes, const std::vector<history::Remark>& remarks);
  /// `text` stands there in place of an entry.
  void ShowNone(const QString& text);

  /// The changes as they leave the program.
  [[nodiscard]] const ListTable& Table() const { return changesTable_.Table(); }

  /// What the user asks for; run inside the guard.
  std::function<void(const history::Change& change)> OnCurve;
  std::function<void(const QString& text)> OnRemark;
  std::function<void()> OnAssign;

  void Load(const platform::SettingsStore& settings);
  void Store(platform::SettingsStore& settings) const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QWidget* NewChangesSide();
  [[nodiscard]] QWidget* NewRemarksSide();
  [[nodiscard]] std::optional<history::Change> Current() const;
  void ShowCommands();
  void AskForCurve();
  void AddRemark();

  platform::EventGuard guard_;
  std::vector<history::Change> changes_;
  ListTableModel changesTable_;
  QSortFilterProxyModel sorted_;
  QLabel* head_;
  QLabel* more_;
  QSplitter* sides_;
  QTableView* table_ = nullptr;
  QPushButton* curve_ = nullptr;
  QPlainTextEdit* remarks_ = nullptr;
  QLineEdit* remark_ = nullptr;
  QPushButton* addRemark_ = nullptr;
  QPushButton* assign_ = nullptr;
};

}  // namespace kalivor::ui
