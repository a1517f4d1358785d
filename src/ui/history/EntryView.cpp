#include "ui/history/EntryView.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "core/ParameterTypes.h"
#include "history/Tables.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// Of ChangesTable.
enum Column { Number, Group, Name, Variable, Before, After, Unit, State, Address, Type };

// A remark is a line or two; more is a letter.
constexpr int kLongestRemark = 2000;

const QString& ColumnsKey() {
  static const QString key = u"VerlaufWerteSpalten"_s;
  return key;
}

const QString& WidthsKey() {
  static const QString key = u"VerlaufWerteBreiten"_s;
  return key;
}

QString Joined(const QStringList& texts) {
  QStringList there = texts;
  there.removeAll(QString());
  return there.join(u" · "_s);
}

QString Prefixed(const QString& prefix, const QString& text) {
  return text.isEmpty() ? text : prefix + text;
}

QLabel* NewTextLabel(QWidget* parent, const QString& name) {
  QLabel* label = NewLabel(parent, name, QString(), true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

}  // namespace

EntryView::EntryView(platform::EventGuard guard, QWidget* parent)
    : QWidget(parent),
      guard_(std::move(guard)),
      head_(NewTextLabel(this, u"entryHead"_s)),
      more_(NewTextLabel(this, u"entryMore"_s)),
      sides_(Named(new QSplitter(this), u"entrySides"_s)) {
  setObjectName(u"entry"_s);
  QFont bold = head_->font();
  bold.setBold(true);
  head_->setFont(bold);
  changesTable_.Show(history::ChangesTable({}, {}, {}, {}));
  sides_->addWidget(NewChangesSide());
  sides_->addWidget(NewRemarksSide());
  sides_->setStretchFactor(0, 3);
  sides_->setStretchFactor(1, 1);
  sides_->setChildrenCollapsible(false);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, Air(*parent), 0, 0);
  layout->addWidget(head_);
  layout->addWidget(more_);
  layout->addWidget(sides_, 1);
  layout->addStretch();
}

QWidget* EntryView::NewChangesSide() {
  auto* side = new QWidget;
  table_ = Named(new QTableView(side), u"changes"_s);
  table_->setAccessibleName(u"Geänderte Werte"_s);
  sorted_.setSourceModel(&changesTable_);
  sorted_.setSortRole(Qt::UserRole);
  sorted_.setSortLocaleAware(true);
  table_->setModel(&sorted_);
  PrepareTable(*table_);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  QHeaderView& header = *table_->horizontalHeader();
  header.setSortIndicatorClearable(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  table_->setSortingEnabled(true);
  SetColumnWidths(*table_, {5, 11, 24, 10, 9, 9, 8, 10, 8, 8});
  // They tell the elements of an array apart, for who exports the table.
  table_->setColumnHidden(Address, true);
  table_->setColumnHidden(Type, true);
  table_->installEventFilter(this);
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { ShowCommands(); });
  connect(table_, &QTableView::doubleClicked, this, [this] { AskForCurve(); });
  curve_ = NewButton(side, u"curve"_s, u"&Kurve des Wertes…"_s);
  curve_->setToolTip(u"Zeigt, wie sich der markierte Wert über alle Einträge der Anlage verändert hat."_s);
  connect(curve_, &QPushButton::clicked, this, [this] { AskForCurve(); });
  auto* row = new QHBoxLayout;
  row->addWidget(curve_);
  row->addStretch();
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins({});
  layout->addWidget(table_, 1);
  layout->addLayout(row);
  return side;
}

