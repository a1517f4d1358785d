#include "platform/qt/QtMessageBox.h"

#include <QApplication>
#include <QMessageBox>

#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// The window to stand before. Never a disabled one: the box would be disabled with it.
QWidget* Owner() {
  QWidget* window = QApplication::activeWindow();
  return window != nullptr && window->isEnabled() && window->isVisible() ? window : nullptr;
}

}  // namespace

void QtMessageBox::Show(const QString& text, const QString& title, Icon icon) {
  if (BeforeShow) BeforeShow();
  QMessageBox box(Owner());
  box.setObjectName(u"MessageBox"_s);
  box.setWindowTitle(title.isEmpty() ? QApplication::applicationName() : title);
  box.setTextFormat(Qt::PlainText);
  box.setText(WithPlainLineBreaks(text));
  box.setIcon(icon == Icon::Information ? QMessageBox::Information : QMessageBox::NoIcon);
  box.setStandardButtons(QMessageBox::Ok);
  box.setWindowModality(Qt::ApplicationModal);
  box.exec();
}

}  // namespace kalivor::platform
