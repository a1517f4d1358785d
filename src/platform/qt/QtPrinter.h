// The system's printers, and PDF files in their place.
#pragma once

#include <QPainter>
#include <QPrinter>
#include <memory>

#include "platform/Printer.h"
#include "platform/qt/PdfFile.h"

namespace kalivor::platform {

class QtPrinter final : public Printer {
 public:
  QtPrinter();
  QtPrinter(const QtPrinter&) = delete;
  QtPrinter& operator=(const QtPrinter&) = delete;

  [[nodiscard]] int Orientation() const override;
  void SetOrientation(int orientation) override;
  [[nodiscard]] int PaperSize() const override;
  void SetPaperSize(int paperSize) override;
  [[nodiscard]] std::optional<int> Choose(qint32 flags) override;
  void PrintPage(const std::function<void(QPainter&)>& draw) override;
  void EndDoc() override;
  void AbortDoc() noexcept override;

  /// Prints into a PDF file from now on, until the user chooses something else.
  void UseFile(const QString& path);

 private:
  void UseDefaultPrinter();
  [[nodiscard]] bool PrintsToFile() const { return printer_.outputFormat() == QPrinter::PdfFormat; }

  QPrinter printer_;
  QPainter painter_;              // of the job under way
  std::unique_ptr<PdfFile> pdf_;  // the same when printing to a file
};

}  // namespace kalivor::platform
