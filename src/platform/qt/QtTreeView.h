// The tree with check boxes on the screen.
#pragma once

#include "platform/TreeView.h"
#include "platform/qt/EventGuard.h"
#include "platform/qt/NodeModel.h"
#include "platform/qt/NodeTree.h"

namespace kalivor::platform {

/// Rebuilding is quick while the tree is hidden; it shows again where it was scrolled to, with the same
/// current node as far as there still is one of that key.
class QtTreeView final : public TreeView {
 public:
  /// `widget` must outlive the adapter and be used through it only. `guard` runs the handlers.
  QtTreeView(NodeTree& widget, EventGuard guard);
  ~QtTreeView() override;
  QtTreeView(const QtTreeView&) = delete;
  QtTreeView& operator=(const QtTreeView&) = delete;

  void Clear() override;
  void SetVisible(bool visible) override;
  int Add(int parent, const QString& key, const QString& text) override;
  [[nodiscard]] int Count() const override { return model_.Count(); }
  [[nodiscard]] QString Key(int node) const override;
  [[nodiscard]] QString Text(int node) const override;
  void SetText(int node, const QString& text) override;
  [[nodiscard]] bool Checked(int node) const override;
  void SetChecked(int node, bool checked) override;
  [[nodiscard]] bool Expanded(int node) const override;
  void SetExpanded(int node, bool expanded) override;
  [[nodiscard]] int FirstChild(int node) const override;
  [[nodiscard]] int LastChild(int node) const override;

  /// Where a node is in the widget.
  [[nodiscard]] QModelIndex Index(int node) const { return model_.IndexOf(Existing(node)); }

 private:
  struct Place {
    QString currentKey;
    int vertical = 0;
    int horizontal = 0;
  };

  [[nodiscard]] int Existing(int node) const;
  void Hide();
  void ShowAgain();
  void ShowExpanded();
  void UserExpanded(const QModelIndex& index, bool expanded);
  void Run(const std::function<void(int node)>& handler, int node);

  NodeTree& widget_;
  EventGuard guard_;
  NodeModel model_;
  Place place_;  // before the tree was hidden
  bool hidden_ = false;
  bool silent_ = false;  // the program itself expands or collapses
};

}  // namespace kalivor::platform
