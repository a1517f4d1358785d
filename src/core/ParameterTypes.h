// The one table of the parameters' types: how a value lies in the controller, what it may be, how it is
// edited.
#pragma once

#include <QStringView>
#include <array>
#include <limits>

#include "base/ParameterTable.h"

namespace kalivor {

/// Which of a record's values counts, and so which editor opens for it. Unknown: the parameter is passed
/// over.
enum class ValueKind { Unknown, Number, Text };

/// The longest number, in words of 16 bits.
inline constexpr int kMostWords = 2;

/// The words of a number, highest first: read ones are signed in the first place and 0..65535 behind it; of
/// written ones the low 16 bits count.
using Words = std::array<qint32, kMostWords>;

struct NumberRange {
  qint32 lowest = 0;
  qint32 highest = 0;
};

template <typename Int>
inline constexpr NumberRange kRangeOf{std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()};

/// One type. Its first three letters decide how a parameter is transferred and read from a definition file.
struct ParameterType {
  QStringView name;  ///< as definition files write it; the length of a text stands behind it
  ValueKind kind = ValueKind::Unknown;
  int bytes = 0;  ///< a number's size in the controller; 1: shares its word, at an odd address the low byte
  NumberRange limits;      ///< of the numbers that a definition may name
  bool losesSign = false;  ///< the controller takes negative numbers for others

  /// A number's words and back; `odd`: its address is. `shared`: the word as it was, of one that is shared.
  /// toWords throws RuntimeError (Overflow).
  qint32 (*fromWords)(const Words& words, bool odd) = nullptr;
  Words (*toWords)(qint32 number, bool odd, qint32 shared) = nullptr;

  [[nodiscard]] int WordCount() const { return (bytes + 1) / 2; }
  [[nodiscard]] bool SharesWord() const { return bytes == 1; }
};

/// A record's type by its first three letters, and the type of a number by its whole name; Unknown, with no
/// bytes and every number allowed, when there is none.
[[nodiscard]] const ParameterType& TypeOf(const FixedText<8>& typ);
[[nodiscard]] const ParameterType& NumberTypeNamed(QStringView name);

/// True when tree and editors treat the record as a text: they ask for the type's whole name.
[[nodiscard]] bool IsStringForTree(const ParameterRecord& record);

/// Length of a text: the number from character 7 of its type on.
[[nodiscard]] int StringLength(const ParameterRecord& record);

/// Address of word `word` (from 0). Of a number the first one's is as it stands, the others have 8 digits
/// always; those of a text have as many as the first.
[[nodiscard]] QString WordAddress(const ParameterRecord& record, const ParameterType& type, int word);

/// True when a number that shares its word is the low byte of it.
[[nodiscard]] bool IsOddAddress(const ParameterRecord& record);

/// The characters of a text's word, and the word of characters `at` and `at` + 1.
[[nodiscard]] QString TextFromWord(qint16 word);
[[nodiscard]] int WordFromText(const QString& text, int at);

}  // namespace kalivor
