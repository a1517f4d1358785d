// Takes apart received characters among which the driver marks line errors.
#include "platform/posix/MarkedInput.h"

namespace kalivor::platform {

MarkedInput::Mark MarkedInput::Decode(QByteArrayView piece, QByteArray& characters) {
  constexpr char kEscape = '\xFF';
  Mark last = Mark::None;
  for (const char c : piece) {
    switch (state_) {
      case State::Plain:
        if (c == kEscape) {
          state_ = State::AfterEscape;
        } else {
          characters.append(c);
        }
        break;
      case State::AfterEscape:
        if (c == '\0') {
          state_ = State::AfterZero;
          break;
        }
        characters.append(kEscape);
        // No driver sends anything but a second 255 here; should one, nothing is to be lost.
        if (c != kEscape) characters.append(c);
        state_ = State::Plain;
        break;
      case State::AfterZero:
        if (c == '\0') {
          last = Mark::Break;
        } else {
          characters.append('?');
          last = Mark::Damaged;
        }
        state_ = State::Plain;
        break;
    }
  }
  return last;
}

}  // namespace kalivor::platform
