#include "ui/history/HistoryWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QDir>
#include <QHeaderView>
#include <QMenu>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStringListModel>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/ParameterList.h"
#include "history/DateText.h"
#include "history/EntryBackup.h"
#include "history/Proposal.h"
#include "history/Tables.h"
#include "platform/qt/ShownText.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The size of the first time: so many characters and lines; no more than most of the screen.
constexpr int kWidth_digits = 165;
constexpr int kHeight_lines = 44;
constexpr double kMostOfScreen = 0.9;
constexpr int kDate_digits = 13;

const QString& PlaceKey() {
  static const QString key = u"VerlaufPlatz"_s;
  return key;
}

const QString& ColumnsKey() {
  static const QString key = u"VerlaufSpalten"_s;
  return key;
}

// "1 Eintrag", "12 Einträge"
QString EntriesCount(qsizetype count) {
  return count == 1 ? u"1 Eintrag"_s : u"%1 Einträge"_s.arg(count);
}

QString NameWithPlace(const history::Plant& plant) {
  return plant.place.isEmpty() ? plant.name : plant.name + u", "_s + plant.place;
}

// What stands in the box for all there are.
const QString& All() {
  static const QString text = u"alle"_s;
  return text;
}

}  // namespace

HistoryWindow::HistoryWindow(HistorySurroundings surroundings)
    : Form(u"HistoryWindow"_s, u"Verlauf"_s),
      surroundings_(std::move(surroundings)),
      curve_({surroundings_.settings, surroundings_.guard, [this](const QUuid& entry) { GoTo(entry); },
              surroundings_.savePicture}),
      plantDialog_(surroundings_.guard),
      plantForm_(surroundings_.guard) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  curve_.SetOwner(*this);
  plantDialog_.SetOwner(*this);
  plantForm_.SetOwner(*this);
  plantForm_.OnDescribe = [this](const history::Plant& plant) { Describe(plant); };
  plantsTable_.Show({{}, {u"Anlage"_s, u"Ort"_s, u"Einträge"_s}, {}});
  sides_ = Named(new QSplitter(this), u"sides"_s);
  sides_->addWidget(NewPlantsSide());
  sides_->addWidget(NewEntriesSide());
  sides_->setStretchFactor(1, 1);
  sides_->setChildrenCollapsible(false);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(NewKeeping());
  layout->addSpacing(Air(*this));
  layout->addWidget(sides_, 1);
  layout->addSpacing(Air(*this));
  layout->addLayout(NewCommandRow());
  // Enter in a search field must not press a button.
  for (QPushButton* button : findChildren<QPushButton*>())
    button->setAutoDefault(false);
  OrderTabs();
  const QSize wanted(fontMetrics().horizontalAdvance(u'0') * kWidth_digits,
                     fontMetrics().lineSpacing() * kHeight_lines);
  resize(wanted.boundedTo(screen()->availableSize() * kMostOfScreen));
  const int plants_px = plantsView_->horizontalHeader()->length() +
                        plantsView_->verticalScrollBar()->sizeHint().width() + 2 * plantsView_->frameWidth();
  sides_->setSizes({plants_px, width() - plants_px});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
  LoadColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
  entry_->Load(surroundings_.settings);
}

// --- what it is made of ---

QPushButton* HistoryWindow::NewCommand(const QString& name, const QString& caption,
                                       const std::function<void()>& command) {
  QPushButton* button = NewButton(this, name, caption);
  connect(button, &QPushButton::clicked, this, [this, command] {
    surroundings_.guard([&] {
      if (surroundings_.core.module.BusyDepth == 0) command();
    });
  });
  return button;
}

QLineEdit* HistoryWindow::NewFilterBox(const QString& name, const QString& accessibleName,
                                       const QString& placeholder) {
  QLineEdit* box = NewTextBox(this, name, accessibleName);
  box->setPlaceholderText(placeholder);
  box->setClearButtonEnabled(true);
  box->findChild<QToolButton*>()->setAccessibleName(accessibleName + u" leeren"_s);
  return box;
}

