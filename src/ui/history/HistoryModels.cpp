#include "ui/history/HistoryModels.h"

#include <QTextDocument>
#include <algorithm>
#include <numeric>

#include "history/Tables.h"
#include "ui/list/CellStyle.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

Qt::Alignment Aligned(bool number) {
  return Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft);
}

// A cell is one line, however many a text has; a view would cut off the others.
QString OneLine(const QString& text) {
  return text.contains(u'\n') ? QString(text).replace(u'\n', u" · "_s) : text;
}

// The toolkit takes a tool tip that looks like markup for markup; and one should fit on the screen.
QString ToolTip(const QString& whole) {
  constexpr qsizetype kLongest = 1000;
  const QString text = whole.size() > kLongest ? whole.first(kLongest) + u'…' : whole;
  return Qt::mightBeRichText(text) ? u"<p style=\"white-space: pre-wrap\">"_s + HtmlText(text) + u"</p>"_s
                                   : text;
}

QVariant Header(const QString& title, bool number, int role) {
  switch (role) {
    case Qt::DisplayRole:
      return number ? title + kEndOfNumbers : title;
    case Qt::AccessibleTextRole:
      return title;
    case Qt::TextAlignmentRole:
      return QVariant(Aligned(number));
    default:
      return {};
  }
}

}  // namespace

void EntriesModel::SetContent(std::vector<history::Entry> entries, std::vector<history::Plant> plants,
                              const std::vector<history::Remark>& remarks) {
  beginResetModel();
  entries_ = std::move(entries);
  plants_ = std::move(plants);
  plantNames_.clear();
  for (const history::Plant& plant : plants_)
    plantNames_.insert(plant.id, plant.name);
  remarks_.clear();
  for (const history::Remark& remark : remarks)
    remarks_[remark.entry].push_back(remark);
  searched_.clear();
  Refilter();
  endResetModel();
}

void EntriesModel::SetFilter(history::EntryFilter filter) {
  if (filter == filter_) return;
  beginResetModel();
  filter_ = std::move(filter);
  Refilter();
  endResetModel();
}

void EntriesModel::Refilter() {
  if (!filter_.words.isEmpty() && searched_.empty()) {
    std::vector<history::Remark> remarks;
    for (const std::vector<history::Remark>& each : remarks_)
      remarks.insert(remarks.end(), each.begin(), each.end());
    searched_ = history::SearchedTexts(entries_, plants_, remarks);
  }
  shown_.clear();
  for (std::size_t i = 0; i < entries_.size(); ++i)
    if (history::Shows(filter_, entries_[i], searched_.empty() ? QString() : searched_[i]))
      shown_.push_back(static_cast<int>(i));
}

int EntriesModel::RowOf(const QUuid& entry) const {
  const auto row = std::ranges::find_if(
      shown_, [&](int position) { return entries_[static_cast<std::size_t>(position)].id == entry; });
  return row == shown_.end() ? -1 : static_cast<int>(row - shown_.begin());
}

ListTable EntriesModel::Table() const {
  std::vector<history::Entry> entries;
  std::vector<history::Remark> remarks;
  for (int row = 0; row < rowCount(); ++row) {
    entries.push_back(At(row));
    const std::vector<history::Remark> own = RemarksOf(At(row).id);
    remarks.insert(remarks.end(), own.begin(), own.end());
  }
  return history::EntriesTable(entries, plants_, remarks);
}

int EntriesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int EntriesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Columns;
}

QString EntriesModel::Text(const history::Entry& entry, int column) const {
  switch (column) {
    case Time:
      return history::ShownTime(entry.stamp.time);
    case Plant:
      return plantNames_.value(entry.plant);
    case Kind:
      return history::KindText(entry.kind);
    case Technician:
      return entry.stamp.technician;
    case Version:
      return entry.version;
    case Outcome:
      return entry.outcome;
    case Changes:
      return QString::number(entry.changes);
    default:
      return Said(entry);
  }
}

// What was remarked, without who said it when: that is in the tip, and below the table.
QString EntriesModel::Said(const history::Entry& entry) const {
  QStringList texts{entry.remark};
  for (const history::Remark& remark : RemarksOf(entry.id))
    texts << remark.text;
  texts.removeAll(QString());
  return texts.join(u'\n');
}

QVariant EntriesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return OneLine(Text(At(index.row()), index.column()));
    case Qt::ToolTipRole: {
      const history::Entry& entry = At(index.row());
      return ToolTip(index.column() == Remarks ? history::RemarksText(entry, RemarksOf(entry.id))
                                               : Text(entry, index.column()));
    }
    case Qt::TextAlignmentRole:
      return QVariant(Aligned(index.column() == Changes));
    default:
      return {};
  }
}

QVariant EntriesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  constexpr QStringView titles[] = {u"Zeit",    u"Anlage",   u"Art",      u"Techniker",
                                    u"Version", u"Ergebnis", u"Geändert", u"Bemerkung"};
  if (orientation != Qt::Horizontal || section < 0 || section >= Columns) return {};
  return Header(titles[section].toString(), section == Changes, role);
}

void ListTableModel::Show(ListTable table) {
  beginResetModel();
  table_ = std::move(table);
  isNumber_.clear();
  for (qsizetype column = 0; column < table_.titles.size(); ++column)
    isNumber_.push_back(IsNumberColumn(table_, static_cast<std::size_t>(column)));
  endResetModel();
}

int ListTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.rows.size());
}

int ListTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.titles.size());
}

QVariant ListTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const TableCell& cell =
      table_.rows[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())];
  switch (role) {
    case Qt::DisplayRole:
      return OneLine(cell.text);
    case Qt::ToolTipRole:
      return ToolTip(cell.text);
    case Qt::TextAlignmentRole:
      return QVariant(Aligned(cell.number));
    case Qt::UserRole:
      return cell.number ? QVariant(cell.text.toDouble()) : QVariant(cell.text);
    default:
      return {};
  }
}

QVariant ListTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  return Header(table_.titles[section], isNumber_[static_cast<std::size_t>(section)], role);
}

}  // namespace kalivor::ui
