#include "ui/dialogs/Controls.h"

#include <QEvent>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

class ReadOnlyBox final : public QLineEdit {
 public:
  explicit ReadOnlyBox(QWidget* parent) : QLineEdit(parent) {
    setReadOnly(true);
    TakeBackground();
  }

 protected:
  // The colours may change while the program runs.
  void changeEvent(QEvent* event) override {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) TakeBackground();
  }

 private:
  void TakeBackground() {
    const QColor background = palette().color(QPalette::Window);
    if (palette().color(QPalette::Base) == background) return;
    QPalette own;
    own.setColor(QPalette::Base, background);
    setPalette(own);
  }
};

}  // namespace

QLabel* NewLabel(QWidget* parent, const QString& name, const QString& text, bool wraps) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(wraps);
  label->setText(text);
  return label;
}

QLineEdit* NewTextBox(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* box = new QLineEdit(parent);
  box->setObjectName(name);
  box->setAccessibleName(accessibleName);
  return box;
}

QLineEdit* NewReadOnlyBox(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* box = new ReadOnlyBox(parent);
  box->setObjectName(name);
  box->setAccessibleName(accessibleName);
  return box;
}

QLineEdit* NewHiddenTextBox(QWidget* parent, const QString& name) {
  QLineEdit* box = NewTextBox(parent, name, QString());
  box->setVisible(false);
  return box;
}

QPushButton* NewButton(QWidget* parent, const QString& name, const QString& caption) {
  auto* button = new QPushButton(caption, parent);
  button->setObjectName(name);
  return button;
}

OkCancel NewOkCancel(QDialog* dialog, const QString& okCaption, const QString& cancelCaption) {
  OkCancel buttons{NewButton(dialog, u"OKButton"_s, okCaption),
                   NewButton(dialog, u"CancelButton"_s, cancelCaption), new QHBoxLayout};
  buttons.ok->setDefault(true);
  buttons.row->addStretch();
  buttons.row->addWidget(buttons.ok);
  buttons.row->addWidget(buttons.cancel);
  return buttons;
}

int Air(const QWidget& dialog) {
  return dialog.fontMetrics().height() / 2;
}

void FitToContent(QDialog& dialog, int characters) {
  dialog.setMinimumWidth(dialog.fontMetrics().averageCharWidth() * characters);
  dialog.layout()->activate();
  dialog.resize(dialog.minimumWidth(), 1);
  dialog.adjustSize();
}

}  // namespace kalivor::ui
