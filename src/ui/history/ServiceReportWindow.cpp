#include "ui/history/ServiceReportWindow.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "base/Paths.h"
#include "commands/ExportCommands.h"
#include "ui/dialogs/Controls.h"
#include "ui/history/LetterPicture.h"
#include "ui/history/PagesView.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 150;
constexpr int kFields_characters = 46;
constexpr int kHeight_lines = 44;
constexpr int kLinesOfText = 6;
constexpr int kRest_ms = 300;

const QString& PlaceKey() {
  static const QString key = u"ServiceprotokollPlatz"_s;
  return key;
}

const QString& PictureName() {
  static const QString name = u"bild:briefkopf"_s;
  return name;
}

QPlainTextEdit* NewTextField(QWidget* parent, const QString& name, const QString& accessibleName) {
  auto* field = Named(new QPlainTextEdit(parent), name);
  field->setAccessibleName(accessibleName);
  // Tab leads on.
  field->setTabChangesFocus(true);
  field->setMinimumHeight(field->fontMetrics().lineSpacing() * 3);
  field->setMaximumHeight(field->fontMetrics().lineSpacing() * kLinesOfText + 2 * field->frameWidth() + 8);
  return field;
}

QString FolderOf(QString path) {
  while (!path.isEmpty() && !IsSeparator(path.back()))
    path.chop(1);
  return path;
}

history::ServiceTemplate BuiltIn() {
  return history::ServiceTemplate::Parse(history::BuiltInServiceTemplate(), history::ServiceScope()).page;
}

}  // namespace

ServiceReportWindow::ServiceReportWindow(ServiceReportSurroundings surroundings)
    : Form(u"ServiceReportWindow"_s, u"Serviceprotokoll"_s),
      surroundings_(std::move(surroundings)),
      title_(NewTextBox(this, u"Title"_s, u"Titel"_s)),
      remark_(NewTextField(this, u"Remark"_s, u"Bemerkung"_s)),
      letterhead_(NewTextField(this, u"Letterhead"_s, u"Briefkopf"_s)),
      picture_(NewReadOnlyBox(this, u"Picture"_s, u"Bild des Briefkopfs"_s)),
      note_(NewLabel(this, u"Note"_s, QString(), true)),
      view_(new PagesView(this, u"Preview"_s, u"Vorschau des Protokolls"_s)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  auto* content = new QHBoxLayout;
  content->addWidget(NewFields());
  content->addWidget(view_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(content, 1);
  layout->addLayout(NewButtons());

  connect(title_, &QLineEdit::textEdited, this, &ServiceReportWindow::UpdateSoon);
  for (QPlainTextEdit* field : {remark_, letterhead_})
    connect(field, &QPlainTextEdit::textChanged, this, &ServiceReportWindow::UpdateSoon);
  rest_.setSingleShot(true);
  connect(&rest_, &QTimer::timeout, this, [this] { surroundings_.guard([this] { Update(); }); });
  ResizeOnScreen(*this, {fontMetrics().averageCharWidth() * kWidth_characters,
                         fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
}

QWidget* ServiceReportWindow::NewFields() {
  auto* fields = new QWidget(this);
  fields->setFixedWidth(fontMetrics().averageCharWidth() * kFields_characters);
  auto* choose = NewButton(fields, u"ChoosePicture"_s, u"&Durchsuchen…"_s);
  noPicture_ = NewButton(fields, u"NoPicture"_s, u"&Ohne Bild"_s);
  auto* pictureButtons = new QHBoxLayout;
  for (QPushButton* button : {choose, noPicture_}) {
    button->setAutoDefault(false);
    pictureButtons->addWidget(button);
  }
  pictureButtons->addStretch();

  auto* layout = new QVBoxLayout(fields);
  layout->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](const QString& caption, QWidget* field) {
    layout->addWidget(NewCaption(fields, caption, field));
    layout->addWidget(field);
  };
  add(u"&Titel"_s, title_);
  add(u"&Bemerkung"_s, remark_);
  layout->addSpacing(Air(*this));
  add(u"Brief&kopf"_s, letterhead_);
  add(u"B&ild"_s, picture_);
  layout->addLayout(pictureButtons);
  layout->addSpacing(Air(*this));
  layout->addWidget(note_);
  layout->addStretch();

  connect(choose, &QPushButton::clicked, this, [this] { surroundings_.guard([this] { ChoosePicture(); }); });
  connect(noPicture_, &QPushButton::clicked, this, [this] {
    surroundings_.guard([this] {
      settings_.letterPicture.clear();
      TakePicture();
    });
  });
  SetTabOrder({title_, remark_, letterhead_, picture_, choose, noPicture_, view_});
  return fields;
}

QHBoxLayout* ServiceReportWindow::NewButtons() {
  save_ = NewButton(this, u"Save"_s, u"Als &PDF speichern…"_s);
  print_ = NewButton(this, u"Print"_s, u"D&rucken…"_s);
  print_->setVisible(static_cast<bool>(surroundings_.print));
  auto* layoutMenu = NewButton(this, u"Template"_s, u"&Vorlage"_s);
  auto* close = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {save_, print_, layoutMenu, close}) {
    button->setAutoDefault(false);
    buttons->addWidget(button);
  }
  buttons->insertStretch(3);

  auto* menu = Named(new QMenu(layoutMenu), u"templateMenu"_s);
  const auto add = [&](const QString& name, const QString& caption, void (ServiceReportWindow::*run)()) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this,
            [this, run] { surroundings_.guard([this, run] { (this->*run)(); }); });
    return action;
  };
  add(u"templateChoose"_s, u"&Wählen…"_s, &ServiceReportWindow::ChooseTemplate);
  add(u"templateReload"_s, u"&Neu laden\tF5"_s, &ServiceReportWindow::Reload);
  add(u"templateSave"_s, u"Eingebaute &speichern…"_s, &ServiceReportWindow::SaveBuiltIn);
  builtIn_ = add(u"templateBuiltIn"_s, u"&Eingebaute verwenden"_s, &ServiceReportWindow::UseBuiltIn);
  layoutMenu->setMenu(menu);

  const auto guarded = [this](void (ServiceReportWindow::*run)()) {
    return [this, run] { surroundings_.guard([this, run] { (this->*run)(); }); };
  };
  connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this,
          guarded(&ServiceReportWindow::Reload));
  connect(save_, &QPushButton::clicked, this, guarded(&ServiceReportWindow::Save));
  connect(print_, &QPushButton::clicked, this, guarded(&ServiceReportWindow::Print));
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  SetTabOrder({view_, save_, print_, layoutMenu, close});
  return buttons;
}

