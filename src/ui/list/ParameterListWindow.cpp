#include "ui/list/ParameterListWindow.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>

#include "commands/FileCommands.h"
#include "commands/ListCommands.h"
#include "commands/TreeCommands.h"
#include "platform/qt/WindowPlacing.h"
#include "ui/Resources.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/list/SelectionMenu.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The size of the first time: so many lines, and all columns; no more than most of the screen.
constexpr int kHeight_lines = 36;

// How long the words about the last command stay.
constexpr int kNote_ms = 10'000;

// "312 passen · 4 nur in der Datei …"; what is 0 is left out.
QString AccountText(const ConversionAccount& account) {
  QStringList parts{u"%1 passen"_s.arg(account.matched)};
  const auto add = [&](int count, const QString& text) {
    if (count > 0) parts.append(text.arg(count));
  };
  add(account.onlyInSet, u"%1 nur in der Datei"_s);
  add(account.onlyInDefinitions, u"%1 nur hier"_s);
  add(account.otherType, account.otherType == 1 ? u"%1 anderer Typ"_s : u"%1 andere Typen"_s);
  add(account.cutTexts, account.cutTexts == 1 ? u"%1 Text gekürzt"_s : u"%1 Texte gekürzt"_s);
  return parts.join(u" · "_s);
}

}  // namespace

ParameterListWindow::ParameterListWindow(ListWorld world)
    : world_(std::move(world)),
      model_(world_.core.module),
      proxy_(model_),
      view_(Named(new ParameterListView(proxy_, this), u"parameters"_s)) {
  setObjectName(u"ParameterList"_s);
  setWindowTitle(u"Parameterliste"_s);
  setWindowIcon(ProgramIcon());
  view_->setAccessibleName(u"Parameter"_s);
  auto* body = Named(new QWidget(this), u"body"_s);
  setCentralWidget(body);
  auto* layout = new QVBoxLayout(body);
  layout->addLayout(NewSearchRow());
  layout->addLayout(NewFilterRow());
  layout->addWidget(view_, 1);
  layout->addLayout(NewMarkRow());
  layout->addLayout(NewCountRow());
  OrderTabs();
  StylePlaceholders(*this);

  model_.OnMark = [this](int index, bool checked) { Mark({index}, checked); };
  model_.OnEdit = [this](int index, const QString& text) {
    world_.guard([&] { EditParameter(world_.core, index, text); });
  };
  model_.Editable = [this] { return world_.core.module.BusyDepth == 0; };
  view_->OnMark = [this](const std::vector<int>& indexes, bool checked) { Mark(indexes, checked); };
  view_->OnOpen = [this](int index) { OpenEditor(index); };
  view_->OnCopy = [this] { Copy(); };
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) {
    if (now != nullptr && isAncestorOf(now)) lastFocus_ = now;
  });
  const QMargins margins = layout->contentsMargins();
  ResizeOnScreen(*this, {WholeWidth(*view_) + margins.left() + margins.right(),
                         fontMetrics().lineSpacing() * kHeight_lines});
}

// The view asks the model until it is gone.
ParameterListWindow::~ParameterListWindow() {
  delete view_;
}

// --- building ---

QPushButton* ParameterListWindow::NewCommand(const QString& name, const QString& caption,
                                             const std::function<void()>& command) {
  QPushButton* button = NewButton(this, name, caption);
  connect(button, &QPushButton::clicked, this, [this, command] { world_.guard(command); });
  return button;
}

QLayout* ParameterListWindow::NewSearchRow() {
  search_ = NewSearchBox(this, u"search"_s, u"Suche"_s, u"Name, Gruppe, Variable, Hilfetext oder Adresse"_s);
  search_->installEventFilter(this);
  connect(search_, &QLineEdit::textChanged, this, [this] { TakeFilter(); });
  QLabel* searchLabel = NewCaption(this, u"&Suche:"_s, search_);

  comparisonBox_ = Named(new ChoiceBox(this), u"comparison"_s);
  comparisonBox_->setAccessibleName(u"Vergleichen mit"_s);
  comparisonBox_->addItems({u"nichts"_s, u"Standardwerte"_s, u"Datei…"_s, u"Regler"_s});
  comparisonBox_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  comparisonBox_->setMinimumContentsLength(22);
  connect(comparisonBox_, &QComboBox::activated, this,
          [this](int position) { Compare(static_cast<Comparison>(position)); });
  QLabel* comparisonLabel = NewCaption(this, u"&Vergleichen mit:"_s, comparisonBox_);
  takeOver_ = NewCommand(u"takeOver"_s, u"Werte über&nehmen…"_s, [this] { TakeOverShown(); });
  takeOver_->setToolTip(
      u"Übernimmt die Vergleichswerte der angekreuzten, gezeigten, verschiedenen Parameter in die Werte des PCs."_s);

  auto* row = new QHBoxLayout;
  row->addWidget(searchLabel);
  row->addWidget(search_, 1);
  row->addSpacing(2 * Air(*this));
  row->addWidget(comparisonLabel);
  row->addWidget(comparisonBox_);
  row->addWidget(takeOver_);
  return row;
}