QLayout* HistoryWindow::NewKeeping() {
  about_ = NewLabel(this, u"about"_s, QString(), true);
  keeps_ = Named(new QCheckBox(u"Verlauf &führen"_s, this), u"keeps"_s);
  connect(keeps_, &QCheckBox::clicked, this, [this](bool keeps) {
    surroundings_.guard([&] { Change([keeps](history::HistorySettings& used) { used.keeps = keeps; }); });
  });
  keeping_ = new QWidget(this);
  auto* plantLabel = NewLabel(this, u"plantLabel"_s, u"Anlage:"_s);
  plant_ = Named(new platform::ElidedLabel(this), u"plant"_s);
  QPushButton* choose = NewCommand(u"choosePlant"_s, u"Anlage &wählen…"_s, [this] { ChoosePlant(); });
  technician_ = NewTextBox(this, u"technician"_s, u"Techniker"_s);
  technician_->setPlaceholderText(u"Name, wenn er im Verlauf stehen soll"_s);
  connect(technician_, &QLineEdit::editingFinished, this, [this] {
    surroundings_.guard([this] {
      const QString name = technician_->text().trimmed();
      if (name != surroundings_.used().technician)
        Change([&name](history::HistorySettings& used) { used.technician = name; });
    });
  });
  auto* technicianLabel = Named(new QLabel(u"&Techniker:"_s, this), u"technicianLabel"_s);
  technicianLabel->setBuddy(technician_);
  auto* row = new QHBoxLayout(keeping_);
  row->setContentsMargins({});
  row->addWidget(plantLabel);
  row->addWidget(plant_, 1);
  row->addWidget(choose);
  row->addSpacing(2 * Air(*this));
  row->addWidget(technicianLabel);
  row->addWidget(technician_, 1);
  auto* first = new QHBoxLayout;
  first->addWidget(keeps_);
  first->addSpacing(2 * Air(*this));
  first->addWidget(keeping_, 1);
  first->addStretch();
  doubt_ = NewLabel(this, u"doubt"_s, QString(), true);
  auto* layout = new QVBoxLayout;
  layout->addWidget(about_);
  layout->addLayout(first);
  layout->addWidget(doubt_);
  return layout;
}

QWidget* HistoryWindow::NewPlantsSide() {
  auto* side = new QWidget;
  plantSearch_ = NewFilterBox(u"plantSearch"_s, u"Anlagen suchen"_s, u"Name oder Ort"_s);
  connect(plantSearch_, &QLineEdit::textChanged, this, [this] { ShowPlants(); });
  auto* label = Named(new QLabel(u"An&lagen:"_s, this), u"plantSearchLabel"_s);
  label->setBuddy(plantSearch_);
  auto* top = new QHBoxLayout;
  top->addWidget(label);
  top->addWidget(plantSearch_, 1);
  plantsView_ = Named(new QTableView(side), u"plants"_s);
  plantsView_->setAccessibleName(u"Anlagen"_s);
  plantsView_->setModel(&plantsTable_);
  plantsView_->setItemDelegate(new CellDelegate(plantsView_));
  PrepareTable(*plantsView_);
  plantsView_->setSelectionMode(QAbstractItemView::SingleSelection);
  const int digit_px = fontMetrics().horizontalAdvance(u'0');
  constexpr int digits[] = {19, 10, 9};
  for (int column = 0; column < 3; ++column)
    plantsView_->horizontalHeader()->resizeSection(column, digits[column] * digit_px);
  plantsView_->setMinimumWidth(24 * digit_px);
  connect(plantsView_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this] { TakeFilter(); });
  newPlant_ = NewCommand(u"newPlant"_s, u"&Neue Anlage…"_s, [this] { AskForNewPlant({}, {}); });
  changePlant_ = NewCommand(u"changePlant"_s, u"Än&dern…"_s, [this] {
    const auto plant =
        std::ranges::find(entries_.Plants(), filter_.plant.value_or(QUuid()), &history::Plant::id);
    if (plant != entries_.Plants().end()) plantForm_.Ask(*plant, entries_.Plants());
  });
  auto* row = new QHBoxLayout;
  row->addWidget(newPlant_);
  row->addWidget(changePlant_);
  row->addStretch();
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins({});
  layout->addLayout(top);
  layout->addWidget(plantsView_, 1);
  layout->addLayout(row);
  return side;
}

