// Texts of the program as widgets show them.
#pragma once

#include <QString>

namespace kalivor::platform {

/// `text` with every pair of CR and LF, in either order, and every single one of them as one "\n".
[[nodiscard]] QString WithPlainLineBreaks(const QString& text);

/// `text` as the caption of a button or menu, where "&" would otherwise mark an access key.
[[nodiscard]] QString AsCaption(const QString& text);

}  // namespace kalivor::platform
