#include "ui/main/WindowGeometry.h"

#include <algorithm>

#include "base/Numbers.h"
#include "commands/EventBoundary.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

constexpr double kDefaultPosition_twips = 1000;
constexpr double kDefaultSize_twips = 6500;
// Larger numbers than any screen has; they keep the arithmetic below within its range.
constexpr double kLargest_px = 30000;

// What must be visible of a window's upper edge, so that it can be taken hold of.
constexpr int kHandleWidth_px = 100;
constexpr int kHandleHeight_px = 30;
// Left free for the frame, which is not part of a window's size. How large it is shows too late.
constexpr int kFrameWidth_px = 16;
constexpr int kFrameHeight_px = 40;

int Pixels(const platform::SettingsStore& store, platform::MessageBox& box, const QString& key,
           double fallback_twips, double dpi) {
  double twips = fallback_twips;
  RunHandler(box,
             [&] { twips = StrictNumber(store.Get(u"Settings"_s, key, QString::number(fallback_twips))); });
  return static_cast<int>(std::clamp(twips * dpi / kTwipsPerInch, -kLargest_px, kLargest_px) +
                          (twips < 0 ? -0.5 : 0.5));
}

void Save(platform::SettingsStore& store, const QString& key, int pixels, double dpi) {
  store.Save(u"Settings"_s, key, PlainNumber(qRound(pixels * kTwipsPerInch / dpi)));
}

}  // namespace

QRect LoadGeometry(const platform::SettingsStore& store, platform::MessageBox& box, double dpi) {
  const int left = Pixels(store, box, u"MainLeft"_s, kDefaultPosition_twips, dpi);
  const int top = Pixels(store, box, u"MainTop"_s, kDefaultPosition_twips, dpi);
  const int width = Pixels(store, box, u"MainWidth"_s, kDefaultSize_twips, dpi);
  const int height = Pixels(store, box, u"MainHeight"_s, kDefaultSize_twips, dpi);
  return {left, top, std::max(width, 1), std::max(height, 1)};
}

void SaveGeometry(platform::SettingsStore& store, const QRect& place, double dpi) {
  Save(store, u"MainLeft"_s, place.left(), dpi);
  Save(store, u"MainTop"_s, place.top(), dpi);
  Save(store, u"MainWidth"_s, place.width(), dpi);
  Save(store, u"MainHeight"_s, place.height(), dpi);
}

QRect OnScreen(const QRect& place, const QList<QRect>& screens) {
  if (screens.isEmpty()) return place;
  QRect all;
  for (const QRect& screen : screens)
    all |= screen;
  const bool tooLarge = place.width() > all.width() || place.height() > all.height();
  const QRect handle(place.left(), place.top(), place.width(), kHandleHeight_px);
  for (const QRect& screen : screens) {
    const QRect visible = handle & screen;
    if (!tooLarge && visible.width() >= std::min(kHandleWidth_px, place.width()) &&
        visible.height() == kHandleHeight_px)
      return place;
  }
  const QRect room = screens.first().adjusted(0, 0, -kFrameWidth_px, -kFrameHeight_px);
  const QSize size = place.size().boundedTo(room.size());
  const int left = std::clamp(place.left(), room.left(), room.right() + 1 - size.width());
  const int top = std::clamp(place.top(), room.top(), room.bottom() + 1 - size.height());
  return {QPoint(left, top), size};
}

}  // namespace kalivor::ui
