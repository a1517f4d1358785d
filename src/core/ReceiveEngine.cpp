// The receive engine: the controller's values into the table.
#include "core/ControllerValue.h"
#include "core/Walk.h"

namespace kalivor {

WalkResult Receive(Core& core) {
  return Walk(core, [&core](ParameterRecord& record) {
    switch (TransferOf(record)) {
      case Transfer::None:
        return true;
      case Transfer::String: {
        const ReadText read = ReadString(core, record);
        // What could be read replaces the text, also after a failure.
        record.WertText = read.text;
        return read.complete;
      }
      default: {
        const std::optional<qint32> number = ReadNumber(core, record);
        if (number) record.Wert = *number;
        return number.has_value();
      }
    }
  });
}

qint16 ReadPlantNumber(Core& core) {
  const ParameterRecord& plantType = core.module.Par[0];
  if (plantType.VarAdresse.isEmpty()) return 0;
  qint16 number = 0;
  if (core.controller.ReadInt(kSlot, number, plantType.VarAdresse)) return number;
  ReportFailure(core, plantType, 0);
  return -1;
}

}  // namespace kalivor
