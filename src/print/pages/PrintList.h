// The printable list: which lines there are, and on which pages they fall.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "base/Module1.h"
#include "print/pages/Geometry.h"

namespace kalivor::print {

/// One line: the root, a group or a parameter.
struct PrintNode {
  int level = 0;  ///< 0: the root; a parameter without group stands directly below it
  QString key;    ///< "R", "K 1", "sK 1"
  QString text;
  bool expanded = false;

  [[nodiscard]] bool IsGroup() const { return key.startsWith(u'K'); }
};

/// Lines by number, counted from 1. Empty when last < first.
struct LineRange {
  int first = 1;
  int last = 0;

  bool operator==(const LineRange&) const = default;
};

struct PrintList {
  std::vector<PrintNode> nodes;
  /// Per page (line number \ lines per page) its last parameter.
  /// kept: nothing reads it, but its size bounds the pages.
  BoundedArray<qint16, 59> PageLastPar;
  std::optional<qint16> MaxPage;  ///< number of pages; none before the first Make()

  /// Rebuilds the list from the checked parameters that `plantType` shows. A list that fills its last page
  /// gets one more, empty page. Throws RuntimeError: Bounds when a parameter falls on page number 60,
  /// Overflow for a value that cannot be shown; the lines up to there stay, MaxPage does not change.
  void Make(const Module1& module, QStringView plantType, int orientation);

  [[nodiscard]] int Count() const { return static_cast<int>(nodes.size()); }

  /// Line `number`. Throws RuntimeError (Bounds) when there is none.
  [[nodiscard]] const PrintNode& Node(int number) const;

  /// The lines that show when line `first` is the uppermost of `lines` lines. None beyond the end.
  [[nodiscard]] LineRange From(int first, int lines) const;
};

}  // namespace kalivor::print
