// The command line of kalivor-sim as data.
#pragma once

#include <QStringList>
#include <optional>
#include <vector>

#include "sim/Faults.h"
#include "sim/LineModel.h"

namespace kalivor::sim {

struct Arguments {
  QString iniPath;
  QString iniFile = QStringLiteral("VF.INI");
  QString controller;  ///< exact version text; "" for the first one
  QString link;
  QString values;
  QString dump;
  int address = 1;
  LineOptions line;
  std::optional<qint16> plant;
  std::optional<quint16> tcp;  ///< the network port to be reached at; 0 for any that is free
  quint32 seed = 0;
  std::vector<FaultRule> faults;
  bool trace = false;
  bool help = false;
  bool programVersion = false;
  QString error;  ///< German; not empty when the command line is at fault
};

/// Reads the arguments behind the program's name: "--name value" or "--name=value".
[[nodiscard]] Arguments ParseArguments(const QStringList& arguments);

/// The text of --help.
[[nodiscard]] QString HelpText();

}  // namespace kalivor::sim
