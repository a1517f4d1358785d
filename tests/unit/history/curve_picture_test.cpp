// The picture of a parameter's values: true, small, and calm about whatever stands in the rows.
#include "history/CurvePicture.h"

#include <gtest/gtest.h>
#include <QElapsedTimer>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using Kind = PictureShape::Kind;

constexpr QSizeF kSize(640, 300);
constexpr qint64 kDay_ms = 86'400'000;

CurvePoint At(int day, double value) {
  const QDateTime time = QDateTime(QDate(2026, 3, 1), QTime(12, 0)).addDays(day);
  return {QUuid::createUuid(), time, time.toMSecsSinceEpoch(), value};
}

Curve WithPoints(std::vector<CurvePoint> points) {
  Change change;
  change.name = u"Solltemperatur"_s;
  change.unit = u"°C"_s;
  change.after = u"21.5"_s;
  return CurveOf(change, std::move(points));
}

std::vector<QRectF> Line(const std::vector<PictureShape>& shapes) {
  std::vector<QRectF> boxes;
  for (const PictureShape& shape : shapes)
    if (shape.kind == Kind::Box && shape.ink == PictureInk::Good &&
        (shape.place.width() == 2 || shape.place.height() == 2))
      boxes.push_back(shape.place);
  return boxes;
}

QStringList Texts(const std::vector<PictureShape>& shapes) {
  QStringList texts;
  for (const PictureShape& shape : shapes)
    if (shape.kind == Kind::Text) texts << shape.text;
  return texts;
}

TEST(CurvePicture, StepsAtTheMomentOfAChangeAndHoldsTheValueUntilThen) {
  const auto boxes = Line(CurvePicture(WithPoints({At(0, 20), At(10, 21), At(20, 19)}), kSize));
  // Level, up, level, down, level to the edge.
  ASSERT_EQ(boxes.size(), 5u);
  EXPECT_NEAR(boxes[0].right(), boxes[1].left(), 1);
  EXPECT_LT(boxes[2].top(), boxes[0].top());
  EXPECT_GT(boxes[4].top(), boxes[0].top());
  EXPECT_NEAR(boxes[0].width(), boxes[2].width(), 2);
  EXPECT_GT(boxes[4].right(), boxes[3].right());
}

