// Sets of values with an origin, and where two of them differ.
#pragma once

#include <QString>
#include <vector>

#include "base/Module1.h"
#include "core/ValueFileFormat.h"
#include "platform/FileSystem.h"

namespace kalivor {

/// Where the values of a set come from.
enum class Origin { Table, Standard, File, Controller };

/// One value of a set.
struct SetValue {
  QString Variable;    ///< without trailing blanks
  FixedText<8> Typ;    ///< as a record's
  QString VarAdresse;  ///< tells the elements of an array apart; "" where the set knows none
  int element = 0;     ///< which of the parameters of that name, from 0 in the order of the definitions
  ParameterValue value;
  bool read = true;  ///< false: it was asked for and could not be read; `value` means nothing then
};

/// A copy of values. Nothing changes it but who made it.
struct ValueSet {
  Origin origin = Origin::Table;
  QString name;             ///< for the user: "PC", "Standardwerte", the file's path, "Regler"
  QString version;          ///< of the controller that the values are for
  bool shortNames = false;  ///< the names end after kOldNameWidth characters, as in files of the old layout
  bool partial = false;     ///< what it does not hold was not asked for
  std::vector<SetValue> values;
};

/// The values of parameters 1..ParCount - 1.
[[nodiscard]] ValueSet TableValues(const Module1& module);
[[nodiscard]] ValueSet StandardValues(const Module1& module);

/// The values of a file.
[[nodiscard]] ValueSet FileValues(const ValueFileContent& content, const QString& path);

/// A set, or why there is none, in German.
struct SetResult {
  ValueSet set;
  QString error = {};    ///< empty when there is a set
  bool aborted = false;  ///< the user ended it: the set holds what had been read by then

  [[nodiscard]] bool Ok() const { return error.isEmpty(); }
};

/// Reads a value file without touching the table. One of an unknown version is a set as well.
[[nodiscard]] SetResult ReadFileValues(platform::FileSystem& files, const QString& path);

/// What the user reads where the version of a file's set is in no row of the version table; "" where it is.
[[nodiscard]] QString VersionFault(const VersionTable& versions, const ValueSet& set);

/// What the two sides of a comparison are to each other.
enum class Difference {
  NotCompared,  ///< one side was not asked for it
  Equal,
  Different,
  OnlyLeft,   ///< the right side does not know it
  OnlyRight,  ///< the left side does not know it
  OtherType,  ///< both know the variable, with different types
  NotRead,    ///< one side was asked for it, in vain
};

/// "verschieden", "nur links" …; "" for NotCompared, "gleich" for Equal.
[[nodiscard]] QString DifferenceText(Difference difference);

/// True for all but NotCompared and Equal.
[[nodiscard]] bool Differs(Difference difference);

/// A value that at least one side holds.
struct ComparedValue {
  int index = 0;  ///< in Par; 0: the definitions know no such parameter
  Difference difference = Difference::NotCompared;
  int left = -1;             ///< position in the left set; -1: not there
  int right = -1;            ///< position in the right set; -1: not there
  bool leftOutside = false;  ///< the number is outside the parameter's limits
  bool rightOutside = false;
};

/// The value at a position as ComparedValue has it; null for -1.
[[nodiscard]] const SetValue* ValueAt(const ValueSet& set, int position);

/// Compares two sets by variable and type, the elements of an array by their address too; where a side knows
/// no addresses, by their number. Types agree when they are transferred alike, so texts of two lengths do;
/// texts are equal up to trailing blanks and the length of the parameter's type. The result: a row for each
/// parameter of `definitions` (1..ParCount - 1, in their order) that a side holds, then a row for each value
/// that the definitions do not know. Takes time in proportion to the values.
[[nodiscard]] std::vector<ComparedValue> CompareSets(const ParameterTable& definitions, const ValueSet& left,
                                                     const ValueSet& right);

/// True where the parameter has not got all of the set's text: it is longer than the parameter's type, or a
/// file has kept the beginning of a longer one, which can be seen where nothing of its place is free.
[[nodiscard]] bool IsCut(const ParameterRecord& record, const SetValue& value, Origin origin);

/// How a set of another version fits the definitions: counts of variables.
struct ConversionAccount {
  int matched = 0;    ///< variable and type agree
  int onlyInSet = 0;  ///< the definitions do not know them
  int onlyInDefinitions = 0;
  int otherType = 0;
  int cutTexts = 0;  ///< texts that are longer than the parameter's type, or fill all that a file holds of a
                     ///< longer one
};
[[nodiscard]] ConversionAccount AccountOf(const ParameterTable& definitions, const ValueSet& set);

/// True for a number outside the record's limits: what the editor would refuse. Texts are never outside.
[[nodiscard]] bool IsOutside(const ParameterRecord& record, const ParameterValue& value);

/// True when the two values are the same for a parameter of this record.
[[nodiscard]] bool SameValue(const ParameterRecord& record, const ParameterValue& left,
                             const ParameterValue& right);

/// A number of the record in display units, exactly: its own decimals, its sign ("-0.50"), and the digits
/// that tree and report do not show where they are not zero. Where the decimals are more than 9, which the
/// tree refuses, the stored number and its power ("1234E-12"). Never throws. Differences need more than 32
/// bits.
[[nodiscard]] QString ExactNumber(const ParameterRecord& record, qint64 number);

/// The number in display units, rounded to a double.
[[nodiscard]] double InDisplayUnits(const ParameterRecord& record, qint64 number);

/// A value as list, export and command line show it: ExactNumber, or the text without trailing blanks.
[[nodiscard]] QString ExactText(const ParameterRecord& record, const ParameterValue& value);

/// The same for a value of a set, which may be of another type than the record, whose decimals it shares; ""
/// for one that was not read.
[[nodiscard]] QString ExactText(const ParameterRecord& record, const SetValue& value);

}  // namespace kalivor
