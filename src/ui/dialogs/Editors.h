// The two parameter editors as the core asks for them.
#pragma once

#include "core/Core.h"
#include "platform/qt/EventGuard.h"
#include "ui/dialogs/DialogEdit.h"
#include "ui/dialogs/DialogEditString.h"

namespace kalivor::ui {

class Editors final : public EditorForms {
 public:
  explicit Editors(Module1& module) : module_(module) {}

  /// Connects the buttons. `core` and `guard` must outlive the editors.
  void Connect(Core& core, const platform::EventGuard& guard);

  void ShowNumberEditor(const NumberEdit& content) override;
  void ShowTextEditor(const TextEdit& content) override;
  void HideEditors() override;

  DialogEdit number;
  DialogEditString text;

 private:
  void Hide(QDialog& editor);

  Module1& module_;
};

}  // namespace kalivor::ui
