#include "ui/findings/FindingsWindow.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTime>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "check/FindingsText.h"
#include "core/ListTable.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/CellStyle.h"
#include "ui/main/StoredPlace.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
/// Rows in the order in which they were found; Qt::UserRole is what they are sorted by.
class FindingsModel final : public QAbstractTableModel {
 public:
  enum Column { File, Line, Severity, Text, Columns };

  using QAbstractTableModel::QAbstractTableModel;

  void Show(std::vector<Finding> findings) {
    beginResetModel();
    findings_ = std::move(findings);
    endResetModel();
  }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(findings_.size());
  }
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : Columns;
  }

  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
    const Finding& finding = findings_[static_cast<std::size_t>(index.row())];
    switch (role) {
      case Qt::DisplayRole:
        return TextOf(finding, index.column());
      case Qt::DecorationRole:
        if (index.column() != Severity) return {};
        return QApplication::style()->standardIcon(finding.error ? QStyle::SP_MessageBoxCritical
                                                                 : QStyle::SP_MessageBoxWarning);
      case Qt::UserRole:
        return index.column() == Line ? QVariant(finding.line) : QVariant(TextOf(finding, index.column()));
      case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignVCenter | (index.column() == Line ? Qt::AlignRight : Qt::AlignLeft));
      default:
        return {};
    }
  }

  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole)
      return QVariant(Qt::AlignVCenter | (section == Line ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    constexpr QStringView titles[] = {u"Datei", u"Zeile", u"Schwere", u"Text"};
    const QString title = titles[section].toString();
    return role == Qt::DisplayRole && section == Line ? title + kEndOfNumbers : title;
  }

 private:
  [[nodiscard]] static QString TextOf(const Finding& finding, int column) {
    switch (column) {
      case File:
        return finding.file;
      case Line:
        // It is about the file as a whole.
        return finding.line == 0 ? QString() : QString::number(finding.line);
      case Severity:
        return SeverityText(finding);
      default:
        return finding.text;
    }
  }

  std::vector<Finding> findings_;
};

namespace {

/// Cells with air around them.
class FindingsDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kRowAir_px);
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == FindingsModel::Line) option->text += kEndOfNumbers;
  }
};

const QString& PlaceKey() {
  static const QString key = u"BefundePlatz"_s;
  return key;
}

const QString& ColumnsKey() {
  static const QString key = u"BefundeSpalten"_s;
  return key;
}

}  // namespace

FindingsWindow::FindingsWindow(Check check, const platform::EventGuard& guard,
                               platform::SettingsStore& settings)
    : Form(u"FindingsWindow"_s, u"Definitionen prüfen"_s), check_(std::move(check)), settings_(settings) {
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  BuildTable();
  summary_ = NewLabel(this, u"Summary"_s, QString());
  checked_ = NewLabel(this, u"Checked"_s, QString(), true);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(summary_);
  layout->addWidget(table_);
  layout->addWidget(checked_);
  BuildButtons(guard);
  constexpr int characters = 120;
  constexpr int lines = 28;
  resize(fontMetrics().averageCharWidth() * characters, fontMetrics().lineSpacing() * lines);
  LoadPlace(*this, settings_, PlaceKey());
}

