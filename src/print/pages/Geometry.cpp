#include "print/pages/Geometry.h"

#include "base/Numbers.h"

namespace kalivor::print {
namespace {

// The pitch of "Lucida Console", as a part of the font's size.
constexpr double kPitch = 0.6025;
constexpr double kCentimetresPerPoint = 2.54 / 72;

constexpr Geometry kPortraitPage{.Orientation = kPortrait,
                                 .FormWidth_twips = 12000,
                                 .FormHeight_twips = 16630,
                                 .ScaleWidth = 21.0,
                                 .ScaleHeight = 29.7,
                                 .TreeLeft = 1.6,
                                 .TreeTop = 2.2,
                                 .TreeWidth = 21.0,
                                 .TreeHeight = 29.7 - 5.0,
                                 .HeaderLeft = 2.0,
                                 .HeaderTop = 1.2,
                                 .FooterLeft = 2.0,
                                 .FooterTop = 29.7 - 1.5 - 0.3};

constexpr Geometry kLandscapePage{.Orientation = kLandscape,
                                  .FormWidth_twips = 16630,
                                  .FormHeight_twips = 12000,
                                  .ScaleWidth = 29.7,
                                  .ScaleHeight = 21.0,
                                  .TreeLeft = 0.8,
                                  .TreeTop = 3.0,
                                  .TreeWidth = 29.7 - 3.0,
                                  .TreeHeight = 21.0 - 2.5 - 2.0 - 1.5,
                                  .HeaderLeft = 1.2,
                                  .HeaderTop = 2.0,
                                  .FooterLeft = 1.2,
                                  .FooterTop = 21.0 - 1.5 - 0.5};

}  // namespace

FontSizes StandardFontSizes() {
  FontSizes sizes;
  sizes[1] = 10;
  sizes[2] = 4;
  sizes[4] = 2;
  return sizes;
}

Geometry GeometryFor(int orientation, double Masstab, const FontSizes& sizes) {
  Geometry page = orientation == kLandscape ? kLandscapePage : kPortraitPage;
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
