#include "platform/qt/QtPrinter.h"

#include <QApplication>
#include <QDir>
#include <QPageLayout>
#include <QPrintDialog>
#include <QPrinterInfo>
#include <QStandardPaths>

#include "platform/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr double kCentimetresPerInch = 2.54;

// Any paper but A4.
constexpr int kOtherPaper = 256;

// What the dialog's flags say about it: the choice of a selected part of the document is off.
constexpr qint32 kNoSelection = 4;

QString DefaultFile() {
  return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).filePath(u"KALIVOR.pdf"_s);
}

}  // namespace

QtPrinter::QtPrinter() : printer_(QPrinter::HighResolution) {
  printer_.setDocName(u"Parameterliste"_s);
  printer_.setCreator(u"KALIVOR"_s);
  printer_.setFullPage(true);
}

int QtPrinter::Orientation() const {
  return printer_.pageLayout().orientation() == QPageLayout::Landscape ? kLandscape : kPortrait;
}

void QtPrinter::SetOrientation(int orientation) {
  printer_.setPageOrientation(orientation == kLandscape ? QPageLayout::Landscape : QPageLayout::Portrait);
}

int QtPrinter::PaperSize() const {
  return printer_.pageLayout().pageSize().id() == QPageSize::A4 ? kPaperA4 : kOtherPaper;
}

void QtPrinter::SetPaperSize(int paperSize) {
  if (paperSize == kPaperA4) printer_.setPageSize(QPageSize(QPageSize::A4));
}

void QtPrinter::UseFile(const QString& path) {
  printer_.setOutputFormat(QPrinter::PdfFormat);
  printer_.setOutputFileName(path);
}

void QtPrinter::UseDefaultPrinter() {
  const int orientation = Orientation();
  const QPrinterInfo standard = QPrinterInfo::defaultPrinter();
  if (!standard.isNull()) {
    printer_.setOutputFormat(QPrinter::NativeFormat);
    printer_.setOutputFileName(QString());
    printer_.setPrinterName(standard.printerName());
  } else if (QPrinterInfo::availablePrinterNames().isEmpty()) {
    UseFile(printer_.outputFileName().isEmpty() ? DefaultFile() : printer_.outputFileName());
  }
  SetOrientation(orientation);
}

std::optional<int> QtPrinter::Choose(qint32 flags) {
  UseDefaultPrinter();
  QPrintDialog dialog(&printer_, QApplication::activeWindow());
  dialog.setObjectName(u"CDlg"_s);
  // Page ranges and collating are the program's own business.
  dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, (flags & kNoSelection) == 0);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  const int copies = printer_.copyCount();
  // The program repeats the pages itself; the device would multiply the copies.
  printer_.setCopyCount(1);
  return copies;
}

void QtPrinter::PrintPage(const std::function<void(QPainter&)>& draw) {
  if (PrintsToFile()) {
    if (!pdf_) pdf_ = std::make_unique<PdfFile>();
    pdf_->AddPage(Orientation() == kLandscape, draw);
    return;
  }
  const bool ready =
      painter_.isActive() ? printer_.newPage() : printer_.isValid() && painter_.begin(&printer_);
  const QPrinter::PrinterState state = printer_.printerState();
  if (!ready || state == QPrinter::Error || state == QPrinter::Aborted)
    throw RuntimeError(RuntimeError::Kind::MissingObject, u"Der Drucker ist nicht bereit."_s);
  painter_.save();
  painter_.scale(printer_.logicalDpiX() / kCentimetresPerInch, printer_.logicalDpiY() / kCentimetresPerInch);
  draw(painter_);
  painter_.restore();
}

void QtPrinter::EndDoc() {
  if (pdf_) {
    const std::unique_ptr<PdfFile> finished = std::move(pdf_);
    if (!finished->Save(printer_.outputFileName())) {
      throw RuntimeError(RuntimeError::Kind::FileError,
                         u"Die Datei kann nicht geschrieben werden: "_s + printer_.outputFileName());
    }
  } else if (painter_.isActive()) {
    if (!painter_.end() || printer_.printerState() == QPrinter::Error)
      throw RuntimeError(RuntimeError::Kind::FileError, u"Der Drucker hat den Auftrag nicht angenommen."_s);
  }
}

void QtPrinter::AbortDoc() noexcept {
  pdf_.reset();
  if (!painter_.isActive()) return;
  printer_.abort();
  painter_.end();
}

}  // namespace kalivor::platform
