#include "history/CurvePicture.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

using Align = PictureShape::Align;
using Kind = PictureShape::Kind;

constexpr double kTop = 46;     // below the title
constexpr double kBottom = 28;  // for the dates
constexpr double kRight = 16;
constexpr double kDigit = 7;  // about as wide as a character
constexpr double kLine = 2;
constexpr double kDot = 6;
constexpr double kPointedOut = 10;
// Dots nearer to each other would be a line.
constexpr double kDotRoom = 12;
constexpr double kDateRoom = 88;
constexpr double kValueRoom = 44;
constexpr int kMostTicks = 40;
constexpr int kLongestTitle = 60;

// More than any controller holds: keeps the arithmetic within its range, whatever somebody has written.
constexpr double kLargest = 1e15;

// The part of the span behind the last value, which is the one that holds.
constexpr double kBehindLast = 0.03;

constexpr qint64 kMinute_ms = 60'000;
constexpr qint64 kHour_ms = 60 * kMinute_ms;
constexpr qint64 kDay_ms = 24 * kHour_ms;
// 4000 years.
constexpr qint64 kLongestSpan_ms = 1'460'000 * kDay_ms;

QDateTime TimeOf(qint64 moment_ms) {
  return QDateTime::fromMSecsSinceEpoch(moment_ms);
}

QString Cut(const QString& text) {
  const QString line = text.simplified();
  return line.size() > kLongestTitle ? line.first(kLongestTitle - 1) + u'…' : line;
}

// 1, 2 or 5 times a power of ten, at least `least`.
double RoundStep(double least) {
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (power * factor >= least * (1 - 1e-9)) return power * factor;
  }
  return power * 10;
}

int DecimalsOf(double step) {
  return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
}

/// Where the moments and values of a curve are drawn.
class Scale {
 public:
  Scale(const Curve& curve, const QSizeF& size) : size_(size) {
    const auto value = [](const CurvePoint& point) { return point.value; };
    const auto [least, most] = std::ranges::minmax(curve.points, {}, value);
    low_ = least.value;
    high_ = most.value;
    // A value that never changed stands in the middle.
    const double air = high_ > low_ ? (high_ - low_) * 0.05 : std::max(1.0, std::abs(high_) * 0.1);
    step_ = RoundStep((high_ - low_ + 2 * air) * kValueRoom / std::max(kValueRoom, Height()));
    low_ -= air;
    high_ += air;
    from_ = curve.points.front().moment_ms;
    span_ms_ = std::clamp<qint64>(curve.points.back().moment_ms - from_, kMinute_ms, kLongestSpan_ms);
    span_ms_ += static_cast<qint64>(static_cast<double>(span_ms_) * kBehindLast);
    qsizetype longest = 0;
    for (int tick = 0; tick < Ticks(); ++tick)
      longest = std::max(longest, TickText(tick).size());
    left_ = std::min(size.width() / 2, kDigit * static_cast<double>(longest) + 14);
  }

  [[nodiscard]] double Left() const { return left_; }
  [[nodiscard]] double Right() const { return std::max(left_ + 1, size_.width() - kRight); }
  [[nodiscard]] double Top() const { return kTop; }
  [[nodiscard]] double Bottom() const { return std::max(kTop + 1, size_.height() - kBottom); }
  [[nodiscard]] double Height() const { return Bottom() - Top(); }

  [[nodiscard]] double X(qint64 moment_ms) const {
    const double part = static_cast<double>(moment_ms - from_) / static_cast<double>(span_ms_);
    return Left() + (Right() - Left()) * std::clamp(part, 0.0, 1.0);
  }
  [[nodiscard]] double Y(double value) const { return Bottom() - Height() * (value - low_) / (high_ - low_); }

  [[nodiscard]] qint64 From() const { return from_; }
  [[nodiscard]] qint64 Span_ms() const { return span_ms_; }

  // The lines of the scale, from the lowest one up.
  [[nodiscard]] int Ticks() const {
    return std::clamp(static_cast<int>(std::floor(high_ / step_) - std::ceil(low_ / step_)) + 1, 0,
                      kMostTicks);
  }
  [[nodiscard]] double Tick(int tick) const { return (std::ceil(low_ / step_) + tick) * step_; }
  [[nodiscard]] QString TickText(int tick) const {
    // No "-0".
    const double value = Tick(tick);
    return QString::number(std::abs(value) < step_ / 2 ? 0 : value, 'f', DecimalsOf(step_));
  }

 private:
  QSizeF size_;
  double left_ = 0;
  double low_ = 0;
  double high_ = 1;
  double step_ = 1;
  qint64 from_ = 0;
  qint64 span_ms_ = 1;
};

/// Dates at even distances: so many minutes or months each, whichever is not 0.
struct DateStep {
  qint64 minutes = 0;
  int months = 0;
  QStringView format;

  [[nodiscard]] qint64 Length_ms() const { return minutes * kMinute_ms + months * (30 * kDay_ms); }
};

