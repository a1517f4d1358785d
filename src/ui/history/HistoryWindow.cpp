#include "ui/history/HistoryWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/ParameterTypes.h"
#include "history/EntryBackup.h"
#include "history/Tables.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// The size of the first time: so many characters and lines; no more than most of the screen.
constexpr int kWidth_digits = 165;
constexpr int kHeight_lines = 44;

const QString& PlaceKey() {
  static const QString key = u"VerlaufPlatz"_s;
  return key;
}

const QString& ColumnsKey() {
  static const QString key = u"VerlaufSpalten"_s;
  return key;
}

const QString& WidthsKey() {
  static const QString key = u"VerlaufBreiten"_s;
  return key;
}

const QString& HeightsKey() {
  static const QString key = u"VerlaufHoehen"_s;
  return key;
}

// "1 Eintrag", "12 Einträge"
QString EntriesCount(qsizetype count) {
  return count == 1 ? u"1 Eintrag"_s : u"%1 Einträge"_s.arg(count);
}

QString NameWithPlace(const history::Plant& plant) {
  return plant.place.isEmpty() ? plant.name : plant.name + u", "_s + plant.place;
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
  keeping_ = NewKeeping();
  plants_ = NewPlants();
  filters_ = NewFilters();
  sides_ = Named(new QSplitter(this), u"sides"_s);
  sides_->addWidget(plants_);
  sides_->addWidget(NewEntriesSide());
  sides_->setStretchFactor(1, 1);
  sides_->setChildrenCollapsible(false);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(keeping_);
  layout->addSpacing(Air(*this));
  layout->addWidget(sides_, 1);
  layout->addSpacing(Air(*this));
  layout->addLayout(NewCommandRow());
  // Enter in a search field must not press a button.
  for (QPushButton* button : findChildren<QPushButton*>())
    button->setAutoDefault(false);
  OrderTabs();
  ResizeOnScreen(*this, {fontMetrics().horizontalAdvance(u'0') * kWidth_digits,
                         fontMetrics().lineSpacing() * kHeight_lines});
  sides_->setSizes({plants_->WantedWidth(), width() - plants_->WantedWidth()});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
  LoadColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
  LoadParts(*sides_, surroundings_.settings, WidthsKey());
  LoadParts(*halves_, surroundings_.settings, HeightsKey());
  entry_->Load(surroundings_.settings);
}

// --- what it is made of ---

// A transfer is not to be disturbed.
platform::EventGuard HistoryWindow::WhenReady() const {
  return [this](const std::function<void()>& handler) {
    if (surroundings_.core.module.BusyDepth == 0) surroundings_.guard(handler);
  };
}

QPushButton* HistoryWindow::NewCommand(const QString& name, const QString& caption,
                                       const std::function<void()>& command) {
  QPushButton* button = NewButton(this, name, caption);
  connect(button, &QPushButton::clicked, this, [guard = WhenReady(), command] { guard(command); });
  return button;
}

KeepingBar* HistoryWindow::NewKeeping() {
  auto* keeping = new KeepingBar(surroundings_.guard, this);
  keeping->OnKeep = [this](bool keeps) {
    Change([keeps](history::HistorySettings& used) { used.keeps = keeps; });
  };
  keeping->OnTechnician = [this](const QString& name) {
    if (name != surroundings_.used().technician)
      Change([&name](history::HistorySettings& used) { used.technician = name; });
  };
  keeping->OnChoosePlant = [this] { ChoosePlant(); };
  return keeping;
}

PlantsView* HistoryWindow::NewPlants() {
  auto* plants = new PlantsView(WhenReady());
  plants->OnChoose = [this] { TakeFilter(); };
  plants->OnNew = [this] { AskForNewPlant({}, {}); };
  plants->OnChange = [this](const history::Plant& plant) { plantForm_.Ask(plant, entries_.Plants()); };
  return plants;
}

EntryFilterBar* HistoryWindow::NewFilters() {
  auto* filters = new EntryFilterBar(surroundings_.guard);
  filters->EntriesWith = [this](const QString& parameter) {
    return store_ ? store_->EntriesWith(parameter) : std::vector<QUuid>();
  };
  filters->OnChange = [this] { TakeFilter(); };
  return filters;
}

