// The nodes of the tree as the toolkit's views read them.
#pragma once

#include <QAbstractItemModel>
#include <QSet>
#include <functional>
#include <vector>

namespace kalivor::platform {

/// Nodes are numbered from 1 in the order of adding; 0 is the invisible top. Node numbers are not checked
/// here. Between BeginRebuild() and EndRebuild() the views hear of no change; a tree of 2000 nodes is built
/// many times faster like this.
class NodeModel final : public QAbstractItemModel {
 public:
  struct Node {
    QString key;
    QString text;
    bool checked = false;
    bool expanded = false;
    int parent = 0;
    int row = 0;  ///< position among its siblings
    std::vector<int> children;
  };

  NodeModel();

  /// Runs when the user has changed a check box, which shows its new state already.
  std::function<void(int node)> OnUserCheck;

  void BeginRebuild();
  void EndRebuild();

  void Clear();
  int Add(int parent, const QString& key, const QString& text);
  void SetText(int node, const QString& text);
  void SetChecked(int node, bool checked);

  [[nodiscard]] int Count() const { return static_cast<int>(nodes_.size()) - 1; }
  [[nodiscard]] const Node& At(int node) const { return nodes_[static_cast<std::size_t>(node)]; }
  [[nodiscard]] Node& At(int node) { return nodes_[static_cast<std::size_t>(node)]; }
  [[nodiscard]] bool HasKey(const QString& key) const { return keys_.contains(key); }

  /// The number of characters of the longest text since the last Clear().
  [[nodiscard]] qsizetype LongestText() const { return longestText_; }

  [[nodiscard]] QModelIndex IndexOf(int node) const;
  [[nodiscard]] static int NodeOf(const QModelIndex& index) { return static_cast<int>(index.internalId()); }

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  void Changed(int node, int role);

  std::vector<Node> nodes_;  // 0: the invisible top
  QSet<QString> keys_;
  qsizetype longestText_ = 0;
  bool rebuilding_ = false;
};

}  // namespace kalivor::platform
