#include "print/MDIFormPrint.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>
#include <QScopeGuard>
#include <QScreen>
#include <QShortcut>
#include <QStatusBar>
#include <QToolBar>
#include <array>
#include <memory>

#include "base/Numbers.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

struct Item {
  QStringView key;
  QStringView caption;
  QStringView spoken = {};  // for screen readers, where the caption is no word
};

// The blanks at the end are the distances between the buttons.
constexpr std::array<Item, 7> kButtons{{{u"Drucken", u"Drucken  "},
                                        {u"SeiteDrucken", u"Seite Drucken  "},
                                        {u"Ausrichtung", u"Ausrichtung  "},
                                        {u"Format", u"1:2  "},
                                        {u"Abbrechen", u"Schliessen  "},
                                        {u"back", u"<<           ", u"Vorige Seite"},
                                        {u"fwd", u">>           ", u"Nächste Seite"}}};
constexpr std::array<Item, 3> kScales{{{u"eins", u"1:1"}, {u"zwei", u"1:2"}, {u"vier", u"1:4"}}};

// The page's distance from the edge of the frame: 240 twips.
constexpr int kPageMargin_px = 16;

}  // namespace

MDIFormPrint::MDIFormPrint(const PrintWorld& world, platform::EventGuard guard)
    : world_(world),
      guard_(std::move(guard)),
      area_(new QScrollArea(this)),
      panel1_(new QLabel),
      panel2_(new platform::ElidedLabel) {
  setObjectName(u"MDIFormPrint"_s);
  setWindowTitle(u"Print Preview"_s);
  BuildToolbar();
  AddKeys();

  area_->setAccessibleName(u"Druckvorschau"_s);
  area_->setWidgetResizable(true);
  area_->setBackgroundRole(QPalette::Dark);
  setCentralWidget(area_);

  statusBar()->setObjectName(u"StatusBar1"_s);
  panel1_->setObjectName(u"panel1"_s);
  panel1_->setAccessibleDescription(u"Seite"_s);
  panel1_->setTextFormat(Qt::PlainText);
  statusBar()->addWidget(panel1_);
  panel2_->setObjectName(u"panel2"_s);
  statusBar()->addWidget(panel2_, 1);
}

void MDIFormPrint::BuildToolbar() {
  QToolBar* bar = addToolBar(QString());
  bar->setObjectName(u"Toolbar1"_s);
  bar->setWindowTitle(windowTitle());
  bar->setMovable(false);
  bar->toggleViewAction()->setEnabled(false);
  setContextMenuPolicy(Qt::NoContextMenu);
  for (const Item& item : kButtons) {
    auto* button = new QToolButton(bar);
    const QString key = item.key.toString();
    button->setObjectName(key);
    button->setText(item.caption.toString());
    button->setAccessibleName(item.spoken.toString());
    button->setFocusPolicy(Qt::TabFocus);
    bar->addWidget(button);
    connect(button, &QToolButton::clicked, this, [this, key] { guard_([&] { Toolbar1_ButtonClick(key); }); });
    if (key == u"Format") format_ = button;
  }

  auto* scales = new QMenu(format_);
  for (const Item& item : kScales) {
    QAction* action = scales->addAction(item.caption.toString());
    const QString key = item.key.toString();
    action->setObjectName(key);
    connect(action, &QAction::triggered, this,
            [this, key] { guard_([&] { Toolbar1_ButtonMenuClick(key); }); });
  }
  format_->setMenu(scales);
  format_->setPopupMode(QToolButton::MenuButtonPopup);
  // The toolkit opens such a menu by mouse only.
  auto* open = new QShortcut(Qt::Key_Down, format_, nullptr, nullptr, Qt::WidgetShortcut);
  connect(open, &QShortcut::activated, format_, &QToolButton::showMenu);
}

// Whatever has the focus, the page too, which would scroll.
void MDIFormPrint::AddKeys() {
  const auto press = [this](Qt::Key key, const QString& button) {
    connect(new QShortcut(key, this), &QShortcut::activated, this,
            [this, button] { guard_([&] { Toolbar1_ButtonClick(button); }); });
  };
  press(Qt::Key_PageUp, u"back"_s);
  press(Qt::Key_PageDown, u"fwd"_s);
  press(Qt::Key_Escape, u"Abbrechen"_s);
}

