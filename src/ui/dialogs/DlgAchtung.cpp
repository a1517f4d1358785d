#include "ui/dialogs/DlgAchtung.h"

#include "platform/qt/ShownText.h"
#include "platform/qt/WindowPlacing.h"
#include "ui/Resources.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 60;

}  // namespace

DlgAchtung::DlgAchtung(Module1& module) : module_(module) {
  setObjectName(u"DlgAchtung"_s);
  setWindowTitle(u"Achtung!"_s);
  setWindowIcon(ProgramIcon());

  label1_ = NewLabel(this, u"Label1"_s, QString(), true);
  const OkCancel buttons = NewOkCancel(this, u"Ja"_s, u"Nein"_s);
  cancelButton_ = buttons.cancel;
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label1_);
  layout->addSpacing(6);
  layout->addLayout(buttons.row);
  connect(buttons.ok, &QPushButton::clicked, this, [this] { Answer(1); });
  connect(buttons.cancel, &QPushButton::clicked, this, &DlgAchtung::reject);
}

void DlgAchtung::Show(const QString& question) {
  label1_->setText(platform::WithPlainLineBreaks(question));
  FitToContent(*this, kWidth_characters);
  // A key pressed too early is no consent.
  cancelButton_->setFocus();
  if (owner_ != nullptr) platform::KeepAbove(*this, *owner_);
  platform::ShowInFront(*this);
}

void DlgAchtung::Answer(qint16 answer) {
  if (!isVisible()) return;
  module_.Antwort = answer;
  hide();
}

}  // namespace kalivor::ui
