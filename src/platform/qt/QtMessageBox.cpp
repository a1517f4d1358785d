#include "platform/qt/QtMessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// The window to stand before. Never a disabled one: the box would be disabled with it.
QWidget* Owner() {
  QWidget* window = QApplication::activeWindow();
  return window != nullptr && window->isEnabled() && window->isVisible() ? window : nullptr;
}

void Prepare(QMessageBox& box, const QString& text, const QString& title) {
  box.setObjectName(u"MessageBox"_s);
  box.setWindowTitle(title.isEmpty() ? QApplication::applicationName() : title);
  box.setTextFormat(Qt::PlainText);
  box.setText(WithPlainLineBreaks(text));
  box.setWindowModality(Qt::ApplicationModal);
}

}  // namespace

void QtMessageBox::Show(const QString& text, const QString& title, Icon icon) {
  if (BeforeShow) BeforeShow();
  QMessageBox box(Owner());
  Prepare(box, text, title);
  box.setIcon(icon == Icon::Information ? QMessageBox::Information : QMessageBox::NoIcon);
  box.setStandardButtons(QMessageBox::Ok);
  box.exec();
}

bool QtMessageBox::Confirm(const QString& text, const QString& action) {
  if (BeforeShow) BeforeShow();
  QMessageBox box(Owner());
  Prepare(box, text, {});
  box.setIcon(QMessageBox::Question);
  const QPushButton* confirm = box.addButton(action, QMessageBox::AcceptRole);
  QPushButton* cancel = box.addButton(u"Abbrechen"_s, QMessageBox::RejectRole);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  box.exec();
  return box.clickedButton() == confirm;
}

}  // namespace kalivor::platform
