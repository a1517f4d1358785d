#include "ui/safe/UnfinishedDialog.h"

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 80;

}  // namespace

UnfinishedDialog::UnfinishedDialog()
    : Form(u"UnfinishedDialog"_s, u"Unterbrochene Sendung"_s),
      sentence_(NewLabel(this, u"sentence"_s, QString(), true)) {
  setModal(true);
  const auto command = [this](const QString& name, const QString& caption,
                              std::function<void()> UnfinishedDialog::*run) {
    QPushButton* button = NewButton(this, name, caption);
    connect(button, &QPushButton::clicked, this, [this, run] {
      hide();
      if (this->*run) (this->*run)();
    });
    return button;
  };
  QPushButton* finish = command(u"finish"_s, u"Zu &Ende senden…"_s, &UnfinishedDialog::OnFinish);
  QPushButton* takeBack = command(u"takeBack"_s, u"&Zurücknehmen…"_s, &UnfinishedDialog::OnTakeBack);
  QPushButton* forget = command(u"forget"_s, u"&Verwerfen…"_s, &UnfinishedDialog::OnForget);
  QPushButton* later = NewButton(this, u"CloseButton"_s, u"&Später"_s);
  connect(later, &QPushButton::clicked, this, &QDialog::reject);
  finish->setDefault(true);
  finish_ = finish;
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(sentence_);
  layout->addSpacing(Air(*this));
  layout->addLayout(NewButtonRow({finish, takeBack, forget, later}));
}

void UnfinishedDialog::Ask(const QString& sentence) {
  sentence_->setText(sentence);
  FitToContent(*this, kCharacters);
  finish_->setFocus();
  ShowAboveOwner();
}

}  // namespace kalivor::ui
