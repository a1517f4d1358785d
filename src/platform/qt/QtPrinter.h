// The system's printers, and PDF files in their place.
#pragma once

#include <QPrinter>
#include <vector>

#include "platform/Printer.h"

namespace kalivor::platform {

/// A job is collected as a whole before any of it goes out, because the toolkit cannot take a job back on
/// every system.
class QtPrinter final : public Printer {
 public:
  /// `title` names the document in print queues and PDF files. `fileName` is proposed to a user without a
  /// printer.
  explicit QtPrinter(const QString& title = QStringLiteral("Parameterliste"),
                     const QString& fileName = QStringLiteral("KALIVOR.pdf"));
  QtPrinter(const QtPrinter&) = delete;
  QtPrinter& operator=(const QtPrinter&) = delete;

  [[nodiscard]] int Orientation() const override;
  void SetOrientation(int orientation) override;
  [[nodiscard]] int PaperSize() const override;
  void SetPaperSize(int paperSize) override;
  [[nodiscard]] std::optional<int> Choose(qint32 flags) override;
  void PrintPage(const Draw& draw) override;
  void EndDoc() override;
  [[nodiscard]] QString EndPrinting() override;
  void AbortDoc() noexcept override;

  /// The size of the paper as it lies.
  [[nodiscard]] QSizeF Paper_cm() const;

  /// Prints into a PDF file from now on, until the user chooses something else. The first command replaces
  /// the file; each later one writes another beside it ("liste-2.pdf"), so that none is lost unasked.
  void UseFile(const QString& path);

 private:
  /// Where the pages go.
  struct Target {
    QPrinter::OutputFormat format;
    QString printerName;
    QString file;
    QPageLayout layout;
  };
  [[nodiscard]] Target CurrentTarget() const;
  void Use(const Target& target);
  void UseDefaultPrinter();
  [[nodiscard]] std::optional<int> ChooseFile(const Target& before);
  void Send(const std::vector<Draw>& pages);
  [[nodiscard]] bool PrintsToFile() const { return printer_.outputFormat() == QPrinter::PdfFormat; }

  QPrinter printer_;
  QString fileName_;
  std::vector<Draw> job_;        // the pages of the job under way
  std::vector<Draw> filePages_;  // of ended jobs that go into the same file
  bool fileWritten_ = false;     // since the file was chosen
};

}  // namespace kalivor::platform