constexpr int kDay_min = 24 * 60;
constexpr DateStep kDateSteps[] = {
    {1, 0, u"HH:mm"},
    {5, 0, u"HH:mm"},
    {15, 0, u"HH:mm"},
    {60, 0, u"HH:mm"},
    {180, 0, u"dd.MM. HH:mm"},
    {720, 0, u"dd.MM. HH:mm"},
    {kDay_min, 0, u"dd.MM.yyyy"},
    {2 * kDay_min, 0, u"dd.MM.yyyy"},
    {7 * kDay_min, 0, u"dd.MM.yyyy"},
    {0, 1, u"MM.yyyy"},
    {0, 2, u"MM.yyyy"},
    {0, 3, u"MM.yyyy"},
    {0, 6, u"MM.yyyy"},
    {0, 12, u"yyyy"},
    {0, 24, u"yyyy"},
    {0, 60, u"yyyy"},
    {0, 240, u"yyyy"},
    {0, 1200, u"yyyy"},
    {0, 12000, u"yyyy"},
};

// The first one that is not before `time`, and the next one behind it.
QDateTime FirstTick(const DateStep& step, const QDateTime& time) {
  const QDate date = time.date();
  if (step.months > 0) {
    const int month = date.year() * 12 + date.month() - 1;
    const int first = (month + step.months - 1) / step.months * step.months;
    QDateTime tick = QDate(first / 12, first % 12 + 1, 1).startOfDay();
    return tick < time ? tick.addMonths(step.months) : tick;
  }
  QDateTime tick = date.startOfDay();
  if (step.minutes >= kDay_min) return tick < time ? tick.addDays(1) : tick;
  const qint64 minutes = (tick.msecsTo(time) + kMinute_ms - 1) / kMinute_ms;
  return tick.addSecs((minutes + step.minutes - 1) / step.minutes * step.minutes * 60);
}

QDateTime NextTick(const DateStep& step, const QDateTime& tick) {
  if (step.months > 0) return tick.addMonths(step.months);
  if (step.minutes >= kDay_min) return tick.addDays(step.minutes / kDay_min);
  return tick.addSecs(step.minutes * 60);
}

class Drawing {
 public:
  Drawing(const Curve& curve, const QSizeF& size, int current)
      : curve_(curve), size_(size), current_(current) {}

  std::vector<PictureShape> Draw() {
    const QString unit = CurveValue(curve_, 0).section(u' ', 1);
    Text({0, 0, size_.width(), 18}, Cut(curve_.name) + (unit.isEmpty() ? QString() : u" in "_s + Cut(unit)));
    if (curve_.points.empty()) {
      Text({0, 18, size_.width(), 18}, u"Kein Eintrag hat eine Zahl dazu."_s, PictureInk::Faint);
      return std::move(shapes_);
    }
    const Scale scale(curve_, size_);
    DrawValues(scale);
    DrawDates(scale);
    DrawLine(scale);
    DrawPoints(scale);
    return std::move(shapes_);
  }

 private:
  void Box(const QRectF& place, PictureInk ink) {
    shapes_.push_back({Kind::Box, place, ink, {}, Align::Left});
  }

  void Text(const QRectF& place, const QString& text, PictureInk ink = PictureInk::Text,
            Align align = Align::Left) {
    shapes_.push_back({Kind::Text,
                       {place.left(), place.bottom() - kPictureText, place.width(), kPictureText},
                       ink,
                       text,
                       align});
  }

  void DrawValues(const Scale& scale) {
    for (int tick = 0; tick < scale.Ticks(); ++tick) {
      const double y = scale.Y(scale.Tick(tick));
      Box({scale.Left() - 4, y, scale.Right() - scale.Left() + 4, 0.5}, PictureInk::Faint);
      Text({0, y - kPictureText / 2 - 1, scale.Left() - 8, kPictureText}, scale.TickText(tick),
           PictureInk::Faint, Align::Right);
    }
  }

  void DrawDates(const Scale& scale) {
    const double most = std::max(1.0, (scale.Right() - scale.Left()) / kDateRoom);
    const auto* step = std::ranges::find_if(kDateSteps, [&](const DateStep& each) {
      return static_cast<double>(scale.Span_ms()) <= most * static_cast<double>(each.Length_ms());
    });
    if (step == std::end(kDateSteps)) --step;
    const QDateTime end = TimeOf(scale.From() + scale.Span_ms());
    QDateTime tick = FirstTick(*step, TimeOf(scale.From()));
    for (int i = 0; i < kMostTicks && tick.isValid() && tick <= end; ++i, tick = NextTick(*step, tick)) {
      const double x = scale.X(tick.toMSecsSinceEpoch());
      Box({x, scale.Bottom(), 1, 5}, PictureInk::Faint);
      const QString text = tick.toString(step->format);
      // Not beyond the edges of the picture.
      const double half = kDigit * static_cast<double>(text.size()) / 2;
      const double middle =
          std::clamp(x, std::min(half, size_.width() / 2), std::max(size_.width() - half, size_.width() / 2));
      Text({middle - half, scale.Bottom() + 6, 2 * half, kPictureText + 2}, text, PictureInk::Faint,
           Align::Middle);
    }
  }

