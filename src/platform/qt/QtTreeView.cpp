#include "platform/qt/QtTreeView.h"

#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

namespace kalivor::platform {
namespace {

int NodeOf(const QModelIndex& index) {
  return static_cast<int>(index.internalId());
}

}  // namespace

QtTreeView::QtTreeView(NodeTree& widget, EventGuard guard) : widget_(widget), guard_(std::move(guard)) {
  widget_.setModel(this);
  widget_.OnOpen = [this](const QModelIndex& index) { Run(OnClick, NodeOf(index)); };
  connect(&widget_, &QTreeView::expanded, this,
          [this](const QModelIndex& index) { UserExpanded(index, true); });
  connect(&widget_, &QTreeView::collapsed, this,
          [this](const QModelIndex& index) { UserExpanded(index, false); });
}

QtTreeView::~QtTreeView() {
  widget_.OnOpen = nullptr;
  widget_.setModel(nullptr);
}

void QtTreeView::Run(const std::function<void(int node)>& handler, int node) {
  if (handler) guard_([&handler, node] { handler(node); });
}

void QtTreeView::Clear() {
  if (Visible()) beginResetModel();
  TreeView::Clear();
  longestText_ = 0;
  if (Visible()) endResetModel();
}

void QtTreeView::Append(const Node& node) {
  longestText_ = std::max(longestText_, node.text.size());
  if (Visible()) beginInsertRows(Index(node.parent), node.row, node.row);
  TreeView::Append(node);
  if (Visible()) endInsertRows();
}

void QtTreeView::SetText(int node, const QString& text) {
  TreeView::SetText(node, text);
  longestText_ = std::max(longestText_, text.size());
  Changed(node, Qt::DisplayRole);
  if (Visible()) widget_.SetTextWidth(longestText_);
}

void QtTreeView::SetChecked(int node, bool checked) {
  if (Checked(node) == checked) return;
  TreeView::SetChecked(node, checked);
  Changed(node, Qt::CheckStateRole);
}

void QtTreeView::Changed(int node, int role) {
  if (!Visible()) return;
  const QModelIndex changed = Index(node);
  Q_EMIT dataChanged(changed, changed, {role});
}

void QtTreeView::SetExpanded(int node, bool expanded) {
  TreeView::SetExpanded(node, expanded);
  if (!Visible()) return;
  const QScopedValueRollback silent(silent_, true);
  widget_.setExpanded(Index(node), expanded);
}

void QtTreeView::GoTo(int node) {
  TreeView::GoTo(node);
  widget_.setCurrentIndex(Index(node));
  // The rows that have come in by expanding count from the next layout on.
  widget_.doItemsLayout();
  widget_.scrollTo(Index(node));
}

void QtTreeView::UserExpanded(const QModelIndex& index, bool expanded) {
  if (silent_) return;
  const int node = NodeOf(index);
  TreeView::SetExpanded(node, expanded);
  Run(expanded ? OnExpand : OnCollapse, node);
}

void QtTreeView::SetVisible(bool visible) {
  if (visible == Visible()) return;
  TreeView::SetVisible(visible);
  if (visible) {
    ShowAgain();
  } else {
    Hide();
  }
}

void QtTreeView::Hide() {
  const QModelIndex current = widget_.currentIndex();
  place_ = {current.isValid() ? Key(NodeOf(current)) : QString(), widget_.verticalScrollBar()->value(),
            widget_.horizontalScrollBar()->value()};
  widget_.hide();
  beginResetModel();
}

void QtTreeView::ShowAgain() {
  endResetModel();
  ShowExpanded();
  widget_.SetTextWidth(longestText_);

  // The current node returns without being scrolled to.
  widget_.setAutoScroll(false);
  for (int node = 1; node <= Count() && !place_.currentKey.isEmpty(); ++node) {
    if (At(node).key != place_.currentKey) continue;
    widget_.setCurrentIndex(Index(node));
    break;
  }
  widget_.show();
  widget_.setAutoScroll(true);
  widget_.doItemsLayout();
  widget_.verticalScrollBar()->setValue(place_.vertical);
  widget_.horizontalScrollBar()->setValue(place_.horizontal);
}

void QtTreeView::ShowExpanded() {
  const QScopedValueRollback silent(silent_, true);
  for (int node = 1; node <= Count(); ++node) {
    if (At(node).expanded) widget_.expand(Index(node));
  }
}

QModelIndex QtTreeView::Index(int node) const {
  if (node < 1 || node > Count()) return {};
  return createIndex(At(node).row, 0, static_cast<quintptr>(node));
}

QModelIndex QtTreeView::index(int row, int column, const QModelIndex& parent) const {
  const std::vector<int>& children = At(NodeOf(parent)).children;
  if (column != 0 || row < 0 || row >= static_cast<int>(children.size())) return {};
  return Index(children[static_cast<std::size_t>(row)]);
}

QModelIndex QtTreeView::parent(const QModelIndex& index) const {
  return Index(At(NodeOf(index)).parent);
}

int QtTreeView::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(At(NodeOf(parent)).children.size());
}

int QtTreeView::columnCount(const QModelIndex& /*parent*/) const {
  return 1;
}

QVariant QtTreeView::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node& node = At(NodeOf(index));
  if (role == Qt::DisplayRole) return node.text;
  if (role == Qt::CheckStateRole) return node.checked ? Qt::Checked : Qt::Unchecked;
  return {};
}

bool QtTreeView::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  const int node = NodeOf(index);
  SetChecked(node, value.value<Qt::CheckState>() == Qt::Checked);
  widget_.NoteCheck();
  Run(OnCheck, node);
  return true;
}

Qt::ItemFlags QtTreeView::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
}

}  // namespace kalivor::platform
