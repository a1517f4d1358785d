// A PDF document that is written to its file in one piece.
#pragma once

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <functional>
#include <memory>

namespace kalivor::platform {

/// Pages of A4. Needs a QGuiApplication.
class PdfFile {
 public:
  PdfFile();
  PdfFile(const PdfFile&) = delete;
  PdfFile& operator=(const PdfFile&) = delete;

  /// Appends a page. `draw` gets a painter in centimetres, the origin at the upper left corner of the paper.
  void AddPage(bool landscape, const std::function<void(QPainter&)>& draw);

  /// Writes the file; there must be a page, and nothing can be added afterwards. False when it cannot be
  /// written: a file that was there before stays as it was, and no other is left behind.
  [[nodiscard]] bool Save(const QString& path);

 private:
  QBuffer content_;
  QPdfWriter writer_;
  QPainter painter_;
};

}  // namespace kalivor::platform