// The preview becomes part of the frame once it has started: of one that fails nothing is left.
void MDIFormPrint::Load() {
  auto desk = std::make_unique<QWidget>();
  auto* layout = new QVBoxLayout(desk.get());
  layout->setContentsMargins(kPageMargin_px, kPageMargin_px, kPageMargin_px, kPageMargin_px);
  auto* preview = new FormPrintPreview(world_, guard_, desk.get());
  layout->addWidget(preview, 0, Qt::AlignLeft | Qt::AlignTop);
  preview->Initialize_fPP();
  preview->OnChange = [this, preview] { panel1_->setText(preview->PanelText()); };
  preview->OnChange();
  area_->setWidget(desk.release());
  area_->viewport()->setAutoFillBackground(true);
  preview_ = preview;
  FitToPage();
}

// As large as the first page needs, as far as the screen allows.
void MDIFormPrint::FitToPage() {
  const int bars = findChild<QToolBar*>()->sizeHint().height() + statusBar()->sizeHint().height();
  const QSize page = preview_->size() + QSize(3 * kPageMargin_px, 3 * kPageMargin_px + bars);
  resize(page.expandedTo(sizeHint()).boundedTo(screen()->availableSize() * 0.9));
}

void MDIFormPrint::ShowForm() {
  if (preview_ == nullptr) Load();
  preview_->show();
  show();
  raise();
  activateWindow();
}

void MDIFormPrint::Initialize_MDIPP() {
  ShowFile(QString());
  preview_->Initialize_fPP();
}

void MDIFormPrint::Toolbar1_ButtonClick(const QString& key) {
  if (key == u"Drucken") {
    PrintWith(&PreviewPages::CommandDrucken);
  } else if (key == u"SeiteDrucken") {
    PrintWith(&PreviewPages::CommandSeiteDrucken);
  } else if (key == u"Ausrichtung") {
    preview_->CommandAusrichtung();
  } else if (key == u"Format") {
    SetScale(preview_->Masstab == 1 ? 2 : 1);
  } else if (key == u"Abbrechen") {
    hide();
  } else if (key == u"back") {
    Turn(-1);
  } else if (key == u"fwd") {
    Turn(1);
  }
}

// 1:4 is listed but never reached: that entry does what the button does.
void MDIFormPrint::Toolbar1_ButtonMenuClick(const QString& key) {
  if (key == u"vier") return Toolbar1_ButtonClick(u"Format"_s);
  SetScale(key == u"eins" ? 1 : 2);
}

void MDIFormPrint::SetScale(double divisor) {
  preview_->Masstab = divisor;
  format_->setText(u"1:"_s + BlankDouble(divisor).right(1) + u"  "_s);
  preview_->DoLayout();
}

// Selects and lays out also where there is no page to turn to. The layout takes the new page text into the
// footer.
void MDIFormPrint::Turn(int pages) {
  const bool possible = pages < 0 ? preview_->Page > 1 : preview_->Page < preview_->MaxPage.value_or(0);
  if (possible) preview_->Page += pages;
  preview_->selectPage();
  preview_->DoLayout();
}

// Neither the frame nor the main window takes input meanwhile, and what the user does then is lost: a second
// click out of impatience must not print twice.
void MDIFormPrint::PrintWith(void (PreviewPages::*command)()) {
  ShowFile(QString());
  const QPointer<QWidget> focus = focusWidget();
  setEnabled(false);
  world_.core.main.SetEnabled(false);
  const auto enable = qScopeGuard([&] {
    QGuiApplication::sync();
    world_.core.main.SetEnabled(true);
    setEnabled(true);
    if (focus) focus->setFocus();
  });
  (preview_->*command)();
  ShowFile(preview_->PrintedFile());
}

// Jobs after the first one get names that the user has not chosen.
void MDIFormPrint::ShowFile(const QString& path) {
  panel2_->ShowText(path.isEmpty() ? QString() : u"Gedruckt in "_s + path);
}

void MDIFormPrint::closeEvent(QCloseEvent* event) {
  event->setAccepted(isEnabled());
}

void mnuFilePrint_Click(MDIFormPrint& frame) {
  const PrintWorld& world = frame.World();
  try {
    const std::optional<int> copies = world.printer.Choose(kPrintDialogFlags);
    if (!copies) return;
    world.core.module.Kopien = ToInt16(*copies);
    frame.ShowForm();
    frame.Initialize_MDIPP();
  } catch (const RuntimeError&) {
    // The command ends without a word, as it does when the user cancels the dialog.
  }
}

}  // namespace kalivor::print
