// The picture of a letterhead from its file.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include "platform/FileSystem.h"

namespace kalivor::ui {

/// A picture, or why there is none.
struct LetterPicture {
  QImage image;
  QString error;  ///< German; "" where there is a picture
};

inline constexpr qint64 kLargestPicture_bytes = 16LL * 1024 * 1024;

/// Reads a picture of whatever kind the toolkit knows, as large as a printer needs it and no larger.
[[nodiscard]] LetterPicture LoadLetterPicture(platform::FileSystem& files, const QString& path);

/// The size at which it stands in a letterhead, in pixels of 1/96 inch: 2 cm high, or 9 cm wide where it
/// would be wider.
[[nodiscard]] QSize LetterPictureSize(const QImage& picture);

/// What the question for the file offers.
[[nodiscard]] QString LetterPictureFilter();

}  // namespace kalivor::ui