void ServiceReportWindow::Open(history::ServiceVisit visit) {
  if (isVisible()) StoreSettings();
  visit_ = std::move(visit);
  settings_ = surroundings_.used();
  title_->setText(u"Serviceprotokoll"_s);
  remark_->clear();
  letterhead_->setPlainText(settings_.letterhead);
  Reload();
  ShowAboveOwner();
  view_->setFocus();
}

// The files may be others by now.
void ServiceReportWindow::Reload() {
  LoadPicture();
  LoadTemplate();
  Update();
}

// --- letterhead ---

void ServiceReportWindow::ChoosePicture() {
  const QString path = surroundings_.dialogs.OpenFile(
      u"Bild des Briefkopfs"_s, FolderOf(settings_.letterPicture), LetterPictureFilter());
  if (path.isEmpty()) return;
  settings_.letterPicture = path;
  TakePicture();
}

void ServiceReportWindow::TakePicture() {
  StoreSettings();
  LoadPicture();
  Update();
}

void ServiceReportWindow::LoadPicture() {
  const QString& path = settings_.letterPicture;
  picture_->setText(path);
  noPicture_->setEnabled(!path.isEmpty());
  image_ = {};
  pictureNote_.clear();
  if (path.isEmpty()) return;
  const LetterPicture loaded = LoadLetterPicture(surroundings_.files, path);
  image_ = loaded.image;
  if (!loaded.error.isEmpty())
    pictureNote_ = u"Das Protokoll ist ohne Bild: %1\n%2"_s.arg(loaded.error, path);
}

// --- template ---

void ServiceReportWindow::ChooseTemplate() {
  const QString path =
      surroundings_.dialogs.OpenFile(u"Vorlage des Protokolls"_s, FolderOf(settings_.reportTemplate),
                                     u"HTML-Seite (*.html)|*.html|Alle Dateien (*.*)|*.*"_s);
  if (!path.isEmpty()) UseTemplate(path);
}

void ServiceReportWindow::UseBuiltIn() {
  UseTemplate({});
}

