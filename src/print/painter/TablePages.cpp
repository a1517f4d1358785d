#include "print/painter/TablePages.h"

#include <QPageLayout>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <utility>

#include "base/Paths.h"
#include "platform/gui/PdfFile.h"
#include "print/painter/TextDrawer.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

// Sizes of characters: as in the printed parameters at most; the smallest that can be read; and the smallest
// for which the paper is not turned.
constexpr double kLargest_pt = 10;
constexpr double kSmallest_pt = 6;
constexpr double kSmallestUpright_pt = 7;

// In characters.
constexpr int kGap = 2;               // between two columns
constexpr int kLongestUnbroken = 40;  // a longer text does not make the others smaller
constexpr int kNarrowest = 4;         // of a column, however many there are

// In centimetres.
constexpr double kLineWidth = 0.012;
constexpr double kAboveFooter = 0.4;
constexpr double kBelowHeading = 0.3;
constexpr double kBelowTitles = 0.06;

// The height of a line, as a part of its characters' size; of a row, what is added for its line below.
constexpr double kLeading = 1.15;
constexpr double kRowAir = 0.15;

constexpr double kCentimetresPerPoint = 2.54 / 72;

Geometry GeometryOn(const QSizeF& paper_cm) {
  Geometry page = GeometryFor(paper_cm.width() > paper_cm.height() ? kLandscape : kPortrait, 1);
  page.FooterTop += paper_cm.height() - page.ScaleHeight;
  page.ScaleWidth = paper_cm.width();
  page.ScaleHeight = paper_cm.height();
  return page;
}

// The lines that `text` consists of.
QStringList LinesOf(QString text) {
  return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').split(u'\n');
}

// Lines of at most `width` characters, broken at blanks where there are any.
QStringList Wrapped(const QString& text, int width) {
  if (text.size() <= width && !text.contains(u'\n') && !text.contains(u'\r')) return {text};
  QStringList lines;
  const QStringList given = LinesOf(text);
  for (const QString& line : given) {
    QStringView rest = line;
    while (rest.size() > width) {
      const qsizetype blank = rest.first(width + 1).lastIndexOf(u' ');
      qsizetype end = blank > 0 ? blank : width;
      if (end > 1 && rest.at(end - 1).isHighSurrogate()) --end;
      lines << rest.first(end).toString();
      rest = rest.sliced(blank > 0 ? end + 1 : end);
    }
    lines << rest.toString();
  }
  return lines;
}

template <class Lines>
int LongestOf(const Lines& lines) {
  qsizetype longest = 0;
  for (const QString& line : lines)
    longest = std::max(longest, line.size());
  return static_cast<int>(longest);
}

// The widths in characters at which no cell and no word of a title is broken.
std::vector<int> NaturalWidths(const ListTable& table) {
  std::vector<int> widths;
  for (const QString& title : table.titles)
    widths.push_back(std::max(1, LongestOf(title.split(u' '))));
  for (const std::vector<TableCell>& row : table.rows) {
    for (std::size_t column = 0; column < std::min(row.size(), widths.size()); ++column)
      widths[column] = std::max(widths[column], LongestOf(LinesOf(row[column].text)));
  }
  return widths;
}

// The characters of a line whose columns are at most `widest` wide.
qint64 TotalWidth(const std::vector<int>& widths, int widest) {
  qint64 total = kGap * std::max<qint64>(0, static_cast<qint64>(widths.size()) - 1);
  for (const int width : widths)
    total += std::min(width, widest);
  return total;
}

// The size at which `characters` fill a line.
double FillingSize_pt(qint64 characters, double room_cm) {
  return room_cm / TextWidth_cm(std::max<qint64>(1, characters), 1);
}

struct Columns {
  std::vector<int> widths;
  double size_pt = 0;
};

