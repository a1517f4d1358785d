// A PDF document that is written to its file in one piece.
#pragma once

#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <functional>
#include <memory>

namespace kalivor::platform {

/// Needs a QGuiApplication.
class PdfFile {
 public:
  explicit PdfFile(const QString& title);
  PdfFile(const PdfFile&) = delete;
  PdfFile& operator=(const PdfFile&) = delete;

  /// Appends a page on `paper`, whose margins do not count. `draw` gets a painter in centimetres, the origin
  /// at the upper left corner of the paper.
  void AddPage(const QPageLayout& paper, const std::function<void(QPainter&)>& draw);

  /// The whole document; nothing can be added afterwards. Empty when a page is missing, or there is none.
  [[nodiscard]] QByteArray Content();

  /// Writes the file; nothing can be added afterwards. False when it cannot be written, or there is no page:
  /// a file that was there before stays as it was, and no other is left behind.
  [[nodiscard]] bool Save(const QString& path);

 private:
  QBuffer content_;
  QPdfWriter writer_;
  QPainter painter_;
  bool complete_ = true;  // no page is missing
};

}  // namespace kalivor::platform
