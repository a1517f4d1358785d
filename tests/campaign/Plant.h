// A random installation as plain data: what the definition files say, told apart from the code that reads
// them.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "campaign/Line.h"
#include "campaign/Random.h"
#include "fakes/FileName.h"

namespace kalivor::campaign {

struct PlantParameter {
  enum class Kind { Long, Int, Char, Text, Unknown } kind = Kind::Int;
  int length = 0;  ///< characters of a text
  QString name;
  QString variable;
  QByteArray address;  ///< as the PC will know it; "" for none
  qint32 standard = 0;
  QString standardText;
  int decimals = 0;  ///< shown
  int dropped = 0;   ///< low digits not shown

  // What the PC's table holds.
  qint32 value = 0;
  QString text;
  bool checked = true;
};

struct PlantVersion {
  QString version;
  QByteArray payload;  ///< with which a controller of this version introduces itself
  QStringList plants;  ///< entries of the plant-type list
  bool hasPlantRecord = false;
  QByteArray plantAddress;  ///< of the plant number; "" for none
  QString plantVariable;
  std::vector<PlantParameter> parameters;
};

/// The PC's side: the versions that it knows, and what is selected.
struct Plant {
  std::vector<PlantVersion> versions;
  int version = 0;        ///< position in the version list
  int plant = 0;          ///< position in the plant-type list
  qint32 plantValue = 0;  ///< value of the plant-type record

  [[nodiscard]] PlantVersion& Selected() { return versions[static_cast<std::size_t>(version)]; }

  /// What reading the definitions does: standard values, everything checked, the plant number as selected.
  void Reload();
};

inline constexpr char kWriteLetter = 'W';
inline constexpr char kReadLetter = 'R';
inline constexpr int kStation = 1;

/// One to three versions with one to twenty parameters of all types.
[[nodiscard]] Plant RandomPlant(Random& random);

/// The files of the definition folder "ini" that describe it.
[[nodiscard]] QHash<test::FileName, QByteArray> FilesOf(const Plant& plant);

/// Gives the controller random words wherever a parameter of `version` lies, and a plant number.
void FillController(Random& random, const PlantVersion& version, sim::Memory& memory);

}  // namespace kalivor::campaign
