#include "platform/qt/NodeModel.h"

#include <algorithm>

namespace kalivor::platform {

NodeModel::NodeModel() : nodes_(1) {}

void NodeModel::BeginRebuild() {
  if (rebuilding_) return;
  beginResetModel();
  rebuilding_ = true;
}

void NodeModel::EndRebuild() {
  if (!rebuilding_) return;
  rebuilding_ = false;
  endResetModel();
}

void NodeModel::Clear() {
  if (!rebuilding_) beginResetModel();
  nodes_.assign(1, Node{});
  keys_.clear();
  longestText_ = 0;
  if (!rebuilding_) endResetModel();
}

int NodeModel::Add(int parent, const QString& key, const QString& text) {
  const int node = Count() + 1;
  const int row = static_cast<int>(At(parent).children.size());
  if (!rebuilding_) beginInsertRows(IndexOf(parent), row, row);
  At(parent).children.push_back(node);
  nodes_.push_back({.key = key, .text = text, .parent = parent, .row = row, .children = {}});
  keys_.insert(key);
  longestText_ = std::max(longestText_, text.size());
  if (!rebuilding_) endInsertRows();
  return node;
}

void NodeModel::SetText(int node, const QString& text) {
  At(node).text = text;
  longestText_ = std::max(longestText_, text.size());
  Changed(node, Qt::DisplayRole);
}

void NodeModel::SetChecked(int node, bool checked) {
  if (At(node).checked == checked) return;
  At(node).checked = checked;
  Changed(node, Qt::CheckStateRole);
}

void NodeModel::Changed(int node, int role) {
  if (rebuilding_) return;
  const QModelIndex changed = IndexOf(node);
  Q_EMIT dataChanged(changed, changed, {role});
}

QModelIndex NodeModel::IndexOf(int node) const {
  if (node < 1 || node > Count()) return {};
  return createIndex(At(node).row, 0, static_cast<quintptr>(node));
}

QModelIndex NodeModel::index(int row, int column, const QModelIndex& parent) const {
  const std::vector<int>& children = At(NodeOf(parent)).children;
  if (column != 0 || row < 0 || row >= static_cast<int>(children.size())) return {};
  return IndexOf(children[static_cast<std::size_t>(row)]);
}

QModelIndex NodeModel::parent(const QModelIndex& index) const {
  return index.isValid() ? IndexOf(At(NodeOf(index)).parent) : QModelIndex();
}

int NodeModel::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(At(NodeOf(parent)).children.size());
}

int NodeModel::columnCount(const QModelIndex& /*parent*/) const {
  return 1;
}

QVariant NodeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node& node = At(NodeOf(index));
  if (role == Qt::DisplayRole) return node.text;
  if (role == Qt::CheckStateRole) return node.checked ? Qt::Checked : Qt::Unchecked;
  return {};
}

bool NodeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  const int node = NodeOf(index);
  SetChecked(node, value.value<Qt::CheckState>() == Qt::Checked);
  if (OnUserCheck) OnUserCheck(node);
  return true;
}

Qt::ItemFlags NodeModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
}

}  // namespace kalivor::platform
