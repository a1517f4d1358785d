// A tree with check boxes, addressed by the position of its nodes.
#pragma once

#include <QString>
#include <functional>

namespace kalivor::platform {

/// Nodes are numbered from 1 in the order in which they were added; 0 means "no node". Changes made through
/// this interface never run the handlers, only the user's do. Every operation on a node throws RuntimeError
/// (Bounds) when there is no node of that number.
class TreeView {
 public:
  virtual ~TreeView() = default;

  virtual void Clear() = 0;

  /// Shows or hides the whole tree.
  virtual void SetVisible(bool visible) = 0;

  /// Appends a node as last child of `parent` (0: at the top) and returns its number. It starts unchecked and
  /// collapsed. Throws RuntimeError (InvalidArgument) when `key` is in use.
  virtual int Add(int parent, const QString& key, const QString& text) = 0;

  [[nodiscard]] virtual int Count() const = 0;
  [[nodiscard]] virtual QString Key(int node) const = 0;
  [[nodiscard]] virtual QString Text(int node) const = 0;
  virtual void SetText(int node, const QString& text) = 0;
  [[nodiscard]] virtual bool Checked(int node) const = 0;
  virtual void SetChecked(int node, bool checked) = 0;
  [[nodiscard]] virtual bool Expanded(int node) const = 0;
  virtual void SetExpanded(int node, bool expanded) = 0;

  /// First and last child, 0 when the node has none.
  [[nodiscard]] virtual int FirstChild(int node) const = 0;
  [[nodiscard]] virtual int LastChild(int node) const = 0;

  std::function<void(int node)> OnCollapse;
  std::function<void(int node)> OnExpand;
  std::function<void(int node)> OnClick;
  std::function<void(int node)> OnCheck;  ///< the box already shows its new state
};

}  // namespace kalivor::platform
