#include "print/PrintCommand.h"

#include "base/Numbers.h"

namespace kalivor::print {

void mnuFilePrint_Click(MDIFormPrint& frame) {
  const PrintWorld& world = frame.World();
  try {
    const std::optional<int> copies = world.printer.Choose(kPrintDialogFlags);
    if (!copies) return;
    world.core.module.Kopien = ToInt16(*copies);
    frame.ShowForm();
    frame.Initialize_MDIPP();
  } catch (const RuntimeError&) {
    // The command ends without a word, as it does when the user cancels the dialog.
  }
}

}  // namespace kalivor::print
