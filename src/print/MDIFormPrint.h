// The frame around the preview: toolbar and status bar.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QScrollArea>
#include <QToolButton>

#include "platform/qt/ElidedLabel.h"
#include "print/FormPrintPreview.h"

namespace kalivor::print {

/// Made once and kept; closing it hides it, and so does Escape. Page Up and Page Down turn the pages. While
/// it prints, neither it nor the main window takes input.
class MDIFormPrint final : public QMainWindow {
 public:
  /// `guard` runs what the user sets off.
  MDIFormPrint(const PrintWorld& world, platform::EventGuard guard);

  /// Shows the frame in front. The first time it loads: it makes the preview, which starts by itself. When
  /// that throws, there is neither, and the next time is the first again.
  void ShowForm();

  /// Starts the preview again; ShowForm() has to have been called.
  void Initialize_MDIPP();

  /// A button of the toolbar: "Drucken", "SeiteDrucken", "Ausrichtung", "Format", "Abbrechen", "back", "fwd".
  void Toolbar1_ButtonClick(const QString& key);

  /// An entry of the menu of "Format": "eins", "zwei", "vier".
  void Toolbar1_ButtonMenuClick(const QString& key);

  /// Null before the first ShowForm().
  [[nodiscard]] FormPrintPreview* Preview() { return preview_; }

  [[nodiscard]] const PrintWorld& World() const { return world_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildToolbar();
  void AddKeys();
  void Load();
  void FitToPage();
  void SetScale(double divisor);
  void Turn(int pages);
  void ShowFile(const QString& path);
  void PrintWith(void (PreviewPages::*command)());

  PrintWorld world_;
  platform::EventGuard guard_;
  FormPrintPreview* preview_ = nullptr;
  QScrollArea* area_;
  QToolButton* format_ = nullptr;
  QLabel* panel1_;
  platform::ElidedLabel* panel2_;  // the file that was written
};

/// What the print dialog offers: 1048576, 8 and 4, their digits joined (not their sum).
inline constexpr qint32 kPrintDialogFlags = 104857684;

/// The print command of the main window: asks for printer, copies and orientation, and shows the preview in
/// `frame`. Any error ends it silently.
void mnuFilePrint_Click(MDIFormPrint& frame);

}  // namespace kalivor::print
