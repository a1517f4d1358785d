// The report of a transfer on the screen.
#pragma once

#include <QPlainTextEdit>
#include <QPushButton>
#include <functional>

#include "core/Report.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/Form.h"

namespace kalivor::ui {

class DialogReport final : public Form, public ReportView {
 public:
  DialogReport();

  /// Connects the buttons. Closing the window is "OK", and "Abbrechen" as long as that is not to be had.
  /// `print` prints the report's text. All must outlive the dialog.
  void Connect(Report& report, const platform::EventGuard& guard,
               const std::function<void(const QString& text)>& print);

  // ReportView
  void SetVisible(bool visible) override;
  void Clear() override;
  void AppendLine(const QString& text) override;
  void ContinueLine(const QString& text) override;
  void SetOkEnabled(bool enabled) override;
  void SetAbortEnabled(bool enabled) override;

  void reject() override;

 protected:
  /// The window's events have their turn: what continues the last line is shown.
  void customEvent(QEvent* event) override;

 private:
  void WaitUntilShown();
  void Append(QTextCursor& cursor, const QString& text);
  void TakeContinued();

  QString continued_;  // belongs to the end of the last line, is shown with the next pass of events
  QPlainTextEdit* textBox_;
  QPushButton* command_Abbruch_;
  QPushButton* commandPrint_;
  QPushButton* okButton_;
};

}  // namespace kalivor::ui