QWidget* EntryView::NewRemarksSide() {
  auto* side = new QWidget;
  remarks_ = Named(new QPlainTextEdit(side), u"remarks"_s);
  remarks_->setAccessibleName(u"Bemerkungen"_s);
  remarks_->setPlaceholderText(u"Noch keine Bemerkungen."_s);
  remarks_->setReadOnly(true);
  remarks_->setTabChangesFocus(true);
  // It takes what the table leaves.
  remarks_->setMinimumHeight(2 * fontMetrics().lineSpacing());
  remark_ = NewTextBox(side, u"remark"_s, u"Neue Bemerkung"_s);
  remark_->setPlaceholderText(u"Was später noch zu sagen ist"_s);
  remark_->setMaxLength(kLongestRemark);
  connect(remark_, &QLineEdit::textChanged, this, [this] { ShowCommands(); });
  connect(remark_, &QLineEdit::returnPressed, this, [this] { AddRemark(); });
  addRemark_ = NewButton(side, u"addRemark"_s, u"Hin&zufügen"_s);
  connect(addRemark_, &QPushButton::clicked, this, [this] { AddRemark(); });
  assign_ = NewButton(side, u"assign"_s, u"Anlag&e zuordnen…"_s);
  assign_->setToolTip(u"Ordnet die markierten Einträge einer anderen Anlage zu."_s);
  connect(assign_, &QPushButton::clicked, this, [this] {
    guard_([this] {
      if (OnAssign) OnAssign();
    });
  });
  auto* row = new QHBoxLayout;
  row->addWidget(NewCaption(side, u"Be&merkung:"_s, remark_));
  row->addWidget(remark_, 1);
  auto* last = new QHBoxLayout;
  last->addWidget(addRemark_);
  last->addStretch();
  last->addWidget(assign_);
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins({});
  layout->addWidget(remarks_, 1);
  layout->addLayout(row);
  layout->addLayout(last);
  return side;
}

void EntryView::Show(const history::Entry& entry, const std::vector<history::Plant>& plants,
                     std::vector<history::Change> changes, const std::vector<history::Remark>& remarks) {
  head_->setText(
      Joined({history::ShownTime(entry.stamp.time), history::KindText(entry.kind), entry.outcome}));
  const QString plant = history::PlantName(plants, entry.plant);
  QStringList about{plant.isEmpty() ? u"ohne Anlage"_s : plant,
                    entry.version,
                    Prefixed(u"Anlageart "_s, entry.plantType),
                    u"Adresse %1"_s.arg(entry.address),
                    entry.port,
                    entry.stamp.technician,
                    Prefixed(u"PC "_s, entry.pc),
                    Prefixed(u"Programmversion "_s, entry.program)};
  QString more = Joined(about);
  if (!entry.quality.isEmpty()) more += u"\nLeitung: "_s + entry.quality;
  more_->setText(more);
  remarks_->setPlainText(history::RemarksText(entry, remarks));
  changesTable_.Show(history::ChangesTable(entry, plants, changes, remarks));
  changes_ = std::move(changes);
  if (!changes_.empty()) table_->setCurrentIndex(sorted_.index(0, Name));
  sides_->setVisible(true);
  ShowCommands();
}

void EntryView::ShowNone(const QString& text) {
  head_->clear();
  more_->setText(text);
  changes_.clear();
  changesTable_.Show(history::ChangesTable({}, {}, {}, {}));
  remarks_->clear();
  remark_->clear();
  sides_->setVisible(false);
}

std::optional<history::Change> EntryView::Current() const {
  const QModelIndex current = sorted_.mapToSource(table_->currentIndex());
  if (!current.isValid()) return std::nullopt;
  return changes_[static_cast<std::size_t>(current.row())];
}

void EntryView::ShowCommands() {
  const std::optional<history::Change> current = Current();
  curve_->setEnabled(current && TypeOf(current->type).kind != ValueKind::Text);
  addRemark_->setEnabled(!remark_->text().trimmed().isEmpty());
}

void EntryView::AskForCurve() {
  guard_([this] {
    if (curve_->isEnabled() && OnCurve) OnCurve(*Current());
  });
}

void EntryView::AddRemark() {
  guard_([this] {
    const QString text = remark_->text().trimmed();
    if (text.isEmpty() || !OnRemark) return;
    remark_->clear();
    OnRemark(text);
  });
}

void EntryView::Load(const platform::SettingsStore& settings) {
  LoadColumns(*table_->horizontalHeader(), settings, ColumnsKey());
  LoadParts(*sides_, settings, WidthsKey());
}

void EntryView::Store(platform::SettingsStore& settings) const {
  SaveColumns(*table_->horizontalHeader(), settings, ColumnsKey());
  SaveParts(*sides_, settings, WidthsKey());
}

bool EntryView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<const QKeyEvent&>(*event).key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      AskForCurve();
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace kalivor::ui
