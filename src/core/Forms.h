// What the core asks of the windows. The window program, the command line and the tests each answer it.
#pragma once

#include <QString>

#include "platform/TreeView.h"

namespace kalivor {

/// The main window.
class MainForm {
 public:
  virtual ~MainForm() = default;

  [[nodiscard]] virtual platform::TreeView& Tree() = 0;

  /// Switches the plant-type selector on or off, as VersionTable::PlantTypeOffered says.
  virtual void SetPlantSelectorVisible(bool visible) = 0;

  /// Lets the main window, the options, the editors and the print frame take input, or not.
  virtual void SetEnabled(bool enabled) = 0;

  /// Panel 1 of the status bar: "Busy" or "Ready".
  virtual void ShowState(const QString& text) = 0;

  /// Brings the main window to the front again after a question.
  virtual void ShowAgain() = 0;
};

/// The report of a transfer: lines that are added, and continued by progress dots.
class ReportForm {
 public:
  virtual ~ReportForm() = default;

  virtual void Show() = 0;

  /// Appends a new line.
  virtual void Add(const QString& text) = 0;

  /// Continues the last line. Throws RuntimeError (InvalidArgument) when there is none.
  virtual void AddC(const QString& text) = 0;

  virtual void SetOkEnabled(bool enabled) = 0;
  virtual void SetAbortEnabled(bool enabled) = 0;
};

/// The question with two alternatives. Its buttons write 1 or 2 into Module1::Antwort and hide it.
class ChoiceForm {
 public:
  virtual ~ChoiceForm() = default;

  /// Shows the question without waiting. A line break of `question` is a pair of LF and CR in either order.
  virtual void Show(const QString& question, const QString& first, const QString& second) = 0;
};

/// What the numeric editor shows, all as text; numbers in display units.
struct NumberEdit {
  QString LabelName;
  QString TextWert;
  QString TextVon;
  QString TextBis;
  QString TextStd;
  QString LabelEinheit;
  QString LabelHilfetext;  ///< lines separated by CR LF
  QString Nr;              ///< index in Par
  QString Treedex;         ///< number of the tree node
};

/// What the string editor shows.
struct TextEdit {
  QString LabelName;
  QString TextWert;
  int MaxLength = 0;       ///< characters that can be typed; 0: no limit
  QString LabelHilfetext;  ///< lines separated by CR LF
  QString Nr;              ///< index in Par
};

/// The two modeless parameter editors.
class EditorForms {
 public:
  virtual ~EditorForms() = default;

  virtual void ShowNumberEditor(const NumberEdit& content) = 0;
  virtual void ShowTextEditor(const TextEdit& content) = 0;

  /// Hides both as their "Abbrechen" would.
  virtual void HideEditors() = 0;
};

}  // namespace kalivor
