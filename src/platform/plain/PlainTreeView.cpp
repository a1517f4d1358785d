#include "platform/plain/PlainTreeView.h"

#include "platform/RuntimeError.h"

namespace kalivor::platform {

const PlainTreeView::Node& PlainTreeView::At(int node) const {
  if (node < 1 || node > Count()) throw RuntimeError(RuntimeError::Kind::Bounds);
  return nodes_[static_cast<std::size_t>(node) - 1];
}

PlainTreeView::Node& PlainTreeView::At(int node) {
  return const_cast<Node&>(static_cast<const PlainTreeView&>(*this).At(node));
}

void PlainTreeView::Clear() {
  nodes_.clear();
  keys_.clear();
}

void PlainTreeView::SetVisible(bool visible) {
  visible_ = visible;
}

int PlainTreeView::Add(int parent, const QString& key, const QString& text) {
  if (keys_.contains(key)) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  const int node = Count() + 1;
  if (parent != 0) {
    Node& above = At(parent);
    if (above.first_child == 0) above.first_child = node;
    above.last_child = node;
  }
  keys_.insert(key);
  nodes_.push_back({key, text});
  return node;
}

int PlainTreeView::Count() const {
  return static_cast<int>(nodes_.size());
}
QString PlainTreeView::Key(int node) const {
  return At(node).key;
}
QString PlainTreeView::Text(int node) const {
  return At(node).text;
}
void PlainTreeView::SetText(int node, const QString& text) {
  At(node).text = text;
}
bool PlainTreeView::Checked(int node) const {
  return At(node).checked;
}
void PlainTreeView::SetChecked(int node, bool checked) {
  At(node).checked = checked;
}
bool PlainTreeView::Expanded(int node) const {
  return At(node).expanded;
}
void PlainTreeView::SetExpanded(int node, bool expanded) {
  At(node).expanded = expanded;
}
int PlainTreeView::FirstChild(int node) const {
  return At(node).first_child;
}
int PlainTreeView::LastChild(int node) const {
  return At(node).last_child;
}

void PlainTreeView::UserChecks(int node, bool checked) {
  At(node).checked = checked;
  if (OnCheck) OnCheck(node);
}

void PlainTreeView::UserExpands(int node) {
  At(node).expanded = true;
  if (OnExpand) OnExpand(node);
}

void PlainTreeView::UserCollapses(int node) {
  At(node).expanded = false;
  if (OnCollapse) OnCollapse(node);
}

void PlainTreeView::UserClicks(int node) {
  if (OnClick) OnClick(node);
}

}  // namespace kalivor::platform