QLayout* HistoryWindow::NewFilterRows() {
  const auto labelled = [this](QHBoxLayout* row, const QString& caption, QWidget* widget, int stretch) {
    auto* label = Named(new QLabel(caption, this), widget->objectName() + u"Label"_s);
    label->setBuddy(widget);
    row->addWidget(label);
    row->addWidget(widget, stretch);
  };
  search_ = NewFilterBox(u"search"_s, u"Suche"_s, u"Ergebnis, Bemerkung, Version, PC …"_s);
  connect(search_, &QLineEdit::textChanged, this, [this] { TakeFilter(); });
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search_, [this] {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
  });
  parameter_ = NewFilterBox(u"parameter"_s, u"Parameter"_s, u"Name oder Variable"_s);
  connect(parameter_, &QLineEdit::editingFinished, this, [this] { TakeParameter(); });
  connect(parameter_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty()) TakeParameter();
  });
  kind_ = Named(new QComboBox(this), u"kind"_s);
  kind_->setAccessibleName(u"Art"_s);
  kind_->addItem(All());
  for (const DeedKind kind : history::kKinds)
    kind_->addItem(history::KindText(kind));
  connect(kind_, &QComboBox::currentIndexChanged, this, [this] { TakeFilter(); });
  technicians_ = Named(new QComboBox(this), u"technicians"_s);
  technicians_->setAccessibleName(u"Techniker der Einträge"_s);
  technicians_->addItem(All());
  technicians_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  technicians_->setMinimumContentsLength(14);
  connect(technicians_, &QComboBox::currentIndexChanged, this, [this] { TakeFilter(); });
  from_ = NewFilterBox(u"from"_s, u"von"_s, u"TT.MM.JJJJ"_s);
  to_ = NewFilterBox(u"to"_s, u"bis"_s, u"TT.MM.JJJJ"_s);
  for (QLineEdit* box : {from_, to_}) {
    box->setToolTip(u"Ein Tag, ein Monat (3.2026) oder ein Jahr (2026)"_s);
    box->setMinimumWidth(fontMetrics().horizontalAdvance(u'0') * kDate_digits);
    connect(box, &QLineEdit::textChanged, this, [this] { TakeFilter(); });
  }
  auto* first = new QHBoxLayout;
  labelled(first, u"Suc&he:"_s, search_, 3);
  labelled(first, u"&Parameter:"_s, parameter_, 2);
  auto* second = new QHBoxLayout;
  labelled(second, u"&Art:"_s, kind_, 0);
  labelled(second, u"Technike&r:"_s, technicians_, 1);
  labelled(second, u"&von:"_s, from_, 0);
  labelled(second, u"&bis:"_s, to_, 0);
  auto* rows = new QVBoxLayout;
  rows->addLayout(first);
  rows->addLayout(second);
  return rows;
}

QWidget* HistoryWindow::NewEntriesSide() {
  auto* upper = new QWidget;
  table_ = Named(new QTableView(upper), u"entries"_s);
  table_->setAccessibleName(u"Einträge"_s);
  table_->setModel(&entries_);
  table_->setItemDelegate(new CellDelegate(table_));
  PrepareTable(*table_);
  const int digit_px = fontMetrics().horizontalAdvance(u'0');
  constexpr int digits[] = {19, 17, 15, 12, 11, 18, 10, 14};
  for (int column = 0; column < EntriesModel::Columns; ++column)
    table_->horizontalHeader()->resizeSection(column, digits[column] * digit_px);
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { ShowEntry(); });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowCommands(); });
  connect(new QShortcut(QKeySequence::Copy, table_, nullptr, nullptr, Qt::WidgetShortcut),
          &QShortcut::activated, this, [this] { Copy(EntriesTable()); });
  count_ = NewLabel(this, u"count"_s, QString(), true);
  auto* layout = new QVBoxLayout(upper);
  layout->setContentsMargins({});
  layout->addLayout(NewFilterRows());
  layout->addWidget(table_, 1);
  layout->addWidget(count_);

  halves_ = Named(new QSplitter(Qt::Vertical), u"halves"_s);
  halves_->setChildrenCollapsible(false);
  halves_->addWidget(upper);
  entry_ = new EntryView(surroundings_.guard, this);
  entry_->OnCurve = [this](const history::Change& change) { ShowCurve(change); };
  entry_->OnRemark = [this](const QString& text) {
    const QString technician = surroundings_.used().technician;
    if (const history::Entry* entry = Current()) {
      Add([id = entry->id, text, technician](history::Store& store) {
        return store.AddRemark(id, text, technician);
      });
    }
  };
  entry_->OnAssign = [this] { Assign(); };
  halves_->addWidget(entry_);
  halves_->setStretchFactor(0, 3);
  halves_->setStretchFactor(1, 2);
  return halves_;
}

