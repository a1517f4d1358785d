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

/// Why a value is set.
enum class ValueSource {
  Received,   ///< read from the controller
  Edited,     ///< by an editor, the list or an option
  Loaded,     ///< from a value file
  Standard,   ///< the definition's default, as the user wished
  Defined,    ///< the same, as the definitions were read
  PlantType,  ///< the plant type was selected or taken over
  TakenOver,  ///< from a comparison
  Recovered,  ///< what an earlier run had not saved
  Undone,     ///< a step was taken back, or done again
};

/// One value that was set.
struct ValueChange {
  int index = 0;  ///< in Par
  ParameterValue before;
  ParameterValue after;
  ValueSource source = ValueSource::Received;
  FixedText<8> typBefore;
  FixedText<8> typAfter;

  /// False where everything stays the same.
  [[nodiscard]] bool Differs() const { return before != after || typBefore != typAfter; }
};

/// What is about to be read anew.
enum class Rereading {
  Definitions,  ///< the parameters, of this or another version
  Everything,   ///< the version table as well
};

/// Whom a table tells of something; at first nobody. It stays with the table that it was given to: a copy of
/// the table is silent, and assigning a whole table tells nothing.
template <typename News>
class Observer {
 public:
  using Function = std::function<void(News)>;

  Observer() = default;
  ~Observer() = default;
  Observer(const Observer& /*other*/) {}
  Observer& operator=(const Observer& /*other*/) { return *this; }
  Observer& operator=(Function function) {
    function_ = std::move(function);
    return *this;
  }

  [[nodiscard]] bool Listens() const { return static_cast<bool>(function_); }
  void Tell(News news) const {
    if (function_) function_(news);
  }

 private:
  Function function_;
};

/// The parameters. Written by the definition reader, the engines, the editors and value files.
struct ParameterTable {
  /// 1..ParCount-1; element 0: the plant-type record. Wert, WertText and Typ are changed by the functions
  /// below alone; only the definition reader fills slots whole, which is no change of a value: values stay
  /// with their slot.
  BoundedArray<ParameterRecord, kLastParameter> Par;
  qint16 ParCount = 1;  ///< next free index of Par

  // Where Par comes from, to name it when something is wrong with it. Written by the definition reader.
  QString ParFile;                            ///< path of the definition file; empty before the first one
  BoundedArray<int, kLastParameter> ParLine;  ///< line of parameter i; 0: element 0 was not in the file

  /// Told each time that a value was set, once, also where it stays the same. Must not throw.
  Observer<const ValueChange&> OnValue;

  /// Told before definitions are read anew: nothing of the parameters, the marks and the plant types has
  /// changed by then, but what is selected may have. They need not arrive.
  Observer<Rereading> OnDefinitions;

  /// Told after the values were written to a value file, with its path.
  Observer<const QString&> OnSaved;

  /// Give parameter `index` a number, a text, or both. Throw RuntimeError (Bounds).
  void SetNumber(int index, qint32 number, ValueSource source);
  void SetText(int index, const QString& text, ValueSource source);
  void SetValue(int index, const ParameterValue& value, ValueSource source);

  /// The same, and the type that the value comes with.
  void SetTyped(int index, const ParameterValue& value, const FixedText<8>& typ, ValueSource source);
};

}  // namespace kalivor
