// The quality of a line as a picture: boxes and texts with a place and a meaning, which the window paints in
// its colours and a report draws in its own.
#pragma once

#include <QRectF>
#include <QString>
#include <vector>

#include "comm/LineQuality.h"

namespace kalivor {

/// What is drawn stands for one of these; who draws it gives them colours.
enum class PictureInk {
  Text,
  Faint,  ///< lines of the scale, texts of less weight
  Good,
  Repeated,
  Damaged,
  Silent,
  Refused,
  NoPort,
  Limit,  ///< where the time-out is
};

struct PictureShape {
  enum class Kind { Box, Text };
  enum class Align { Left, Middle, Right };  ///< of a text in its box
  Kind kind = Kind::Box;
  QRectF place;  ///< of a text: it stands on the lower edge, and may be longer than the box
  PictureInk ink = PictureInk::Text;
  QString text;
  Align align = Align::Left;

  bool operator==(const PictureShape&) const = default;
};

/// The picture's size in its own units: pixels at 100 %. Texts are kPictureText high.
inline constexpr double kPictureWidth = 640;
inline constexpr double kPictureHeight = 300;
inline constexpr double kPictureText = 12;

/// A bar of the shares with its figures, and below it a histogram of the times of answer.
[[nodiscard]] std::vector<PictureShape> QualityPicture(const LineQuality& quality);

/// The same as an inline SVG element, with colours for white paper and nothing from elsewhere. It carries
/// QualityLine() as its name for those who cannot see it.
[[nodiscard]] QString QualitySvg(const LineQuality& quality);

}  // namespace kalivor
