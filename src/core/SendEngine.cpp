// The send engine: the table's values into the controller.
#include "base/Numbers.h"
#include "base/Windows1252.h"
#include "base/su.h"
#include "core/ControllerValue.h"
#include "core/DefinitionFiles.h"
#include "core/Walk.h"

namespace kalivor {
namespace {

// The truncating division makes small negative values lose their sign in the high word (-1 is sent as 0000,
// FFFF). Controllers in the field have been set up with it, so it stays.
bool SendLong(Core& core, const ParameterRecord& record) {
  if (!core.controller.WriteWord(kSlot, record.Wert / 65536, record.VarAdresse)) return false;
  return core.controller.WriteWord(kSlot, record.Wert % 65536, LowWordAddress(record));
}

// A byte shares its word with another one, which is read and written back. The division truncates toward
// zero here too, which changes the high byte of words from 8000 on by one unless their low byte is 0: at an
// odd address that is the other byte, which rises, at an even address the sent one, which falls. Kept as
// controllers know it.
bool SendChar(Core& core, const ParameterRecord& record) {
  qint16 old = 0;
  if (!core.controller.ReadInt(kSlot, old, record.VarAdresse)) return false;
  const qint64 word =
      IsOddAddress(record) ? qint64{old} / 256 * 256 + record.Wert : qint64{record.Wert} * 256 + old % 256;
  return core.controller.WriteWord(kSlot, ToInt32(word), record.VarAdresse);
}

// A failed word of a string is the one failure that also interrupts the user with a box.
bool SendString(Core& core, const ParameterRecord& record) {
  const int length = StringLength(record);
  const QString text = su::Align(record.WertText, length, u"L", u" ");
  for (int k = 1; k <= length / 2; ++k) {
    const int word = ByteFromCharacter(text.at(2 * k - 2)) * 256 + ByteFromCharacter(text.at(2 * k - 1));
    if (!core.controller.WriteWord(kSlot, word, AddOffset(record.VarAdresse, (k - 1) * 2))) {
      core.box.Show(FailureText(record, k));
      return ReportFailure(core, record, k);
    }
  }
  return true;
}

}  // namespace

WalkResult Send(Core& core) {
  return Walk(core, [&core](const ParameterRecord& record) {
    bool sent = true;
    switch (TransferOf(record)) {
      case Transfer::Long:
        sent = SendLong(core, record);
        break;
      case Transfer::Int:
        sent = core.controller.WriteWord(kSlot, record.Wert, record.VarAdresse);
        break;
      case Transfer::Char:
        sent = SendChar(core, record);
        break;
      case Transfer::String:
        return SendString(core, record);
      case Transfer::None:
        break;
    }
    return sent || ReportFailure(core, record);
  });
}

}  // namespace kalivor
