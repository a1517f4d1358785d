// An unfinished sending: what is to become of it.
#pragma once

#include <QLabel>
#include <functional>

#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// Each command hides the dialog first. No other window takes input while it is open.
class UnfinishedDialog final : public Form {
 public:
  UnfinishedDialog();

  void Ask(const QString& sentence);

  std::function<void()> OnFinish;
  std::function<void()> OnTakeBack;
  std::function<void()> OnForget;

 private:
  QLabel* sentence_;
  QWidget* finish_;
};

}  // namespace kalivor::ui
