#include "base/ParameterTable.h"

namespace kalivor {

void ParameterTable::SetNumber(int index, qint32 number, ValueSource source) {
  SetValue(index, {number, Par[index].WertText}, source);
}

void ParameterTable::SetText(int index, const QString& text, ValueSource source) {
  SetValue(index, {Par[index].Wert, text}, source);
}

void ParameterTable::SetValue(int index, const ParameterValue& value, ValueSource source) {
  ParameterRecord& record = Par[index];
  const bool tell = OnValue.Listens() && (record.Wert != value.number || record.WertText != value.text);
  const ParameterValue before = tell ? ParameterValue{record.Wert, record.WertText} : ParameterValue();
  record.Wert = value.number;
  record.WertText = value.text;
  if (tell) OnValue.Tell({index, before, value, source});
}

}  // namespace kalivor
