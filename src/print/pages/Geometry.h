// Where things are on the printed page.
#pragma once

#include "base/BoundedArray.h"
#include "platform/Printer.h"

namespace kalivor::print {

using platform::kLandscape;
using platform::kPaperA4;
using platform::kPortrait;

/// Font sizes in points, indexed by the scale.
using FontSizes = BoundedArray<qint16, 4>;

/// The sizes of the scales 1:1, 1:2 and 1:4; the other entries are 0.
[[nodiscard]] FontSizes StandardFontSizes();

/// Positions and sizes in centimetres of the paper unless their name says otherwise.
struct Geometry {
  int Orientation = kPortrait;
  qint16 MaxLine = 0;  ///< lines of a page

  double FormLeft_twips = 0;
  double FormTop_twips = 0;
  double FormWidth_twips = 0;
  double FormHeight_twips = 0;
  double ScaleWidth = 0;  ///< the paper
  double ScaleHeight = 0;

  double TreeLeft = 0;
  double TreeTop = 0;
  double TreeWidth = 0;  ///< in portrait it reaches beyond the paper
  double TreeHeight = 0;
  double TreeIndentation = 0;

  double HeaderLeft = 0;
  double HeaderTop = 0;
  double FooterLeft = 0;
  double FooterTop = 0;
  double FooterWidth = 0;

  int FontSize_pt = 0;  ///< of the tree, the header and the footer

  bool operator==(const Geometry&) const = default;

  /// The height of one line.
  [[nodiscard]] double LinePitch() const { return TreeHeight / MaxLine; }

  /// The longest footer that fits.
  [[nodiscard]] double FooterRoom() const { return ScaleWidth - FooterLeft - 1.5; }
};

/// The layout of a page, in landscape when `orientation` is kLandscape, else in portrait, at the display
/// scale 1:`Masstab`. Throws RuntimeError (Bounds) for a scale that has no entry among `sizes`.
[[nodiscard]] Geometry GeometryFor(int orientation, double Masstab,
                                   const FontSizes& sizes = StandardFontSizes());

/// Lines of a page.
[[nodiscard]] constexpr int LinesPerPage(int orientation) {
  return orientation == kLandscape ? 34 : 57;
}

/// The width in centimetres of `characters` characters of the fixed-pitch font. The painter keeps to it with
/// whatever font there is, so that a page is the same everywhere.
[[nodiscard]] double TextWidth_cm(qsizetype characters, double size_pt);

}  // namespace kalivor::print
