#include "platform/gui/DocumentPages.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextTable>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "platform/gui/PdfFile.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

// In centimetres. The left margin has room for the holes of a file.
constexpr double kLeft = 2.3;
constexpr double kRight = 1.7;
constexpr double kTop = 1.8;
constexpr double kBottom = 2.2;
constexpr double kFooterTop = 1.5;  // above the lower edge of the paper

constexpr double kCentimetresPerInch = 2.54;
constexpr double kCentimetresPerPoint = kCentimetresPerInch / 72;

// Fine enough for every printer, and coarse enough for the toolkit's numbers on some thousand pages.
constexpr int kResolution_dpi = 600;
constexpr double kUnitsPerCentimetre = kResolution_dpi / kCentimetresPerInch;

constexpr double kText_pt = 9.5;
constexpr double kFooter_pt = 8;

// The toolkit's time doubles with each table in another.
constexpr int kMostTablesInEachOther = 6;
constexpr int kMostLines = 60'000;
constexpr std::size_t kMostPages = 5000;

// A border that lies between two rows is drawn as a whole.
constexpr double kBorder = kResolution_dpi / 96.0;

// The toolkit rounds places to less than that.
constexpr double kSlight = 0.5;

QFont PageFont(double size_pt) {
  QFont font;
  font.setFamilies({u"Arial"_s, u"Helvetica"_s, u"sans-serif"_s});
  font.setStyleHint(QFont::SansSerif);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setPointSizeF(size_pt);
  return font;
}

/// What lengths and fonts are measured for: the same for every printer and the screen.
class Measures final : public QPaintDevice {
 public:
  [[nodiscard]] QPaintEngine* paintEngine() const override { return nullptr; }

 protected:
  [[nodiscard]] int metric(PaintDeviceMetric what) const override {
    switch (what) {
      case PdmDpiX:
      case PdmDpiY:
      case PdmPhysicalDpiX:
      case PdmPhysicalDpiY:
        return kResolution_dpi;
      case PdmDevicePixelRatio:
        return 1;
      default:
        return QPaintDevice::metric(what);
    }
  }
};

/// Fetches nothing. Where the toolkit is given nothing in the place of a picture, it looks for a file itself.
class Document final : public QTextDocument {
 public:
  explicit Document(const HtmlDocument& document) : name_(document.pictureName), picture_(document.picture) {}

 protected:
  QVariant loadResource(int type, const QUrl& name) override {
    if (type != ImageResource) return QByteArray("");
    if (!name_.isEmpty() && name.toString() == name_ && !picture_.isNull()) return picture_;
    QImage nothing(1, 1, QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    return nothing;
  }

 private:
  QString name_;
  QImage picture_;
};

/// A part of the document's height, which has no pages yet.
struct Span {
  double top = 0;
  double bottom = 0;
};

struct TableSpan {
  Span all;
  Span head;  // empty: it has none that is repeated
};

// Without recursion, as the page may have any number of them.
int FramesInEachOther(QTextFrame& root) {
  int deepest = 0;
  std::vector<std::pair<QTextFrame*, int>> open{{&root, 0}};
  while (!open.empty()) {
    const auto [frame, depth] = open.back();
    open.pop_back();
    deepest = std::max(deepest, depth);
    for (QTextFrame* child : frame->childFrames())
      open.emplace_back(child, depth + 1);
  }
  return deepest;
}

qint64 LinesOf(const QTextDocument& document) {
  qint64 lines = 0;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    lines += 1 + block.text().count(QChar::LineSeparator);
  return lines;
}

// What must not be cut, and where a page has to end.
class Pieces {
 public:
  Pieces(const QTextDocument& document, double pageHeight)
      : layout_(*document.documentLayout()), pageHeight_(pageHeight) {
    AddFrame(*document.rootFrame());
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
      AddLines(block);
    std::ranges::sort(whole_, {}, &Span::top);
    std::ranges::sort(lines_, {}, &Span::top);
    std::ranges::sort(forced_);
    for (const Span& line : lines_)
      bottom_ = std::max(bottom_, line.bottom);
    for (const Span& span : whole_)
      bottom_ = std::max(bottom_, span.bottom);
  }

