// Checking the lines of a definition file.
#pragma once

#include <QString>
#include <vector>

#include "check/CheckText.h"

namespace kalivor {

/// What is known about a parameter after its line was checked.
struct CheckedParameter {
  int line = 0;
  QString name;
  QString variable;
  QString address;           ///< column 9 as it stands, in versions without an address list
  int offset = 0;            ///< to be added to a listed address, in bytes
  int size = 0;              ///< bytes of controller memory; 0 when the type is unknown
  bool sharesWord = false;   ///< may lie at an odd address
  bool isPlantType = false;  ///< the "NoRubrik" record
  qint32 lowest = 0;         ///< of limits and standard
  qint32 highest = 0;
};

/// A content of the column Zusatz, and the line where it stands first.
struct PlantColumn {
  QString text;
  int line = 0;
};

struct CheckedDefinitions {
  std::vector<CheckedParameter> parameters;  ///< those whose line has enough columns
  std::vector<PlantColumn> plants;           ///< each once
  bool complete = true;                      ///< no line was left out
};

/// Checks every line of a definition file; `hasAddressList` decides what column 9 means. Addresses are not
/// looked at.
[[nodiscard]] CheckedDefinitions CheckParameters(const CheckedText& text, bool hasAddressList);

}  // namespace kalivor
