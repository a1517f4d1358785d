#include "ui/history/CurveWindow.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/dialogs/Controls.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr QSizeF kFirstSize(760, 360);

const QString& PlaceKey() {
  static const QString key = u"KurvePlatz"_s;
  return key;
}

}  // namespace

void CurveView::Show(history::Curve curve) {
  curve_ = std::move(curve);
  current_ = static_cast<int>(curve_.points.size()) - 1;
  Draw();
}

QSize CurveView::sizeHint() const {
  return (kFirstSize * LetterScale()).toSize();
}

void CurveView::Draw() {
  const QString point = current_ < 0 ? QString() : u" "_s + history::CurvePointText(curve_, current_);
  PictureView::Show(history::CurvePicture(curve_, Room(), current_), Room(),
                    history::CurveText(curve_) + point);
}

void CurveView::GoTo(int point) {
  const int last = static_cast<int>(curve_.points.size()) - 1;
  if (last < 0) return;
  current_ = std::clamp(point, 0, last);
  Draw();
  if (OnCurrent) OnCurrent();
}

void CurveView::resizeEvent(QResizeEvent* event) {
  PictureView::resizeEvent(event);
  Draw();
}

void CurveView::changeEvent(QEvent* event) {
  PictureView::changeEvent(event);
  if (event->type() == QEvent::FontChange) Draw();
}

void CurveView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return GoTo(current_ - 1);
    case Qt::Key_Right:
      return GoTo(current_ + 1);
    case Qt::Key_Home:
      return GoTo(0);
    case Qt::Key_End:
      return GoTo(static_cast<int>(curve_.points.size()) - 1);
    default:
      PictureView::keyPressEvent(event);
  }
}

void CurveView::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  GoTo(history::CurvePointAt(curve_, Room(), event->position().x() / LetterScale()));
}

CurveWindow::CurveWindow(CurveSurroundings surroundings)
    : Form(u"CurveWindow"_s, u"Verlauf des Wertes"_s),
      surroundings_(std::move(surroundings)),
      sentence_(NewLabel(this, u"sentence"_s, QString(), true)),
      view_(Named(new CurveView(this), u"curveView"_s)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  show_ = NewButton(this, u"showEntry"_s, u"&Eintrag zeigen"_s);
  show_->setToolTip(u"Markiert den Eintrag des gewählten Wertes im Verlauf."_s);
  connect(show_, &QPushButton::clicked, this, [this] {
    surroundings_.guard([this] {
      if (view_->Current() < 0) return;
      surroundings_.show(view_->Shown().points[static_cast<std::size_t>(view_->Current())].entry);
    });
  });
  auto* save = NewButton(this, u"savePicture"_s, u"Als &Bild speichern…"_s);
  connect(save, &QPushButton::clicked, this, [this] {
    surroundings_.guard([this] {
      const history::Curve& curve = view_->Shown();
      surroundings_.save(
          PictureSvg(history::CurvePicture(curve, kFirstSize), kFirstSize, history::CurveText(curve)));
    });
  });
  auto* close = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {show_, save, close})
    row->addWidget(button);
  row->insertStretch(2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(sentence_);
  layout->addWidget(view_, 1);
  layout->addLayout(row);
  SetTabOrder({view_, show_, save, close});
  ResizeOnScreen(*this, sizeHint());
  LoadPlace(*this, surroundings_.settings, PlaceKey());
}

void CurveWindow::Open(history::Curve curve, const QString& plant) {
  const qsizetype count = static_cast<qsizetype>(curve.points.size());
  sentence_->setText(count == 0 ? u"%1: Kein Eintrag hat eine Zahl dazu."_s.arg(plant)
                                : u"%1: %2. Mit den Pfeiltasten oder der Maus von Wert zu Wert."_s.arg(
                                      plant, count == 1 ? u"1 Wert"_s : u"%1 Werte"_s.arg(count)));
  view_->Show(std::move(curve));
  show_->setEnabled(view_->Current() >= 0);
  ShowAboveOwner();
  view_->setFocus();
}

void CurveWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, surroundings_.settings, PlaceKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
