#include "ui/dialogs/DialogEditString.h"

#include <QSignalBlocker>
#include <algorithm>

#include "base/FixedText.h"
#include "platform/gui/FixedFont.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kNoLimit = 32767;

// How many characters before the cursor are new in `text`, which was `before`.
qsizetype Typed(const QString& before, const QString& text, qsizetype cursor) {
  const qsizetype behind = text.size() - cursor;
  const qsizetype most = std::min(cursor, before.size() - behind);
  qsizetype same = 0;
  while (same < most && before.at(same) == text.at(same))
    ++same;
  return cursor - same;
}

}  // namespace

DialogEditString::DialogEditString() : ParameterEditor(u"DialogEditString"_s) {
  // Blanks count here, and can be counted only in a fixed pitch.
  textWert_->setFont(platform::FixedFont());
  layout_->addWidget(textWert_);
  AddHelpAndButtons();
  labelHilfetext_->setText(u"Hilfetext"_s);
  setTabOrder(textWert_, buttons_.ok);

  connect(textWert_, &QLineEdit::textChanged, this, &DialogEditString::Limit);
}

void DialogEditString::Fill(const TextEdit& content) {
  limit_ = content.MaxLength > 0 ? content.MaxLength : kNoLimit;
  before_ = content.TextWert;
  {
    const QSignalBlocker asItIs(textWert_);
    textWert_->setText(content.TextWert);
  }
  FillCommon(content.LabelName, content.LabelHilfetext, content.Nr);
}

// What is typed goes on with the text, also where blanks that nobody sees fill it up. Not before it is shown:
// the toolkit selects the whole text then.
void DialogEditString::setVisible(bool visible) {
  QDialog::setVisible(visible);
  if (visible)
    textWert_->setCursorPosition(static_cast<int>(WithoutTrailingBlanks(textWert_->text()).size()));
}

TextEdit DialogEditString::Content() const {
  return {.LabelName = labelName_->text(),
          .TextWert = textWert_->text(),
          .MaxLength = limit_,
          .LabelHilfetext = labelHilfetext_->text(),
          .Nr = nr_->text()};
}

// The toolkit's own limit would cut a text that is longer already, and leave no room to type where blanks
// fill a text up.
void DialogEditString::Limit(const QString& text) {
  QString limited = text;
  qsizetype cursor = textWert_->cursorPosition();
  while (limited.size() > limit_ && limited.size() > cursor && limited.endsWith(u' '))
    limited.chop(1);
  const qsizetype excess = limited.size() - limit_;
  if (excess > 0) {
    const qsizetype dropped = std::min(excess, Typed(before_, text, cursor));
    cursor -= dropped;
    limited.remove(cursor, dropped);
  }
  before_ = limited;
  if (limited == text) return;
  const QSignalBlocker once(textWert_);
  textWert_->setText(limited);
  textWert_->setCursorPosition(static_cast<int>(cursor));
}

}  // namespace kalivor::ui