Columns ColumnsFor(const std::vector<int>& natural, double room_cm) {
  const double filling = FillingSize_pt(TotalWidth(natural, kLongestUnbroken), room_cm);
  Columns columns{natural, std::clamp(filling, kSmallest_pt, kLargest_pt)};
  // The last character must not be lost to rounding.
  const auto room = static_cast<qint64>(room_cm / TextWidth_cm(1, columns.size_pt) + 1e-6);
  int fits = kNarrowest;
  int tooWide = natural.empty() ? 1 : *std::max_element(natural.begin(), natural.end()) + 1;
  while (tooWide - fits > 1) {
    const int middle = fits + (tooWide - fits) / 2;
    (TotalWidth(natural, middle) <= room ? fits : tooWide) = middle;
  }
  for (int& width : columns.widths)
    width = std::min(width, fits);
  columns.size_pt = std::min(columns.size_pt, FillingSize_pt(TotalWidth(natural, fits), room_cm));
  return columns;
}

// "Seite  1 von 3"; there is no largest number of pages here.
QString NumberOf(std::size_t page, std::size_t pages) {
  return PageText(static_cast<double>(page), std::nullopt) + QString::number(pages);
}

// Folders of the path are left out where there is no room for it. Where its file would be lost as well, the
// path is shown without its middle.
QString TableFooter(const PageLabels& labels, const QString& number, double room_cm) {
  const auto all = static_cast<qsizetype>(room_cm / TextWidth_cm(1, kLargest_pt));
  const QString& path = labels.path;
  QString whole = FooterText(labels.date, number, path);
  if (whole.size() <= all || path.isEmpty()) return whole;
  const auto separator = std::find_if(path.rbegin(), path.rend(), IsSeparator);
  const QString file(separator.base(), path.end() - separator.base());
  const qsizetype room = all - FooterText(labels.date, number, {}).size();
  QString shown = path;
  while (shown.size() > room && shown.size() > 6 && shown.endsWith(file))
    shown = ShortenedPath(shown);
  if (shown.size() <= room && shown.endsWith(file)) return FooterText(labels.date, number, shown);
  const qsizetype half = std::max<qsizetype>(0, room - 1) / 2;
  return FooterText(labels.date, number, path.left(half) + u'…' + path.right(half));
}

// A row of cells, each broken into lines.
struct CellLines {
  std::vector<QStringList> cells;
  int lines = 1;
};

// Lines `first` to `first + count - 1` of a row, or of the heading, at `top`.
struct Part {
  std::size_t row = 0;
  int first = 0;
  int count = 0;
  double top = 0;
};

struct TablePage {
  std::vector<Part> heading;
  double titles = -1;  // their upper edge; negative: none
  std::vector<Part> rows;
};

// The whole document. The pages that are drawn share it.
class TableLayout {
 public:
  TableLayout(const ListTable& table, PageLabels labels, const QSizeF& paper_cm)
      : labels_(std::move(labels)), geometry_(GeometryOn(paper_cm)) {
    columns_ = ColumnsFor(NaturalWidths(table), geometry_.FooterRoom());
    for (std::size_t column = 0; column < columns_.widths.size(); ++column)
      numberColumns_.push_back(IsNumberColumn(table, column));
    const int room = static_cast<int>(geometry_.FooterRoom() / TextWidth_cm(1, kLargest_pt));
    for (const QString& line : table.heading)
      heading_ << Wrapped(line, std::max(1, room));
    std::vector<TableCell> titles;
    for (const QString& title : table.titles)
      titles.push_back({title, false});
    titles_ = Broken(titles);
    for (const std::vector<TableCell>& row : table.rows) {
      rows_.push_back(Broken(row));
      std::vector<bool>& numbers = numbers_.emplace_back();
      for (const TableCell& cell : row)
        numbers.push_back(cell.number);
    }
    Paginate();
  }

  [[nodiscard]] std::size_t Pages() const { return pages_.size(); }

