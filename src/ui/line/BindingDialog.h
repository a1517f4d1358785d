// Which device a COM number stands for.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <functional>

#include "platform/PortDirectory.h"
#include "platform/qt/EventGuard.h"
#include "platform/qt/QtListBox.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// A number can stand for what the system counts, for one device by what does not change of it, or for a
/// network address. No other window takes input while it is open.
class BindingDialog final : public Form {
 public:
  /// `guard` runs what the user sets off; `ports` tells what is bound. Both must outlive the dialog.
  BindingDialog(platform::PortDirectory& ports, const platform::EventGuard& guard);

  /// Asks for `number` (1 to 8), and offers `device` (none: without a device) to be bound to it. `reason`
  /// stands above.
  void Ask(int number, const platform::PortEntry& device, const QString& reason);

  /// What the user has chosen: a number and its binding, "" to free it. Returns "" or what is wrong with it,
  /// which the dialog then shows and stays.
  std::function<QString(int number, const QString& binding)> OnBind;

 private:
  void ShowNumber();
  void Bind();
  [[nodiscard]] QRadioButton& Proposed(const QString& binding) const;
  [[nodiscard]] int Number() const;
  [[nodiscard]] QString Binding() const;

  platform::PortDirectory& ports_;
  QLabel* reason_;
  platform::DropDownList* number_;
  QLabel* now_;
  QRadioButton* counted_;
  QRadioButton* bySerialNumber_;
  QRadioButton* byPlace_;
  QRadioButton* byPath_;
  QRadioButton* network_;
  QLineEdit* address_;
  QLabel* fault_;
  platform::PortEntry device_;
};

}  // namespace kalivor::ui