QLayout* HistoryWindow::NewCommandRow() {
  compare_ = NewCommand(u"compare"_s, u"Mit P&C vergleichen"_s, [this] { CompareEntry(); });
  compare_->setToolTip(u"Zeigt die Werte des Eintrags in der Parameterliste neben denen des PCs."_s);
  save_ = NewCommand(u"save"_s, u"Als Wertedate&i speichern…"_s, [this] { SaveEntry(); });
  restore_ = NewCommand(u"restore"_s, u"In den Re&gler…"_s, [this] { RestoreEntry(); });
  restore_->setToolTip(
      u"Liest den Regler und zeigt die Unterschiede zu den Werten des Eintrags, bevor etwas geschrieben "
      "wird."_s);
  report_ = NewCommand(u"report"_s, u"Servicepr&otokoll…"_s, [this] { Report(); });
  report_->setToolTip(u"Ein Protokoll der markierten Einträge für den Kunden"_s);
  report_->setVisible(static_cast<bool>(surroundings_.report));
  export_ = NewButton(this, u"export"_s, u"A&usgeben"_s);
  auto* menu = Named(new QMenu(export_), u"exportWhat"_s);
  const auto whenReady = [this](const std::function<void()>& handler) {
    if (surroundings_.core.module.BusyDepth == 0) surroundings_.guard(handler);
  };
  const auto add = [&](const QString& name, const QString& caption, const std::function<ListTable()>& table) {
    QMenu* exports = NewExportMenu(
        menu, surroundings_.exports, whenReady, [this, table] { Copy(table()); }, table);
    exports->setObjectName(name);
    exports->setTitle(caption);
    menu->addMenu(exports);
  };
  add(u"exportEntries"_s, u"Gezeigte &Einträge"_s, [this] { return EntriesTable(); });
  add(u"exportChanges"_s, u"&Werte des Eintrags"_s, [this] { return entry_->Table(); });
  export_->setMenu(menu);
  synchronize_ = NewCommand(u"synchronize"_s, u"Abgleichen…"_s, [this] { surroundings_.synchronize(); });
  synchronize_->setToolTip(u"Tauscht die Einträge mit dem Server der Abteilung aus."_s);
  synchronize_->setVisible(static_cast<bool>(surroundings_.synchronize));
  close_ = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  connect(close_, &QPushButton::clicked, this, &QDialog::reject);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {compare_, save_, restore_, report_, export_, synchronize_, close_})
    row->addWidget(button);
  row->insertStretch(6);
  return row;
}

void HistoryWindow::OrderTabs() {
  const auto in = [this](const QString& name) { return findChild<QWidget*>(name); };
  SetTabOrder({keeps_,
               in(u"choosePlant"_s),
               technician_,
               plantSearch_,
               plantsView_,
               newPlant_,
               changePlant_,
               search_,
               parameter_,
               kind_,
               technicians_,
               from_,
               to_,
               table_,
               in(u"changes"_s),
               in(u"curve"_s),
               in(u"remarks"_s),
               in(u"remark"_s),
               in(u"addRemark"_s),
               in(u"assign"_s),
               compare_,
               save_,
               restore_,
               report_,
               export_,
               synchronize_,
               close_});
}

// --- opening and reading ---

void HistoryWindow::Open() {
  const bool first = !isVisible();
  if (first) {
    parameter_->setCompleter(nullptr);
    auto* completer = new QCompleter(ParameterNames(), parameter_);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    connect(completer, qOverload<const QString&>(&QCompleter::activated), this, [this] { TakeParameter(); });
    parameter_->setCompleter(completer);
    StyleBox(*keeps_);
    StylePlaceholders(*this);
    Reload();
  }
  ShowKeeping();
  ShowAboveOwner();
  if (first) (entries_.All().empty() ? static_cast<QWidget*>(keeps_) : table_)->setFocus();
}

bool HistoryWindow::OpenStore() {
  if (store_) return true;
  history::Store::Opened opened = history::Store::Open(surroundings_.place, history::Access::Read);
  store_ = std::move(opened.store);
  unreadable_ = store_ ? QString() : opened.note;
  return store_ != nullptr;
}

