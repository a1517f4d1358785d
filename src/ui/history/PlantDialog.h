// Which plant something belongs to.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <functional>
#include <vector>

#include "history/Entry.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"
#include "ui/history/HistoryModels.h"

namespace kalivor::ui {

/// What is asked.
struct PlantQuestion {
  QString reason;  ///< what the answer is for, in a sentence
  std::vector<history::Plant> plants = {};
  QUuid current = {};      ///< that is chosen now; null: none
  QUuid proposed = {};     ///< that the controller seems to belong to; null: none
  bool mayBeNone = false;  ///< "Ohne Anlage" is an answer as well

  /// A parameter that may hold the plant's name.
  struct NameParameter {
    QString variable;
    QString caption;
  };
  std::vector<NameParameter> nameParameters = {};  ///< none: it is not asked which one does
  QString nameParameter = {};                      ///< variable of the one that does; "": none
  QString name = {};                               ///< what it says; "": nothing
};

/// The plants, to be found by typing. No other window takes input while it is open.
class PlantDialog final : public Form {
 public:
  explicit PlantDialog(platform::EventGuard guard);

  void Ask(PlantQuestion question);

  /// Asks something else while it is open; what was typed stays.
  void Renew(PlantQuestion question);

  /// The answer; null: none. Run inside the guard, after the dialog has been closed.
  std::function<void(const QUuid& plant)> OnChoose;
  /// A plant that is not there yet; `name` is what was typed, or else what the controller says.
  std::function<void(const QString& name)> OnNew;
  /// Another parameter holds the name; "": none. Run inside the guard, the dialog stays open.
  std::function<void(const QString& variable)> OnNameParameter;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QWidget* NewNameRow();
  void ShowNameParameters();
  void ShowPlants();
  void ShowCommands();
  void Choose();
  void AskForNew();

  platform::EventGuard guard_;
  PlantQuestion question_;
  std::vector<QUuid> shown_;  // by row
  ListTableModel model_;
  QLabel* reason_;
  QLineEdit* search_;
  QTableView* table_;
  QWidget* nameRow_ = nullptr;
  QComboBox* nameParameter_ = nullptr;
  QPushButton* new_ = nullptr;
  QPushButton* ok_ = nullptr;
};

/// Name, place and remark of a plant, a new one or one that is described anew.
class PlantForm final : public Form {
 public:
  explicit PlantForm(platform::EventGuard guard);

  /// A null id is that of a new one. `others` are those that there are.
  void Ask(const history::Plant& plant, std::vector<history::Plant> others);

  /// The plant as the user has described it. Run inside the guard, after the form has been closed.
  std::function<void(const history::Plant& plant)> OnDescribe;

 private:
  void Describe();
  [[nodiscard]] QString Fault(const history::Plant& plant) const;

  platform::EventGuard guard_;
  history::Plant plant_;
  std::vector<history::Plant> others_;
  QLineEdit* name_;
  QLineEdit* place_;
  QLineEdit* remark_;
  QLabel* fault_;
  QPushButton* ok_ = nullptr;
};

}  // namespace kalivor::ui
