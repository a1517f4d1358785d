// The compare engine: where the controller's values differ from the table's.
#include "base/su.h"
#include "core/ControllerValue.h"
#include "core/Walk.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

void ReportDeviation(Core& core, const ParameterRecord& record, const QString& pc,
                     const QString& controller) {
  core.report.Add(u"Änderung bei: "_s + record.Name);
  core.report.Add(u"   PC    : "_s + pc);
  core.report.Add(u"   Regler: "_s + controller);
}

QString Scaled(const ParameterRecord& record, qint32 value) {
  return su::ScaledNumber(value, record.Zahl2, record.Zahl1, 6, 2, u" ");
}

}  // namespace

WalkResult Compare(Core& core) {
  int deviations = 0;
  WalkResult result = Walk(core, [&](const ParameterRecord& record) {
    switch (TransferOf(record)) {
      case Transfer::None:
        return true;
      case Transfer::String: {
        const ReadText read = ReadString(core, record);
        if (read.complete && read.text != record.WertText.left(StringLength(record))) {
          ReportDeviation(core, record, record.WertText, read.text);
          ++deviations;
        }
        return read.complete;
      }
      default: {
        const std::optional<qint32> number = ReadNumber(core, record);
        if (number && *number != record.Wert) {
          ReportDeviation(core, record, Scaled(record, record.Wert), Scaled(record, *number));
          ++deviations;
        }
        return number.has_value();
      }
    }
  });
  result.deviations = deviations;
  return result;
}

}  // namespace kalivor
