#include "ui/list/ValueDelegate.h"

#include <QKeyEvent>
#include <QSortFilterProxyModel>

#include "ui/list/CellStyle.h"
#include "ui/list/ParameterListModel.h"
#include "ui/list/ValueEdit.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// So far a key leads, in rows and columns.
struct Step {
  int rows = 0;
  int columns = 0;
};

std::optional<Step> StepOf(const QKeyEvent& key) {
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Step{(key.modifiers() & Qt::ShiftModifier) != 0 ? -1 : 1, 0};
    case Qt::Key_Down:
      return Step{1, 0};
    case Qt::Key_Up:
      return Step{-1, 0};
    case Qt::Key_Tab:
      return Step{0, 1};
    case Qt::Key_Backtab:
      return Step{0, -1};
    default:
      return {};
  }
}

}  // namespace

QWidget* ValueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                     const QModelIndex& index) const {
  const auto& proxy = static_cast<const QSortFilterProxyModel&>(*index.model());
  const auto& model = static_cast<const ParameterListModel&>(*proxy.sourceModel());
  return new ValueEdit(model.Record(proxy.mapToSource(index).row()), parent);
}

// Not what the user is typing.
void ValueDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto& edit = static_cast<ValueEdit&>(*editor);
  if (!edit.isModified()) edit.Begin(index.data(Qt::EditRole).toString());
}

void ValueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  const auto& edit = static_cast<const ValueEdit&>(*editor);
  if (edit.HasValue()) model->setData(index, edit.text(), Qt::EditRole);
}

void ValueDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                         const QModelIndex& /*index*/) const {
  editor->setGeometry(option.rect);
}

bool ValueDelegate::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const std::optional<Step> step = StepOf(static_cast<const QKeyEvent&>(*event));
    if (step) {
      auto& edit = static_cast<ValueEdit&>(*watched);
      if (edit.MayLeave() && OnLeave) OnLeave(&edit, step->rows, step->columns);
      return true;
    }
  }
  return QStyledItemDelegate::eventFilter(watched, event);
}

void ValueDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  StyleCell(*option);
  QPalette& palette = option->palette;
  if (index.data(ParameterListModel::HiddenRole).toBool())
    palette.setColor(QPalette::Text, palette.color(QPalette::Disabled, QPalette::Text));
  const int emphasis = index.data(ParameterListModel::EmphasisRole).toInt();
  if (emphasis == ParameterListModel::None) return;
  // Values alone: the words beside them need their room.
  option->font.setBold(index.column() != static_cast<int>(ListColumn::State));
  if (emphasis == ParameterListModel::Outside) palette.setColor(QPalette::Text, WarningColour(palette));
}

}  // namespace kalivor::ui
