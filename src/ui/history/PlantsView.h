// The plants of the history: whose entries are shown.
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <functional>
#include <optional>
#include <vector>

#include "platform/qt/EventGuard.h"
#include "ui/history/HistoryModels.h"

namespace kalivor::ui {

class PlantsView final : public QWidget {
 public:
  explicit PlantsView(platform::EventGuard guard, QWidget* parent = nullptr);

  /// The plants, with how many of the entries each has. The one that is chosen stays so while it is there.
  void Show(std::vector<history::Plant> plants, const std::vector<history::Entry>& entries);

  /// Nothing: the entries of all; a null id: those without a plant.
  [[nodiscard]] std::optional<QUuid> Chosen() const { return chosen_; }
  /// As it stands in the list.
  [[nodiscard]] QString ChosenName() const;

  /// All columns seen, in device-independent pixels.
  [[nodiscard]] int WantedWidth() const;

  /// Another one is chosen, or the same after Show().
  std::function<void()> OnChoose;
  /// What the user asks for; run inside the guard.
  std::function<void()> OnNew;
  std::function<void(const history::Plant& plant)> OnChange;

 private:
  void ShowFound();
  void TakeChoice();

  platform::EventGuard guard_;
  std::vector<history::Plant> plants_;
  QHash<QUuid, int> counts_;  // of entries
  int all_ = 0;
  std::vector<std::optional<QUuid>> rows_;
  std::optional<QUuid> chosen_;
  ListTableModel model_;
  QLineEdit* search_;
  QTableView* table_;
  QPushButton* change_;
};

}  // namespace kalivor::ui
