#include "ui/dialogs/DialogEditString.h"

#include "platform/qt/FixedFont.h"
#include "platform/qt/ShownText.h"
#include "ui/Resources.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 60;
constexpr int kNoLimit = 32767;

}  // namespace

DialogEditString::DialogEditString() {
  setObjectName(u"DialogEditString"_s);
  setWindowTitle(u"Edit Parameter"_s);
  setWindowIcon(ProgramIcon());

  labelName_ = NewLabel(this, u"LabelName"_s, u"Name"_s, true);
  textWert_ = NewTextBox(this, u"TextWert"_s, u"Wert"_s);
  textWert_->setText(u"Wert"_s);
  // Blanks count here, and can be counted only in a fixed pitch.
  textWert_->setFont(platform::FixedFont());
  labelHilfetext_ = NewLabel(this, u"LabelHilfetext"_s, u"Hilfetext"_s, true);
  nr_ = NewHiddenTextBox(this, u"Nr"_s);
  const OkCancel buttons = NewOkCancel(this, u"OK"_s, u"Abbrechen"_s);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(labelName_);
  layout->addWidget(textWert_);
  layout->addWidget(labelHilfetext_);
  layout->addStretch();
  layout->addLayout(buttons.row);
  setTabOrder(textWert_, buttons.ok);
  setTabOrder(buttons.ok, buttons.cancel);

  connect(buttons.ok, &QPushButton::clicked, this, [this] {
    if (OnOk) OnOk(Content());
  });
  connect(buttons.cancel, &QPushButton::clicked, this, &DialogEditString::reject);
}

void DialogEditString::Fill(const TextEdit& content) {
  labelName_->setText(content.LabelName);
  // The old limit must not cut the new text.
  textWert_->setMaxLength(kNoLimit);
  textWert_->setText(content.TextWert);
  textWert_->setMaxLength(content.MaxLength > 0 ? content.MaxLength : kNoLimit);
  labelHilfetext_->setText(platform::WithPlainLineBreaks(content.LabelHilfetext));
  nr_->setText(content.Nr);
  FitToContent(*this, kWidth_characters);
  textWert_->setFocus();
  textWert_->selectAll();
}

TextEdit DialogEditString::Content() const {
  return {.LabelName = labelName_->text(),
          .TextWert = textWert_->text(),
          .MaxLength = textWert_->maxLength(),
          .LabelHilfetext = labelHilfetext_->text(),
          .Nr = nr_->text()};
}

// QDialog's closeEvent comes here as well. While an operation is under way the dialog stays.
void DialogEditString::reject() {
  if (isEnabled() && OnCancel) OnCancel();
}

}  // namespace kalivor::ui
