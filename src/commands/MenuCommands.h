// kept: what the hidden menu items do; whoever calls them by name still gets an answer.
#pragma once

#include "platform/Help.h"
#include "platform/MessageBox.h"

namespace kalivor {

/// Items without a function say so.
void mnuFileNew_Click(platform::MessageBox& box);
void mnuFileSend_Click(platform::MessageBox& box);

/// Works on an object that nothing ever sets: throws RuntimeError (MissingObject).
void mnuDatenEdit_Click();

/// Open the help viewer, or say that there is no help. Its errors are shown in a box.
void mnuHelpContents_Click(platform::MessageBox& box, platform::Help& help);
void mnuHelpSearchForHelpOn_Click(platform::MessageBox& box, platform::Help& help);

}  // namespace kalivor
