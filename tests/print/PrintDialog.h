// The real print dialog, as the user operates it.
#pragma once

#include <gtest/gtest.h>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <functional>

namespace kalivor::test {

using namespace Qt::StringLiterals;

/// Runs `act` on the dialog as soon as it is open.
inline void WhenOpen(const std::function<void(QDialog&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->objectName(), u"CDlg"_s);
    act(*dialog);
  });
}

/// The printers that the dialog offers, in its words.
inline QStringList OfferedPrinters(const QDialog& dialog) {
  const auto* list = dialog.findChild<QComboBox*>(u"printers"_s);
  QStringList names;
  for (int i = 0; list != nullptr && i < list->count(); ++i) {
    if (!list->itemText(i).isEmpty()) names.append(list->itemText(i));
  }
  return names;
}

inline QString ChosenPrinter(const QDialog& dialog) {
  const auto* list = dialog.findChild<QComboBox*>(u"printers"_s);
  return list == nullptr ? QString() : list->currentText();
}

/// Unlike accept(), with the dialog's own checks.
inline void PressOk(const QDialog& dialog) {
  dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
}

/// The name for a PDF file.
inline QLineEdit& FileField(const QDialog& dialog) {
  return *dialog.findChild<QLineEdit*>(u"filename"_s);
}

inline void SetCopies(const QDialog& dialog, int copies) {
  auto* field = dialog.findChild<QSpinBox*>(u"copies"_s);
  ASSERT_NE(field, nullptr);
  field->setValue(copies);
}

}  // namespace kalivor::test
