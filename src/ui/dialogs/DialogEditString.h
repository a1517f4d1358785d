// The editor of a string parameter.
#pragma once

#include "core/Forms.h"
#include "ui/dialogs/ParameterEditor.h"

namespace kalivor::ui {

class DialogEditString final : public ParameterEditor {
 public:
  DialogEditString();

  void Fill(const TextEdit& content);
  [[nodiscard]] TextEdit Content() const;

  void setVisible(bool visible) override;

 private:
  void Limit(const QString& text);

  int limit_ = 0;   // characters that can be typed
  QString before_;  // the value before the present key
};

}  // namespace kalivor::ui