void ServiceReportWindow::UseTemplate(const QString& path) {
  settings_.reportTemplate = path;
  StoreSettings();
  LoadTemplate();
  Update();
  if (!templateNote_.isEmpty()) surroundings_.box.Show(QString(templateNote_).replace(u'\n', u"\r\n"_s));
}

void ServiceReportWindow::LoadTemplate() {
  const QString& path = settings_.reportTemplate;
  builtIn_->setEnabled(!path.isEmpty());
  template_.reset();
  templateFault_.clear();
  if (path.isEmpty()) return;
  const platform::FileContent content =
      surroundings_.files.Read(path, history::ServiceTemplate::kLargest_bytes);
  templateFault_ = content.error;
  if (!content.Ok()) return;
  history::ServiceTemplate::Parsed parsed =
      history::ServiceTemplate::Parse(content.bytes, history::ServiceScope());
  templateFault_ = parsed.error;
  if (parsed.error.isEmpty()) template_ = std::move(parsed.page);
}

void ServiceReportWindow::SaveBuiltIn() {
  ExportHtml(Exporting(), u"Eingebaute Vorlage speichern"_s, history::BuiltInServiceTemplate());
}

// --- the page ---

void ServiceReportWindow::UpdateSoon() {
  rest_.start();
}

// A template that is in order by itself may still be filled in to something that cannot be printed.
void ServiceReportWindow::Update() {
  rest_.stop();
  QElapsedTimer since;
  since.start();
  QString fault = templateFault_;
  if (template_) fault = FillIn(*template_);
  const QString failure = template_ && fault.isEmpty() ? QString() : FillIn(BuiltIn());
  templateNote_.clear();
  if (!fault.isEmpty() && fault != failure)
    templateNote_ =
        u"Die Vorlage ist nicht in Ordnung. %1\n%2\nBis sie berichtigt ist, gilt die eingebaute."_s.arg(
            fault, settings_.reportTemplate);
  QStringList notes{failure, templateNote_, pictureNote_};
  notes.removeAll(QString());
  note_->setText(notes.join(u"\n\n"_s));
  note_->setVisible(!notes.isEmpty());
  for (QPushButton* button : {save_, print_})
    button->setEnabled(failure.isEmpty());
  view_->ShowPages(layout_, platform::kUprightA4_cm);
  // Who types is not to wait for a long report at every pause.
  rest_.setInterval(std::max(kRest_ms, static_cast<int>(since.elapsed())));
}

// Returns why there are no pages, "" where there are.
QString ServiceReportWindow::FillIn(const history::ServiceTemplate& page) {
  const QSize size = LetterPictureSize(image_);
  const history::TemplateRow values = history::ServiceValues(
      visit_, {title_->text(), remark_->toPlainText(), letterhead_->toPlainText(),
               image_.isNull() ? QString() : PictureName(), size.width(), size.height()});
  const history::ServiceTemplate::Page filled = page.Render(values);
  QStringList footer{title_->text(), visit_.plant.name};
  footer.removeAll(QString());
  document_ = {filled.html, PictureName(), image_, footer.join(u" · "_s)};
  layout_ = {};
  if (!filled.error.isEmpty()) return filled.error;
  layout_ = platform::DocumentPages(document_, platform::kUprightA4_cm);
  return layout_.error;
}

// What was typed last is on the page, however fast somebody was.
void ServiceReportWindow::Finish() {
  if (rest_.isActive()) Update();
  StoreSettings();
}

void ServiceReportWindow::Save() {
  Finish();
  ExportPdf(Exporting(), u"Protokoll speichern"_s, platform::DocumentPdf(title_->text(), layout_));
}

void ServiceReportWindow::Print() {
  Finish();
  surroundings_.print(u"Serviceprotokoll"_s, document_);
}

// The rest of the settings may be others by now.
void ServiceReportWindow::StoreSettings() {
  const history::HistorySettings stored = surroundings_.used();
  history::HistorySettings wanted = stored;
  wanted.letterhead = letterhead_->toPlainText();
  wanted.letterPicture = settings_.letterPicture;
  wanted.reportTemplate = settings_.reportTemplate;
  if (wanted != stored) surroundings_.use(wanted);
}

ExportContext ServiceReportWindow::Exporting() {
  return {surroundings_.files, surroundings_.box, surroundings_.dialogs, {}};
}

void ServiceReportWindow::hideEvent(QHideEvent* event) {
  StoreSettings();
  SavePlace(*this, surroundings_.settings, PlaceKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
