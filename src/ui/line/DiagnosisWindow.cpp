#include "ui/line/DiagnosisWindow.h"

#include <QScrollBar>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextOption>
#include <QVBoxLayout>
#include <utility>

#include "ui/dialogs/Controls.h"
#include "ui/line/QualityView.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 135;
constexpr int kHeight_lines = 36;

const QString& PlaceKey() {
  static const QString key = u"DiagnosePlatz"_s;
  return key;
}

// The page is white, whatever the windows look like.
QPalette Paper() {
  QPalette paper(QColor(0xFF, 0xFF, 0xFF));
  for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
    paper.setColor(role, Qt::white);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
    paper.setColor(role, QColor(0x1A, 0x1A, 0x1A));
  return paper;
}

}  // namespace

/// Shows the page. Its pictures are painted here, as the toolkit's pages know none that are drawn; nothing is
/// fetched from anywhere.
class DiagnosisPreview final : public QTextBrowser {
 public:
  explicit DiagnosisPreview(QWidget* parent) : QTextBrowser(parent) {
    setObjectName(u"Preview"_s);
    setAccessibleName(u"Vorschau des Berichts"_s);
    setOpenLinks(false);
    setWordWrapMode(QTextOption::WordWrap);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    // Tab leads on to the buttons.
    setTabChangesFocus(true);
    QPalette paper = Paper();
    paper.setColor(QPalette::Highlight, parent->palette().color(QPalette::Highlight));
    paper.setColor(QPalette::HighlightedText, parent->palette().color(QPalette::HighlightedText));
    setPalette(paper);
  }

  void ShowPage(const Diagnosis& diagnosis, const LeftOut& leftOut) {
    pictures_.clear();
    const int top = verticalScrollBar()->value();
    setHtml(
        DiagnosisHtml(diagnosis, leftOut, [this](const LineQuality& quality) { return Picture(quality); }));
    verticalScrollBar()->setValue(top);
  }

 protected:
  [[nodiscard]] QVariant loadResource(int type, const QUrl& name) override {
    const qsizetype number = name.path().toLongLong();
    const bool ours = type == QTextDocument::ImageResource && name.scheme() == u"bild";
    if (ours && number >= 0 && number < pictures_.size()) return pictures_.at(number);
    // Where it is given nothing, the document looks for a file by itself.
    return QByteArray("");
  }

 private:
  [[nodiscard]] QString Picture(const LineQuality& quality) {
    PictureView view;
    view.setPalette(Paper());
    view.setAutoFillBackground(true);
    view.Show(QualityPicture(quality), {kPictureWidth, kPictureHeight}, {});
    view.resize(view.sizeHint());
    pictures_.append(view.grab());
    return u"<img src=\"bild:%1\" width=\"%2\" height=\"%3\">"_s.arg(
        QString::number(pictures_.size() - 1), QString::number(view.width()), QString::number(view.height()));
  }

  QList<QPixmap> pictures_;
};

DiagnosisWindow::DiagnosisWindow(DiagnosisSurroundings surroundings)
    : Form(u"DiagnosisWindow"_s, u"Diagnosebericht"_s),
      surroundings_(std::move(surroundings)),
      preview_(new DiagnosisPreview(this)),
      names_(Named(new QCheckBox(u"&Benutzer und Rechner weglassen"_s, this), u"LeaveOutNames"_s)),
      folders_(Named(new QCheckBox(u"&Ordner weglassen"_s, this), u"LeaveOutFolders"_s)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  auto* again = NewButton(this, u"CollectAgain"_s, u"&Neu erstellen"_s);
  again->setToolTip(u"F5"_s);
  auto* save = NewButton(this, u"Save"_s, u"Speichern &unter…"_s);
  auto* close = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);

  auto* choices = new QHBoxLayout;
  choices->addWidget(names_);
  choices->addWidget(folders_);
  choices->addStretch();
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {again, save, close}) {
    button->setAutoDefault(false);
    buttons->addWidget(button);
  }
  buttons->insertStretch(2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      NewLabel(this, u"Explanation"_s,
               u"Für alle, die bei einer Störung helfen. Der Bericht wird so gespeichert, wie er hier "
               "steht; gesendet wird nichts."_s,
               true));
  layout->addLayout(choices);
  layout->addWidget(preview_, 1);
  layout->addLayout(buttons);

  const auto guarded = [this](void (DiagnosisWindow::*action)()) {
    return [this, action] { surroundings_.guard([this, action] { (this->*action)(); }); };
  };
  connect(again, &QPushButton::clicked, this, guarded(&DiagnosisWindow::Collect));
  connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this, guarded(&DiagnosisWindow::Collect));
  connect(save, &QPushButton::clicked, this, guarded(&DiagnosisWindow::Save));
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  for (QCheckBox* choice : {names_, folders_}) {
    choice->setChecked(true);
    connect(choice, &QCheckBox::toggled, this, guarded(&DiagnosisWindow::Show));
  }
  SetTabOrder({names_, folders_, preview_, again, save, close});
  ResizeOnScreen(*this, {fontMetrics().averageCharWidth() * kWidth_characters,
                         fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
}

void DiagnosisWindow::Open() {
  if (!isVisible()) {
    for (QCheckBox* choice : {names_, folders_})
      choice->setChecked(true);
  }
  Collect();
  ShowAboveOwner();
  preview_->setFocus();
}

void DiagnosisWindow::Collect() {
  diagnosis_ = surroundings_.collect();
  Show();
}

void DiagnosisWindow::Show() {
  preview_->ShowPage(diagnosis_, Wanted());
}

void DiagnosisWindow::Save() {
  surroundings_.save(DiagnosisHtml(diagnosis_, Wanted()));
}

LeftOut DiagnosisWindow::Wanted() const {
  LeftOut wanted = surroundings_.privateTexts();
  if (!names_->isChecked()) wanted.names.clear();
  if (!folders_->isChecked()) wanted.folders.clear();
  return wanted;
}

void DiagnosisWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, surroundings_.settings, PlaceKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
