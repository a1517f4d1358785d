// The commands of kalivor-cli, and its command line as data.
#pragma once

#include <QDate>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

#include "core/Deed.h"
#include "core/ParameterList.h"

namespace kalivor::cli {

class Session;

/// What must have been read before a command runs.
enum class Needs {
  Nothing,      ///< it reads by itself what it works on
  Versions,     ///< the version table; faults of definitions are told and do not matter
  Definitions,  ///< the version table and the definitions of the selected version
};

/// One command: how it is written, what it needs and what it runs.
struct Command {
  QStringView name;                 ///< one word, or "history" and another
  int (Session::*run)() = nullptr;  ///< returns an ExitStatus
  Needs needs = Needs::Definitions;
  bool json = false;          ///< can answer in JSON
  int words = 0;              ///< how many words follow
  QStringView expected = {};  ///< what they are, for the user
};

/// The command of that name; null when there is none.
[[nodiscard]] const Command* FindCommand(QStringView name);

/// `--check` or `--uncheck`, in the order given.
struct MarkChange {
  QString what;
  bool checked = false;
};

enum class ListFormat { Tsv, Csv, Html, Pdf };

struct Arguments {
  QString command;
  QStringList words;  ///< behind it: the file of `show` and `restore`, the two sides of `diff`, an entry
  bool help = false;  ///< of `command`, if it has one of its own
  bool programVersion = false;
  bool json = false;
  std::optional<QString> iniPath;
  std::optional<QString> iniFile;
  std::optional<QString> controller;
  std::optional<QString> plant;
  std::optional<QString> port;    ///< a number 1..8 or a device
  std::optional<qint16> address;  ///< 0..255
  std::optional<QString> load;
  std::optional<QString> save;
  std::optional<QString> trace;
  bool landscape = false;  ///< of `pages` and `print`, like those that follow here
  std::optional<QString> statusPath;
  std::optional<QDate> date;
  std::optional<QString> pdf;
  std::optional<qint16> copies;    ///< 0..32767
  std::optional<qint16> page;      ///< 1..32767
  std::optional<QString> against;  ///< of `list`, like all that follow here
  std::optional<ListFilter> only;
  std::optional<QString> filter;
  std::optional<ListFormat> format;
  std::optional<QString> out;
  bool dryRun = false;  ///< of `safe-send` and `restore`, like `yes`
  bool yes = false;
  std::optional<qint16> repeat;                  ///< of `safe-send`: 0..32767
  QStringList ports;                             ///< of `find`, like the next: numbers 1..8 or devices
  std::optional<std::pair<int, int>> addresses;  ///< from, to: 0..255
  std::optional<QString> history;                ///< path of the history's file
  std::optional<QString> plantName;              ///< of `history`, like all that follow here
  std::optional<DeedKind> kind;
  std::optional<QString> technician;
  std::optional<QDate> from;
  std::optional<QDate> to;
  std::optional<QString> parameter;  ///< a variable or a name
  std::optional<QString> server;     ///< a connection string, a URI or the name of a service
  QStringList set;                   ///< "VARIABLE=VALUE"
  std::vector<MarkChange> marks;
  std::vector<qint16> answers;  ///< 1: first, 2: second
  QString error;                ///< German; not empty when the command line is at fault
};

/// Reads the arguments behind the program's name. Options may stand before and after the command, as
/// "--name value" or "--name=value"; "--" ends them.
[[nodiscard]] Arguments ParseArguments(const QStringList& arguments);

/// True when the run draws pages, for which it needs fonts.
[[nodiscard]] bool Draws(const Arguments& arguments);

/// The text of --help; `command` is the one that it was asked for, or "".
[[nodiscard]] QString HelpText(const QString& command);

}  // namespace kalivor::cli