  [[nodiscard]] double Bottom() const { return bottom_; }

  /// Where a page ends that begins at `top` and has room for so much: before what would be cut otherwise.
  [[nodiscard]] double EndOf(double top, double room) const {
    double end = top + room;
    const auto forced = std::ranges::upper_bound(forced_, top + kSlight);
    if (forced != forced_.end()) end = std::min(end, *forced);
    for (const std::vector<Span>* spans : {&whole_, &lines_}) {
      const double before = Before(*spans, top, end);
      if (before > top + kSlight) end = before;
    }
    return end;
  }

  /// Where the next page begins after one that ended there: air is left out.
  [[nodiscard]] double BeginAfter(double end) const {
    double begin = bottom_;
    for (const std::vector<Span>* spans : {&whole_, &lines_}) {
      // What is longer than a page goes on.
      const auto next = std::ranges::lower_bound(*spans, end - kSlight, {}, &Span::top);
      if (next != spans->end()) begin = std::min(begin, std::max(end, next->top));
      for (auto at = next; at != spans->begin();) {
        --at;
        if (at->bottom > end + kSlight) return end;
        if (at->top < end - 2 * pageHeight_) break;
      }
    }
    return begin;
  }

  /// The head that is to be repeated on a page that begins there.
  [[nodiscard]] Span HeadAt(double begin) const {
    for (const TableSpan& table : tables_) {
      if (begin > table.head.bottom - kSlight && begin < table.all.bottom - kSlight &&
          table.head.bottom > table.head.top)
        return table.head;
    }
    return {};
  }

 private:
  static double Before(const std::vector<Span>& spans, double top, double end) {
    auto at = std::ranges::lower_bound(spans, end, {}, &Span::top);
    const auto first = std::ranges::lower_bound(spans, top + kSlight, {}, &Span::top);
    while (at != first) {
      --at;
      if (at->bottom > end + kSlight) end = at->top;
    }
    return end;
  }

  void AddFrame(const QTextFrame& frame) {
    double heading = -1;  // the top of headings that wait for what follows
    for (QTextFrame::iterator at = frame.begin(); !at.atEnd(); ++at) {
      Span first;
      if (auto* table = qobject_cast<QTextTable*>(at.currentFrame())) {
        first = AddTable(*table);
      } else if (at.currentFrame() != nullptr) {
        AddFrame(*at.currentFrame());
        first = SpanOf(layout_.frameBoundingRect(at.currentFrame()));
      } else {
        const QTextBlock block = at.currentBlock();
        const QRectF all = layout_.blockBoundingRect(block);
        first = SpanOf(all);
        if (block.layout()->lineCount() > 0) first.bottom = LineIn(all, *block.layout(), 0).bottom();
        if (block.blockFormat().pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore))
          forced_.push_back(first.top);
        if (block.blockFormat().headingLevel() > 0) {
          if (heading < 0) heading = first.top;
          continue;
        }
        // The toolkit puts an empty paragraph between two tables.
        if (block.length() <= 1) continue;
      }
      if (heading >= 0) whole_.push_back({heading, first.bottom});
      heading = -1;
    }
  }

