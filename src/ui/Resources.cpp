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

QIcon IconOf(const QString& name, std::initializer_list<int> sizes) {
  LinkPictures();
  QIcon icon;
  for (const int size : sizes)
    // Without a size the picture is not unpacked before a window needs it.
    icon.addFile(u":/kalivor/%1-%2.png"_s.arg(name).arg(size));
  return icon;
}

QIcon CommandIcon(const QString& name) {
  return IconOf(name, {16, 24, 32});
}

}  // namespace

QIcon ProgramIcon() {
  return IconOf(u"kalivor"_s, {16, 24, 32, 48, 64, 128, 256});
}

std::array<QIcon, 3> CommandIcons() {
  return {CommandIcon(u"open"_s), CommandIcon(u"save"_s), CommandIcon(u"print"_s)};
}

QPixmap Logo(int size, double scale) {
  LinkPictures();
  QPixmap picture = QPixmap(u":/kalivor/kalivor-256.png"_s)
                        .scaled(QSize(size, size) * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(scale);
  return picture;
}

}  // namespace kalivor::ui
