// Pictures as boxes and texts with a place and a meaning, which the windows paint in their colours and a page
// draws in its own.
#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <vector>

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

/// Texts are so high, in the units of a picture: pixels at 100 %.
inline constexpr double kPictureText = 12;

/// The picture as an inline SVG element, with colours for white paper and nothing from elsewhere. `name` is
/// for those who cannot see it.
[[nodiscard]] QString PictureSvg(const std::vector<PictureShape>& shapes, const QSizeF& size,
                                 const QString& name);

}  // namespace kalivor