void HistoryWindow::Reload() {
  const QUuid current = shownEntry_;
  if (OpenStore()) {
    generation_ = store_->Generation();
    std::vector<history::Entry> entries = store_->Entries();
    unreadable_ = store_->Failure();
    std::vector<history::Plant> plants = store_->Plants();
    const std::vector<history::Remark> remarks = store_->Remarks();
    entries_.SetContent(std::move(entries), std::move(plants), remarks);
  } else {
    entries_.SetContent({}, {}, {});
  }
  shownEntry_ = QUuid();
  ShowTechnicians();
  ShowPlants();
  GoTo(current);
  ShowKeeping();
}

void HistoryWindow::Update() {
  if (!isVisible() || waits_) return;
  const auto look = [this] {
    waits_ = false;
    if (!isVisible()) return;
    if (!store_ || store_->Generation() != generation_) Reload();
  };
  if (!surroundings_.used().keeps) {
    look();
    return;
  }
  // What was just recorded may still be on its way: when this is done, it is there.
  waits_ = true;
  surroundings_.add([](history::Store&) { return QString(); }, look);
}

void HistoryWindow::ShowKeeping() {
  const history::HistorySettings used = surroundings_.used();
  const bool possible = !surroundings_.place.file.isEmpty();
  keeps_->setEnabled(possible);
  keeps_->setChecked(used.keeps && possible);
  keeping_->setVisible(used.keeps);
  if (!technician_->hasFocus()) technician_->setText(used.technician);
  const auto plant = std::ranges::find(entries_.Plants(), used.plant, &history::Plant::id);
  plant_->ShowText(plant == entries_.Plants().end() ? u"keine gewählt"_s : NameWithPlace(*plant));
  QString about = unreadable_;
  if (about.isEmpty() && !used.keeps) {
    about =
        u"Der Verlauf wird nicht geführt. Eingeschaltet hält er fest, wann welche Werte empfangen, gesendet, "
        "verglichen, geladen, gespeichert oder zurückgesetzt wurden, an welcher Anlage, von wem und an "
        "welchem PC. Er steht in %1."_s.arg(QDir::toNativeSeparators(surroundings_.place.file));
  }
  about_->setText(about);
  about_->setVisible(!about.isEmpty());
  QString doubt;
  if (used.keeps) (void)ProposedPlant(doubt);
  doubt_->setText(doubt);
  doubt_->setVisible(!doubt.isEmpty());
}

QUuid HistoryWindow::ProposedPlant(QString& doubt) {
  if (!store_) return {};
  const Module1& module = surroundings_.core.module;
  const history::SeenController seen{module.VersionList.SelectedText(), module.Adresse,
                                     history::TextsOf(TableValues(module))};
  const history::HistorySettings used = surroundings_.used();
  const history::KnownPlants known{
      entries_.Plants(), entries_.All(),
      [this](const history::Entry& entry) { return history::TextsOf(store_->Values(entry, true).set); },
      used.nameParameter};
  doubt = history::PlantDoubt(used.plant, seen, known);
  return history::ProposedPlant(seen, known);
}

void HistoryWindow::ShowTechnicians() {
  QStringList names;
  for (const history::Entry& entry : entries_.All())
    if (!entry.stamp.technician.isEmpty() && (names.isEmpty() || names.back() != entry.stamp.technician))
      names << entry.stamp.technician;
  names.removeDuplicates();
  names.sort(Qt::CaseInsensitive);
  const QString chosen = technicians_->currentText();
  const QSignalBlocker quiet(technicians_);
  technicians_->clear();
  technicians_->addItem(All());
  technicians_->addItems(names);
  technicians_->setCurrentIndex(std::max(0, technicians_->findText(chosen)));
}