void FindingsWindow::BuildTable() {
  model_ = new FindingsModel(this);
  sorted_ = new QSortFilterProxyModel(this);
  sorted_->setSourceModel(model_);
  sorted_->setSortRole(Qt::UserRole);
  sorted_->setSortLocaleAware(true);

  table_ = Named(new QTableView(this), u"Findings"_s);
  table_->setAccessibleName(u"Befunde"_s);
  table_->setModel(sorted_);
  PrepareTable(*table_);
  table_->setItemDelegate(new FindingsDelegate(table_));
  table_->setWordWrap(true);
  QHeaderView* columns = table_->horizontalHeader();
  columns->setSortIndicatorClearable(true);
  // As they were found, until the user wants it otherwise.
  columns->setSortIndicator(-1, Qt::AscendingOrder);
  table_->setSortingEnabled(true);
  const int character = fontMetrics().averageCharWidth();
  columns->resizeSection(FindingsModel::File, 20 * character);
  columns->resizeSection(FindingsModel::Line, 9 * character);
  columns->resizeSection(FindingsModel::Severity, 16 * character);
  LoadColumns(*columns, settings_, ColumnsKey());
  // Texts wrap, so that all of them can be read. Dragging a column resizes many times between two paintings.
  auto* fitRows = new QTimer(this);
  fitRows->setSingleShot(true);
  fitRows->callOnTimeout(table_, &QTableView::resizeRowsToContents);
  connect(columns, &QHeaderView::sectionResized, fitRows, qOverload<>(&QTimer::start));
  connect(sorted_, &QAbstractItemModel::modelReset, table_, &QTableView::resizeRowsToContents);
}

void FindingsWindow::BuildButtons(const platform::EventGuard& guard) {
  auto* again = NewButton(this, u"CheckAgain"_s, u"Erneut &prüfen"_s);
  again->setToolTip(u"F5"_s);
  auto* copy = NewButton(this, u"Copy"_s, u"&Kopieren"_s);
  copy->setToolTip(u"Strg+C: die markierten Zeilen, ohne Markierung alle"_s);
  auto* close = NewButton(this, u"CloseButton"_s, u"&Schließen"_s);
  auto* row = new QHBoxLayout;
  for (QPushButton* button : {again, copy, close}) {
    button->setAutoDefault(false);
    row->addWidget(button);
  }
  row->insertStretch(2);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);

  const auto checkAgain = [this, &guard] { guard([this] { RunCheck(); }); };
  connect(again, &QPushButton::clicked, this, checkAgain);
  connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this, checkAgain);
  connect(copy, &QPushButton::clicked, this, [this] { Copy(); });
  connect(new QShortcut(QKeySequence::Copy, this), &QShortcut::activated, this, [this] { Copy(); });
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  SetTabOrder({table_, again, copy, close});
}

void FindingsWindow::CheckAndShow() {
  RunCheck();
  ShowAboveOwner();
  table_->setFocus();
}

void FindingsWindow::RunCheck() {
  // What is no longer known to be so does not stay when the check fails.
  model_->Show({});
  summary_->setText(u"Nicht geprüft"_s);
  checked_->clear();
  std::vector<Finding> findings = check_.run();
  summary_->setText(SummaryOf(findings));
  checked_->setText(
      u"Geprüft um %1 Uhr: %2"_s.arg(QTime::currentTime().toString(u"HH:mm:ss"), check_.table()));
  model_->Show(std::move(findings));
}

void FindingsWindow::Copy() const {
  const QHeaderView& columns = *table_->horizontalHeader();
  const auto cellsOf = [&](auto&& addColumn) {
    for (int position = 0; position < columns.count(); ++position)
      addColumn(columns.logicalIndex(position));
  };
  ListTable copied;
  cellsOf([&](int column) {
    copied.titles << model_->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString();
  });
  const QItemSelectionModel& selection = *table_->selectionModel();
  for (int row = 0; row < sorted_->rowCount(); ++row) {
    if (selection.hasSelection() && !selection.isRowSelected(row, {})) continue;
    std::vector<TableCell>& cells = copied.rows.emplace_back();
    cellsOf([&](int column) {
      cells.push_back({sorted_->index(row, column).data().toString(), column == FindingsModel::Line});
    });
  }
  QApplication::clipboard()->setText(ClipboardText(copied));
}

void FindingsWindow::hideEvent(QHideEvent* event) {
  SavePlace(*this, settings_, PlaceKey());
  SaveColumns(*table_->horizontalHeader(), settings_, ColumnsKey());
  Form::hideEvent(event);
}

}  // namespace kalivor::ui
