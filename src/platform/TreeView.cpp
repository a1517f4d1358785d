#include "platform/TreeView.h"

#include "platform/RuntimeError.h"

namespace kalivor::platform {

void TreeView::Clear() {
  nodes_.assign(1, Node{});
  keys_.clear();
}

int TreeView::Add(int parent, const QString& key, const QString& text) {
  if (keys_.contains(key)) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  const std::vector<int>& siblings = parent == 0 ? At(0).children : Existing(parent).children;
  const int row = static_cast<int>(siblings.size());
  Append({.key = key, .text = text, .parent = parent, .row = row, .children = {}});
  return Count();
}

void TreeView::Append(const Node& node) {
  keys_.insert(node.key);
  nodes_.push_back(node);
  nodes_[static_cast<std::size_t>(node.parent)].children.push_back(Count());
}

int TreeView::FirstChild(int node) const {
  const std::vector<int>& children = Existing(node).children;
  return children.empty() ? 0 : children.front();
}

int TreeView::LastChild(int node) const {
  const std::vector<int>& children = Existing(node).children;
  return children.empty() ? 0 : children.back();
}

const TreeView::Node& TreeView::Existing(int node) const {
  if (node < 1 || node > Count()) throw RuntimeError(RuntimeError::Kind::Bounds);
  return At(node);
}

}  // namespace kalivor::platform
