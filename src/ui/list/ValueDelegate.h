// How the cells of the parameter list are painted and edited.
#pragma once

#include <QStyledItemDelegate>
#include <functional>

namespace kalivor::ui {

class ValueDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  /// A key ends the editing of `editor` and goes so many rows and columns on. Not asked while what was typed
  /// cannot be stored.
  std::function<void(QWidget* editor, int rows, int columns)> OnLeave;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace kalivor::ui