  // Returns the part that a heading stays with: the head and the first row.
  Span AddTable(QTextTable& table) {
    const Span all = SpanOf(layout_.frameBoundingRect(&table));
    if (table.format().pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore))
      forced_.push_back(all.top);
    const std::vector<Span> rows = RowsOf(table, all);
    const int heads = std::min(table.format().headerRowCount(), table.rows() - 1);
    const Span head{all.top, heads > 0 ? rows[static_cast<std::size_t>(heads - 1)].bottom : all.top};
    for (std::size_t row = 0; row < rows.size(); ++row) {
      // Cells that span rows keep them together; their spans are the same then.
      if (row == 0 || rows[row].top > rows[row - 1].top) whole_.push_back(rows[row]);
    }
    const Span first{all.top, rows[static_cast<std::size_t>(std::max(0, heads))].bottom};
    if (heads > 0) whole_.push_back(first);
    // A head that takes half a page is not repeated.
    const bool repeated = head.bottom - head.top < pageHeight_ / 2;
    tables_.push_back({all, repeated ? head : Span{all.top, all.top}});
    return first;
  }

  // The rows fill the table without gaps.
  [[nodiscard]] std::vector<Span> RowsOf(QTextTable& table, const Span& all) const {
    const auto count = static_cast<std::size_t>(table.rows());
    std::vector<double> tops(count, all.bottom);
    std::vector<bool> joined(count, false);
    const double padding = table.format().cellPadding() * kResolution_dpi / 96;
    for (int row = 0; row < table.rows(); ++row) {
      for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        const auto at = static_cast<std::size_t>(cell.row());
        if (cell.row() != row) {
          joined[static_cast<std::size_t>(row)] = true;
          continue;
        }
        const QTextBlock block = cell.firstCursorPosition().block();
        double top = layout_.blockBoundingRect(block).top();
        const auto* inner = cell.begin().currentFrame();
        if (inner != nullptr) top = layout_.frameBoundingRect(const_cast<QTextFrame*>(inner)).top();
        tops[at] = std::min(tops[at], top - padding);
      }
    }
    tops[0] = all.top;
    std::vector<Span> rows;
    for (std::size_t row = 0; row < count; ++row) {
      if (joined[row]) {
        rows.push_back(rows.back());
        continue;
      }
      std::size_t next = row + 1;
      while (next < count && joined[next])
        ++next;
      rows.push_back({tops[row], next < count ? tops[next] : all.bottom});
    }
    return rows;
  }

  void AddLines(const QTextBlock& block) {
    const QRectF all = layout_.blockBoundingRect(block);
    const QTextLayout& lines = *block.layout();
    if (lines.lineCount() == 0) lines_.push_back(SpanOf(all));
    for (int line = 0; line < lines.lineCount(); ++line)
      lines_.push_back(SpanOf(LineIn(all, lines, line)));
  }

  static QRectF LineIn(const QRectF& all, const QTextLayout& lines, int line) {
    return lines.lineAt(line).rect().translated(0, all.top() - lines.boundingRect().top());
  }

  static Span SpanOf(const QRectF& rect) { return {rect.top(), rect.bottom()}; }

  const QAbstractTextDocumentLayout& layout_;
  double pageHeight_;
  std::vector<Span> whole_;  // by their top; to be kept together if that is possible
  std::vector<Span> lines_;  // the same; not to be cut but where one is longer than a page
  std::vector<double> forced_;
  std::vector<TableSpan> tables_;
  double bottom_ = 0;
};

struct Page {
  Span head;
  Span content;
};

/// The whole document. The pages that are drawn share it.
class Layout {
 public:
  Layout(const HtmlDocument& document, const QSizeF& paper_cm)
      : document_(document),
        footer_(document.footer),
        paper_cm_(paper_cm),
        area_cm_(std::max(1.0, paper_cm.width() - kLeft - kRight),
                 std::max(1.0, paper_cm.height() - kTop - kBottom)) {
    document_.setUndoRedoEnabled(false);
    document_.setDocumentMargin(0);
    document_.setDefaultFont(PageFont(kText_pt));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document_.setDefaultTextOption(option);
    document_.setHtml(document.html);
    if (FramesInEachOther(*document_.rootFrame()) > kMostTablesInEachOther) {
      error_ = u"Mehr als %1 Tabellen ineinander."_s.arg(kMostTablesInEachOther);
    } else if (LinesOf(document_) > kMostLines || !Paginate()) {
      error_ = u"Das Protokoll wird zu lang. Bitte weniger Einträge wählen."_s;
    }
  }

  [[nodiscard]] const QString& Error() const { return error_; }
  [[nodiscard]] std::size_t Pages() const { return pages_.size(); }
  [[nodiscard]] QString Text() const { return document_.toPlainText(); }

  void Draw(QPainter& painter, std::size_t number) const {
    const Page& page = pages_[number];
    painter.save();
    painter.translate(kLeft, kTop);
    const double scale = scale_ / kUnitsPerCentimetre;
    painter.scale(scale, scale);
    DrawSpan(painter, page.head);
    painter.translate(0, page.head.bottom - page.head.top);
    DrawSpan(painter, page.content);
    painter.restore();
    DrawFooter(painter, number);
  }

