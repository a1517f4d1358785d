// The tables, settings and flags that the whole program works on.
#pragma once

#include <QString>
#include <vector>

#include "base/BoundedArray.h"
#include "base/FixedText.h"
#include "base/ParameterTable.h"
#include "base/SelectionList.h"

namespace kalivor {

/// 16-bit flags: all bits set is true.
inline constexpr qint16 kTrue = -1;
inline constexpr qint16 kFalse = 0;

/// One row of the version table.
struct VersionRecord {
  QString Version;       ///< text in the version list
  QString AdrDatei;      ///< file name of the address list, "-" for none
  QString DefDatei;      ///< file name of the definition file
  QString Anlagen;       ///< plant types, separated by blanks, one blank in front
  FixedText<2> Kennung;  ///< write and read command letter of the controller

  bool operator==(const VersionRecord&) const = default;
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
  qint16 Ruhezeit = 2000;  ///< milliseconds that the careful line rests after a failed attempt
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
