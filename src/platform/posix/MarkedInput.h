// Takes apart received characters among which the driver marks line errors.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace kalivor::platform {

/// With PARMRK set, a driver delivers the character 255 as 255 255, one with a parity or framing error as
/// 255 0 and the character, and a break as 255 0 0. What begins in one piece can end in the next.
class MarkedInput {
 public:
  enum class Mark {
    None,
    Damaged,  ///< a parity or framing error
    Break,
  };

  /// Appends the characters of `piece` to `characters`, a damaged one as "?", a break as nothing. Returns the
  /// last mark that was completed in this piece.
  Mark Decode(QByteArrayView piece, QByteArray& characters);

  /// Forgets an incomplete mark.
  void Reset() { state_ = State::Plain; }

 private:
  enum class State { Plain, AfterEscape, AfterZero };

  State state_ = State::Plain;
};

}  // namespace kalivor::platform
