#include "ui/main/frmMain.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScreen>
#include <QStatusBar>
#include <algorithm>
#include <array>

#include "commands/StartUp.h"
#include "commands/TransferCommands.h"
#include "platform/gui/FixedFont.h"
#include "platform/qt/WindowPlacing.h"
#include "ui/Resources.h"
#include "ui/dialogs/Controls.h"
#include "ui/main/WindowGeometry.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The designed layout in device-independent pixels, counted from the lower edge of the menu bar: the tree
// from 50 down to 50 above the lower edge of the window, the upper edges of the buttons 45 above it. With a
// font too large for it the strips above and below the tree grow.
constexpr int kTreeTop_px = 50;
constexpr int kTreeBottom_px = 50;
constexpr int kButtonTop_px = 45;
constexpr int kMargin_px = 5;
constexpr int kButtonGap_px = 4;
constexpr int kSmallestButton_px = 102;
constexpr int kSmallestFrame_px = 205;
constexpr int kSmallestTree_px = 100;

// A frame with a list, `title` above it.
QGroupBox* NewFrame(QWidget* parent, const QString& name, const QString& title, QComboBox* list) {
  auto* frame = Named(new QGroupBox(title, parent), name);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(kMargin_px, 0, kMargin_px, 2);
  layout->addWidget(list);
  return frame;
}

QComboBox* NewVersionList(const QString& name, const QString& accessibleName, const QString& designText) {
  QComboBox* list = NewList(nullptr, name, accessibleName);
  list->setPlaceholderText(designText);
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list->setMinimumContentsLength(10);
  return list;
}

// The buttons below the tree, from the left.
struct TransferButton {
  QStringView name;
  QStringView caption;
  QStringView toolTip;
  void (*command)(Core& core) = nullptr;
};
constexpr TransferButton kButtons[] = {
    {u"CommandEmpfangen", u"Empfangen", u"Empfängt alle angekreuzten Parameter vom angeschlossenen Regler.",
     [](Core& core) { (void)CommandEmpfangen_Click(core); }},
    {u"CommandSenden", u"Senden", u"Sendet alle angekreuzten Parameter an den angeschlossenen Regler.",
     [](Core& core) { (void)CommandSenden_Click(core); }},
    {u"CommandStandard", u"Standard", u"Setzt alle angekreuzten Parameter auf den jeweiligen Standardwert.",
     CommandStandard_Click},
    {u"CommandVergleichen", u"Vergleichen",
     u"Vergleicht alle angekreuzten Parameter mit den entsprechenden im angeschlossenen Regler und meldet "
     "alle Abweichungen.",
     [](Core& core) { (void)CommandVergleichen_Click(core); }},
};

double Dpi(const QWidget& widget) {
  return widget.screen()->logicalDotsPerInchX();
}

}  // namespace

frmMain::frmMain(Module1& module, const platform::EventGuard& guard)
    : imlToolbarIcons(CommandIcons()),
      module_(module),
      guard_(guard),
      body_(Named(new QWidget(this), u"body"_s)),
      comboVN_(NewVersionList(u"ComboVN"_s, u"Versionsnummer"_s, u"Versionsnummer"_s)),
      comboArt_(NewVersionList(u"ComboArt"_s, u"Anlageart"_s, u"Art"_s)),
      tree_(Named(new platform::NodeTree(body_), u"TreeView"_s)),
      versions_(*comboVN_, module.VersionList, guard),
      plants_(*comboArt_, module.PlantTypeList, guard),
      nodes_(*tree_, guard) {
  setObjectName(u"frmMain"_s);
  setWindowTitle(u"KALIVOR"_s);
  setWindowIcon(ProgramIcon());
  // The designed font; elsewhere the form has the application's.
  if (QFontDatabase::hasFamily(u"MS Sans Serif"_s)) setFont(QFont(u"MS Sans Serif"_s));
  BuildControls();
  BuildStatusBar();
  BuildMenus(*this, menuActions_, guard_);
  ShowMenuIcons();
  setCentralWidget(body_);
  // The window may be smaller than what it shows.
  layout()->setSizeConstraint(QLayout::SetNoConstraint);
  body_->installEventFilter(this);
  statusBar()->installEventFilter(this);
  Arrange();
}

// Before the members that the widgets call back.
frmMain::~frmMain() {
  body_->removeEventFilter(this);
  statusBar()->removeEventFilter(this);
}

