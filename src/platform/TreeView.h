// A tree with check boxes, addressed by the position of its nodes, as the program knows it.
#pragma once

#include <QSet>
#include <QString>
#include <functional>
#include <utility>
#include <vector>

namespace kalivor::platform {

/// Nodes are numbered from 1 in the order in which they were added; 0 means "no node". Changes made by the
/// program never run the handlers, only the user's do. Every operation on a node throws RuntimeError (Bounds)
/// when there is no node of that number. By itself it is on no screen; who shows it overrides what changes
/// it.
class TreeView {
 public:
  virtual ~TreeView() = default;

  virtual void Clear();

  /// Shows or hides the whole tree.
  virtual void SetVisible(bool visible) { visible_ = visible; }
  [[nodiscard]] bool Visible() const { return visible_; }

  /// Appends a node as last child of `parent` (0: at the top) and returns its number. It starts unchecked and
  /// collapsed. Throws RuntimeError (InvalidArgument) when `key` is in use.
  int Add(int parent, const QString& key, const QString& text);

  [[nodiscard]] int Count() const { return static_cast<int>(nodes_.size()) - 1; }
  [[nodiscard]] QString Key(int node) const { return Existing(node).key; }
  [[nodiscard]] QString Text(int node) const { return Existing(node).text; }
  virtual void SetText(int node, const QString& text) { Existing(node).text = text; }
  [[nodiscard]] bool Checked(int node) const { return Existing(node).checked; }
  virtual void SetChecked(int node, bool checked) { Existing(node).checked = checked; }
  [[nodiscard]] bool Expanded(int node) const { return Existing(node).expanded; }
  virtual void SetExpanded(int node, bool expanded) { Existing(node).expanded = expanded; }

  /// Makes a node the current one and brings it into view; what it lies in expands as if the user did it.
  virtual void GoTo(int node) { (void)Existing(node); }

  /// First and last child, 0 when the node has none.
  [[nodiscard]] int FirstChild(int node) const;
  [[nodiscard]] int LastChild(int node) const;

  std::function<void(int node)> OnCollapse;
  std::function<void(int node)> OnExpand;
  std::function<void(int node)> OnClick;
  std::function<void(int node)> OnCheck;  ///< the box already shows its new state

 protected:
  struct Node {
    QString key;
    QString text;
    bool checked = false;
    bool expanded = false;
    int parent = 0;
    int row = 0;  ///< position among its siblings
    std::vector<int> children;
  };

  /// A node known to exist, or 0: the invisible top, of which only the children mean anything.
  [[nodiscard]] const Node& At(int node) const { return nodes_[static_cast<std::size_t>(node)]; }

  /// Appends a node that may be appended.
  virtual void Append(const Node& node);

 private:
  [[nodiscard]] const Node& Existing(int node) const;
  Node& Existing(int node) { return const_cast<Node&>(std::as_const(*this).Existing(node)); }

  std::vector<Node> nodes_ = std::vector<Node>(1);  // 0: the invisible top
  QSet<QString> keys_;
  bool visible_ = true;
};

}  // namespace kalivor::platform
