#include "ui/dialogs/Controls.h"

#include <QEvent>
#include <QScreen>
#include <QToolButton>

#include "ui/Resources.h"

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
  auto* label = Named(new QLabel(parent), name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(wraps);
  label->setText(text);
  return label;
}

QLabel* NewCaption(QWidget* parent, const QString& caption, QWidget* field) {
  auto* label = Named(new QLabel(caption, parent), field->objectName() + u"Label"_s);
  label->setBuddy(field);
  return label;
}

QLabel* NewLargeLabel(QWidget* parent, const QString& name, const QString& text, double factor) {
  QLabel* label = NewLabel(parent, name, text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * factor);
  font.setBold(true);
  label->setFont(font);
  return label;
}

QLabel* NewPicture(QWidget* parent, const QString& name, int size, const QString& accessibleName) {
  QLabel* picture = NewLabel(parent, name, QString());
  picture->setPixmap(Logo(size, parent->devicePixelRatioF()));
  picture->setAccessibleName(accessibleName);
  return picture;
}

QLineEdit* NewTextBox(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* box = Named(new QLineEdit(parent), name);
  box->setAccessibleName(accessibleName);
  return box;
}

QLineEdit* NewSearchBox(QWidget* parent, const QString& name, const QString& accessibleName,
                        const QString& placeholder) {
  QLineEdit* box = NewTextBox(parent, name, accessibleName);
  box->setPlaceholderText(placeholder);
  box->setClearButtonEnabled(true);
  box->findChild<QToolButton*>()->setAccessibleName(accessibleName + u" leeren"_s);
  return box;
}

QLineEdit* NewReadOnlyBox(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* box = Named(new ReadOnlyBox(parent), name);
  box->setAccessibleName(accessibleName);
  return box;
}

QLineEdit* NewHiddenTextBox(QWidget* parent, const QString& name) {
  QLineEdit* box = NewTextBox(parent, name, QString());
  box->setVisible(false);
  return box;
}

QPushButton* NewButton(QWidget* parent, const QString& name, const QString& caption) {
  return Named(new QPushButton(caption, parent), name);
}

platform::DropDownList* NewList(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* list = Named(new platform::DropDownList(parent), name);
  list->setAccessibleName(accessibleName);
  return list;
}

QHBoxLayout* NewButtonRow(std::initializer_list<QPushButton*> buttons) {
  auto* row = new QHBoxLayout;
  row->addStretch();
  for (QPushButton* button : buttons)
    row->addWidget(button);
  return row;
}

OkCancel NewOkCancel(QDialog* dialog, const QString& okCaption, const QString& cancelCaption) {
  QPushButton* ok = NewButton(dialog, u"OKButton"_s, okCaption);
  QPushButton* cancel = NewButton(dialog, u"CancelButton"_s, cancelCaption);
  ok->setDefault(true);
  return {ok, cancel, NewButtonRow({ok, cancel})};
}

void SetTabOrder(std::initializer_list<QWidget*> order) {
  for (const auto* widget = order.begin() + 1; widget < order.end(); ++widget)
    QWidget::setTabOrder(*(widget - 1), *widget);
}

int Air(const QWidget& dialog) {
  return dialog.fontMetrics().height() / 2;
}

void ResizeOnScreen(QWidget& window, const QSize& wanted) {
  constexpr double kMost = 0.9;
  window.resize(wanted.boundedTo(window.screen()->availableSize() * kMost));
}

void FitToContent(QDialog& dialog, int characters) {
  dialog.setMinimumWidth(dialog.fontMetrics().averageCharWidth() * characters);
  dialog.layout()->activate();
  dialog.resize(dialog.minimumWidth(), 1);
  dialog.adjustSize();
}

}  // namespace kalivor::ui