void frmMain::BuildControls() {
  frame1_ = NewFrame(body_, u"Frame1"_s, u"Versionsnummer"_s, comboVN_);
  frame2_ = NewFrame(body_, u"Frame2"_s, u"Anlageart"_s, comboArt_);
  tree_->setFont(platform::FixedFont());
  tree_->setAccessibleName(u"Parameter"_s);
  for (const TransferButton& button : kButtons) {
    buttons_.push_back(NewButton(body_, button.name.toString(), button.caption.toString()));
    buttons_.back()->setToolTip(button.toolTip.toString());
  }
  SetTabOrder({comboVN_, comboArt_, tree_, buttons_[0], buttons_[1], buttons_[2], buttons_[3]});
  comboVN_->setFocus();
}

void frmMain::BuildStatusBar() {
  QStatusBar* bar = Named(statusBar(), u"sbStatusBar"_s);
  state_ = Named(new QLabel, u"state"_s);
  state_->setAccessibleDescription(u"Zustand"_s);
  file_ = Named(new QLabel, u"file"_s);
  file_->setAccessibleDescription(u"Wertedatei"_s);
  file_->setTextFormat(Qt::PlainText);
  // A long path must not widen the window.
  file_->setMinimumWidth(1);
  bar->setContentsMargins(kMargin_px, 0, 0, 0);
  bar->addWidget(state_);
  bar->addWidget(file_);
  outside_ = Named(new QToolButton, u"outside"_s);
  outside_->setAccessibleDescription(u"Werte außerhalb ihrer Grenzen"_s);
  outside_->setToolTip(u"Zeigt die Werte außerhalb ihrer Grenzen in der Parameterliste."_s);
  outside_->setAutoRaise(true);
  outside_->setFocusPolicy(Qt::StrongFocus);
  // The bar has its height from the font.
  outside_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
  connect(outside_, &QToolButton::clicked, this, [this] {
    if (OnOutside) guard_([this] { OnOutside(); });
  });
  bar->addPermanentWidget(outside_);
  outside_->hide();
}

void frmMain::ShowMenuIcons() {
  const std::array items{u"mnuFileOpen"_s, u"mnuFileSave"_s, u"mnuFilePrint"_s};
  for (std::size_t i = 0; i < items.size(); ++i)
    findChild<QAction*>(items[i])->setIcon(imlToolbarIcons[i]);
}

void frmMain::Connect(Core& core) {
  ConnectHandlers(core);
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    connect(buttons_[i], &QPushButton::clicked, this,
            [this, &core, command = kButtons[i].command] { guard_([&] { command(core); }); });
  }
}

void frmMain::SetMenuActions(MenuActions actions) {
  menuActions_ = std::move(actions);
  UpdateMenus(*this, menuActions_);
}

void frmMain::AddCompanion(QWidget& window, bool disabledWhileBusy) {
  companions_.push_back({&window, disabledWhileBusy});
}

// The two strips and the buttons have their sizes from the font.
frmMain::Heights frmMain::HeightsOfStrips() const {
  Heights heights;
  heights.bar = fontMetrics().height() + 5;
  heights.button = std::max(fontMetrics().height() + 7, kButtonTop_px - heights.bar - 1);
  heights.buttonTop = std::max(kButtonTop_px, heights.bar + heights.button + 1);
  heights.treeBottom = heights.buttonTop + kTreeBottom_px - kButtonTop_px;
  const int frame = std::max(frame1_->sizeHint().height(), frame2_->sizeHint().height());
  heights.treeTop = std::max(kTreeTop_px, frame + 1);
  return heights;
}

// The tree gets what the strips leave, nothing in a window that is too low for them.
void frmMain::Arrange() {
  if (isMinimized() || arranging_) return;
  const QScopedValueRollback arranging(arranging_, true);

  const Heights heights = HeightsOfStrips();
  statusBar()->setFixedHeight(heights.bar);
  const int height = body_->height() + heights.bar;
  ArrangeTop(heights.treeTop - 1);
  tree_->setGeometry(0, heights.treeTop, body_->width(),
                     std::max(height - heights.treeTop - heights.treeBottom, 0));
  ArrangeButtons(height - heights.buttonTop, heights.button);
}

