#include "ui/line/PortModel.h"

#include <QApplication>
#include <QStyle>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kalivor::ui {

using platform::PortEntry;
using platform::PortState;

namespace {

constexpr QStringView kTitles[] = {u"Suchen",       u"COM", u"Gerät",  u"Hersteller und Produkt",
                                   u"Seriennummer", u"Ort", u"Zustand"};

QString KeyOf(const PortEntry& port) {
  return port.device.isEmpty() || port.state == PortState::Missing ? u"COM%1"_s.arg(port.number)
                                                                   : port.device;
}

int RowOf(const QList<PortEntry>& ports, const QString& key, int from = 0) {
  for (int row = from; row < ports.size(); ++row) {
    if (KeyOf(ports.at(row)) == key) return row;
  }
  return -1;
}

QString TextOf(const PortEntry& port, int column) {
  switch (column) {
    case PortModel::Number:
      return port.number > 0 ? u"COM%1"_s.arg(port.number) : u"–"_s;
    case PortModel::Device:
      return port.device;
    case PortModel::Description:
      return port.description;
    case PortModel::SerialNumber:
      return port.serialNumber;
    case PortModel::Place:
      return port.place;
    case PortModel::State:
      return StateText(port.state);
    default:
      return {};
  }
}

// What the state means, with what the system says about it.
QString StateHint(const PortEntry& port) {
  return port.remark.isEmpty() ? StateText(port.state) : StateText(port.state) + u": "_s + port.remark;
}

}  // namespace

QString StateText(PortState state) {
  switch (state) {
    case PortState::Free:
      return u"frei"_s;
    case PortState::InUse:
      return u"belegt"_s;
    case PortState::NoPermission:
      return u"keine Rechte"_s;
    case PortState::Missing:
      return u"fehlt"_s;
  }
  return {};
}

QString PortName(const PortEntry& port) {
  if (port.number == 0) return port.device;
  const QString number = u"COM%1"_s.arg(port.number);
  return port.device.isEmpty() || port.device == number ? number : u"%1 (%2)"_s.arg(number, port.device);
}

void PortModel::Show(const QList<PortEntry>& ports) {
  for (int row = static_cast<int>(ports_.size()) - 1; row >= 0; --row) {
    if (RowOf(ports, KeyOf(ports_.at(row))) >= 0) continue;
    beginRemoveRows({}, row, row);
    ports_.removeAt(row);
    endRemoveRows();
  }
  for (int row = 0; row < ports.size(); ++row) {
    const PortEntry& port = ports.at(row);
    const int there = RowOf(ports_, KeyOf(port), row);
    if (there < 0) {
      beginInsertRows({}, row, row);
      ports_.insert(row, port);
      endInsertRows();
      continue;
    }
    if (there != row) {
      beginMoveRows({}, there, there, {}, row);
      ports_.move(there, row);
      endMoveRows();
    }
    if (ports_.at(row) == port) continue;
    ports_[row] = port;
    Q_EMIT dataChanged(index(row, 0), index(row, Columns - 1));
  }
}

bool PortModel::IsMarked(int row) const {
  const PortEntry& port = At(row);
  return port.state != PortState::Missing && marks_.value(KeyOf(port), true);
}

QList<PortEntry> PortModel::Marked() const {
  QList<PortEntry> marked;
  for (int row = 0; row < ports_.size(); ++row) {
    if (IsMarked(row)) marked.append(At(row));
  }
  return marked;
}

void PortModel::SetMarked(int row, bool marked) {
  if (At(row).state == PortState::Missing || IsMarked(row) == marked) return;
  marks_[KeyOf(At(row))] = marked;
  Q_EMIT dataChanged(index(row, Mark), index(row, Mark));
}

int PortModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(ports_.size());
}

int PortModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Columns;
}

QVariant PortModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const PortEntry& port = At(index.row());
  const int column = index.column();
  const bool trouble = column == State && port.state != PortState::Free;
  switch (role) {
    case Qt::DisplayRole:
      return TextOf(port, column);
    case Qt::ToolTipRole:
      return column == State ? StateHint(port) : TextOf(port, column);
    case Qt::CheckStateRole:
      if (column != Mark || port.state == PortState::Missing) return {};
      return IsMarked(index.row()) ? Qt::Checked : Qt::Unchecked;
    case Qt::DecorationRole:
      if (!trouble) return {};
      return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    case Qt::TextAlignmentRole:
      return QVariant(Qt::AlignVCenter | Qt::AlignLeft);
    case Qt::AccessibleTextRole:
      if (column == State) return StateHint(port);
      if (column != Mark) return TextOf(port, column);
      if (port.state == PortState::Missing) return u"nicht ankreuzbar"_s;
      return IsMarked(index.row()) ? u"angekreuzt"_s : u"nicht angekreuzt"_s;
    case Qt::AccessibleDescriptionRole:
      return u"%1, %2"_s.arg(kTitles[column].toString(), PortName(port));
    case kTroubleRole:
      return trouble;
    default:
      return {};
  }
}

QVariant PortModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= Columns) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignVCenter | Qt::AlignLeft);
  if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
  return kTitles[section].toString();
}

bool PortModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  SetMarked(index.row(), value.value<Qt::CheckState>() == Qt::Checked);
  return true;
}

Qt::ItemFlags PortModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (index.column() == Mark && At(index.row()).state != PortState::Missing) flags |= Qt::ItemIsUserCheckable;
  return flags;
}

}  // namespace kalivor::ui
