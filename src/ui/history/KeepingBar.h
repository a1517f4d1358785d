// Whether a history is kept, and under which names: the top of its window.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <functional>

#include "history/HistorySettings.h"
#include "platform/qt/ElidedLabel.h"
#include "platform/qt/EventGuard.h"

namespace kalivor::ui {

/// What it shows.
struct Keeping {
  history::HistorySettings used;
  QString file;   ///< path; "": there is no place for a history
  QString fault;  ///< why it cannot be read; "": it can, or none was begun
  QString plant;  ///< its name; "": none is chosen
  QString doubt;  ///< why the controller seems to belong elsewhere; "": it does not
};

class KeepingBar final : public QWidget {
 public:
  explicit KeepingBar(platform::EventGuard guard, QWidget* parent = nullptr);

  void Show(const Keeping& keeping);

  /// What the user asks for; run inside the guard.
  std::function<void(bool keeps)> OnKeep;
  std::function<void(const QString& name)> OnTechnician;
  std::function<void()> OnChoosePlant;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  platform::EventGuard guard_;
  QLabel* about_;
  QCheckBox* keeps_;
  QWidget* names_;  // of plant and technician
  platform::ElidedLabel* plant_;
  QLineEdit* technician_;
  QLabel* doubt_;
};

}  // namespace kalivor::ui
