// The options: serial port, station address, version table.
#pragma once

#include <QLineEdit>
#include <QTabWidget>
#include <functional>

#include "commands/OptionsCommands.h"
#include "platform/qt/QtListBox.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

/// One instance. It shows the present settings whenever it opens, and keeps what was typed as long as it is
/// open. "Abbrechen", Escape and the window's frame hide it without applying.
class frmOptions final : public Form {
 public:
  frmOptions();

  /// Applies the content; false when it was refused.
  std::function<bool(const OptionsContent& content)> OnApply;

  /// Asks for the version table file; "" when the user cancelled.
  std::function<QString()> OnBrowse;

  /// The device that stands behind a port number now, "" when there is none.
  std::function<QString(int number)> DeviceOfPort;

  /// Shows `content` unless the dialog is open already; in either case selects page 0, 1 or 2 and gives its
  /// field the focus.
  void Open(const OptionsContent& content, int page);

  [[nodiscard]] OptionsContent Content() const;

  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* NewPortPage();
  QWidget* NewAddressPage();
  QWidget* NewFilesPage();
  void NameDevices();
  bool Uebernehmen();
  void Browse();

  QTabWidget* tbsOptions_;
  platform::DropDownList* comboSchnittstelle_ = nullptr;
  platform::DropDownList* comboAdresse_ = nullptr;
  QLineEdit* textVerzParameter_ = nullptr;
  bool pathChanged_ = false;
};

}  // namespace kalivor::ui
