#include "ui/dialogs/Question.h"

#include "platform/qt/ShownText.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

Question::Question(Module1& module, const QString& name, const QString& title)
    : Form(name, title), layout_(new QVBoxLayout(this)), module_(module) {
  label1_ = NewLabel(this, u"Label1"_s, QString(), true);
  layout_->addWidget(label1_);
  layout_->addSpacing(6);
}

void Question::Ask(const QString& question, int characters, QWidget& focus) {
  label1_->setText(platform::WithPlainLineBreaks(question));
  FitToContent(*this, characters);
  focus.setFocus();
  ShowAboveOwner();
}

void Question::Answer(qint16 answer) {
  if (!isVisible()) return;
  module_.Antwort = answer;
  hide();
}

}  // namespace kalivor::ui
