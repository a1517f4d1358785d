#include "ui/safe/BackupsWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QStyle>
#include <QStyledItemDelegate>

#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

enum Column { Time, Controller, PlantType, Address, Values, File, Columns };

// The size of the first time: so many lines, and all columns; no more than most of the screen.
constexpr int kHeight_lines = 22;

const QString& PlaceKey() {
  static const QString key = u"SicherungenPlatz"_s;
  return key;
}

const QString& ColumnsKey() {
  static const QString key = u"SicherungenSpalten"_s;
  return key;
}

bool IsNumber(int column) {
  return column == Address || column == Values;
}

Qt::Alignment Aligned(int column) {
  return Qt::AlignVCenter | (IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft);
}

// "1 Sicherung", "12 Sicherungen"
QString CountOf(qsizetype count) {
  return count == 1 ? u"1 Sicherung"_s : u"%1 Sicherungen"_s.arg(count);
}

}  // namespace

BackupsWindow::BackupsWindow(BackupsSurroundings surroundings)
    : Form(u"BackupsWindow"_s, u"Sicherungen"_s),
      surroundings_(std::move(surroundings)),
      summary_(NewLabel(this, u"summary"_s, QString(), true)),
      table_(Named(new QTableWidget(0, Columns, this), u"backups"_s)) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  BuildTable();
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(summary_);
  layout->addWidget(table_, 1);
  BuildButtons();
  const QMargins margins = layout->contentsMargins();
  ResizeOnScreen(*this, {WholeWidth(*table_) + margins.left() + margins.right(),
                         fontMetrics().lineSpacing() * kHeight_lines});
  LoadPlace(*this, surroundings_.settings, PlaceKey());
  LoadColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
}

void BackupsWindow::BuildTable() {
  table_->setAccessibleName(u"Sicherungen"_s);
  PrepareTable(*table_);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  constexpr QStringView titles[] = {u"Datum", u"Regler", u"Anlageart", u"Adresse", u"Werte", u"Datei"};
  for (int column = 0; column < Columns; ++column) {
    const QString title = titles[column].toString();
    auto* item = new QTableWidgetItem(IsNumber(column) ? title + kEndOfNumbers : title);
    item->setData(Qt::AccessibleTextRole, title);
    item->setTextAlignment(Aligned(column));
    table_->setHorizontalHeaderItem(column, item);
  }
  SetColumnWidths(*table_, {21, 13, 13, 10, 9, 40});
  connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { ShowCommands(); });
}

QPushButton* BackupsWindow::NewCommand(const QString& name, const QString& caption,
                                       const std::function<void()>& command) {
  QPushButton* button = NewButton(this, name, caption);
  connect(button, &QPushButton::clicked, this, [this, command] {
    surroundings_.guard([&] {
      if (surroundings_.core.module.BusyDepth == 0) command();
    });
  });
  return button;
}

void BackupsWindow::BuildButtons() {
  compare_ = NewCommand(u"compare"_s, u"Mit &PC vergleichen"_s, [this] {
    if (const StoredBackup* stored = Current()) surroundings_.compare(*stored);
  });
  compare_->setToolTip(u"Zeigt die Werte der Sicherung in der Parameterliste neben denen des PCs."_s);
  compare_->setDefault(true);
  restore_ = NewCommand(u"restore"_s, u"Mit &Regler vergleichen und wiederherstellen…"_s, [this] {
    if (const StoredBackup* stored = Current()) surroundings_.restore(*stored);
  });
  restore_->setToolTip(u"Liest den Regler und zeigt die Unterschiede, bevor etwas geschrieben wird."_s);
  tidy_ = NewCommand(u"tidy"_s, u"&Aufräumen…"_s, [this] { Tidy(); });
  close_ = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  connect(close_, &QPushButton::clicked, this, &QDialog::reject);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {compare_, restore_, tidy_, close_})
    row->addWidget(button);
  row->insertStretch(3);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  SetTabOrder({table_, compare_, restore_, tidy_, close_});
}

