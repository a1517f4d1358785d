#include "cli/TextForms.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

// `line` as one: its line breaks become " | ", those at the end are dropped, other control characters "?".
QString OnOneLine(QString line) {
  line.replace(u"\n\r"_s, u"\n"_s).replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
  while (line.endsWith(u'\n'))
    line.chop(1);
  line.replace(u"\n"_s, u" | "_s);
  // What a damaged file brings into a message must not operate the user's terminal.
  for (QChar& c : line) {
    if (c.category() == QChar::Other_Control) c = u'?';
  }
  return line;
}

}  // namespace

void TextReportView::AppendLine(const QString& text) {
  if (out_ == nullptr) return;
  if (lineOpen_) *out_ << '\n';
  *out_ << text.toStdString() << std::flush;
  lineOpen_ = true;
}

void TextReportView::ContinueLine(const QString& text) {
  if (out_ != nullptr) *out_ << text.toStdString() << std::flush;
}

void TextReportView::Finish() {
  if (lineOpen_) *out_ << '\n' << std::flush;
  lineOpen_ = false;
}

void TextMessageBox::Show(const QString& text, const QString& title, Icon /*icon*/) {
  ++count_;
  if (!title.isEmpty()) err_ << title.toStdString() << ": ";
  err_ << OnOneLine(text).toStdString() << std::endl;
}

void TextChoiceForm::Show(const QString& question, const QString& first, const QString& second) {
  err_ << OnOneLine(question).toStdString() << " | 1: " << first.toStdString()
       << " | 2: " << second.toStdString() << std::endl;
  if (asked_ == answers_.size()) throw UnansweredQuestion();
  module_.Antwort = answers_[asked_++];
}

}  // namespace kalivor::cli