  void Draw(QPainter& painter, std::size_t number) const {
    const TablePage& page = pages_[number];
    painter.save();
    painter.setPen(Qt::black);
    const TextDrawer label(painter, false, kLargest_pt);
    label.Draw(geometry_.HeaderLeft, geometry_.HeaderTop,
               geometry_.ScaleWidth - geometry_.HeaderLeft - kPaperMargin, labels_.header);
    label.Draw(geometry_.FooterLeft, geometry_.FooterTop, geometry_.FooterRoom(),
               TableFooter(labels_, NumberOf(number + 1, pages_.size()), geometry_.FooterRoom()));
    const TextDrawer boldLabel(painter, true, kLargest_pt);
    for (const Part& part : page.heading) {
      const TextDrawer& text = part.first == 0 ? boldLabel : label;
      text.Draw(geometry_.HeaderLeft, part.top, geometry_.FooterRoom(), heading_.at(part.first));
    }
    if (page.titles >= 0) {
      const TextDrawer bold(painter, true, columns_.size_pt);
      DrawCells(bold, titles_, numberColumns_, {0, 0, titles_.lines, page.titles});
      DrawRule(painter, page.titles + titles_.lines * Pitch() + kBelowTitles / 2, Qt::black);
    }
    const TextDrawer plain(painter, false, columns_.size_pt);
    for (const Part& part : page.rows) {
      DrawCells(plain, rows_[part.row], numbers_[part.row], part);
      DrawRule(painter, part.top + part.count * Pitch() + RowAir() / 2, Qt::lightGray);
    }
    painter.restore();
  }

 private:
  [[nodiscard]] double Pitch() const { return columns_.size_pt * kCentimetresPerPoint * kLeading; }
  [[nodiscard]] double RowAir() const { return columns_.size_pt * kCentimetresPerPoint * kRowAir; }
  [[nodiscard]] double Bottom() const { return geometry_.FooterTop - kAboveFooter; }

  [[nodiscard]] CellLines Broken(const std::vector<TableCell>& row) const {
    CellLines broken;
    for (std::size_t column = 0; column < std::min(row.size(), columns_.widths.size()); ++column) {
      broken.cells.push_back(Wrapped(row[column].text, columns_.widths[column]));
      broken.lines = std::max(broken.lines, static_cast<int>(broken.cells.back().size()));
    }
    return broken;
  }

  void Paginate() {
    NewPage();
    constexpr double headingPitch = kLargest_pt * kCentimetresPerPoint * kLeading;
    for (int line = 0; line < heading_.size(); ++line) {
      if (y_ + headingPitch > Bottom() && !pages_.back().heading.empty()) NewPage();
      pages_.back().heading.push_back({0, line, 1, y_});
      y_ += headingPitch;
    }
    if (!heading_.isEmpty()) y_ += kBelowHeading;
    // Titles without a row below them would be lost at the end of a page.
    if (y_ + TitleHeight() + Pitch() > Bottom() && !heading_.isEmpty()) NewPage();
    BeginTable();
    for (std::size_t row = 0; row < rows_.size(); ++row)
      Place(row);
  }

  void NewPage() {
    pages_.emplace_back();
    y_ = geometry_.TreeTop;
  }

  [[nodiscard]] double TitleHeight() const { return titles_.lines * Pitch() + kBelowTitles; }

  void BeginTable() {
    pages_.back().titles = y_;
    y_ += TitleHeight();
  }

  [[nodiscard]] int LinesUpTo(double room) const {
    return static_cast<int>((room - RowAir()) / Pitch() + 1e-6);
  }

  void Place(std::size_t row) {
    const int lines = rows_[row].lines;
    const bool longerThanPage = lines > LinesUpTo(Bottom() - geometry_.TreeTop - TitleHeight());
    int first = 0;
    while (first < lines) {
      int count = LinesUpTo(Bottom() - y_);
      const bool pageIsFull = count < (longerThanPage ? 1 : lines);
      if (pageIsFull && !pages_.back().rows.empty()) {
        NewPage();
        BeginTable();
        count = LinesUpTo(Bottom() - y_);
      }
      // On the smallest paper there is a line on each page all the same.
      count = std::clamp(count, 1, lines - first);
      pages_.back().rows.push_back({row, first, count, y_});
      first += count;
      y_ += count * Pitch() + RowAir();
    }
  }

