#include "ui/dialogs/Editors.h"

#include "commands/EditorCommands.h"

namespace kalivor::ui {

void Editors::Connect(Core& core, const platform::EventGuard& guard) {
  number.OnOk = [this, &core, &guard] {
    guard([&] {
      DialogEdit_OK(core, number.Content());
      Hide(number);
    });
  };
  text.OnOk = [this, &core, &guard] {
    guard([&] {
      DialogEditString_OK(core, text.Content());
      Hide(text);
    });
  };
  number.OnCancel = [this] { Hide(number); };
  text.OnCancel = [this] { Hide(text); };
}

void Editors::ShowNumberEditor(const NumberEdit& content) {
  number.Fill(content);
  number.ShowAboveOwner();
}

void Editors::ShowTextEditor(const TextEdit& content) {
  text.Fill(content);
  text.ShowAboveOwner();
}

void Editors::HideEditors() {
  Hide(number);
  Hide(text);
}

void Editors::Hide(QDialog& editor) {
  if (!editor.isVisible()) return;
  editor.hide();
  EditorHidden(module_, number.isVisible() || text.isVisible());
}

}  // namespace kalivor::ui
