#include "ui/Resources.h"

#include <QString>
#include <array>

using namespace Qt::StringLiterals;

// The library's pictures have to be linked in by name, outside every namespace.
static void LinkPictures() {
  Q_INIT_RESOURCE(pictures);
}

namespace kalivor::ui {
namespace {

constexpr std::array kSizes = {16, 24, 32, 48, 64, 128, 256};

}  // namespace

QIcon ProgramIcon() {
  LinkPictures();
  QIcon icon;
  for (const int size : kSizes)
    icon.addFile(u":/kalivor/kalivor-%1.png"_s.arg(size), QSize(size, size));
  return icon;
}

QPixmap Logo(int size, double scale) {
  LinkPictures();
  QPixmap picture = QPixmap(u":/kalivor/kalivor-256.png"_s)
                        .scaled(QSize(size, size) * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(scale);
  return picture;
}

}  // namespace kalivor::ui
