#include "commands/EditorCommands.h"

#include <cmath>

#include "base/Numbers.h"
#include "core/ParameterTypes.h"
#include "core/Refresh.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

int ScaleOf(const ParameterRecord& record) {
  return ToInt16(record.Zahl1 + record.Zahl2);
}

// A stored value in display units. Decimals that no table should have could leave the range of numbers here.
QString Displayed(qint32 value, double scale) {
  if (scale == 0) throw RuntimeError(RuntimeError::Kind::DivisionByZero);
  const double displayed = value / scale;
  if (!std::isfinite(displayed)) throw RuntimeError(RuntimeError::Kind::Overflow);
  return PlainNumber(displayed);
}

QString HelpText(const ParameterRecord& record) {
  return QString(record.Hilfetext).replace(u'\\', u"\r\n"_s);
}

}  // namespace

NumberEdit NumberEditOf(const Module1& module, int index, int node) {
  const ParameterRecord& record = module.Par[index];
  const double scale = std::pow(10.0, ScaleOf(record));
  return {.LabelName = record.Name,
          .TextWert = Displayed(record.Wert, scale),
          .TextVon = Displayed(record.Min, scale),
          .TextBis = Displayed(record.Max, scale),
          .TextStd = Displayed(record.Standard, scale),
          .LabelEinheit = record.Einheit.Padded(),
          .LabelHilfetext = HelpText(record),
          .Nr = QString::number(index),
          .Treedex = QString::number(node)};
}

TextEdit TextEditOf(const Module1& module, int index) {
  const ParameterRecord& record = module.Par[index];
  return {.LabelName = record.Name,
          .TextWert = record.WertText,
          .MaxLength = StringLength(record),
          .LabelHilfetext = HelpText(record),
          .Nr = QString::number(index)};
}

std::optional<qint32> EditedValue(const ParameterRecord& record, const QString& von, const QString& wert,
                                  const QString& bis) {
  const double value = LeadingNumber(wert);
  if (!(LeadingNumber(von) <= value && LeadingNumber(bis) >= value)) return {};
  const qint32 scaled = RoundToInt32(std::pow(10.0, ScaleOf(record)) * value);
  const qint64 dropped = PowerOfTen(record.Zahl2);
  return ToInt32(scaled / dropped * dropped);
}

bool DialogEdit_OK(Core& core, const NumberEdit& content) {
  Module1& module = core.module;
  const qint32 index = StrictInt32(content.Nr);
  ParameterRecord edited = module.Par[index];
  const std::optional<qint32> value = EditedValue(edited, content.TextVon, content.TextWert, content.TextBis);
  if (!value) return false;

  const qint32 node = StrictInt32(content.Treedex);
  edited.Wert = *value;
  core.main.Tree().SetText(node, ParamText(edited));
  core.main.Tree().SetChecked(node, true);
  module.SetNumber(index, *value, ValueSource::Edited);
  module.ParNode[index] = kTrue;
  return true;
}

void DialogEditString_OK(Core& core, const TextEdit& content) {
  core.module.SetText(StrictInt32(content.Nr), content.TextWert, ValueSource::Edited);
  Refresh(core, 2);
}

void EditorHidden(Module1& module, bool otherEditorVisible) {
  if (!otherEditorVisible) module.TreeUpdating = kFalse;
}

}  // namespace kalivor
