#include "ui/list/ValueEdit.h"

#include <QAccessible>
#include <QToolTip>
#include <QValidator>
#include <algorithm>

#include "commands/ListCommands.h"
#include "core/ParameterTypes.h"
#include "ui/dialogs/Controls.h"
#include "ui/list/ParameterListModel.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// True when `after` is `before` without some characters in a row.
bool IsShortened(const QString& before, const QString& after) {
  if (after.size() >= before.size()) return after == before;
  const auto common = [](auto begin, auto end, auto otherBegin, auto otherEnd) {
    return std::mismatch(begin, end, otherBegin, otherEnd).first - begin;
  };
  const auto front = common(after.begin(), after.end(), before.begin(), before.end());
  const auto back = common(after.rbegin(), after.rend(), before.rbegin(), before.rend());
  return front + back >= after.size();
}

}  // namespace

class ValueEdit::Validator final : public QValidator {
 public:
  explicit Validator(ValueEdit& edit) : QValidator(&edit), edit_(edit) {}

  State validate(QString& input, int& /*position*/) const override {
    const TypedValue typed = JudgeTyped(edit_.record_, input);
    if (typed.verdict == TypedValue::Verdict::Complete) return Acceptable;
    if (typed.verdict == TypedValue::Verdict::Incomplete || IsShortened(edit_.before_, input))
      return Intermediate;
    refusal_ = typed.reason;
    return Invalid;
  }

  /// Why the last text was refused.
  [[nodiscard]] const QString& Refusal() const { return refusal_; }

 private:
  const ValueEdit& edit_;
  mutable QString refusal_;
};

ValueEdit::ValueEdit(const ParameterRecord& record, QWidget* parent)
    : QLineEdit(parent),
      record_(record),
      reason_(NewLabel(parent, u"reason"_s, QString())),
      validator_(new Validator(*this)) {
  setObjectName(u"valueEdit"_s);
  setAccessibleName(u"Wert von "_s + record.Name);
  setFrame(false);
  setAutoFillBackground(true);
  if (!IsStringForTree(record)) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // The number stays where it stood in its cell.
    setTextMargins(0, 0, fontMetrics().horizontalAdvance(kEndOfNumbers), 0);
  }
  setValidator(validator_);

  reason_->setPalette(QToolTip::palette());
  reason_->setAutoFillBackground(true);
  reason_->setFrameStyle(QFrame::Box | QFrame::Plain);
  reason_->setForegroundRole(QPalette::ToolTipText);
  reason_->setBackgroundRole(QPalette::ToolTipBase);
  reason_->setMargin(2);
  reason_->hide();
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { before_ = text; });
  connect(this, &QLineEdit::textEdited, this,
          [this](const QString& text) { ShowReason(JudgeTyped(record_, text).reason); });
  connect(this, &QLineEdit::inputRejected, this, [this] { ShowReason(validator_->Refusal()); });
}

ValueEdit::~ValueEdit() {
  delete reason_;
}

void ValueEdit::Begin(const QString& text) {
  before_ = text;
  setText(text);
  selectAll();
}

bool ValueEdit::MayLeave() {
  if (!isModified() || hasAcceptableInput()) return true;
  const QString reason = JudgeTyped(record_, text()).reason;
  ShowReason(reason.isEmpty() ? u"keine Zahl"_s : reason);
  return false;
}

void ValueEdit::ShowReason(const QString& reason) {
  reason_->setText(reason);
  reason_->setVisible(!reason.isEmpty());
  PlaceReason();
  if (accessibleDescription() == reason) return;
  setAccessibleDescription(reason);
  QAccessibleEvent event(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&event);
}

// Below the field, or above it where there is no room.
void ValueEdit::PlaceReason() {
  if (reason_->isHidden()) return;
  reason_->adjustSize();
  const QWidget& area = *parentWidget();
  const int left =
      std::clamp(geometry().right() + 1 - reason_->width(), 0, std::max(area.width() - reason_->width(), 0));
  const int below = geometry().bottom() + 1;
  const bool fits = below + reason_->height() <= area.height();
  reason_->move(left, fits ? below : geometry().top() - reason_->height());
  reason_->raise();
}

void ValueEdit::moveEvent(QMoveEvent* event) {
  QLineEdit::moveEvent(event);
  PlaceReason();
}

void ValueEdit::resizeEvent(QResizeEvent* event) {
  QLineEdit::resizeEvent(event);
  PlaceReason();
}

}  // namespace kalivor::ui
