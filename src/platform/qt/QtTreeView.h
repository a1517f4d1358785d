// The tree with check boxes on the screen.
#pragma once

#include <QAbstractItemModel>

#include "platform/TreeView.h"
#include "platform/qt/EventGuard.h"
#include "platform/qt/NodeTree.h"

namespace kalivor::platform {

/// The nodes as the toolkit's views read them. While the tree is hidden the widget hears of no change, and so
/// rebuilding is quick; it shows again where it was scrolled to, with the same current node as far as there
/// still is one of that key.
class QtTreeView final : public QAbstractItemModel, public TreeView {
 public:
  /// `widget` must outlive the tree and be used through it only. `guard` runs the handlers.
  QtTreeView(NodeTree& widget, EventGuard guard);
  ~QtTreeView() override;
  QtTreeView(const QtTreeView&) = delete;
  QtTreeView& operator=(const QtTreeView&) = delete;

  void Clear() override;
  void SetVisible(bool visible) override;
  void SetText(int node, const QString& text) override;
  void SetChecked(int node, bool checked) override;
  void SetExpanded(int node, bool expanded) override;
  void GoTo(int node) override;

  /// Where a node is in the widget.
  [[nodiscard]] QModelIndex Index(int node) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  struct Place {
    QString currentKey;
    int vertical = 0;
    int horizontal = 0;
  };

  void Append(const Node& node) override;
  void Changed(int node, int role);
  void Hide();
  void ShowAgain();
  void ShowExpanded();
  void UserExpanded(const QModelIndex& index, bool expanded);
  void Run(const std::function<void(int node)>& handler, int node);

  NodeTree& widget_;
  EventGuard guard_;
  Place place_;                // before the tree was hidden
  bool silent_ = false;        // the program itself expands or collapses
  qsizetype longestText_ = 0;  // in characters, since the last Clear()
};

}  // namespace kalivor::platform