QLayout* ParameterListWindow::NewFilterRow() {
  filters_ = {
      {nullptr, &ListFilter::checked, &ListCounts::checked, u"&angekreuzt"_s},
      {nullptr, &ListFilter::different, &ListCounts::different, u"v&erschieden"_s},
      {nullptr, &ListFilter::nonStandard, &ListCounts::nonStandard, u"nicht Stan&dard"_s},
      {nullptr, &ListFilter::changed, &ListCounts::changed, u"&geändert"_s},
      {nullptr, &ListFilter::outside, &ListCounts::outside, u"a&ußerhalb"_s},
  };
  constexpr std::array kNames{u"filterChecked", u"filterDifferent", u"filterNonStandard", u"filterChanged",
                              u"filterOutside"};
  auto* row = new QHBoxLayout;
  row->addWidget(NewLabel(this, u"filterLabel"_s, u"Nur zeigen:"_s));
  for (std::size_t i = 0; i < filters_.size(); ++i) {
    QPushButton*& button = filters_[i].button;
    button = NewButton(this, QString::fromUtf16(kNames[i]), filters_[i].caption);
    button->setCheckable(true);
    connect(button, &QPushButton::toggled, this, [this] { TakeFilter(); });
    row->addWidget(button);
  }
  row->addStretch();
  return row;
}

QLayout* ParameterListWindow::NewMarkRow() {
  const auto menuButton = [this](const QString& name, const QString& caption, QMenu* menu) {
    QPushButton* button = NewButton(this, name, caption);
    button->setMenu(menu);
    return button;
  };
  commands_ = {
      NewCommand(u"markShown"_s, u"A&lle gezeigten ankreuzen"_s,
                 [this] { MarkParameters(world_.core, ShownIndexes(), true); }),
      NewCommand(u"markOnlyShown"_s, u"Nu&r die gezeigten"_s,
                 [this] { MarkOnly(world_.core, ShownIndexes()); }),
      NewCommand(u"markNone"_s, u"&Keine"_s, [this] { MarkOnly(world_.core, {}); }),
      menuButton(u"selections"_s, u"Auswa&hlen"_s, NewSelectionMenu()),
      menuButton(u"columns"_s, u"S&palten"_s, &view_->ColumnMenu()),
      menuButton(u"export"_s, u"Ausge&ben"_s, NewExportMenu()),
  };
  auto* row = new QHBoxLayout;
  for (QPushButton* button : commands_) {
    if (button->objectName() == u"columns") row->addStretch();
    row->addWidget(button);
  }
  return row;
}

QMenu* ParameterListWindow::NewSelectionMenu() {
  auto* menu = new SelectionMenu(world_.core, world_.selections, world_.guard, this);
  menu->OnDone = [this](const QString& text) { ShowNote(text); };
  return menu;
}

QMenu* ParameterListWindow::NewExportMenu() {
  const Module1& module = world_.core.module;
  const auto whenReady = [this, &module](const std::function<void()>& handler) {
    if (module.BusyDepth == 0) world_.guard(handler);
  };
  const auto table = [this, &module] {
    return TableOf(module, proxy_.ShownRows(), view_->ShownColumns(),
                   ListHeading(module, QDate::currentDate()));
  };
  return ui::NewExportMenu(
      this, world_.exports, whenReady, [this] { Copy(); }, table);
}

QLayout* ParameterListWindow::NewCountRow() {
  countLine_ = NewLabel(this, u"countLine"_s, QString());
  note_ = NewLabel(this, u"note"_s, QString());
  noteEnds_.setSingleShot(true);
  connect(&noteEnds_, &QTimer::timeout, note_, &QLabel::clear);
  account_ = Named(new platform::ElidedLabel(this), u"account"_s);
  account_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  account_->setAccessibleDescription(u"Umrechnung der Datei"_s);
  auto* row = new QHBoxLayout;
  row->addWidget(countLine_);
  row->addSpacing(2 * Air(*this));
  row->addWidget(note_);
  row->addWidget(account_, 1);
  return row;
}

