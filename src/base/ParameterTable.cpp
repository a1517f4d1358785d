#include "base/ParameterTable.h"

namespace kalivor {

void ParameterTable::SetNumber(int index, qint32 number, ValueSource source) {
  SetValue(index, {number, Par[index].WertText}, source);
}

void ParameterTable::SetText(int index, const QString& text, ValueSource source) {
  SetValue(index, {Par[index].Wert, text}, source);
}

void ParameterTable::SetValue(int index, const ParameterValue& value, ValueSource source) {
  SetTyped(index, value, Par[index].Typ, source);
}

void ParameterTable::SetTyped(int index, const ParameterValue& value, const FixedText<8>& typ,
                              ValueSource source) {
  ParameterRecord& record = Par[index];
  const ValueChange change{index, {record.Wert, record.WertText}, value, source, record.Typ, typ};
  record.Wert = value.number;
  record.WertText = value.text;
  record.Typ = typ;
  OnValue.Tell(change);
}

}  // namespace kalivor