 private:
  bool Paginate() {
    document_.documentLayout()->setPaintDevice(&measures_);
    const double width = area_cm_.width() * kUnitsPerCentimetre;
    document_.setTextWidth(width);
    const double needed = document_.size().width();
    scale_ = needed > width ? width / needed : 1;
    const double height = area_cm_.height() * kUnitsPerCentimetre / scale_;
    const Pieces pieces(document_, height);
    double begin = 0;
    do {
      const Span head = begin > 0 ? pieces.HeadAt(begin) : Span();
      const double end = pieces.EndOf(begin, height - (head.bottom - head.top));
      pages_.push_back({head, {begin, end}});
      begin = pieces.BeginAfter(end);
      if (!std::isfinite(begin) || pages_.size() > kMostPages) return false;
    } while (begin < pieces.Bottom());
    return true;
  }

  // At the painter's origin.
  void DrawSpan(QPainter& painter, const Span& span) const {
    if (span.bottom <= span.top) return;
    painter.save();
    painter.translate(0, -span.top);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = QPalette(Qt::white);
    context.palette.setColor(QPalette::Text, Qt::black);
    const double width = area_cm_.width() * kUnitsPerCentimetre / scale_;
    // What lies beside the span is not to be drawn, where the edge would hide it but a search in the file
    // would find it. The border below a row is its own.
    context.clip = QRectF(-width, span.top + kSlight, 3 * width, span.bottom - span.top - 2 * kSlight);
    painter.setClipRect(QRectF(-kBorder, span.top, width + 2 * kBorder, span.bottom - span.top + kBorder),
                        Qt::IntersectClip);
    document_.documentLayout()->draw(&painter, context);
    painter.restore();
  }

  void DrawFooter(QPainter& painter, std::size_t number) const {
    QFont font = PageFont(kFooter_pt);
    font.setPixelSize(std::max(1, static_cast<int>(kFooter_pt * kCentimetresPerPoint * kUnitsPerCentimetre)));
    const QFontMetricsF metrics(font, &measures_);
    const QString page = u"Seite %1 von %2"_s.arg(number + 1).arg(pages_.size());
    const double width = area_cm_.width() * kUnitsPerCentimetre;
    const double free = width - metrics.horizontalAdvance(page) - 2 * metrics.averageCharWidth();
    QString shown = footer_;
    for (QChar& c : shown) {
      if (c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0)) c = u' ';
    }
    painter.save();
    painter.translate(kLeft, paper_cm_.height() - kFooterTop);
    painter.scale(1 / kUnitsPerCentimetre, 1 / kUnitsPerCentimetre);
    painter.setPen(Qt::black);
    painter.setFont(font);
    const QRectF line(0, 0, width, metrics.height());
    painter.drawText(line, Qt::AlignLeft | Qt::TextSingleLine,
                     metrics.elidedText(shown, Qt::ElideRight, free));
    painter.drawText(line, Qt::AlignRight | Qt::TextSingleLine, page);
    painter.restore();
  }

  Measures measures_;
  Document document_;
  QString footer_;
  QSizeF paper_cm_;
  QSizeF area_cm_;
  double scale_ = 1;
  std::vector<Page> pages_;
  QString error_;
};

}  // namespace

DocumentLayout DocumentPages(const HtmlDocument& document, const QSizeF& paper_cm) {
  const auto layout = std::make_shared<const Layout>(document, paper_cm);
  if (!layout->Error().isEmpty()) return {{}, {}, layout->Error()};
  DocumentLayout paged{{}, layout->Text(), {}};
  for (std::size_t page = 0; page < layout->Pages(); ++page)
    paged.pages.emplace_back([layout, page](QPainter& painter) { layout->Draw(painter, page); });
  return paged;
}

QByteArray DocumentPdf(const QString& title, const DocumentLayout& onA4) {
  PdfFile file(title);
  for (const PageDrawing& page : onA4.pages)
    file.AddPage(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()), page);
  return file.Content();
}

}  // namespace kalivor::platform
