// The field in which a value of the parameter list is typed, with the reason beside it why it is none.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPointer>

#include "base/ParameterTable.h"

namespace kalivor::ui {

/// Takes no character that no value can come of; only deleting is always possible.
class ValueEdit final : public QLineEdit {
 public:
  /// `record` is copied. The reason stands in `parent` as well.
  ValueEdit(const ParameterRecord& record, QWidget* parent);
  ~ValueEdit() override;

  /// Begins with this text.
  void Begin(const QString& text);

  /// The user has typed, and it can be stored.
  [[nodiscard]] bool HasValue() const { return isModified() && hasAcceptableInput(); }

  /// Nothing was typed, or what can be stored. Shows the reason otherwise.
  bool MayLeave();

 protected:
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Validator;

  void ShowReason(const QString& reason);
  void PlaceReason();

  ParameterRecord record_;
  QString before_;  // the text before the present key
  QPointer<QLabel> reason_;
  Validator* validator_;
};

}  // namespace kalivor::ui
