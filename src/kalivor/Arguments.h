// The command line of the desktop program as data.
#pragma once

#include <QStringList>
#include <optional>

namespace kalivor {

struct Arguments {
  std::optional<QString> iniPath;
  std::optional<QString> iniFile;
  std::optional<QString> port;  ///< a number 1..8 or a device
  QString valueFile;            ///< to open at the start; "" for none
  bool demo = false;
  bool help = false;
  bool programVersion = false;
  QString error;  ///< German; not empty when the command line is at fault
};

/// Reads the arguments behind the program's name: "--name value" or "--name=value", and one file.
[[nodiscard]] Arguments ParseArguments(const QStringList& arguments);

/// The text of --help.
[[nodiscard]] QString HelpText();

}  // namespace kalivor