  // Of what falls on one unit, only how far it goes up and down and where it ends can be seen.
  void DrawLine(const Scale& scale) {
    const std::vector<CurvePoint>& points = curve_.points;
    double x = scale.Left();
    double value = points.front().value;
    for (std::size_t i = 0; i < points.size();) {
      const double column = std::floor(scale.X(points[i].moment_ms));
      double low = value;
      double high = value;
      const double before = value;
      for (; i < points.size() && std::floor(scale.X(points[i].moment_ms)) <= column; ++i) {
        value = points[i].value;
        low = std::min(low, value);
        high = std::max(high, value);
      }
      Level(scale, x, column, before);
      if (high > low)
        Box({column, scale.Y(high) - kLine / 2, kLine, scale.Y(low) - scale.Y(high) + kLine},
            PictureInk::Good);
      x = column;
    }
    Level(scale, x, scale.Right(), value);
  }

  void Level(const Scale& scale, double from, double to, double value) {
    if (to > from) Box({from, scale.Y(value) - kLine / 2, to - from, kLine}, PictureInk::Good);
  }

  void DrawPoints(const Scale& scale) {
    const std::vector<CurvePoint>& points = curve_.points;
    if (static_cast<double>(points.size()) * kDotRoom <= scale.Right() - scale.Left()) {
      for (const CurvePoint& point : points)
        Dot(scale, point, kDot, PictureInk::Good);
    }
    if (current_ < 0 || static_cast<std::size_t>(current_) >= points.size()) return;
    Dot(scale, points[static_cast<std::size_t>(current_)], kPointedOut, PictureInk::Limit);
    Text({0, 18, size_.width(), 18}, CurvePointText(curve_, current_));
  }

  void Dot(const Scale& scale, const CurvePoint& point, double size, PictureInk ink) {
    Box({scale.X(point.moment_ms) - size / 2, scale.Y(point.value) - size / 2, size, size}, ink);
  }

  const Curve& curve_;
  QSizeF size_;
  int current_;
  std::vector<PictureShape> shapes_;
};

}  // namespace

Curve CurveOf(const Change& change, std::vector<CurvePoint> points) {
  std::erase_if(points, [](const CurvePoint& point) {
    return !std::isfinite(point.value) || std::abs(point.value) > kLargest ||
           !TimeOf(point.moment_ms).isValid();
  });
  const qsizetype decimalPoint = change.after.indexOf(u'.');
  const auto decimals = decimalPoint < 0 ? 0 : change.after.size() - decimalPoint - 1;
  return {change.name.isEmpty() ? change.variable : change.name, change.unit,
          static_cast<int>(std::min<qsizetype>(decimals, 9)), std::move(points)};
}

QString CurveValue(const Curve& curve, double value) {
  const QString number = QString::number(value, 'f', curve.decimals);
  return curve.unit.isEmpty() || curve.unit == u"-" ? number : number + u' ' + curve.unit;
}

QString CurvePointText(const Curve& curve, int point) {
  const CurvePoint& at = curve.points[static_cast<std::size_t>(point)];
  return at.time.toString(u"dd.MM.yyyy HH:mm"_s) + u": "_s + CurveValue(curve, at.value);
}

QString CurveText(const Curve& curve) {
  const QString what = u"Verlauf von "_s + curve.name;
  if (curve.points.empty()) return what + u": kein Eintrag hat eine Zahl dazu."_s;
  const auto [least, most] = std::ranges::minmax(curve.points, {}, &CurvePoint::value);
  const auto date = [](const CurvePoint& point) { return point.time.toString(u"dd.MM.yyyy"_s); };
  const CurvePoint& first = curve.points.front();
  const CurvePoint& last = curve.points.back();
  const auto count = curve.points.size();
  return u"%1: %2 vom %3 bis %4, zuerst %5, zuletzt %6, kleinster %7, größter %8."_s.arg(
      what, count == 1 ? u"1 Wert"_s : u"%1 Werte"_s.arg(count), date(first), date(last),
      CurveValue(curve, first.value), CurveValue(curve, last.value), CurveValue(curve, least.value),
      CurveValue(curve, most.value));
}

std::vector<PictureShape> CurvePicture(const Curve& curve, const QSizeF& size, int current) {
  return Drawing(curve, size, current).Draw();
}

int CurvePointAt(const Curve& curve, const QSizeF& size, double x) {
  if (curve.points.empty()) return -1;
  const Scale scale(curve, size);
  const auto distance = [&](const CurvePoint& point) { return std::abs(scale.X(point.moment_ms) - x); };
  // Of several at one moment the newest.
  const auto nearest = std::min_element(
      curve.points.rbegin(), curve.points.rend(),
      [&](const CurvePoint& left, const CurvePoint& right) { return distance(left) < distance(right); });
  return static_cast<int>(curve.points.rend() - nearest) - 1;
}

}  // namespace kalivor::history
