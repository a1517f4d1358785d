// The parameters, and the one way to change their values.
#pragma once

#include <QString>
#include <functional>
#include <utility>

#include "base/BoundedArray.h"
#include "base/FixedText.h"

namespace kalivor {

/// The last index of the parameter tables.
inline constexpr int kLastParameter = 2000;

/// One parameter: a line of a definition file and its current value. Records are copied whole.
struct ParameterRecord {
  QString Rubrik;        ///< group (branch of the tree); "NoRubrik" marks the plant-type record
  QString Name;          ///< text shown to the user
  qint32 Wert = 0;       ///< current value of a numeric parameter, times 10^(Zahl1 + Zahl2)
  qint32 Min = 0;        ///< lower limit, scaled as Wert
  qint32 Max = 0;        ///< upper limit, scaled as Wert
  qint32 Standard = 0;   ///< default value, scaled as Wert
  QString WertText;      ///< current value of a string parameter
  QString StandardText;  ///< default of a string parameter
  FixedText<4> Einheit;  ///< unit shown beside the value
  qint16 Zahl1 = 0;      ///< decimal places shown
  qint16 Zahl2 = 0;      ///< further low-order digits of Wert that are not shown
  QString VarAdresse;    ///< controller address as hexadecimal text; empty: unknown
  qint16 Offset = 0;     ///< byte offset added to a listed address (index of an array element)
  QString Variable;      ///< name of the controller variable; key of the address list
  FixedText<8> Typ;      ///< "long", "int", "char", or "string" and its length
  QString Zusatz;        ///< plant types that the parameter belongs to
  QString Hilfetext;     ///< help text shown in the editors; "\" separates lines

  bool operator==(const ParameterRecord&) const = default;
};

/// What a parameter holds: the number or the text, as its type says.
struct ParameterValue {
  qint32 number = 0;
  QString text;

  bool operator==(const ParameterValue&) const = default;
};

/// Why a value changes.
enum class ValueSource {
  Received,   ///< read from the controller
  Edited,     ///< by an editor or an option
  Loaded,     ///< from a value file
  Standard,   ///< set to the definition's default
  PlantType,  ///< the plant type was selected or taken over
};

/// One changed value.
struct ValueChange {
  int index = 0;  ///< in Par
  ParameterValue before;
  ParameterValue after;
  ValueSource source = ValueSource::Received;
};

/// Whom a table tells of its changes; at first nobody. It stays with the table that it was given to: a copy
/// of the table is silent, and assigning a whole table tells nothing.
class ValueObserver {
 public:
  using Function = std::function<void(const ValueChange&)>;

  ValueObserver() = default;
  ~ValueObserver() = default;
  ValueObserver(const ValueObserver& /*other*/) {}
  ValueObserver& operator=(const ValueObserver& /*other*/) { return *this; }
  ValueObserver& operator=(Function function) {
    function_ = std::move(function);
    return *this;
  }

  [[nodiscard]] bool Listens() const { return static_cast<bool>(function_); }
  void Tell(const ValueChange& change) const { function_(change); }

 private:
  Function function_;
};

/// The parameters. Written by the definition reader, the engines, the editors and value files.
struct ParameterTable {
  /// 1..ParCount-1; element 0: the plant-type record. Wert and WertText are changed by the functions below
  /// alone; only the definition reader fills slots whole, which is no change of a value: values stay with
  /// their slot.
  BoundedArray<ParameterRecord, kLastParameter> Par;
  qint16 ParCount = 1;  ///< next free index of Par

  // Where Par comes from, to name it when something is wrong with it. Written by the definition reader.
  QString ParFile;                            ///< path of the definition file; empty before the first one
  BoundedArray<int, kLastParameter> ParLine;  ///< line of parameter i; 0: element 0 was not in the file

  /// Told after each change, once, and not of a value that stays the same. Must not throw.
  ValueObserver OnValue;

  /// Give parameter `index` a number, a text, or both. Throw RuntimeError (Bounds).
  void SetNumber(int index, qint32 number, ValueSource source);
  void SetText(int index, const QString& text, ValueSource source);
  void SetValue(int index, const ParameterValue& value, ValueSource source);
};

}  // namespace kalivor
