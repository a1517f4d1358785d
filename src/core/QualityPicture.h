// The quality of a line as a picture.
#pragma once

#include <QString>
#include <vector>

#include "comm/LineQuality.h"
#include "core/Picture.h"

namespace kalivor {

/// The picture's size in its own units.
inline constexpr double kPictureWidth = 640;
inline constexpr double kPictureHeight = 300;

/// A bar of the shares with its figures, and below it a histogram of the times of answer.
[[nodiscard]] std::vector<PictureShape> QualityPicture(const LineQuality& quality);

/// The same as an inline SVG element, with QualityLine() as its name for those who cannot see it.
[[nodiscard]] QString QualitySvg(const LineQuality& quality);

}  // namespace kalivor
