#include "ui/dialogs/DialogReport.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QScrollBar>
#include <QWindow>
#include <utility>

#include "platform/gui/FixedFont.h"
#include "platform/qt/ShownText.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kColumns = 72;
constexpr int kLines = 18;
// How long a window system may take to show the window before the transfer starts without it.
constexpr int kLongestShowing_ms = 250;

}  // namespace

DialogReport::DialogReport() : Form(u"DialogReport"_s, u"Report"_s) {
  textBox_ = new QPlainTextEdit(u"Textbox\n"_s);
  textBox_->setObjectName(u"TextBox"_s);
  textBox_->setAccessibleName(u"Report"_s);
  textBox_->setReadOnly(true);
  textBox_->setUndoRedoEnabled(false);
  textBox_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  textBox_->setTabChangesFocus(true);
  textBox_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  textBox_->setFont(platform::FixedFont());
  const QFontMetrics metrics(textBox_->font());
  textBox_->setMinimumSize(metrics.horizontalAdvance(u'0') * kColumns / 2, metrics.lineSpacing() * 5);

  command_Abbruch_ = NewButton(this, u"Command_Abbruch"_s, u"Abbrechen"_s);
  commandPrint_ = NewButton(this, u"CommandPrint"_s, u"Print"_s);
  okButton_ = NewButton(this, u"OKButton"_s, u"OK"_s);
  okButton_->setDefault(true);
  commandPrint_->setAutoDefault(false);
  command_Abbruch_->setEnabled(false);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(command_Abbruch_);
  buttons->addWidget(commandPrint_);
  buttons->addStretch();
  buttons->addWidget(okButton_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(textBox_);
  layout->addLayout(buttons);
  resize(metrics.horizontalAdvance(u'0') * kColumns, metrics.lineSpacing() * kLines + 60);
}

void DialogReport::Connect(Report& report, const platform::EventGuard& guard,
                           const std::function<void(const QString& text)>& print) {
  const auto connectButton = [this, &guard](QPushButton* button, auto action) {
    connect(button, &QPushButton::clicked, this, [&guard, action] { guard(action); });
  };
  connectButton(command_Abbruch_, [&report] { report.Command_Abbruch_Click(); });
  connectButton(okButton_, [&report] { report.OKButton_Click(); });
  connectButton(commandPrint_, [&report, &print] {
    if (print) print(report.Text());
  });
}

void DialogReport::SetVisible(bool visible) {
  if (!visible) {
    hide();
    return;
  }
  const bool wasVisible = isVisible();
  ShowAboveOwner();
  if (!wasVisible) WaitUntilShown();
}

// The line may keep the program from painting for a while after this.
void DialogReport::WaitUntilShown() {
  const QDeadlineTimer deadline(kLongestShowing_ms);
  while (isVisible() && !windowHandle()->isExposed() && !deadline.hasExpired())
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

void DialogReport::Clear() {
  continued_.clear();
  textBox_->clear();
}

void DialogReport::Append(QTextCursor& cursor, const QString& text) {
  cursor.insertText(platform::WithPlainLineBreaks(text));
  textBox_->moveCursor(QTextCursor::End);
  textBox_->verticalScrollBar()->setValue(textBox_->verticalScrollBar()->maximum());
}

// Only the end of the text is touched, so that long reports grow as fast as short ones.
void DialogReport::AppendLine(const QString& text) {
  TakeContinued();
  QTextCursor cursor(textBox_->document());
  cursor.movePosition(QTextCursor::End);
  Append(cursor, text + u'\n');
}

// Dots come more often than they are painted, and each would have its whole line laid out anew.
void DialogReport::ContinueLine(const QString& text) {
  if (continued_.isEmpty()) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  continued_ += text;
}

void DialogReport::customEvent(QEvent* /*event*/) {
  TakeContinued();
}

void DialogReport::TakeContinued() {
  if (continued_.isEmpty()) return;
  QTextCursor cursor(textBox_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.movePosition(QTextCursor::PreviousCharacter);
  Append(cursor, std::exchange(continued_, {}));
}

void DialogReport::SetOkEnabled(bool enabled) {
  okButton_->setEnabled(enabled);
  // A print dialog would hold up the transfer.
  commandPrint_->setEnabled(enabled);
}

void DialogReport::SetAbortEnabled(bool enabled) {
  command_Abbruch_->setEnabled(enabled);
}

// Escape and the window's frame. QDialog's closeEvent comes here as well.
void DialogReport::reject() {
  (okButton_->isEnabled() ? okButton_ : command_Abbruch_)->click();
}

}  // namespace kalivor::ui
