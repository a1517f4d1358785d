// A page of HTML on paper: broken into pages, and drawing them.
#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>
#include <functional>
#include <vector>

class QPainter;

namespace kalivor::platform {

struct HtmlDocument {
  QString html;         ///< nothing that it names is fetched from anywhere, but for the picture
  QString pictureName;  ///< the address by which it names the picture
  QImage picture = {};
  QString footer;  ///< at the left end of each page's last line; the number of the page is at its right
};

using PageDrawing = std::function<void(QPainter& painter)>;

/// A document's pages, or why there are none.
struct DocumentLayout {
  std::vector<PageDrawing> pages;
  QString text;   ///< what a screen reader reads out
  QString error;  ///< German; "" where there are pages
};

/// The pages, at least one, for paper of that size. A line of text, a picture and the row of a table stay on
/// one page, as far as they are not longer than it; a heading stays with what follows it. The head of a table
/// stands on each of its pages. What is too wide is made smaller. Each page draws itself on a painter in
/// centimetres, the origin at the upper left corner of the paper. What would take very long is refused: too
/// many lines, tables in each other in too many layers. Needs a QGuiApplication.
[[nodiscard]] DocumentLayout DocumentPages(const HtmlDocument& document, const QSizeF& paper_cm);

/// Writes the pages for upright A4 into a PDF document; empty where there are none. Needs a QGuiApplication.
[[nodiscard]] QByteArray DocumentPdf(const QString& title, const DocumentLayout& onA4);

inline constexpr QSizeF kUprightA4_cm(21.0, 29.7);

}  // namespace kalivor::platform
