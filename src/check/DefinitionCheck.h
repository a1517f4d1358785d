// Checking the definition files for what their maintainers get wrong.
#pragma once

#include <QString>
#include <vector>

#include "platform/FileSystem.h"

namespace kalivor {

struct Finding {
  QString file;        ///< name as in the version table
  int line = 0;        ///< counted from 1; 0: the file as a whole
  bool error = false;  ///< "Fehler", else "Warnung"
  QString text;        ///< German
};

/// Checks the version table `inifile` in `inipath` and every file that it names. A version table that cannot
/// be read throws RuntimeError (FileError); files named in it that cannot be read are findings.
[[nodiscard]] std::vector<Finding> CheckDefinitions(platform::FileSystem& files, const QString& inipath,
                                                    const QString& inifile);

}  // namespace kalivor
