// A tree without a window, for the command line and for tests.
#pragma once

#include <QSet>
#include <vector>

#include "platform/TreeView.h"

namespace kalivor::platform {

class PlainTreeView : public TreeView {
 public:
  void Clear() override;
  void SetVisible(bool visible) override;
  int Add(int parent, const QString& key, const QString& text) override;
  [[nodiscard]] int Count() const override;
  [[nodiscard]] QString Key(int node) const override;
  [[nodiscard]] QString Text(int node) const override;
  void SetText(int node, const QString& text) override;
  [[nodiscard]] bool Checked(int node) const override;
  void SetChecked(int node, bool checked) override;
  [[nodiscard]] bool Expanded(int node) const override;
  void SetExpanded(int node, bool expanded) override;
  [[nodiscard]] int FirstChild(int node) const override;
  [[nodiscard]] int LastChild(int node) const override;

  [[nodiscard]] bool Visible() const { return visible_; }

  /// What the user would do with the mouse: change the node, then run its handler.
  void UserChecks(int node, bool checked);
  void UserExpands(int node);
  void UserCollapses(int node);
  void UserClicks(int node);

 private:
  struct Node {
    QString key;
    QString text;
    bool checked = false;
    bool expanded = false;
    int first_child = 0;
    int last_child = 0;
  };

  Node& At(int node);
  [[nodiscard]] const Node& At(int node) const;

  std::vector<Node> nodes_;  // node n stands at n - 1
  QSet<QString> keys_;
  bool visible_ = true;
};

}  // namespace kalivor::platform