  void DrawCells(const TextDrawer& text, const CellLines& row, const std::vector<bool>& right,
                 const Part& part) const {
    double x = geometry_.HeaderLeft;
    for (std::size_t column = 0; column < row.cells.size(); ++column) {
      const double width = TextWidth_cm(columns_.widths[column], columns_.size_pt);
      const QStringList& lines = row.cells[column];
      for (int line = 0; line < part.count && part.first + line < lines.size(); ++line) {
        const QString& content = lines.at(part.first + line);
        if (content.isEmpty()) continue;
        text.Draw(x, part.top + line * Pitch(), width, content,
                  right[column] ? Qt::AlignRight : Qt::AlignLeft);
      }
      x += width + TextWidth_cm(kGap, columns_.size_pt);
    }
  }

  void DrawRule(QPainter& painter, double y, const QColor& colour) const {
    painter.save();
    painter.setPen(QPen(colour, kLineWidth));
    painter.drawLine(QPointF(geometry_.HeaderLeft, y),
                     QPointF(geometry_.HeaderLeft + geometry_.FooterRoom(), y));
    painter.restore();
  }

  PageLabels labels_;
  Geometry geometry_;
  Columns columns_;
  QStringList heading_;
  CellLines titles_;
  std::vector<CellLines> rows_;
  std::vector<std::vector<bool>> numbers_;  // of the cells in rows_
  std::vector<bool> numberColumns_;
  std::vector<TablePage> pages_;
  double y_ = 0;  // where the next thing goes while the pages are made
};

constexpr QSizeF kA4_cm(21.0, 29.7);

QString TitleOf(const ListTable& table) {
  return table.heading.value(0, u"KALIVOR"_s);
}

void AddPages(platform::PdfFile& document, const ListTable& table, const PageLabels& labels) {
  const bool landscape = TableOrientation(table) == kLandscape;
  const QPageLayout paper(QPageSize(QPageSize::A4),
                          landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
  for (const platform::Printer::Draw& page :
       TablePages(table, labels, landscape ? kA4_cm.transposed() : kA4_cm))
    document.AddPage(paper, page);
}

}  // namespace

PageLabels LabelsOf(const Module1& module, const PrintInput& input) {
  return {HeaderText(module.VersionList.SelectedText(), module.PlantTypeOffered,
                     module.PlantTypeList.SelectedText()),
          DateText(input.date, input.language), input.statusPath};
}

int TableOrientation(const ListTable& table) {
  const double room = GeometryOn(kA4_cm).FooterRoom();
  const double size_pt = FillingSize_pt(TotalWidth(NaturalWidths(table), kLongestUnbroken), room);
  return size_pt < kSmallestUpright_pt ? kLandscape : kPortrait;
}

std::vector<platform::Printer::Draw> TablePages(const ListTable& table, const PageLabels& labels,
                                                const QSizeF& paper_cm) {
  const auto layout = std::make_shared<const TableLayout>(table, labels, paper_cm);
  std::vector<platform::Printer::Draw> pages;
  for (std::size_t page = 0; page < layout->Pages(); ++page)
    pages.emplace_back([layout, page](QPainter& painter) { layout->Draw(painter, page); });
  return pages;
}

QByteArray TablePdf(const ListTable& table, const PageLabels& labels) {
  platform::PdfFile document(TitleOf(table));
  AddPages(document, table, labels);
  return document.Content();
}

QString SaveTablePdf(const ListTable& table, const PageLabels& labels, const QString& file) {
  platform::PdfFile document(TitleOf(table));
  AddPages(document, table, labels);
  if (document.Save(file)) return {};
  return u"Die Datei kann nicht geschrieben werden: "_s + file;
}

}  // namespace kalivor::print