void BackupsWindow::Open() {
  ReadFolder();
  ShowAboveOwner();
  (list_.backups.empty() ? static_cast<QWidget*>(close_) : table_)->setFocus();
}

void BackupsWindow::Update() {
  if (isVisible()) ReadFolder();
}

void BackupsWindow::ReadFolder() {
  const QString folder = BackupFolder(surroundings_.core.module);
  list_ = ListBackups(surroundings_.core.files, folder);
  if (!list_.error.isEmpty()) {
    summary_->setText(list_.error);
  } else if (list_.backups.empty()) {
    summary_->setText(
        u"Noch gibt es keine Sicherungen. „Sicher senden“ legt vor dem Schreiben jedes Mal eine an; "
        "dann steht sie hier."_s);
  } else {
    summary_->setText(u"%1 in %2"_s.arg(CountOf(static_cast<qsizetype>(list_.backups.size())),
                                        QDir::toNativeSeparators(folder)));
  }
  table_->setRowCount(static_cast<int>(list_.backups.size()));
  for (int row = 0; row < table_->rowCount(); ++row)
    ShowRow(row, list_.backups[static_cast<std::size_t>(row)]);
  if (table_->rowCount() > 0) table_->setCurrentCell(0, Time);
  ShowCommands();
}

void BackupsWindow::ShowRow(int row, const StoredBackup& stored) {
  const bool usable = stored.error.isEmpty();
  const BackupHead& head = stored.backup.head;
  QStringList texts{QString(), QString(), QString(), QString(), QString(), QFileInfo(stored.path).fileName()};
  if (usable) {
    texts[Time] = head.time.toString(u"dd.MM.yyyy HH:mm:ss"_s);
    texts[Controller] = head.version;
    texts[PlantType] = head.plantType;
    texts[Address] = QString::number(head.address);
    texts[Values] = QString::number(stored.backup.values.size());
  } else {
    texts[File] += u": "_s + stored.error;
  }
  for (int column = 0; column < Columns; ++column) {
    auto* item = new QTableWidgetItem(texts[column]);
    item->setTextAlignment(Aligned(column));
    item->setToolTip(column == File ? stored.path + (usable ? QString() : u'\n' + stored.error)
                                    : texts[column]);
    if (column == File && !usable) item->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
    table_->setItem(row, column, item);
  }
}

const StoredBackup* BackupsWindow::Current() const {
  const int row = table_->currentRow();
  if (row < 0) return nullptr;
  const StoredBackup& stored = list_.backups[static_cast<std::size_t>(row)];
  return stored.error.isEmpty() ? &stored : nullptr;
}

void BackupsWindow::ShowCommands() {
  const bool usable = Current() != nullptr;
  compare_->setEnabled(usable);
  restore_->setEnabled(usable);
  tidy_->setEnabled(!list_.backups.empty());
}

void BackupsWindow::Tidy() {
  const Core& core = surroundings_.core;
  const std::vector<StoredBackup> swept = ToSweep(list_.backups, surroundings_.now());
  const QString rule =
      u"Alle der letzten 30 Tage bleiben, und aus jedem Monat davor die letzte jedes Reglers."_s;
  if (swept.empty()) {
    core.box.Show(u"Es gibt nichts aufzuräumen.\r\n"_s + rule);
    return;
  }
  const auto count = static_cast<qsizetype>(swept.size());
  const QString question = u"%1 von %2 %3 gelöscht.\r\n"_s.arg(
      QString::number(count), CountOf(static_cast<qsizetype>(list_.backups.size())),
      count == 1 ? u"wird"_s : u"werden"_s);
  if (!core.box.Confirm(question + rule, u"Löschen"_s)) return;
  const QString failure = Sweep(core.files, swept);
  ReadFolder();
  if (!failure.isEmpty()) core.box.Show(failure);
}

void BackupsWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, surroundings_.settings, PlaceKey());
  SaveColumns(*table_->horizontalHeader(), surroundings_.settings, ColumnsKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