QWidget* HistoryWindow::NewEntriesSide() {
  auto* upper = new QWidget;
  table_ = Named(new QTableView(upper), u"entries"_s);
  table_->setAccessibleName(u"Einträge"_s);
  table_->setModel(&entries_);
  PrepareTable(*table_);
  SetColumnWidths(*table_, {19, 17, 15, 12, 11, 18, 10, 14});
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { ShowEntry(); });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowCommands(); });
  connect(new QShortcut(QKeySequence::Copy, table_, nullptr, nullptr, Qt::WidgetShortcut),
          &QShortcut::activated, this, [this] { Copy(EntriesTable()); });
  count_ = NewLabel(this, u"count"_s, QString(), true);
  auto* layout = new QVBoxLayout(upper);
  layout->setContentsMargins({});
  layout->addWidget(filters_);
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
  const auto add = [&](const QString& name, const QString& caption, const std::function<ListTable()>& table) {
    QMenu* exports = NewExportMenu(
        menu, surroundings_.exports, WhenReady(), [this, table] { Copy(table()); }, table);
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

// Each part has put its own in order.
void HistoryWindow::OrderTabs() {
  const auto in = [this](const QString& name) { return findChild<QWidget*>(name); };
  SetTabOrder({in(u"technician"_s), in(u"plantSearch"_s)});
  SetTabOrder({in(u"changePlant"_s), in(u"search"_s)});
  SetTabOrder({in(u"to"_s), table_, in(u"changes"_s)});
  SetTabOrder({in(u"assign"_s), compare_, save_, restore_, report_, export_, synchronize_, close_});
}

// --- opening and reading ---

void HistoryWindow::Open() {
  const bool first = !isVisible();
  if (first) {
    filters_->OfferParameters(ParameterNames());
    StylePlaceholders(*this);
    Reload();
  }
  ShowKeeping();
  ShowAboveOwner();
  if (first) (entries_.All().empty() ? static_cast<QWidget*>(keeping_) : table_)->setFocus();
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
  filters_->OfferTechnicians(entries_.All());
  filters_->FindParameter();
  plants_->Show(entries_.Plants(), entries_.All());
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
  Keeping keeping{surroundings_.used(), surroundings_.place.file, unreadable_, {}, {}};
  const auto plant = std::ranges::find(entries_.Plants(), keeping.used.plant, &history::Plant::id);
  if (plant != entries_.Plants().end()) keeping.plant = NameWithPlace(*plant);
  if (keeping.used.keeps) (void)ProposedPlant(keeping.doubt);
  keeping_->Show(keeping);
}

history::SeenController HistoryWindow::SeenNow() const {
  const Module1& module = surroundings_.core.module;
  return {module.VersionList.SelectedText(), module.Adresse, history::TextsOf(TableValues(module))};
}

QUuid HistoryWindow::ProposedPlant(QString& doubt) {
  if (!store_) return {};
  const history::SeenController seen = SeenNow();
  const history::HistorySettings used = surroundings_.used();
  const history::KnownPlants known{
      entries_.Plants(), entries_.All(),
      [this](const history::Entry& entry) { return history::TextsOf(store_->Values(entry, true).set); },
      used.nameParameter};
  doubt = history::PlantDoubt(used.plant, seen, known);
  return history::ProposedPlant(seen, known);
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

void HistoryWindow::TakeFilter() {
  const QUuid before = shownEntry_;
  history::EntryFilter filter = filters_->Filter();
  filter.plant = plants_->Chosen();
  entries_.SetFilter(std::move(filter));
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
  if (const QString wrong = filters_->WrongDate(); !wrong.isEmpty())
    text += u" · „%1“ ist kein Datum: TT.MM.JJJJ, MM.JJJJ oder JJJJ"_s.arg(wrong);
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
  table.heading = {u"Verlauf: "_s + plants_->ChosenName(),
                   u"Stand: "_s + QDate::currentDate().toString(u"dd.MM.yyyy"_s)};
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
  plantDialog_.OnNameParameter = [this](const QString& variable) {
    Change([&variable](history::HistorySettings& used) { used.nameParameter = variable; });
    plantDialog_.Renew(WhichPlant());
  };
  plantDialog_.Ask(WhichPlant());
}

PlantQuestion HistoryWindow::WhichPlant() {
  QString doubt;
  const QUuid proposed = ProposedPlant(doubt);
  const QString reason =
      u"Was von jetzt an geschieht, wird unter dieser Anlage aufgezeichnet, bis eine andere gewählt wird."_s;
  const history::HistorySettings used = surroundings_.used();
  PlantQuestion question{doubt.isEmpty() ? reason : doubt + u'\n' + reason, entries_.Plants(), used.plant,
                         proposed, true};
  const Module1& module = surroundings_.core.module;
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    if (TypeOf(record.Typ).kind != ValueKind::Text) continue;
    const QString variable = record.Variable;
    // An array is one parameter here: its first element counts.
    if (std::ranges::find(question.nameParameters, variable, &PlantQuestion::NameParameter::variable) ==
        question.nameParameters.end())
      question.nameParameters.push_back({variable, u"%1 (%2)"_s.arg(QString(record.Name), variable)});
  }
  question.nameParameter = used.nameParameter;
  question.name = history::NameAmong(SeenNow().texts, used.nameParameter);
  return question;
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
  SaveParts(*sides_, surroundings_.settings, WidthsKey());
  SaveParts(*halves_, surroundings_.settings, HeightsKey());
  entry_->Store(surroundings_.settings);
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
