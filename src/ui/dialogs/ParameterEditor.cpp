#include "ui/dialogs/ParameterEditor.h"

#include "platform/qt/ShownText.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 60;

}  // namespace

ParameterEditor::ParameterEditor(const QString& name)
    : Form(name, u"Edit Parameter"_s), layout_(new QVBoxLayout(this)) {
  labelName_ = NewLabel(this, u"LabelName"_s, u"Name"_s, true);
  textWert_ = NewTextBox(this, u"TextWert"_s, u"Wert"_s);
  textWert_->setText(u"Wert"_s);
  layout_->addWidget(labelName_);
}

void ParameterEditor::AddHelpAndButtons() {
  labelHilfetext_ = NewLabel(this, u"LabelHilfetext"_s, QString(), true);
  nr_ = NewHiddenTextBox(this, u"Nr"_s);
  buttons_ = NewOkCancel(this, u"OK"_s, u"Abbrechen"_s);
  layout_->addSpacing(Air(*this));
  layout_->addWidget(labelHilfetext_);
  layout_->addStretch();
  layout_->addLayout(buttons_.row);
  setTabOrder(buttons_.ok, buttons_.cancel);
  connect(buttons_.ok, &QPushButton::clicked, this, [this] {
    if (OnOk) OnOk();
  });
  connect(buttons_.cancel, &QPushButton::clicked, this, &ParameterEditor::reject);
}

void ParameterEditor::FillCommon(const QString& name, const QString& help, const QString& nr) {
  labelName_->setText(name);
  labelHilfetext_->setText(platform::WithPlainLineBreaks(help));
  nr_->setText(nr);
  FitToContent(*this, kWidth_characters);
  textWert_->setFocus();
}

// QDialog's closeEvent comes here as well. While an operation is under way the dialog stays.
void ParameterEditor::reject() {
  if (isEnabled() && OnCancel) OnCancel();
}

}  // namespace kalivor::ui