void ParameterListWindow::OrderTabs() {
  std::vector<QWidget*> order{search_, comparisonBox_, takeOver_};
  for (const Filter& filter : filters_)
    order.push_back(filter.button);
  order.push_back(view_);
  order.insert(order.end(), commands_.begin(), commands_.end());
  for (std::size_t i = 1; i < order.size(); ++i)
    setTabOrder(order[i - 1], order[i]);
}

// --- showing ---

void ParameterListWindow::Open() {
  if (!isVisible()) Refresh();
  platform::ShowInFront(*this);
  if (view_->CurrentRow() < 0 && proxy_.rowCount() > 0) view_->GoToRow(0);
  view_->setFocus();
}

void ParameterListWindow::OpenSearch() {
  Open();
  search_->setFocus(Qt::ShortcutFocusReason);
  search_->selectAll();
}

void ParameterListWindow::OpenOutside() {
  search_->clear();
  for (const Filter& filter : filters_)
    filter.button->setChecked(filter.member == &ListFilter::outside);
  Open();
}

void ParameterListWindow::OpenCompared(ValueSet set) {
  // A list that is opened begins without the comparison with other definitions.
  Open();
  CompareWithFile({std::move(set), {}});
  Refresh();
}

void ParameterListWindow::Update() {
  if (isVisible()) Refresh();
}

void ParameterListWindow::Refresh() {
  // Versions may have the same definitions, but that controller is of one of them.
  const bool otherController = comparison_ == Comparison::Controller &&
                               compared_.version != world_.core.module.VersionList.SelectedText();
  if (otherController || model_.DefinitionsChanged()) ForgetComparison();
  model_.SetRows(ListRows(world_.core.module, ComparedSet(), world_.isChanged));
  ShowComparison();
  ShowCounts();
}

void ParameterListWindow::ShowCounts() {
  const std::vector<ListRow> shown = proxy_.ShownRows();
  const ListCounts all = CountRows(model_.Rows());
  for (const Filter& filter : filters_) {
    // A tick, as a pressed button hardly differs from the others in dark colours.
    const QString tick = filter.button->isChecked() ? u"✓ "_s : QString();
    const QString caption = u"%1 (%2)"_s.arg(filter.caption).arg(all.*filter.count);
    filter.button->setText(tick + caption);
    // Whether it is pressed, a screen reader says by itself.
    filter.button->setAccessibleName(QString(caption).remove(u'&'));
  }
  countLine_->setText(CountLine(all.all, CountRows(shown)));
  const std::size_t toTakeOver = RowsToTakeOver(shown).size();
  takeOver_->setText(toTakeOver == 0 ? u"Werte über&nehmen…"_s
                                     : u"Werte über&nehmen (%1)…"_s.arg(toTakeOver));
  takeOver_->setEnabled(toTakeOver > 0);
}

void ParameterListWindow::ShowNote(const QString& text) {
  note_->setText(text);
  noteEnds_.start(kNote_ms);
}

// --- searching and filtering ---

void ParameterListWindow::TakeFilter() {
  ListFilter filter;
  filter.search = search_->text();
  for (const Filter& button : filters_)
    filter.*button.member = button.button->isChecked();
  proxy_.SetFilter(filter);
  freshSearch_ = true;
  ShowCounts();
}

// The first one after typing, then from one to the next, and after the last one to the first again.
void ParameterListWindow::GoToHit(int step) {
  const int count = proxy_.rowCount();
  if (count == 0) return;
  const int from = freshSearch_ ? (step > 0 ? -1 : 0) : view_->CurrentRow();
  freshSearch_ = false;
  const int hit = (from + step + count) % count;
  view_->GoToRow(hit);
  world_.guard([&] { ShowInTree(world_.core, proxy_.ShownRow(hit).index); });
}

// --- comparing ---

const ValueSet* ParameterListWindow::ComparedSet() {
  if (comparison_ == Comparison::Nothing) return nullptr;
  if (comparison_ == Comparison::Standard) compared_ = StandardValues(world_.core.module);
  return &compared_;
}

void ParameterListWindow::ForgetComparison() {
  comparison_ = Comparison::Nothing;
  compared_ = {};
}

void ParameterListWindow::Compare(Comparison comparison) {
  world_.guard([&] {
    if (world_.core.module.BusyDepth > 0) return;
    switch (comparison) {
      case Comparison::Nothing:
        ForgetComparison();
        break;
      case Comparison::Standard:
        comparison_ = comparison;
        break;
      case Comparison::File:
        CompareWithChosenFile();
        break;
      case Comparison::Controller:
        CompareWithController();
        break;
    }
  });
  // Also where nothing came of it.
  ShowComparison();
}

