// Where things are on the page.
#include "print/pages/Geometry.h"

#include <gtest/gtest.h>

#include "fakes/ThrownKind.h"

namespace kalivor::test {
namespace {

using print::Geometry;
using print::GeometryFor;
using print::kLandscape;
using print::kPortrait;

TEST(Geometry, Portrait) {
  const Geometry page = GeometryFor(kPortrait, 1);
  EXPECT_EQ(page.Orientation, kPortrait);
  EXPECT_EQ(page.MaxLine, 57);
  EXPECT_EQ(page.FormLeft_twips, 240);
  EXPECT_EQ(page.FormTop_twips, 240);
  EXPECT_EQ(page.FormWidth_twips, 12000);
  EXPECT_EQ(page.FormHeight_twips, 16630);
  EXPECT_DOUBLE_EQ(page.ScaleWidth, 21.0);
  EXPECT_DOUBLE_EQ(page.ScaleHeight, 29.7);
  EXPECT_DOUBLE_EQ(page.TreeLeft, 1.6);
  EXPECT_DOUBLE_EQ(page.TreeTop, 2.2);
  EXPECT_DOUBLE_EQ(page.TreeWidth, 21.0) << "beyond the right edge of the paper";
  EXPECT_DOUBLE_EQ(page.TreeHeight, 24.7);
  EXPECT_DOUBLE_EQ(page.HeaderLeft, 2.0);
  EXPECT_DOUBLE_EQ(page.HeaderTop, 1.2);
  EXPECT_DOUBLE_EQ(page.FooterLeft, 2.0);
  EXPECT_DOUBLE_EQ(page.FooterTop, 27.9);
  EXPECT_DOUBLE_EQ(page.FooterWidth, 21.0);
  EXPECT_DOUBLE_EQ(page.FooterRoom(), 17.5);
  EXPECT_EQ(page.FontSize_pt, 10);
  EXPECT_DOUBLE_EQ(page.TreeIndentation, 1);
}

TEST(Geometry, Landscape) {
  const Geometry page = GeometryFor(kLandscape, 1);
  EXPECT_EQ(page.Orientation, kLandscape);
  EXPECT_EQ(page.MaxLine, 34);
  EXPECT_EQ(page.FormLeft_twips, 240);
  EXPECT_EQ(page.FormTop_twips, 240);
  EXPECT_EQ(page.FormWidth_twips, 16630);
  EXPECT_EQ(page.FormHeight_twips, 12000);
  EXPECT_DOUBLE_EQ(page.ScaleWidth, 29.7);
  EXPECT_DOUBLE_EQ(page.ScaleHeight, 21.0);
  EXPECT_DOUBLE_EQ(page.TreeLeft, 0.8);
  EXPECT_DOUBLE_EQ(page.TreeTop, 3.0);
  EXPECT_DOUBLE_EQ(page.TreeWidth, 26.7);
  EXPECT_DOUBLE_EQ(page.TreeHeight, 15.0);
  EXPECT_DOUBLE_EQ(page.HeaderLeft, 1.2);
  EXPECT_DOUBLE_EQ(page.HeaderTop, 2.0);
  EXPECT_DOUBLE_EQ(page.FooterLeft, 1.2);
  EXPECT_DOUBLE_EQ(page.FooterTop, 19.0);
  EXPECT_DOUBLE_EQ(page.FooterWidth, 26.7);
  EXPECT_DOUBLE_EQ(page.FooterRoom(), 27.0);
  EXPECT_EQ(page.FontSize_pt, 10);
  EXPECT_DOUBLE_EQ(page.TreeIndentation, 1);
}

TEST(Geometry, EveryOrientationButLandscapeIsPortrait) {
  for (const int orientation : {-1, 0, 1, 3})
    EXPECT_EQ(GeometryFor(orientation, 2), GeometryFor(kPortrait, 2)) << orientation;
}

TEST(Geometry, TheScaleShrinksTheFormButNotThePaper) {
  const Geometry half = GeometryFor(kPortrait, 2);
  EXPECT_EQ(half.FormWidth_twips, 6000);
  EXPECT_EQ(half.FormHeight_twips, 8315);
  EXPECT_EQ(half.FormLeft_twips, 240);
  EXPECT_EQ(half.FontSize_pt, 4);
  EXPECT_DOUBLE_EQ(half.TreeIndentation, 0.5);
  EXPECT_DOUBLE_EQ(half.ScaleWidth, 21.0);
  EXPECT_DOUBLE_EQ(half.TreeHeight, 24.7);
  EXPECT_EQ(half.MaxLine, 57);

  const Geometry quarter = GeometryFor(kLandscape, 4);
  EXPECT_DOUBLE_EQ(quarter.FormWidth_twips, 4157.5);
  EXPECT_EQ(quarter.FormHeight_twips, 3000);
  EXPECT_EQ(quarter.FontSize_pt, 2);
  EXPECT_DOUBLE_EQ(quarter.TreeIndentation, 0.25);
}

TEST(Geometry, ScalesWithoutAFontSize) {
  EXPECT_EQ(GeometryFor(kPortrait, 3).FontSize_pt, 0);
  for (const double scale : {5.0, 4.6, 100.0})
    EXPECT_EQ(ThrownKind([&] { (void)GeometryFor(kPortrait, scale); }), RuntimeError::Kind::Bounds) << scale;
}

TEST(Geometry, AllLinesStandBetweenHeaderAndFooter) {
  for (const int orientation : {kPortrait, kLandscape}) {
    const Geometry page = GeometryFor(orientation, 1);
    const double textHeight = 10 * 2.54 / 72;
    EXPECT_GT(page.LinePitch(), textHeight);
    EXPECT_LE(page.HeaderTop + textHeight, page.TreeTop);
    EXPECT_LE(page.TreeTop + page.MaxLine * page.LinePitch(), page.FooterTop);
    EXPECT_LE(page.FooterTop + textHeight, page.ScaleHeight);
  }
}

TEST(TextWidth, GoesByTheNumberOfCharacters) {
  EXPECT_DOUBLE_EQ(print::TextWidth_cm(0, 10), 0);
  EXPECT_NEAR(print::TextWidth_cm(1, 72), 2.54 * 0.6025, 1e-9);
  EXPECT_NEAR(print::TextWidth_cm(100, 10), 21.255, 0.001);
}

}  // namespace
}  // namespace kalivor::test
