#include "platform/qt/QtTreeView.h"

#include <QScopedValueRollback>
#include <QScrollBar>

#include "platform/RuntimeError.h"

namespace kalivor::platform {

QtTreeView::QtTreeView(NodeTree& widget, EventGuard guard) : widget_(widget), guard_(std::move(guard)) {
  widget_.setModel(&model_);
  widget_.OnOpen = [this](const QModelIndex& index) { Run(OnClick, NodeModel::NodeOf(index)); };
  model_.OnUserCheck = [this](int node) {
    widget_.NoteCheck();
    Run(OnCheck, node);
  };
  QObject::connect(&widget_, &QTreeView::expanded, &model_,
                   [this](const QModelIndex& index) { UserExpanded(index, true); });
  QObject::connect(&widget_, &QTreeView::collapsed, &model_,
                   [this](const QModelIndex& index) { UserExpanded(index, false); });
}

QtTreeView::~QtTreeView() {
  widget_.OnOpen = nullptr;
  widget_.setModel(nullptr);
}

int QtTreeView::Existing(int node) const {
  if (node < 1 || node > Count()) throw RuntimeError(RuntimeError::Kind::Bounds);
  return node;
}

void QtTreeView::Run(const std::function<void(int node)>& handler, int node) {
  if (handler) guard_([&handler, node] { handler(node); });
}

void QtTreeView::Clear() {
  model_.Clear();
}

int QtTreeView::Add(int parent, const QString& key, const QString& text) {
  if (model_.HasKey(key)) throw RuntimeError(RuntimeError::Kind::InvalidArgument);
  return model_.Add(parent == 0 ? 0 : Existing(parent), key, text);
}

QString QtTreeView::Key(int node) const {
  return model_.At(Existing(node)).key;
}

QString QtTreeView::Text(int node) const {
  return model_.At(Existing(node)).text;
}

void QtTreeView::SetText(int node, const QString& text) {
  model_.SetText(Existing(node), text);
  if (!hidden_) widget_.SetTextWidth(model_.LongestText());
}

bool QtTreeView::Checked(int node) const {
  return model_.At(Existing(node)).checked;
}

void QtTreeView::SetChecked(int node, bool checked) {
  model_.SetChecked(Existing(node), checked);
}

bool QtTreeView::Expanded(int node) const {
  return model_.At(Existing(node)).expanded;
}

void QtTreeView::SetExpanded(int node, bool expanded) {
  model_.At(Existing(node)).expanded = expanded;
  if (hidden_) return;
  const QScopedValueRollback silent(silent_, true);
  widget_.setExpanded(model_.IndexOf(node), expanded);
}

int QtTreeView::FirstChild(int node) const {
  const std::vector<int>& children = model_.At(Existing(node)).children;
  return children.empty() ? 0 : children.front();
}

int QtTreeView::LastChild(int node) const {
  const std::vector<int>& children = model_.At(Existing(node)).children;
  return children.empty() ? 0 : children.back();
}

void QtTreeView::UserExpanded(const QModelIndex& index, bool expanded) {
  if (silent_) return;
  const int node = NodeModel::NodeOf(index);
  model_.At(node).expanded = expanded;
  Run(expanded ? OnExpand : OnCollapse, node);
}

void QtTreeView::SetVisible(bool visible) {
  if (visible == !hidden_) return;
  hidden_ = !visible;
  if (visible) {
    ShowAgain();
  } else {
    Hide();
  }
}

void QtTreeView::Hide() {
  const QModelIndex current = widget_.currentIndex();
  place_ = {current.isValid() ? model_.At(NodeModel::NodeOf(current)).key : QString(),
            widget_.verticalScrollBar()->value(), widget_.horizontalScrollBar()->value()};
  widget_.hide();
  model_.BeginRebuild();
}

void QtTreeView::ShowAgain() {
  model_.EndRebuild();
  ShowExpanded();
  widget_.SetTextWidth(model_.LongestText());

  // The current node returns without being scrolled to.
  widget_.setAutoScroll(false);
  for (int node = 1; node <= Count() && !place_.currentKey.isEmpty(); ++node) {
    if (model_.At(node).key != place_.currentKey) continue;
    widget_.setCurrentIndex(model_.IndexOf(node));
    break;
  }
  widget_.show();
  widget_.setAutoScroll(true);
  widget_.doItemsLayout();
  widget_.verticalScrollBar()->setValue(place_.vertical);
  widget_.horizontalScrollBar()->setValue(place_.horizontal);
}

void QtTreeView::ShowExpanded() {
  const QScopedValueRollback silent(silent_, true);
  for (int node = 1; node <= Count(); ++node) {
    if (model_.At(node).expanded) widget_.expand(model_.IndexOf(node));
  }
}

}  // namespace kalivor::platform