void HistoryWindow::ShowPlants() {
  QHash<QUuid, int> counts;
  for (const history::Entry& entry : entries_.All())
    ++counts[entry.plant];
  const QStringList words = SearchWords(plantSearch_->text());
  ListTable table{{}, plantsTable_.Table().titles, {}};
  std::vector<std::optional<QUuid>> rows;
  const auto add = [&](std::optional<QUuid> id, const QString& name, const QString& place, qsizetype count) {
    rows.push_back(id);
    table.rows.push_back({{name}, {place}, {QString::number(count), true}});
  };
  if (words.isEmpty()) {
    add(std::nullopt, u"Alle Anlagen"_s, {}, static_cast<qsizetype>(entries_.All().size()));
    add(QUuid(), u"Ohne Anlage"_s, {}, counts.value(QUuid()));
  }
  for (const history::Plant& plant : entries_.Plants()) {
    const QString text = Folded(plant.name + u'\n' + plant.place + u'\n' + plant.remark);
    if (std::ranges::all_of(words, [&](const QString& word) { return text.contains(word); }))
      add(plant.id, plant.name, plant.place, counts.value(plant.id));
  }
  const auto at = std::ranges::find(rows, filter_.plant);
  const auto row = at == rows.end() ? 0 : static_cast<int>(at - rows.begin());
  plantsByRow_ = std::move(rows);
  {
    const QSignalBlocker quiet(plantsView_->selectionModel());
    plantsTable_.Show(std::move(table));
    plantsView_->selectionModel()->reset();
  }
  if (plantsByRow_.empty()) {
    TakeFilter();
  } else {
    plantsView_->setCurrentIndex(plantsTable_.index(row, 0));
  }
}

// --- filters ---

QStringList HistoryWindow::ParameterNames() const {
  const Module1& module = surroundings_.core.module;
  QStringList names;
  for (int i = 1; i < module.ParCount; ++i)
    names << module.Par[i].Name << module.Par[i].Variable;
  names.removeDuplicates();
  names.sort(Qt::CaseInsensitive);
  return names;
}

void HistoryWindow::TakeParameter() {
  surroundings_.guard([this] {
    QString name = parameter_->text().trimmed();
    const QStringList known = ParameterNames();
    const auto same = [&name](const QString& each) { return each.compare(name, Qt::CaseInsensitive) == 0; };
    if (const auto at = std::ranges::find_if(known, same); at != known.end()) name = *at;
    filter_.entries.reset();
    if (!name.isEmpty() && store_) {
      const std::vector<QUuid> entries = store_->EntriesWith(name);
      filter_.entries = QSet<QUuid>(entries.begin(), entries.end());
    }
    TakeFilter();
  });
}

void HistoryWindow::TakeFilter() {
  const QUuid before = shownEntry_;
  const int plantRow = plantsView_->currentIndex().row();
  filter_.plant = plantRow >= 0 ? plantsByRow_[static_cast<std::size_t>(plantRow)] : std::nullopt;
  filter_.kind =
      kind_->currentIndex() > 0 ? std::optional(history::kKinds[kind_->currentIndex() - 1]) : std::nullopt;
  filter_.technician = technicians_->currentIndex() > 0 ? technicians_->currentText() : QString();
  filter_.words = SearchWords(search_->text());
  wrongDate_.clear();
  const auto days = [this](const QLineEdit& box) {
    const std::optional<history::Days> understood = history::DaysOf(box.text());
    if (!understood) wrongDate_ = box.text();
    return understood.value_or(history::Days());
  };
  filter_.from = days(*from_).first;
  filter_.to = days(*to_).last;
  entries_.SetFilter(filter_);
  GoTo(before);
}

void HistoryWindow::GoTo(const QUuid& entry) {
  const int row = entries_.RowOf(entry);
  if (entries_.rowCount() > 0) table_->setCurrentIndex(entries_.index(std::max(row, 0), EntriesModel::Time));
  ShowEntry();
  ShowCount();
}

void HistoryWindow::ShowCount() {
  const auto all = static_cast<qsizetype>(entries_.All().size());
  QString text;
  if (all == 0) {
    text =
        surroundings_.used().keeps
            ? u"Noch ist nichts aufgezeichnet. Was von jetzt an mit dem Regler geschieht, steht dann hier."_s
            : u"Noch ist nichts aufgezeichnet."_s;
  } else if (entries_.rowCount() == all) {
    text = EntriesCount(all);
  } else {
    text = u"%1 von %2"_s.arg(QString::number(entries_.rowCount()),
                              all == 1 ? u"1 Eintrag"_s : u"%1 Einträgen"_s.arg(all));
  }
  if (!wrongDate_.isEmpty())
    text += u" · „%1“ ist kein Datum: TT.MM.JJJJ, MM.JJJJ oder JJJJ"_s.arg(wrongDate_);
  count_->setText(text);
}

// --- the entry ---

