#include "commands/MenuCommands.h"

#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

void OpenHelp(platform::MessageBox& box, platform::Help& help, platform::HelpCommand command) {
  if (help.HelpFile().isEmpty()) {
    box.Show(
        u"Hilfeinhalt konnte nicht angezeigt werden. Dieser Anwendung ist keine Hilfedatei zugeordnet."_s,
        u"KALIVOR"_s, platform::MessageBox::Icon::Information);
    return;
  }
  try {
    help.Open(command);
  } catch (const RuntimeError& error) {
    box.Show(error.Description());
  }
}

}  // namespace

void mnuFileNew_Click(platform::MessageBox& box) {
  box.Show(u"Code für 'mnuFileNew_Click' hinzufügen."_s);
}

void mnuFileSend_Click(platform::MessageBox& box) {
  box.Show(u"Code für 'mnuFileSend_Click' hinzufügen."_s);
}

void mnuDatenEdit_Click() {
  throw RuntimeError(RuntimeError::Kind::MissingObject);
}

void mnuHelpContents_Click(platform::MessageBox& box, platform::Help& help) {
  OpenHelp(box, help, platform::HelpCommand::Contents);
}

void mnuHelpSearchForHelpOn_Click(platform::MessageBox& box, platform::Help& help) {
  OpenHelp(box, help, platform::HelpCommand::PartialKey);
}

}  // namespace kalivor
