// The texts that make a sending safe: what the controller held before it, and what it was about to write.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>
#include <vector>

#include "core/SafeTransfer.h"

namespace kalivor {

/// Which controller, when and from where.
struct BackupHead {
  QDateTime time;     ///< with its zone, to the second
  QString version;    ///< of the controller
  QString plantType;  ///< "" where there is none
  int plant = 0;      ///< plant number
  int address = 0;    ///< station address, 0..255
  QString port;       ///< "COM1", and behind it the device where it is known
  QString programVersion;

  bool operator==(const BackupHead&) const = default;
};

/// What the controller held: the values by name, and all of their words.
struct Backup {
  BackupHead head;
  std::vector<NamedWords> values;
  ControllerImage words;

  bool operator==(const Backup&) const = default;
};

/// A sending under way, as its journal has it: enough to finish it and to take it back.
struct Sending {
  BackupHead head;
  QString backup;                  ///< path of the value file of its backup
  std::vector<NamedWords> values;  ///< that are written
  std::vector<CodedWord> wanted;   ///< their words, by address, those of bytes that share one joined
  ControllerImage before;          ///< the same words as they were
  std::vector<quint16> begun;      ///< whose writing was begun, in that order

  bool operator==(const Sending&) const = default;
};

// Both are lines of UTF-8, LF, each "key: value" or a row of columns separated by TAB, in a fixed order, with
// a sum of everything at their end (CRC-32, 8 digits). TAB, CR, LF and backslash in a text are written as a
// backslash and a letter. People can read them; the program reads nothing that it would not have written.

/// The text of a backup and back; nothing where the bytes are none, cut off or changed.
[[nodiscard]] QByteArray ComposeBackup(const Backup& backup);
[[nodiscard]] std::optional<Backup> ParseBackup(const QByteArray& bytes);

/// The beginning of a journal, without `begun`; a line is appended for each word that is begun.
[[nodiscard]] QByteArray ComposeSending(const Sending& sending);
[[nodiscard]] QByteArray ComposeBegun(quint16 address);

/// A journal. A line at the end that is not complete was being written when the program ended, and does not
/// count; nothing where the beginning is damaged, or a line that is complete is none of the wanted words.
[[nodiscard]] std::optional<Sending> ParseSending(const QByteArray& bytes);

/// How many of the values had all of their words begun: "12 von 40 Werten geschrieben". `module` needs the
/// definitions of the sending's version; what they do not know counts as not written.
[[nodiscard]] int ValuesBegun(const ParameterTable& definitions, const Sending& sending);

}  // namespace kalivor
