#include "ui/history/LetterPicture.h"

#include <QBuffer>
#include <QImageReader>

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// 9 cm by 2 cm on the page, and what is needed for it at 600 dots to an inch.
constexpr QSize kRoom(340, 76);
constexpr QSize kMostPixels(2126, 472);

// A file can claim to hold any number of them.
constexpr qint64 kMostPixelsRead = 100'000'000;

}  // namespace

LetterPicture LoadLetterPicture(platform::FileSystem& files, const QString& path) {
  platform::FileContent content = files.Read(path, kLargestPicture_bytes);
  if (!content.Ok()) return {{}, content.error};
  QBuffer buffer(&content.bytes);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (size.isValid() && qint64{size.width()} * size.height() > kMostPixelsRead)
    return {{}, u"Das Bild hat zu viele Bildpunkte."_s};
  // What is drawn rather than stored is drawn as finely as it is printed.
  const QSize fits = size.scaled(kMostPixels, Qt::KeepAspectRatio);
  const bool isDrawn = reader.format().startsWith("svg");
  if (size.isValid() && !fits.isEmpty() && (isDrawn || fits.width() < size.width()))
    reader.setScaledSize(reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)
                             ? size.scaled(kMostPixels.transposed(), Qt::KeepAspectRatio)
                             : fits);
  const QImage image = reader.read();
  if (image.isNull()) return {{}, u"Die Datei enthält kein Bild, das gezeigt werden kann."_s};
  return {image, {}};
}

QSize LetterPictureSize(const QImage& picture) {
  if (picture.isNull()) return {};
  return picture.size().scaled(kRoom, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QString LetterPictureFilter() {
  QString patterns = u"*.png *.jpg *.jpeg"_s;
  if (QImageReader::supportedImageFormats().contains("svg")) patterns += u" *.svg"_s;
  return u"Bilder (%1)|%1|Alle Dateien (*.*)|*.*"_s.arg(patterns);
}

}  // namespace kalivor::ui
