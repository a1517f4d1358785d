// A label whose text may be longer than its place.
#pragma once

#include <QLabel>

namespace kalivor::platform {

/// Plain text in one line, its middle left out as far as the label is too narrow for it. Takes the width that
/// it is given and asks for none.
class ElidedLabel final : public QLabel {
 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  /// Screen readers read out, and the tool tip shows, all of `text`.
  void ShowText(const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Elide();

  QString whole_;
};

}  // namespace kalivor::platform