const history::Entry* HistoryWindow::Current() const {
  const int row = table_->currentIndex().row();
  return row >= 0 && row < entries_.rowCount() ? &entries_.At(row) : nullptr;
}

std::vector<history::Entry> HistoryWindow::Chosen() const {
  std::vector<history::Entry> chosen;
  for (int row = 0; row < entries_.rowCount(); ++row)
    if (table_->selectionModel()->isRowSelected(row, {})) chosen.push_back(entries_.At(row));
  if (const history::Entry* current = Current(); chosen.empty() && current != nullptr)
    chosen.push_back(*current);
  return chosen;
}

void HistoryWindow::ShowEntry() {
  const history::Entry* entry = Current();
  if (entry == nullptr) {
    shownEntry_ = QUuid();
    entry_->ShowNone(entries_.All().empty() ? QString() : u"Kein Eintrag passt zu den Filtern."_s);
  } else if (entry->id != shownEntry_) {
    shownEntry_ = entry->id;
    entry_->Show(*entry, entries_.Plants(), store_->Changes(entry->id), entries_.RemarksOf(entry->id));
  }
  ShowCommands();
}

void HistoryWindow::ShowCommands() {
  const history::Entry* entry = Current();
  const bool hasValues = entry != nullptr && !entry->set.isEmpty();
  for (QPushButton* button : {compare_, save_, restore_})
    button->setEnabled(hasValues);
  report_->setEnabled(entry != nullptr);
  export_->setEnabled(entry != nullptr);
  changePlant_->setEnabled(filter_.plant && !filter_.plant->isNull());
}

void HistoryWindow::CompareEntry() {
  const history::Entry* entry = Current();
  if (entry == nullptr) return;
  SetResult values = store_->Values(*entry, true);
  if (values.Ok()) {
    surroundings_.compare(std::move(values.set));
  } else {
    surroundings_.core.box.Show(values.error);
  }
}

void HistoryWindow::SaveEntry() {
  const history::Entry* entry = Current();
  if (entry == nullptr) return;
  const QByteArray image = store_->Image(entry->set);
  if (image.isEmpty()) {
    surroundings_.core.box.Show(store_->Values(*entry, false).error);
  } else {
    surroundings_.saveValues(image);
  }
}

void HistoryWindow::RestoreEntry() {
  const history::Entry* entry = Current();
  if (entry == nullptr) return;
  const SetResult values = store_->Values(*entry, true);
  if (values.Ok()) {
    surroundings_.restore(history::BackupOf(surroundings_.core.module, *entry, values.set));
  } else {
    surroundings_.core.box.Show(values.error);
  }
}

history::ServiceVisit HistoryWindow::VisitOf(const std::vector<history::Entry>& entries) {
  history::ServiceVisit visit;
  const QUuid plant = entries.empty() ? surroundings_.used().plant : entries.front().plant;
  const auto named = std::ranges::find(entries_.Plants(), plant, &history::Plant::id);
  if (named != entries_.Plants().end()) visit.plant = *named;
  for (const history::Entry& entry : entries)
    visit.entries.push_back({entry, store_->Changes(entry.id), entries_.RemarksOf(entry.id)});
  return visit;
}

history::ServiceVisit HistoryWindow::VisitOf(const QDate& day) {
  Reload();
  const QUuid plant = surroundings_.used().plant;
  std::vector<history::Entry> entries;
  std::ranges::copy_if(entries_.All(), std::back_inserter(entries), [&](const history::Entry& entry) {
    return entry.plant == plant && entry.stamp.time.date() == day;
  });
  return VisitOf(entries);
}

void HistoryWindow::Report() {
  const std::vector<history::Entry> chosen = Chosen();
  if (chosen.empty()) return;
  const bool onePlant = std::ranges::all_of(
      chosen, [&](const history::Entry& entry) { return entry.plant == chosen.front().plant; });
  if (onePlant) {
    surroundings_.report(VisitOf(chosen));
  } else {
    surroundings_.core.box.Show(
        u"Die markierten Einträge gehören zu verschiedenen Anlagen.\r\n"
        "Ein Serviceprotokoll gilt für eine Anlage: bitte nur deren Einträge markieren."_s);
  }
}