TEST(CurvePicture, TenThousandPointsTakeNoMoreShapesThanThereIsRoom) {
  std::vector<CurvePoint> points;
  for (int i = 0; i < 10'000; ++i)
    points.push_back(At(i, i % 97));
  const auto shapes = CurvePicture(WithPoints(points), kSize);
  EXPECT_LT(shapes.size(), 2 * 640u + 100u);
}

// Of what falls on one place the highest and the lowest are seen.
TEST(CurvePicture, ThinningHidesNoPeak) {
  std::vector<CurvePoint> points;
  for (int i = 0; i < 10'000; ++i)
    points.push_back(At(i, i == 5'000 ? 1'000 : 10));
  double top = kSize.height();
  for (const QRectF& box : Line(CurvePicture(WithPoints(points), kSize)))
    top = std::min(top, box.top());
  EXPECT_LT(top, 90);
}

TEST(CurvePicture, TheScaleHasItsUnitItsValuesAndDates) {
  const QStringList texts = Texts(CurvePicture(WithPoints({At(0, 20), At(20, 21.5)}), kSize));
  EXPECT_TRUE(texts.contains(u"Solltemperatur in °C"_s));
  EXPECT_TRUE(texts.contains(u"20.0"_s) || texts.contains(u"20"_s)) << texts.join(u'|').toStdString();
  const auto isDate = [](const QString& text) { return text.contains(u".03.2026"_s); };
  EXPECT_GE(std::count_if(texts.begin(), texts.end(), isDate), 2) << texts.join(u'|').toStdString();
}

TEST(CurvePicture, DatesFitWhateverTheSpan) {
  for (const qint64 span_ms : {qint64{0}, qint64{1}, qint64{60'000}, qint64{7'200'000}, kDay_ms, 40 * kDay_ms,
                               900 * kDay_ms, 40'000 * kDay_ms, std::numeric_limits<qint64>::max() / 4}) {
    CurvePoint last = At(0, 2);
    last.moment_ms += span_ms;
    const auto shapes = CurvePicture(WithPoints({At(0, 1), last}), kSize);
    std::vector<QRectF> dates;
    for (const PictureShape& shape : shapes)
      if (shape.kind == Kind::Text && shape.place.bottom() > kSize.height() - 20)
        dates.push_back(shape.place);
    EXPECT_GE(dates.size(), span_ms > 60'000 ? 2u : 1u) << span_ms;
    for (std::size_t i = 1; i < dates.size(); ++i)
      EXPECT_LE(dates[i - 1].right(), dates[i].left() + 8) << span_ms;
  }
}

TEST(CurvePicture, EverythingStaysInsideWhateverTheValuesAndTheRoom) {
  for (const QSizeF size : {kSize, QSizeF(200, 120), QSizeF(20, 20)}) {
    for (const auto& values : std::vector<std::vector<double>>{
             {0}, {5, 5, 5}, {-1e15, 1e15}, {1e-9, 2e-9}, {123456789, 123456790}, {-0.5, 0.5}}) {
      std::vector<CurvePoint> points;
      for (std::size_t i = 0; i < values.size(); ++i)
        points.push_back(At(static_cast<int>(i), values[i]));
      for (const PictureShape& shape : CurvePicture(WithPoints(points), size, 0)) {
        ASSERT_TRUE(std::isfinite(shape.place.left()) && std::isfinite(shape.place.top()));
        if (shape.kind != Kind::Box || size != kSize) continue;
        EXPECT_GE(shape.place.left(), 0);
        EXPECT_LE(shape.place.right(), size.width() + 5);
        EXPECT_GE(shape.place.top(), 0);
        EXPECT_LE(shape.place.bottom(), size.height());
      }
    }
  }
}

TEST(CurvePicture, WhatIsNoNumberIsLeftOut) {
  const Curve curve = WithPoints({At(0, std::numeric_limits<double>::quiet_NaN()), At(1, 1),
                                  At(2, std::numeric_limits<double>::infinity()), At(3, 1e300)});
  EXPECT_EQ(curve.points.size(), 1u);
}

TEST(CurvePicture, OfNothingItSaysSo) {
  EXPECT_EQ(CurvePointAt(WithPoints({}), kSize, 10), -1);
  EXPECT_TRUE(Texts(CurvePicture(WithPoints({}), kSize)).contains(u"Kein Eintrag hat eine Zahl dazu."_s));
  EXPECT_EQ(CurveText(WithPoints({})), u"Verlauf von Solltemperatur: kein Eintrag hat eine Zahl dazu."_s);
}

TEST(CurvePicture, WordsSayTheSame) {
  EXPECT_EQ(CurveText(WithPoints({At(0, 20), At(10, 24), At(20, 21.5)})),
            u"Verlauf von Solltemperatur: 3 Werte vom 01.03.2026 bis 21.03.2026, zuerst 20.0 °C, zuletzt "
            "21.5 °C, kleinster 20.0 °C, größter 24.0 °C."_s);
}

TEST(CurvePicture, APointIsFoundAndPointedOut) {
  const Curve curve = WithPoints({At(0, 20), At(10, 24), At(20, 21.5)});
  EXPECT_EQ(CurvePointAt(curve, kSize, 0), 0);
  EXPECT_EQ(CurvePointAt(curve, kSize, 340), 1);
  EXPECT_EQ(CurvePointAt(curve, kSize, 640), 2);
  EXPECT_TRUE(Texts(CurvePicture(curve, kSize, 1)).contains(u"11.03.2026 12:00: 24.0 °C"_s));
}

TEST(CurvePicture, TheSvgHoldsNoMarkupOfARow) {
  Change change;
  change.name = u"<script>\"&"_s;
  const Curve curve = CurveOf(change, {At(0, 1)});
  const QString svg = PictureSvg(CurvePicture(curve, kSize), kSize, CurveText(curve));
  EXPECT_FALSE(svg.contains(u"<script"_s));
  EXPECT_TRUE(svg.contains(u"&lt;script&gt;"_s));
}

}  // namespace
}  // namespace kalivor::history
