// The tables, settings and flags that the whole program works on.
#pragma once

#include <QString>
#include <vector>

#include "base/BoundedArray.h"
#include "base/FixedText.h"
#include "base/SelectionList.h"

namespace kalivor {

/// 16-bit flags: all bits set is true.
inline constexpr qint16 kTrue = -1;
inline constexpr qint16 kFalse = 0;

/// The last index of the parameter tables.
inline constexpr int kLastParameter = 2000;

/// One parameter: a line of a definition file and its current value. Records are copied whole.
struct ParameterRecord {
  QString Rubrik;        ///< group (branch of the tree); "NoRubrik" marks the plant-type record
  QString Name;          ///< text shown to the user
  qint32 Wert = 0;       ///< current value of a numeric parameter, times 10^(Zahl1 + Zahl2)
  qint32 Min = 0;        ///< lower limit, scaled as Wert
  qint32 Max = 0;        ///< upper limit, scaled as Wert
  qint32 Standard = 0;   ///< default value, scaled as Wert
  QString WertText;      ///< current value of a string parameter
  QString StandardText;  ///< default of a string parameter
  FixedText<4> Einheit;  ///< unit shown beside the value
  qint16 Zahl1 = 0;      ///< decimal places shown
  qint16 Zahl2 = 0;      ///< further low-order digits of Wert that are not shown
  QString VarAdresse;    ///< controller address as hexadecimal text; empty: unknown
  qint16 Offset = 0;     ///< byte offset added to a listed address (index of an array element)
  QString Variable;      ///< name of the controller variable; key of the address list
  FixedText<8> Typ;      ///< "long", "int", "char", or "string" and its length
  QString Zusatz;        ///< plant types that the parameter belongs to
  QString Hilfetext;     ///< help text shown in the editors; "\" separates lines

  bool operator==(const ParameterRecord&) const = default;
};

/// One row of the version table.
struct VersionRecord {
  QString Version;       ///< text in the version list
  QString AdrDatei;      ///< file name of the address list, "-" for none
  QString DefDatei;      ///< file name of the definition file
  QString Anlagen;       ///< plant types, separated by blanks, one blank in front
  FixedText<2> Kennung;  ///< write and read command letter of the controller

  bool operator==(const VersionRecord&) const = default;
};

/// The parameters. Written by the definition reader, the engines, the editors and value files.
struct ParameterTable {
  BoundedArray<ParameterRecord, kLastParameter> Par;  ///< 1..ParCount-1; element 0: the plant-type record
  qint16 ParCount = 1;                                ///< next free index of Par

  // Where Par comes from, to name it when something is wrong with it. Written by the definition reader.
  QString ParFile;                            ///< path of the definition file; empty before the first one
  BoundedArray<int, kLastParameter> ParLine;  ///< line of parameter i; 0: element 0 was not in the file
};

/// The versions of controllers, and what the user has selected among them. Written by the table's reader, the
/// refresh routine and the user.
struct VersionTable {
  std::vector<VersionRecord> Versionen = std::vector<VersionRecord>(1);  ///< rows 1..; 0 and the last: empty
  qint16 VersionCount = 1;       ///< row counter while the table is read
  qint16 VersionIndex = 0;       ///< row that was selected last; 0 before the first selection
  SelectionList VersionList;     ///< texts of the rows from 1 on
  SelectionList PlantTypeList;   ///< plant types of the selected version
  bool PlantTypeOffered = true;  ///< the user can choose among them

  /// Row `row`; throws RuntimeError (Bounds) outside the table.
  [[nodiscard]] const VersionRecord& VersionRow(int row) const {
    if (row < 0 || row >= static_cast<int>(Versionen.size())) throw RuntimeError(RuntimeError::Kind::Bounds);
    return Versionen[static_cast<std::size_t>(row)];
  }

  /// The row that is selected in the list; without a selection row 0, which is empty.
  [[nodiscard]] const VersionRecord& SelectedVersion() const {
    return VersionRow(VersionList.Position() + 1);
  }
};

/// The tree's marks and state. Written by the tree's handlers and the refresh routine.
struct TreeState {
  BoundedArray<qint16, kLastParameter> NodeState;  ///< group n is expanded
  BoundedArray<qint16, kLastParameter> ParNode;  ///< check mark of parameter i; 0: the root; also of group n
  qint16 TreeUpdating = kFalse;                  ///< an editor is open or the program itself changes a tree
};

/// Settings. Read at start, changed by the options dialog, stored when the main window closes.
struct Settings {
  qint16 Adresse = 1;                          ///< station address of the controller, 0..255
  qint16 Schnittstelle = 1;                    ///< serial port number, 1..8
  QString Userpath;                            ///< folder of value files, without separator at its end
  QString Inipath;                             ///< folder of the version table and definition files
  QString Inifile = QStringLiteral("VF.INI");  ///< file name of the version table
};

/// The conversation with user and controller.
struct Conversation {
  qint16 Abbruch = kFalse;   ///< abort request; set by the report's button, polled by the walks
  qint16 Antwort = -1;       ///< answer of a question; -1 while pending
  qint16 Kopien = 1;         ///< copies to print, from the print dialog
  bool SessionEnds = false;  ///< the user's session ends: nobody answers a question any more
  int BusyDepth = 0;         ///< how many operations are under way inside each other
  QString ReglerVersion;     ///< last answer of the version query
  QString Dateiname;         ///< current value file; empty when none is open
};

/// All of it: a function takes the part that it needs. One instance per running program, created in main and
/// handed down by reference. A copy is a snapshot.
struct Module1 : ParameterTable, VersionTable, TreeState, Settings, Conversation {};

}  // namespace kalivor
