#include "ui/options/frmOptions.h"

#include <QEvent>
#include <QFormLayout>
#include <QScreen>
#include <QShortcut>
#include <QStyleOptionFrame>

#include "base/Numbers.h"
#include "commands/SettingsTable.h"
#include "ui/dialogs/Controls.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr int kWidth_characters = 60;
constexpr int kShownPath_characters = 45;

// Makes `box` wide enough to show `characters` of a usual text.
void SetShownCharacters(QLineEdit& box, int characters) {
  QStyleOptionFrame option;
  option.initFrom(&box);
  option.lineWidth = box.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &box);
  // Digits are wider than most letters; the box itself keeps 2 pixels free at either side.
  const QSize text(box.fontMetrics().horizontalAdvance(u'0') * characters + 2 * 2 + 1, 0);
  box.setMinimumWidth(box.style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, &box).width());
}

}  // namespace

frmOptions::frmOptions() : Form(u"frmOptions"_s, u"Optionen"_s) {
  tbsOptions_ = Named(new QTabWidget(this), u"tbsOptions"_s);
  tbsOptions_->addTab(NewPortPage(), u"Schnittstelle"_s);
  tbsOptions_->addTab(NewAddressPage(), u"Regler"_s);
  tbsOptions_->addTab(NewFilesPage(), u"Dateien"_s);
  tbsOptions_->setTabToolTip(0, u"Optionen für die Serielle Schnittstelle festlegen"_s);
  tbsOptions_->setTabToolTip(1, u"Optionen des angeschlossenen Reglers festlegen"_s);

  auto* ok = NewButton(this, u"cmdOK"_s, u"OK"_s);
  auto* cancel = NewButton(this, u"cmdCancel"_s, u"Abbrechen"_s);
  auto* apply = NewButton(this, u"cmdApply"_s, u"Übernehmen"_s);
  ok->setDefault(true);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tbsOptions_);
  layout->addLayout(NewButtonRow({ok, cancel, apply}));

  connect(ok, &QPushButton::clicked, this, [this] {
    if (Uebernehmen()) hide();
  });
  connect(apply, &QPushButton::clicked, this, [this] { Uebernehmen(); });
  connect(cancel, &QPushButton::clicked, this, &frmOptions::reject);
  auto* nextPage = new QShortcut(QKeySequence(u"Ctrl+Tab"_s), this);
  connect(nextPage, &QShortcut::activated, this,
          [this] { tbsOptions_->setCurrentIndex((tbsOptions_->currentIndex() + 1) % tbsOptions_->count()); });
}

QWidget* frmOptions::NewPortPage() {
  auto* page = Named(new QWidget, u"GroupSchnittstelle"_s);
  comboSchnittstelle_ = NewList(page, u"ComboSchnittstelle"_s, u"Schnittstelle"_s);
  for (int number = kSchnittstelle.lowest; number <= kSchnittstelle.highest; ++number)
    comboSchnittstelle_->addItem(u"COM%1"_s.arg(number));
  comboSchnittstelle_->installEventFilter(this);
  auto* layout = new QFormLayout(page);
  layout->addRow(u"Schnittstelle"_s, comboSchnittstelle_);
  return page;
}

QWidget* frmOptions::NewAddressPage() {
  auto* page = Named(new QWidget, u"GroupRegler"_s);
  comboAdresse_ = NewList(page, u"ComboAdresse"_s, u"Geräteadresse"_s);
  for (int address = kAdresse.lowest; address <= kAdresse.highest; ++address)
    comboAdresse_->addItem(BlankNumber(address));
  auto* layout = new QFormLayout(page);
  layout->addRow(u"Geräteadresse"_s, comboAdresse_);
  return page;
}

QWidget* frmOptions::NewFilesPage() {
  auto* page = Named(new QWidget, u"GroupVerzeichnisse"_s);
  textVerzParameter_ = NewTextBox(page, u"TextVerzParameter"_s, u"Versionstabelle"_s);
  auto* browse = NewButton(page, u"CommandBrowse"_s, u"Browse"_s);
  auto* row = new QHBoxLayout;
  row->addWidget(textVerzParameter_);
  row->addWidget(browse);
  auto* layout = new QFormLayout(page);
  layout->addRow(u"Versionstabelle"_s, row);
  connect(textVerzParameter_, &QLineEdit::textChanged, this, [this](const QString& path) {
    pathChanged_ = true;
    textVerzParameter_->setToolTip(path);
  });
  connect(browse, &QPushButton::clicked, this, [this] { Browse(); });
  return page;
}

void frmOptions::Open(const OptionsContent& content, int page) {
  if (!isVisible()) {
    comboSchnittstelle_->setCurrentIndex(content.portPosition);
    comboAdresse_->setCurrentIndex(content.addressPosition);
    textVerzParameter_->setText(content.tablePath);
    pathChanged_ = content.pathChanged;
    SetShownCharacters(*textVerzParameter_, kShownPath_characters);
    FitToContent(*this, kWidth_characters);
    move(screen()->availableGeometry().center() - rect().center());
  }
  tbsOptions_->setCurrentIndex(page);
  QWidget* const fields[] = {comboSchnittstelle_, comboAdresse_, textVerzParameter_};
  fields[page]->setFocus();
  ShowAboveOwner();
}

OptionsContent frmOptions::Content() const {
  return {comboSchnittstelle_->currentIndex(), comboAdresse_->currentIndex(), textVerzParameter_->text(),
          pathChanged_};
}

// True when the content was applied: only then the dialog may close.
bool frmOptions::Uebernehmen() {
  if (!OnApply || !OnApply(Content())) return false;
  pathChanged_ = false;
  return true;
}

void frmOptions::Browse() {
  const QString path = OnBrowse ? OnBrowse() : QString();
  if (path.isEmpty()) return;
  textVerzParameter_->setText(path);
  // Also where it is the old path: the file may be a new one.
  pathChanged_ = true;
}

// The devices are looked up when the list opens: adapters come and go.
bool frmOptions::eventFilter(QObject* watched, QEvent* event) {
  if (watched == comboSchnittstelle_ &&
      (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress ||
       event->type() == QEvent::Enter)) {
    NameDevices();
  }
  return QDialog::eventFilter(watched, event);
}

void frmOptions::NameDevices() {
  for (int number = kSchnittstelle.lowest; number <= kSchnittstelle.highest; ++number) {
    const QString device = DeviceOfPort ? DeviceOfPort(number) : QString();
    const QString shown = device.isEmpty() ? u"nicht vorhanden"_s : device;
    comboSchnittstelle_->setItemData(number - kSchnittstelle.lowest, shown, Qt::ToolTipRole);
    comboSchnittstelle_->setItemData(number - kSchnittstelle.lowest, shown, Qt::AccessibleDescriptionRole);
  }
}

// QDialog's closeEvent comes here as well. While an operation is under way the dialog stays.
void frmOptions::reject() {
  if (isEnabled()) hide();
}

}  // namespace kalivor::ui
