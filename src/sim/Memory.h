// The simulated controller's memory: 64 KiB, read and written in words.
#pragma once

#include <QString>
#include <vector>

#include "base/Module1.h"
#include "core/ValueFileFormat.h"

namespace kalivor::sim {

/// A word lies at an even address, its high byte first; the low bit of a word's address is ignored.
/// Addresses wrap at 65536.
class Memory {
 public:
  [[nodiscard]] quint16 Word(quint16 address) const;
  void SetWord(quint16 address, quint16 value);
  void SetByte(quint16 address, quint8 value);

  /// Stores the standard values of parameters 1..ParCount-1 that have an address.
  void LoadStandards(const Module1& module);

  /// Stores the values of a value file: each record goes to the first parameter of its name. Records of an
  /// old file know the first 20 characters of a name. Returns how many records found a parameter.
  int LoadValues(const Module1& module, const ValueFileContent& content);

  /// Stores the plant number. False when the plant-type record has no address.
  bool SetPlantNumber(const Module1& module, qint16 number);

  /// Every word that was stored so far, sorted: address, TAB, word, both as four hexadecimal digits, one a
  /// line.
  [[nodiscard]] QString Dump() const;

 private:
  void Set(const ParameterRecord& record, qint32 value, const QString& text);

  std::vector<quint8> bytes_ = std::vector<quint8>(65536);
  std::vector<bool> stored_ = std::vector<bool>(32768);  // by word
};

}  // namespace kalivor::sim