QSize frmMain::ComfortableSize() const {
  const Heights heights = HeightsOfStrips();
  const int right = std::max(buttons_.back()->geometry().right(), frame2_->geometry().right());
  const int menu = menuBar()->sizeHint().height();
  return {right + kMargin_px, menu + heights.treeTop + kSmallestTree_px + heights.treeBottom};
}

void frmMain::ArrangeTop(int height) {
  int left = kMargin_px;
  for (QGroupBox* frame : {frame1_, frame2_}) {
    const int width = std::max(kSmallestFrame_px, frame->sizeHint().width());
    frame->setGeometry(left, 0, width, height);
    left += width + kMargin_px;
  }
}

void frmMain::ArrangeButtons(int top, int height) {
  int width = kSmallestButton_px;
  for (const QPushButton* button : buttons_)
    width = std::max(width, button->sizeHint().width());
  int left = kMargin_px;
  for (QPushButton* button : buttons_) {
    button->setGeometry(left, top, width, height);
    left += width + kButtonGap_px;
  }
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  const bool resized = event->type() == QEvent::Resize;
  if (resized && (watched == body_ || watched == statusBar())) Arrange();
  return QMainWindow::eventFilter(watched, event);
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  switch (event->type()) {
    case QEvent::ApplicationFontChange:
    case QEvent::FontChange:
    case QEvent::StyleChange:
      if (centralWidget() == nullptr) return;
      tree_->setFont(platform::FixedFont());
      Arrange();
      return;
    case QEvent::WindowStateChange:
      if (centralWidget() != nullptr) Arrange();
      return;
    default:
      return;
  }
}

void frmMain::LoadPlace(const platform::SettingsStore& settings, platform::MessageBox& box) {
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.append(screen->availableGeometry());
  QRect place = LoadGeometry(settings, box, Dpi(*this));
  // A size that the user has chosen counts as it is. The default one has to do for the font.
  const auto isDefault = [&](const QString& key) { return settings.Get(u"Settings"_s, key, {}).isEmpty(); };
  if (isDefault(u"MainWidth"_s)) place.setWidth(std::max(place.width(), ComfortableSize().width()));
  if (isDefault(u"MainHeight"_s)) place.setHeight(std::max(place.height(), ComfortableSize().height()));
  place = OnScreen(place, screens);
  resize(place.size());
  move(place.topLeft());
}

void frmMain::SavePlace(platform::SettingsStore& settings) const {
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  SaveGeometry(settings, QRect(pos(), size()), Dpi(*this));
}

void frmMain::ShowFile(const QString& path) {
  file_->setText(path);
  file_->setToolTip(path);
}

void frmMain::ShowOutside(int count) {
  outside_->setText(count == 1 ? u"1 Wert außerhalb"_s : u"%1 Werte außerhalb"_s.arg(count));
  outside_->setVisible(count > 0);
}

void frmMain::SetPlantSelectorVisible(bool visible) {
  frame2_->setVisible(visible);
}

void frmMain::SetEnabled(bool enabled) {
  if (!enabled) focusBeforeBusy_ = focusWidget();
  // What the user did to the windows meanwhile is delivered, and lost, as long as they are disabled.
  if (enabled && isVisible() && !isEnabled()) QGuiApplication::sync();
  setEnabled(enabled);
  for (const Companion& companion : companions_) {
    if (companion.window && companion.disabledWhileBusy) companion.window->setEnabled(enabled);
  }
  if (!enabled) return;
  if (focusBeforeBusy_ && focusWidget() == nullptr) focusBeforeBusy_->setFocus();
  focusBeforeBusy_.clear();
  if (closeWhenReady_) QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

void frmMain::ShowState(const QString& text) {
  state_->setText(text);
}

void frmMain::ShowAgain() {
  platform::ShowInFront(*this);
}

void frmMain::EndSession() {
  closeWhenReady_ = true;
  module_.SessionEnds = true;
  // Message boxes and file dialogs wait for a user as well.
  while (QWidget* box = QApplication::activeModalWidget()) {
    if (!box->close()) break;
  }
  if (isEnabled()) {
    close();
  } else {
    module_.Abbruch = kTrue;
  }
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (!isEnabled() || module_.BusyDepth > 0) {
    event->ignore();
    return;
  }
  for (auto companion = companions_.rbegin(); companion != companions_.rend(); ++companion) {
    if (companion->window) companion->window->hide();
  }
  if (OnUnload) OnUnload();
  event->accept();
}

}  // namespace kalivor::ui