void ParameterListWindow::CompareWithChosenFile() {
  const Module1& module = world_.core.module;
  const QString path =
      world_.dialogs.OpenFile(u"Vergleichen mit"_s, module.Userpath, kValueFileFilter.toString());
  if (path.isEmpty()) return;
  CompareWithFile(ReadFileValues(world_.core.files, path));
}

void ParameterListWindow::CompareWithFile(SetResult result) {
  if (result.Ok()) result.error = VersionFault(world_.core.module, result.set);
  CompareWith(Comparison::File, std::move(result));
}

void ParameterListWindow::CompareWithController() {
  SetResult result = ReadControllerValues(world_.core, world_.progress);
  if (result.aborted) ShowNote(u"Abgebrochen; der Rest wurde nicht gelesen"_s);
  CompareWith(Comparison::Controller, std::move(result));
  // Where the keyboard was before the progress had it.
  platform::ShowInFront(*this);
}

void ParameterListWindow::CompareWith(Comparison comparison, SetResult result) {
  if (!result.Ok()) {
    // Nobody answers a box any more when the session ends.
    if (!world_.core.module.SessionEnds) world_.core.box.Show(result.error);
    return;
  }
  comparison_ = comparison;
  compared_ = std::move(result.set);
}

void ParameterListWindow::ShowComparison() {
  const bool file = comparison_ == Comparison::File;
  comparisonBox_->setItemText(static_cast<int>(Comparison::File),
                              file ? u"Datei: "_s + QFileInfo(compared_.name).fileName() : u"Datei…"_s);
  comparisonBox_->setCurrentIndex(static_cast<int>(comparison_));
  comparisonBox_->setToolTip(file ? compared_.name : QString());
  const Module1& module = world_.core.module;
  const bool converted = file && compared_.version != module.VersionList.SelectedText();
  account_->ShowText(
      converted ? u"Datei von %1: %2"_s.arg(compared_.version, AccountText(AccountOf(module, compared_)))
                : QString());
}

// --- doing ---

std::vector<int> ParameterListWindow::ShownIndexes() const {
  std::vector<int> indexes;
  for (int row = 0; row < proxy_.rowCount(); ++row)
    indexes.push_back(proxy_.ShownRow(row).index);
  return indexes;
}

void ParameterListWindow::Mark(const std::vector<int>& indexes, bool checked) {
  world_.guard([&] { MarkParameters(world_.core, indexes, checked); });
}

void ParameterListWindow::TakeOverShown() {
  if (world_.core.module.BusyDepth > 0) return;
  TakeOver(world_.core, proxy_.ShownRows());
  // The question has brought the main window to the front.
  platform::ShowInFront(*this);
}

void ParameterListWindow::OpenEditor(int index) {
  world_.guard([&] {
    if (world_.core.module.BusyDepth > 0) return;
    const int node = NodeOfParameter(world_.core, index);
    if (node != 0) TreeView_NodeClick(world_.core, node);
  });
}

void ParameterListWindow::Copy() {
  const std::vector<ListRow> rows = view_->HighlightedRows();
  if (rows.empty()) return;
  QGuiApplication::clipboard()->setText(
      ClipboardText(TableOf(world_.core.module, rows, view_->ShownColumns(), {})));
}

// --- place and keys ---

void ParameterListWindow::Load(const platform::SettingsStore& settings) {
  LoadPlace(*this, settings, u"ListePlatz"_s);
  LoadColumns(*view_->horizontalHeader(), settings, u"ListeSpalten"_s);
}

void ParameterListWindow::Store(platform::SettingsStore& settings) const {
  SavePlace(*this, settings, u"ListePlatz"_s);
  SaveColumns(*view_->horizontalHeader(), settings, u"ListeSpalten"_s);
}

// Who is disabled loses the keyboard.
void ParameterListWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && search_ != nullptr) StylePlaceholders(*this);
  if (event->type() != QEvent::EnabledChange || !isEnabled() || focusWidget() != nullptr) return;
  (lastFocus_ ? lastFocus_.data() : view_)->setFocus();
}

void ParameterListWindow::closeEvent(QCloseEvent* event) {
  if (!isEnabled()) event->ignore();
}

void ParameterListWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    search_->clear();
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

bool ParameterListWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == search_ && event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    switch (key.key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
        GoToHit((key.modifiers() & Qt::ShiftModifier) != 0 ? -1 : 1);
        return true;
      case Qt::Key_Down:
        if (view_->CurrentRow() < 0 && proxy_.rowCount() > 0) view_->GoToRow(0);
        view_->setFocus();
        return true;
      default:
        break;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace kalivor::ui
