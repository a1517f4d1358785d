#include "platform/qt/QtPrinter.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibrary>
#include <QOperatingSystemVersion>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gui/PdfFile.h"

using namespace Qt::StringLiterals;

namespace kalivor::platform {
namespace {

constexpr double kCentimetresPerInch = 2.54;

// Any paper but A4.
constexpr int kOtherPaper = 256;

// `path` with the first number before its suffix that no file has: "liste-2.pdf".
QString NumberedFile(const QString& path) {
  const QFileInfo file(path);
  const QString suffix = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
  for (int number = 2;; ++number) {
    const QString name = file.completeBaseName() + u'-' + QString::number(number) + suffix;
    QString candidate = file.dir().filePath(name);
    if (!QFileInfo(candidate).isSymLink() && !QFileInfo::exists(candidate)) return candidate;
  }
}

// Where to propose a PDF file of that name: in the user's documents, or where there is no such folder, at
// home.
QString ProposedFile(const QString& name) {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QDir(QFileInfo(documents).isDir() ? documents : QDir::homePath()).filePath(name);
}

// Why the printing system has not taken the job that was just sent off, in its own words; nothing when it
// has, or does not tell. The toolkit keeps this to itself; the library that it has sent the job with tells.
std::optional<QString> RefusedJob() {
#ifdef Q_OS_UNIX
  constexpr int kLastSuccess = 0xFF;
  QLibrary cups(u"cups"_s, 2);
  const auto lastError = reinterpret_cast<int (*)()>(cups.resolve("cupsLastError"));
  const auto lastErrorText = reinterpret_cast<const char* (*)()>(cups.resolve("cupsLastErrorString"));
  if (lastError == nullptr || lastErrorText == nullptr) return std::nullopt;
  const int error = lastError();
  if (error < 0 || error > kLastSuccess) return QString::fromUtf8(lastErrorText());
#endif
  return std::nullopt;
}

}  // namespace

QtPrinter::QtPrinter(const QString& title, const QString& fileName)
    : printer_(QPrinter::HighResolution), fileName_(fileName) {
  printer_.setDocName(title);
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

QSizeF QtPrinter::Paper_cm() const {
  constexpr double kMillimetresPerCentimetre = 10;
  return printer_.pageLayout().fullRect(QPageLayout::Millimeter).size() / kMillimetresPerCentimetre;
}

void QtPrinter::UseFile(const QString& path) {
  printer_.setOutputFormat(QPrinter::PdfFormat);
  printer_.setOutputFileName(path);
  fileWritten_ = false;
}

QtPrinter::Target QtPrinter::CurrentTarget() const {
  return {printer_.outputFormat(), printer_.printerName(), printer_.outputFileName(), printer_.pageLayout()};
}

void QtPrinter::Use(const Target& target) {
  printer_.setOutputFormat(target.format);
  if (target.format == QPrinter::NativeFormat) {
    printer_.setOutputFileName(QString());
    printer_.setPrinterName(target.printerName);
  } else {
    printer_.setOutputFileName(target.file);
  }
  printer_.setPageLayout(target.layout);
}

void QtPrinter::UseDefaultPrinter() {
  const int orientation = Orientation();
  const QPrinterInfo standard = QPrinterInfo::defaultPrinter();
  if (!standard.isNull()) {
    printer_.setOutputFormat(QPrinter::NativeFormat);
    printer_.setOutputFileName(QString());
    printer_.setPrinterName(standard.printerName());
  } else if (QPrinterInfo::availablePrinterNames().isEmpty()) {
    printer_.setOutputFormat(QPrinter::PdfFormat);
    if (printer_.outputFileName().isEmpty()) printer_.setOutputFileName(ProposedFile(fileName_));
  }
  SetOrientation(orientation);
}

// Where the dialog of the system knows printers only, and there are none.
std::optional<int> QtPrinter::ChooseFile(const Target& before) {
  const QString path = QFileDialog::getSaveFileName(QApplication::activeWindow(), u"Drucken in PDF-Datei"_s,
                                                    printer_.outputFileName(), u"PDF (*.pdf)"_s);
  if (path.isEmpty()) {
    Use(before);
    return std::nullopt;
  }
  UseFile(QDir::toNativeSeparators(path));
  return 1;
}

std::optional<int> QtPrinter::Choose(qint32 flags) {
  const Target before = CurrentTarget();
  UseDefaultPrinter();
  if (PrintsToFile() && QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows)
    return ChooseFile(before);
  QPrintDialog dialog(&printer_, QApplication::activeWindow());
  dialog.setObjectName(u"CDlg"_s);
  // Page ranges and collating are the program's own business.
  dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, (flags & kNoSelection) == 0);
  if (dialog.exec() != QDialog::Accepted) {
    Use(before);
    return std::nullopt;
  }
  fileWritten_ = false;
  const int copies = printer_.copyCount();
  // The program repeats the pages itself; the device would multiply the copies.
  printer_.setCopyCount(1);
  return copies;
}

void QtPrinter::PrintPage(const Draw& draw) {
  job_.push_back(draw);
}

void QtPrinter::EndDoc() {
  if (job_.empty()) return;
  const std::vector<Draw> pages = std::exchange(job_, {});
  if (PrintsToFile()) {
    filePages_.insert(filePages_.end(), pages.begin(), pages.end());
  } else {
    Send(pages);
  }
}

void QtPrinter::Send(const std::vector<Draw>& pages) {
  QPainter painter;
  bool complete = printer_.isValid() && painter.begin(&printer_);
  if (!complete) throw RuntimeError(RuntimeError::Kind::MissingObject, u"Der Drucker ist nicht bereit."_s);
  painter.scale(printer_.logicalDpiX() / kCentimetresPerInch, printer_.logicalDpiY() / kCentimetresPerInch);
  for (std::size_t page = 0; page < pages.size(); ++page) {
    if (page > 0) complete = printer_.newPage();
    if (!complete) break;
    painter.save();
    pages[page](painter);
    painter.restore();
  }
  if (!complete) printer_.abort();
  complete = painter.end() && complete && printer_.printerState() != QPrinter::Error;
  const std::optional<QString> refusal = RefusedJob();
  if (complete && !refusal) return;
  QString text = u"Der Drucker hat den Auftrag nicht angenommen: "_s + printer_.printerName();
  if (!refusal.value_or(QString()).isEmpty()) text += u"\r\n"_s + *refusal;
  throw RuntimeError(RuntimeError::Kind::FileError, text);
}

QString QtPrinter::EndPrinting() {
  if (filePages_.empty()) return {};
  const std::vector<Draw> pages = std::exchange(filePages_, {});
  PdfFile pdf(printer_.docName());
  for (const Draw& page : pages)
    pdf.AddPage(printer_.pageLayout(), page);
  const QString chosen = printer_.outputFileName();
  QString path = fileWritten_ ? NumberedFile(chosen) : chosen;
  if (!pdf.Save(path)) {
    throw RuntimeError(RuntimeError::Kind::FileError, u"Die Datei kann nicht geschrieben werden: "_s + path);
  }
  fileWritten_ = true;
  return path;
}

void QtPrinter::AbortDoc() noexcept {
  job_.clear();
  filePages_.clear();
}

}  // namespace kalivor::platform
