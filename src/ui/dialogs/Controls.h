// What the dialogs are made of.
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace kalivor::ui {

/// A label for texts that are not ours: no markup, no access keys. `wraps` lets it have several lines.
QLabel* NewLabel(QWidget* parent, const QString& name, const QString& text, bool wraps = false);

/// A text box with the name that screen readers say.
QLineEdit* NewTextBox(QWidget* parent, const QString& name, const QString& accessibleName);

/// A text box that shows and cannot be typed into. It has the background of the window, so that it looks so.
QLineEdit* NewReadOnlyBox(QWidget* parent, const QString& name, const QString& accessibleName);

/// A text box that is never visible: it holds what the dialog works on.
QLineEdit* NewHiddenTextBox(QWidget* parent, const QString& name);

QPushButton* NewButton(QWidget* parent, const QString& name, const QString& caption);

/// `OKButton` and `CancelButton` in a row, the first one the default.
struct OkCancel {
  QPushButton* ok;
  QPushButton* cancel;
  QHBoxLayout* row;
};
OkCancel NewOkCancel(QDialog* dialog, const QString& okCaption, const QString& cancelCaption);

/// Half a line of air, in device-independent pixels, to set a part of a dialog apart.
int Air(const QWidget& dialog);

/// Makes the dialog as small as its present texts allow, and as wide as `characters` characters at least.
void FitToContent(QDialog& dialog, int characters);

}  // namespace kalivor::ui
