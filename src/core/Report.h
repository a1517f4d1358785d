// The report's rules: lines, pacing, abort. The dialog that shows it is a ReportView.
#pragma once

#include <QString>

#include "base/Module1.h"
#include "comm/TH.h"
#include "core/Forms.h"
#include "platform/Events.h"

namespace kalivor {

/// The dialog itself, without rules.
class ReportView {
 public:
  virtual ~ReportView() = default;

  virtual void SetVisible(bool visible) = 0;
  virtual void Clear() = 0;

  /// Appends a line, or continues the last one, and scrolls to the end.
  virtual void AppendLine(const QString& text) = 0;
  virtual void ContinueLine(const QString& text) = 0;

  virtual void SetOkEnabled(bool enabled) = 0;
  virtual void SetAbortEnabled(bool enabled) = 0;
};

class Report final : public ReportForm {
 public:
  /// Clears the view and lets it paint itself.
  Report(Module1& module, ReportView& view, platform::Events& events, TH& timers);

  void Show() override;

  /// Appends a line and lets the window paint it at once.
  void Add(const QString& text) override;

  /// Continues the last line; the window is painted at most twice a second.
  void AddC(const QString& text) override;

  void SetOkEnabled(bool enabled) override;
  void SetAbortEnabled(bool enabled) override;

  /// The buttons. "OK" clears and hides, "Abbrechen" requests an abort and leaves the lines visible.
  void OKButton_Click();
  void Command_Abbruch_Click();

  /// All lines, each ended by CR LF.
  [[nodiscard]] const QString& Text() const { return text_; }

  /// The same, or the lines of the report before where there are none.
  [[nodiscard]] const QString& LastText() const { return text_.isEmpty() ? last_ : text_; }

 private:
  void Paint();

  Module1& module_;
  ReportView& view_;
  platform::Events& events_;
  TH& timers_;
  QString text_;
  QString last_;
};

}  // namespace kalivor
