#include "ui/dialogs/DlgAchtung.h"

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 60;

}  // namespace

DlgAchtung::DlgAchtung(Module1& module) : Question(module, u"DlgAchtung"_s, u"Achtung!"_s) {
  const OkCancel buttons = NewOkCancel(this, u"Ja"_s, u"Nein"_s);
  cancelButton_ = buttons.cancel;
  layout_->addLayout(buttons.row);
  connect(buttons.ok, &QPushButton::clicked, this, [this] { Answer(1); });
  connect(buttons.cancel, &QPushButton::clicked, this, &DlgAchtung::reject);
}

void DlgAchtung::Show(const QString& question) {
  // A key pressed too early is no consent.
  Ask(question, kWidth_characters, *cancelButton_);
}

}  // namespace kalivor::ui
