#include "ui/dialogs/DlgAuswahl.h"

#include "platform/qt/FixedFont.h"
#include "platform/qt/ShownText.h"
#include "platform/qt/WindowPlacing.h"
#include "ui/Resources.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 70;

}  // namespace

DlgAuswahl::DlgAuswahl(Module1& module) : module_(module) {
  setObjectName(u"DlgAuswahl"_s);
  setWindowTitle(u"Wählen"_s);
  setWindowIcon(ProgramIcon());
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);

  label1_ = NewLabel(this, u"Label1"_s, QString(), true);
  button1_ = NewButton(this, u"Button1"_s, QString());
  button2_ = NewButton(this, u"Button2"_s, QString());
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label1_);
  layout->addSpacing(6);
  for (QPushButton* button : {button1_, button2_}) {
    // The captions are laid out with blanks, one below the other.
    button->setFont(platform::FixedFont());
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, answer = button == button1_ ? 1 : 2] {
      module_.Antwort = static_cast<qint16>(answer);
      hide();
    });
  }
}

void DlgAuswahl::Show(const QString& question, const QString& first, const QString& second) {
  label1_->setText(platform::WithPlainLineBreaks(question));
  button1_->setText(platform::AsCaption(first));
  button2_->setText(platform::AsCaption(second));
  FitToContent(*this, kWidth_characters);
  button1_->setFocus();
  if (owner_ != nullptr) platform::KeepAbove(*this, *owner_);
  platform::ShowInFront(*this);
}

}  // namespace kalivor::ui
