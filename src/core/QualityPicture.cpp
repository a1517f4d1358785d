#include "core/QualityPicture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/LineHint.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

using Align = PictureShape::Align;
using Kind = PictureShape::Kind;

constexpr double kLine = 18;  // from one line of text to the next
constexpr double kBarTop = 24;
constexpr double kBarHeight = 22;
constexpr double kLegendTop = 54;
constexpr int kLegendColumns = 3;
constexpr double kSwatch = 10;

// The histogram: left of it the counts, below it the times.
constexpr double kLeft = 48;
constexpr double kTop = 132;
constexpr double kBottom = 264;
constexpr double kGap = 1;  // between two bars
constexpr int kTick_ms = 50;
constexpr int kTimeOut_ms = 400;

struct Part {
  qint64 count = 0;
  PictureInk ink = PictureInk::Good;
  QString name;
};

class Drawing {
 public:
  explicit Drawing(const LineQuality& quality) : quality_(quality) {}

  std::vector<PictureShape> Draw() {
    DrawShares();
    DrawAnswers();
    return std::move(shapes_);
  }

 private:
  void Box(const QRectF& place, PictureInk ink) {
    shapes_.push_back({Kind::Box, place, ink, {}, Align::Left});
  }

  void Text(double left, double base, double width, const QString& text, PictureInk ink = PictureInk::Text,
            Align align = Align::Left) {
    shapes_.push_back({Kind::Text, {left, base - kPictureText, width, kPictureText}, ink, text, align});
  }

  void DrawShares() {
    const qint64 all = quality_.All();
    Text(0, kBarTop - 8, kPictureWidth,
         all == 0 ? u"Anteile: noch keine Telegramme"_s : u"Anteile an %1 Versuchen"_s.arg(all));
    const std::array<Part, 7> parts{{{quality_.good, PictureInk::Good, u"gut"_s},
                                     {quality_.repeated, PictureInk::Repeated, u"wiederholt"_s},
                                     {quality_.damaged, PictureInk::Damaged, u"beschädigt"_s},
                                     {quality_.silent, PictureInk::Silent, u"ohne Antwort"_s},
                                     {quality_.echoOnly, PictureInk::Silent, u"nur Echo"_s},
                                     {quality_.refused, PictureInk::Refused, u"abgelehnt"_s},
                                     {quality_.noPort, PictureInk::NoPort, u"ohne Schnittstelle"_s}}};
    // An empty frame where there is nothing to divide.
    Box({0, kBarTop, kPictureWidth, kBarHeight}, PictureInk::Faint);
    double left = 0;
    int shown = 0;
    qint64 before = 0;
    for (const Part& part : parts) {
      if (part.count == 0) continue;
      before += part.count;
      // What happened at all is to be seen.
      const double right =
          std::max(left + 2, kPictureWidth * static_cast<double>(before) / static_cast<double>(all));
      Box({left, kBarTop, std::min(right, kPictureWidth) - left, kBarHeight}, part.ink);
      left = std::min(right, kPictureWidth - 2);
      const double x = kPictureWidth / kLegendColumns * (shown % kLegendColumns);
      const int line = shown / kLegendColumns;
      const double base = kLegendTop + kLine * (1 + line);
      Box({x, base - kSwatch, kSwatch, kSwatch}, part.ink);
      Text(x + kSwatch + 6, base, kPictureWidth / kLegendColumns - kSwatch - 6,
           u"%1 %2 (%3)"_s.arg(QString::number(part.count), part.name, Percent(part.count, all)));
      ++shown;
    }
  }

  static QString Percent(qint64 count, qint64 all) {
    const double percent = 100.0 * static_cast<double>(count) / static_cast<double>(all);
    // Neither all nor nothing unless it is.
    if (count < all && percent > 99.9) return u">99,9 %"_s;
    if (percent < 0.1) return u"<0,1 %"_s;
    QString text = QString::number(percent, 'f', 1);
    return text.replace(u'.', u',') + u" %"_s;
  }

  [[nodiscard]] static double X(double ms) {
    return kLeft + (kPictureWidth - kLeft) * ms / (LineQuality::kSteps * LineQuality::kStep_ms);
  }

  void DrawAnswers() {
    const qint64 most = *std::max_element(quality_.answers.begin(), quality_.answers.end());
    const qint64 answers = quality_.good + quality_.repeated;
    QString title = u"Antwortzeiten in Millisekunden"_s;
    if (answers > 0) {
      const auto longest = static_cast<int>(std::lround(quality_.slowest_s * 1000));
      // The middle of a step may be behind all that is in it.
      title += u": mittlere %1, längste %2"_s.arg(std::min(Middle(answers), longest)).arg(longest);
    }
    Text(0, kTop - 14, kPictureWidth, title);
    for (int ms = 0; ms < LineQuality::kSteps * LineQuality::kStep_ms; ms += kTick_ms) {
      Box({X(ms), kBottom, 1, 4}, PictureInk::Faint);
      Text(X(ms) - kTick_ms / 2.0, kBottom + 18, kTick_ms, QString::number(ms), PictureInk::Faint,
           Align::Middle);
    }
    Text(0, kTop + kPictureText / 2, kLeft - 6, most > 0 ? QString::number(most) : QString(),
         PictureInk::Faint, Align::Right);
    Text(0, kBottom, kLeft - 6, u"0"_s, PictureInk::Faint, Align::Right);
    Box({kLeft, kTop, kPictureWidth - kLeft, 1}, PictureInk::Faint);
    Box({kLeft, kBottom, kPictureWidth - kLeft, 1}, PictureInk::Faint);
    Box({X(kTimeOut_ms), kTop, 1, kBottom - kTop}, PictureInk::Limit);
    Text(X(kTimeOut_ms) - 6 - 100, kTop + kPictureText + 3, 100, u"Wartezeit"_s, PictureInk::Faint,
         Align::Right);
    for (int step = 0; step < LineQuality::kSteps; ++step) {
      const qint64 count = quality_.answers[static_cast<std::size_t>(step)];
      if (count == 0) continue;
      const double height =
          std::max(2.0, (kBottom - kTop) * static_cast<double>(count) / static_cast<double>(most));
      const double left = X(step * LineQuality::kStep_ms);
      Box({left + kGap, kBottom - height, X((step + 1) * LineQuality::kStep_ms) - left - kGap, height},
          PictureInk::Good);
    }
    Text(0, kBottom + 34, kPictureWidth,
         u"der letzte Balken: %1 und länger"_s.arg((LineQuality::kSteps - 1) *
                                                   static_cast<int>(LineQuality::kStep_ms)),
         PictureInk::Faint, Align::Right);
  }

  // The step in which half of the answers have come: its middle.
  [[nodiscard]] int Middle(qint64 answers) const {
    qint64 before = 0;
    int step = 0;
    while (step < LineQuality::kSteps - 1 &&
           (before += quality_.answers[static_cast<std::size_t>(step)]) * 2 < answers)
      ++step;
    return static_cast<int>((step + 0.5) * LineQuality::kStep_ms);
  }

  const LineQuality& quality_;
  std::vector<PictureShape> shapes_;
};

}  // namespace

std::vector<PictureShape> QualityPicture(const LineQuality& quality) {
  return Drawing(quality).Draw();
}

QString QualitySvg(const LineQuality& quality) {
  return PictureSvg(QualityPicture(quality), {kPictureWidth, kPictureHeight},
                    quality.All() == 0 ? u"noch keine Telegramme"_s : QualityLine(quality));
}

}  // namespace kalivor
