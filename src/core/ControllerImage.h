// Values as the words that the controller holds, exactly and both ways.
#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <optional>
#include <vector>

#include "base/ParameterTable.h"

namespace kalivor {

/// Words of 16 bits by address. Comparing, backing up, sending and restoring are operations on images.
using ControllerImage = std::map<quint16, quint16>;

/// The part of a word that belongs to a value: the bits of `mask` are to be `bits`.
struct CodedWord {
  quint16 address = 0;  ///< even
  quint16 mask = 0;
  quint16 bits = 0;  ///< 0 outside the mask

  [[nodiscard]] bool FitsIn(quint16 word) const { return (word & mask) == bits; }
  bool operator==(const CodedWord&) const = default;
};

/// Where a value lies and what the words have to be, or in German why that cannot be said.
struct CodedValue {
  std::vector<CodedWord> words;  ///< by address; of a fault none
  QString fault = {};
};

// A value lies in the controller byte by byte from its address on, numbers highest byte first in two's
// complement, texts padded with blanks; the byte at an even address is the high one of its word. Unlike the
// plain transfers, where a negative long loses its sign, a byte may change its neighbour and the erased word
// FFFF is a blank, every value comes back as it was sent.

/// The parameter's words, whose bits are all 0. A fault: no address, one that is no number, an odd one of
/// anything but a byte, an unknown type.
[[nodiscard]] CodedValue PlacesOf(const ParameterRecord& record);

/// The same of a single word at an address, whatever its parameter's type is.
[[nodiscard]] CodedValue PlaceOfWord(const QString& address);

/// The words of a value. A fault besides: a number that would come back as another one, a text that is too
/// long or has characters that the controller does not know.
[[nodiscard]] CodedValue Coded(const ParameterRecord& record, const ParameterValue& value);

/// The value that the image holds; empty where one of its words is missing, or PlacesOf has a fault. A byte
/// from 128 on is a negative number where the parameter's limits say so, or else, as the plain transfers have
/// it, at an even address.
[[nodiscard]] std::optional<ParameterValue> Decoded(const ParameterRecord& record,
                                                    const ControllerImage& image);

/// True where the image holds all of these words.
[[nodiscard]] bool Holds(const ControllerImage& image, const std::vector<CodedWord>& words);

}  // namespace kalivor