void HistoryWindow::ShowCurve(const history::Change& change) {
  const history::Entry* entry = Current();
  if (entry == nullptr) return;
  const auto plant = std::ranges::find(entries_.Plants(), entry->plant, &history::Plant::id);
  curve_.Open(history::CurveOf(change, store_->Curve(entry->plant, {change.variable, change.address})),
              plant == entries_.Plants().end() ? u"Ohne Anlage"_s : NameWithPlace(*plant));
}

ListTable HistoryWindow::EntriesTable() const {
  ListTable table = entries_.Table();
  const int row = plantsView_->currentIndex().row();
  const QString plant =
      row < 0 ? QString() : plantsTable_.Table().rows[static_cast<std::size_t>(row)][0].text;
  table.heading = {u"Verlauf: "_s + plant, u"Stand: "_s + QDate::currentDate().toString(u"dd.MM.yyyy"_s)};
  return table;
}

void HistoryWindow::Copy(const ListTable& table) {
  QApplication::clipboard()->setText(ClipboardText(table));
}

// --- what is added ---

void HistoryWindow::Change(const std::function<void(history::HistorySettings& settings)>& change) {
  history::HistorySettings used = surroundings_.used();
  change(used);
  surroundings_.use(used);
  ShowKeeping();
  ShowCount();
}

void HistoryWindow::Add(history::Writer::Task task, std::function<void()> added) {
  surroundings_.add(std::move(task), [this, added = std::move(added)] {
    Reload();
    if (added) added();
  });
}

void HistoryWindow::Describe(const history::Plant& plant) {
  // The store gives a new one its id.
  auto described = std::make_shared<history::Plant>(plant);
  const auto then = std::exchange(withPlant_, {});
  Add([described, technician = surroundings_.used().technician](
          history::Store& store) { return store.Describe(*described, technician); },
      [described, then] {
        if (then) then(described->id);
      });
}

void HistoryWindow::AskForNewPlant(const QString& name, std::function<void(const QUuid& plant)> then) {
  withPlant_ = std::move(then);
  plantForm_.Ask({{}, name, {}, {}}, entries_.Plants());
}

void HistoryWindow::ChoosePlant() {
  const auto choose = [this](const QUuid& plant) {
    Change([&plant](history::HistorySettings& used) { used.plant = plant; });
  };
  plantDialog_.OnChoose = choose;
  plantDialog_.OnNew = [this, choose](const QString& name) { AskForNewPlant(name, choose); };
  QString doubt;
  const QUuid proposed = ProposedPlant(doubt);
  const QString reason =
      u"Was von jetzt an geschieht, wird unter dieser Anlage aufgezeichnet, bis eine andere gewählt wird."_s;
  plantDialog_.Ask({doubt.isEmpty() ? reason : doubt + u'\n' + reason, entries_.Plants(),
                    surroundings_.used().plant, proposed, true});
}

void HistoryWindow::Assign() {
  const std::vector<history::Entry> chosen = Chosen();
  if (chosen.empty()) return;
  plantDialog_.OnChoose = [this, chosen](const QUuid& plant) { AssignTo(chosen, plant); };
  plantDialog_.OnNew = [this, chosen](const QString& name) {
    AskForNewPlant(name, [this, chosen](const QUuid& plant) { AssignTo(chosen, plant); });
  };
  const auto count = static_cast<qsizetype>(chosen.size());
  plantDialog_.Ask({count == 1 ? u"Der markierte Eintrag gehört zu dieser Anlage:"_s
                               : u"Die %1 markierten Einträge gehören zu dieser Anlage:"_s.arg(count),
                    entries_.Plants(),
                    chosen.front().plant,
                    {},
                    false});
}

void HistoryWindow::AssignTo(const std::vector<history::Entry>& entries, const QUuid& plant) {
  const QString technician = surroundings_.used().technician;
  // A task is tried again as a whole, so each has one row to add.
  for (const history::Entry& entry : entries)
    if (entry.plant != plant)
      surroundings_.add([id = entry.id, plant,
                         technician](history::Store& store) { return store.Assign(id, plant, technician); },
                        {});
  Add([](history::Store&) { return QString(); });
}

void HistoryWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, surroundings_.settings, PlaceKey());
  SaveColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
  entry_->Store(surroundings_.settings);
  Form::hideEvent(event);
}

void HistoryWindow::changeEvent(QEvent* event) {
  Form::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    for (QTableView* table : {table_, plantsView_})
      if (table != nullptr) SetRowHeight(*table);
  }
}

}  // namespace kalivor::ui
