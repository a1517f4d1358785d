#include "ui/dialogs/Form.h"

#include "platform/qt/WindowPlacing.h"
#include "ui/Resources.h"

namespace kalivor::ui {

Form::Form(const QString& name, const QString& title) {
  setObjectName(name);
  setWindowTitle(title);
  setWindowIcon(ProgramIcon());
}

void Form::ShowAboveOwner() {
  if (owner_ != nullptr) platform::KeepAbove(*this, *owner_);
  platform::ShowInFront(*this);
}

}  // namespace kalivor::ui
