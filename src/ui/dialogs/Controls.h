// What the dialogs are made of.
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <initializer_list>

#include "platform/qt/QtListBox.h"

namespace kalivor::ui {

/// `widget`, with its name.
template <typename Widget>
Widget* Named(Widget* widget, const QString& name) {
  widget->setObjectName(name);
  return widget;
}

/// A label for texts that are not ours: no markup, no access keys. `wraps` lets it have several lines.
QLabel* NewLabel(QWidget* parent, const QString& name, const QString& text, bool wraps = false);

/// A label whose access key leads to `field`, and whose name is the field's with "Label" behind it.
QLabel* NewCaption(QWidget* parent, const QString& caption, QWidget* field);

/// A bold label, `factor` times as large as others.
QLabel* NewLargeLabel(QWidget* parent, const QString& name, const QString& text, double factor);

/// The program's icon in `size` device-independent pixels.
QLabel* NewPicture(QWidget* parent, const QString& name, int size, const QString& accessibleName);

/// A text box with the name that screen readers say.
QLineEdit* NewTextBox(QWidget* parent, const QString& name, const QString& accessibleName);

/// A text box that says what can be found with it while it is empty, and is emptied by a click.
QLineEdit* NewSearchBox(QWidget* parent, const QString& name, const QString& accessibleName,
                        const QString& placeholder);

/// A text box that shows and cannot be typed into. It has the background of the window, so that it looks so.
QLineEdit* NewReadOnlyBox(QWidget* parent, const QString& name, const QString& accessibleName);

/// A text box that is never visible: it holds what the dialog works on.
QLineEdit* NewHiddenTextBox(QWidget* parent, const QString& name);

QPushButton* NewButton(QWidget* parent, const QString& name, const QString& caption);

platform::DropDownList* NewList(QWidget* parent, const QString& name, const QString& accessibleName);

/// The buttons at the right end of a row.
QHBoxLayout* NewButtonRow(std::initializer_list<QPushButton*> buttons);

/// `OKButton` and `CancelButton` in a row, the first one the default.
struct OkCancel {
  QPushButton* ok;
  QPushButton* cancel;
  QHBoxLayout* row;
};
OkCancel NewOkCancel(QDialog* dialog, const QString& okCaption, const QString& cancelCaption);

/// Lets the Tab key go from one to the next.
void SetTabOrder(std::initializer_list<QWidget*> order);

/// Half a line of air, in device-independent pixels, to set a part of a dialog apart.
int Air(const QWidget& dialog);

/// Makes a window as large as its content wants to be, and no larger than most of the screen.
void ResizeOnScreen(QWidget& window, const QSize& wanted);

/// Makes the dialog as small as its present texts allow, and as wide as `characters` characters at least.
void FitToContent(QDialog& dialog, int characters);

}  // namespace kalivor::ui
