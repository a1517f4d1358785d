#include "ui/list/ProgressDialog.h"

#include <QBoxLayout>
#include <cmath>

#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kCharacters = 40;
constexpr int kMinute_s = 60;

}  // namespace

QString RemainingText(double remaining_s) {
  if (remaining_s < 0) return {};
  const int seconds = static_cast<int>(std::ceil(std::min(remaining_s, 86400.0)));
  if (seconds < 2 * kMinute_s) return u"noch %1 s"_s.arg(seconds);
  return u"noch %1 min"_s.arg((seconds + kMinute_s - 1) / kMinute_s);
}

ProgressDialog::ProgressDialog(Conversation& conversation)
    : Form(u"ProgressDialog"_s, u"KALIVOR"_s),
      conversation_(conversation),
      count_(NewLabel(this, u"count"_s, QString())),
      bar_(Named(new QProgressBar(this), u"bar"_s)),
      remaining_(NewLabel(this, u"remaining"_s, QString())),
      abort_(NewButton(this, u"Command_Abbruch"_s, u"Abbrechen"_s)) {
  bar_->setTextVisible(false);
  bar_->setAccessibleName(u"Fortschritt"_s);
  auto* texts = new QHBoxLayout;
  texts->addWidget(count_);
  texts->addStretch();
  texts->addWidget(remaining_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(texts);
  layout->addWidget(bar_);
  layout->addSpacing(Air(*this));
  layout->addLayout(NewButtonRow({abort_}));
  FitToContent(*this, kCharacters);
  connect(abort_, &QPushButton::clicked, this, [this] { reject(); });
}

void ProgressDialog::Show(const QString& work) {
  setWindowTitle(work);
  count_->setText(u"Verbindung wird aufgebaut"_s);
  remaining_->clear();
  // Nothing is known yet: the bar runs to and fro.
  bar_->setRange(0, 0);
  abort_->setEnabled(true);
  ShowAboveOwner();
}

void ProgressDialog::Step(int done, int total, double remaining_s) {
  bar_->setRange(0, total);
  bar_->setValue(done);
  count_->setText(u"%1 von %2"_s.arg(done).arg(total));
  remaining_->setText(RemainingText(remaining_s));
}

void ProgressDialog::reject() {
  conversation_.Abbruch = kTrue;
  abort_->setEnabled(false);
}

}  // namespace kalivor::ui
