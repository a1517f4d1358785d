// The tree widget: what the user can do with it.
#pragma once

#include <QTreeView>
#include <functional>

namespace kalivor::platform {

/// A click on a node's text, or Enter on the current node, opens it. A click on its check box, or Space,
/// changes the box; one on the branch sign, "+" and "-" expand and collapse.
class NodeTree final : public QTreeView {
 public:
  explicit NodeTree(QWidget* parent = nullptr);

  std::function<void(const QModelIndex&)> OnOpen;

  /// To be called when the click that is being delivered has changed a check box; it opens nothing then.
  void NoteCheck() { checked_ = true; }

  /// Makes room for texts of `characters` characters on every level.
  void SetTextWidth(qsizetype characters);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] double CharacterWidth() const;
  void Indent();
  void RepaintAll();
  void ExpandBelow(const QModelIndex& index);

  bool checked_ = false;
  qsizetype characters_ = 0;
};

}  // namespace kalivor::platform
