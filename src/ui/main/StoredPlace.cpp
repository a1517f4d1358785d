#include "ui/main/StoredPlace.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <optional>
#include <vector>

#include "ui/main/WindowGeometry.h"

using namespace Qt::StringLiterals;

namespace kalivor::ui {
namespace {

// Larger than any window or column; keeps the arithmetic within its range.
constexpr int kLargest_twips = 1'000'000;

struct StoredColumn {
  int number = 0;
  int width_twips = 0;  // 0: hidden
};

struct StoredColumns {
  std::vector<StoredColumn> columns;
  int sorted = -1;
  Qt::SortOrder order = Qt::AscendingOrder;
};

std::optional<int> Number(QStringView text) {
  bool ok = false;
  const int number = text.toInt(&ok);
  if (!ok || number < -kLargest_twips || number > kLargest_twips) return std::nullopt;
  return number;
}

int Twips(const QWidget& widget, int pixels) {
  return qRound(pixels * kTwipsPerInch / widget.screen()->logicalDotsPerInchX());
}

int Pixels(const QWidget& widget, int twips) {
  return qRound(twips * widget.screen()->logicalDotsPerInchX() / kTwipsPerInch);
}

// "240 240 9600 6000", as pixels; empty where one of them is no number.
QList<int> PixelsOf(const QString& text, const QWidget& widget) {
  QList<int> numbers;
  for (const QString& word : text.split(u' ')) {
    const std::optional<int> number = Number(word);
    if (!number) return {};
    numbers << Pixels(widget, *number);
  }
  return numbers;
}

QString TextOf(const QList<int>& pixels, const QWidget& widget) {
  QStringList numbers;
  for (const int number : pixels)
    numbers << QString::number(Twips(widget, number));
  return numbers.join(u' ');
}

QRect PlaceOf(const QString& text, const QWidget& window) {
  const QList<int> numbers = PixelsOf(text, window);
  return numbers.size() == 4 ? QRect(numbers[0], numbers[1], numbers[2], numbers[3]) : QRect();
}

// Nothing unless each of the `count` columns occurs once and one is visible.
std::optional<StoredColumns> ColumnsOf(const QString& text, int count) {
  StoredColumns stored;
  std::vector<bool> known(static_cast<std::size_t>(count));
  const auto isColumn = [count](std::optional<int> number) {
    return number && *number >= 0 && *number < count;
  };
  for (const QString& word : text.split(u' ')) {
    if (word.startsWith(u'>') || word.startsWith(u'<')) {
      const std::optional<int> sorted = Number(QStringView(word).sliced(1));
      if (!isColumn(sorted)) return std::nullopt;
      stored.sorted = *sorted;
      stored.order = word.startsWith(u'>') ? Qt::AscendingOrder : Qt::DescendingOrder;
      continue;
    }
    const qsizetype colon = word.indexOf(u':');
    if (colon < 0) return std::nullopt;
    const std::optional<int> number = Number(QStringView(word).first(colon));
    const std::optional<int> width = Number(QStringView(word).sliced(colon + 1));
    if (!isColumn(number) || !width || *width < 0) return std::nullopt;
    if (known[static_cast<std::size_t>(*number)]) return std::nullopt;
    known[static_cast<std::size_t>(*number)] = true;
    stored.columns.push_back({*number, *width});
  }
  const bool visible = std::any_of(stored.columns.begin(), stored.columns.end(),
                                   [](const StoredColumn& column) { return column.width_twips > 0; });
  if (stored.columns.size() != known.size() || !visible) return std::nullopt;
  return stored;
}

}  // namespace

void LoadPlace(QWidget& window, const platform::SettingsStore& settings, const QString& key) {
  const QRect stored = PlaceOf(settings.Get(u"Settings"_s, key, {}), window);
  if (stored.isEmpty()) return;
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.append(screen->availableGeometry());
  const QRect place = OnScreen(stored, screens);
  window.resize(place.size());
  window.move(place.topLeft());
}

void SavePlace(const QWidget& window, platform::SettingsStore& settings, const QString& key) {
  if (window.isMinimized() || window.isMaximized() || window.isFullScreen()) return;
  settings.Save(u"Settings"_s, key,
                TextOf({window.x(), window.y(), window.width(), window.height()}, window));
}

void LoadColumns(QHeaderView& header, const platform::SettingsStore& settings, const QString& key) {
  const std::optional<StoredColumns> stored = ColumnsOf(settings.Get(u"Settings"_s, key, {}), header.count());
  if (!stored) return;
  int position = 0;
  for (const StoredColumn& column : stored->columns) {
    header.moveSection(header.visualIndex(column.number), position++);
    header.setSectionHidden(column.number, column.width_twips == 0);
    // A column must stay wide enough to be taken hold of, and narrow enough for its end to be reached.
    const int width = std::clamp(Pixels(header, column.width_twips), header.minimumSectionSize(),
                                 header.maximumSectionSize());
    // One that fills what is left has no width of its own.
    const bool fills = header.stretchLastSection() && position == header.count();
    if (column.width_twips > 0 && !fills) header.resizeSection(column.number, width);
  }
  if (stored->sorted >= 0 && header.isSortIndicatorShown())
    header.setSortIndicator(stored->sorted, stored->order);
}

void SaveColumns(const QHeaderView& header, platform::SettingsStore& settings, const QString& key) {
  QStringList words;
  for (int position = 0; position < header.count(); ++position) {
    const int number = header.logicalIndex(position);
    words << u"%1:%2"_s.arg(number).arg(Twips(header, header.sectionSize(number)));
  }
  const int sorted = header.sortIndicatorSection();
  if (header.isSortIndicatorShown() && sorted >= 0 && sorted < header.count()) {
    const bool upwards = header.sortIndicatorOrder() == Qt::AscendingOrder;
    words << (upwards ? u'>' : u'<') + QString::number(sorted);
  }
  settings.Save(u"Settings"_s, key, words.join(u' '));
}

void LoadParts(QSplitter& splitter, const platform::SettingsStore& settings, const QString& key) {
  const QList<int> sizes = PixelsOf(settings.Get(u"Settings"_s, key, {}), splitter);
  const bool whole =
      sizes.size() == splitter.count() && std::ranges::all_of(sizes, [](int size) { return size > 0; });
  if (whole) splitter.setSizes(sizes);
}

void SaveParts(const QSplitter& splitter, platform::SettingsStore& settings, const QString& key) {
  settings.Save(u"Settings"_s, key, TextOf(splitter.sizes(), splitter));
}

}  // namespace kalivor::ui
