#include "ui/line/QualityView.h"

#include <QVBoxLayout>

#include "core/LineHint.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {

QualityView::QualityView(const ExchangeLog& log, QWidget* parent)
    : QWidget(parent),
      log_(log),
      ofTransfer_(Named(new QRadioButton(u"diese Ü&bertragung"_s, this), u"ofTransfer"_s)),
      sinceStart_(Named(new QRadioButton(u"seit dem Star&t"_s, this), u"sinceStart"_s)),
      hint_(NewLabel(this, u"hint"_s, QString(), true)),
      picture_(Named(new PictureView(this), u"picture"_s)) {
  setObjectName(u"quality"_s);
  ofTransfer_->setChecked(true);
  hint_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* row = new QHBoxLayout;
  row->addWidget(ofTransfer_);
  row->addWidget(sinceStart_);
  row->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addWidget(hint_);
  layout->addWidget(picture_, 1);
  connect(ofTransfer_, &QRadioButton::toggled, this, [this] { Update(); });
  Update();
}

void QualityView::Update() {
  const LineQuality& quality = ofTransfer_->isChecked() ? log_.OfTransfer() : log_.SinceStart();
  if (quality == shown_ && !hint_->text().isEmpty()) return;
  shown_ = quality;
  const LineHint hint = HintOf(quality);
  const QString mark = hint.judgement == LineHint::Judgement::Bad    ? u"⚠ "_s
                       : hint.judgement == LineHint::Judgement::Good ? u"✓ "_s
                                                                     : QString();
  QStringList texts;
  for (const QString& text : hint.texts)
    texts.append(mark + text);
  hint_->setText(texts.join(u'\n'));
  const QString figures = QualityLine(quality);
  picture_->Show(QualityPicture(quality), {kPictureWidth, kPictureHeight},
                 u"Leitungsqualität: "_s + (figures.isEmpty() ? u"noch keine Telegramme"_s : figures));
}

}  // namespace kalivor::ui
