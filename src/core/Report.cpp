#include "core/Report.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

constexpr int kRepaintPause_ms = 500;
constexpr int kLineBreakLength = 2;

}  // namespace

Report::Report(Module1& module, ReportView& view, platform::Events& events, TH& timers)
    : module_(module), view_(view), events_(events), timers_(timers) {
  view_.Clear();
  Paint();
}

void Report::Paint() {
  events_.ProcessPending();
  timers_.StartTimer(kReportTimer, kRepaintPause_ms);
}

void Report::Show() {
  view_.SetVisible(true);
}

void Report::Add(const QString& text) {
  text_ += text + u"\r\n"_s;
  view_.AppendLine(text);
  Paint();
}

void Report::AddC(const QString& text) {
  if (text_.size() < kLineBreakLength) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  text_.chop(kLineBreakLength);
  text_ += text + u"\r\n"_s;
  view_.ContinueLine(text);
  if (timers_.TimerExpired(kReportTimer)) Paint();
}

void Report::SetOkEnabled(bool enabled) {
  view_.SetOkEnabled(enabled);
}
void Report::SetAbortEnabled(bool enabled) {
  view_.SetAbortEnabled(enabled);
}

void Report::OKButton_Click() {
  if (!text_.isEmpty()) last_ = std::exchange(text_, {});
  view_.Clear();
  view_.SetVisible(false);
}

void Report::Command_Abbruch_Click() {
  module_.Abbruch = kTrue;
}

}  // namespace kalivor
