// How a value went over the entries of a history, as a picture.
#pragma once

#include <QSizeF>
#include <QString>
#include <vector>

#include "core/Picture.h"
#include "history/Store.h"

namespace kalivor::history {

/// One parameter's values. Points whose value is no finite number are not to be among them.
struct Curve {
  QString name;
  QString unit;                         ///< "" or "-": none
  int decimals = 0;                     ///< of the values
  std::vector<CurvePoint> points = {};  ///< the oldest first
};

/// The curve of a changed value. What cannot be drawn is left out of the points.
[[nodiscard]] Curve CurveOf(const Change& change, std::vector<CurvePoint> points);

/// "21.5 °C"
[[nodiscard]] QString CurveValue(const Curve& curve, double value);

/// "04.03.2026 05:06: 21.5 °C"
[[nodiscard]] QString CurvePointText(const Curve& curve, int point);

/// What the curve shows, in words.
[[nodiscard]] QString CurveText(const Curve& curve);

/// A line that steps from value to value, with a scale and dates. It takes no more shapes than there are
/// units across the picture, however many points there are. `current` is a point that is pointed out, -1:
/// none.
[[nodiscard]] std::vector<PictureShape> CurvePicture(const Curve& curve, const QSizeF& size,
                                                     int current = -1);

/// The point that is drawn nearest to `x`; -1 where there is none.
[[nodiscard]] int CurvePointAt(const Curve& curve, const QSizeF& size, double x);

}  // namespace kalivor::history
