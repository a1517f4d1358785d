#include "print/pages/Geometry.h"

#include "base/Numbers.h"

namespace kalivor::print {
namespace {

// The pitch of "Lucida Console", as a part of the font's size.
constexpr double kPitch = 0.6025;
constexpr double kCentimetresPerPoint = 2.54 / 72;

Geometry Portrait() {
  Geometry page;
  page.Orientation = kPortrait;
  page.FormWidth_twips = 12000;
  page.FormHeight_twips = 16630;
  page.ScaleWidth = 21.0;
  page.ScaleHeight = 29.7;
  page.TreeLeft = 1.6;
  page.TreeTop = 2.2;
  page.TreeWidth = page.ScaleWidth;
  page.TreeHeight = page.ScaleHeight - 5.0;
  page.HeaderLeft = 2.0;
  page.HeaderTop = 1.2;
  page.FooterLeft = 2.0;
  page.FooterTop = page.ScaleHeight - 1.5 - 0.3;
  return page;
}

Geometry Landscape() {
  Geometry page;
  page.Orientation = kLandscape;
  page.FormWidth_twips = 16630;
  page.FormHeight_twips = 12000;
  page.ScaleWidth = 29.7;
  page.ScaleHeight = 21.0;
  page.TreeLeft = 0.8;
  page.TreeTop = 3.0;
  page.TreeWidth = page.ScaleWidth - 3.0;
  page.TreeHeight = page.ScaleHeight - 2.5 - 2.0 - 1.5;
  page.HeaderLeft = 1.2;
  page.HeaderTop = 2.0;
  page.FooterLeft = 1.2;
  page.FooterTop = page.ScaleHeight - 1.5 - 0.5;
  return page;
}

}  // namespace

FontSizes StandardFontSizes() {
  FontSizes sizes;
  sizes[1] = 10;
  sizes[2] = 4;
  sizes[4] = 2;
  return sizes;
}

Geometry GeometryFor(int orientation, double Masstab, const FontSizes& sizes) {
  Geometry page = orientation == kLandscape ? Landscape() : Portrait();
  page.MaxLine = static_cast<qint16>(LinesPerPage(orientation));
  page.FormLeft_twips = page.FormTop_twips = 240;
  page.FormWidth_twips /= Masstab;
  page.FormHeight_twips /= Masstab;
  page.TreeIndentation = 1 / Masstab;
  page.FooterWidth = page.TreeWidth;
  page.FontSize_pt = sizes[RoundToInt16(Masstab)];
  return page;
}

double TextWidth_cm(qsizetype characters, double size_pt) {
  return static_cast<double>(characters) * kPitch * size_pt * kCentimetresPerPoint;
}

}  // namespace kalivor::print
