#include "print/painter/PdfPrint.h"

#include <iostream>

#include "platform/gui/PdfFile.h"
#include "print/painter/PagePainter.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

/// Collects the pages that it is to print, of all jobs, in one document.
class PdfPages final : public PreviewPages {
 public:
  using PreviewPages::PreviewPages;

  int printed = 0;

  [[nodiscard]] bool Save(const QString& path) { return document_.Save(path); }

 protected:
  void PrintForm() override {
    const PageView page = View();
    const bool landscape = page.geometry.Orientation == kLandscape;
    const QPageLayout paper(QPageSize(QPageSize::A4),
                            landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
    document_.AddPage(paper, [&](QPainter& painter) { DrawPage(painter, page); });
    ++printed;
  }

 private:
  platform::PdfFile document_{u"Parameterliste"_s};
};

// Standard error is for the program's own messages, not for the toolkit's remarks on its surroundings.
void DropRemarks(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::cerr << message.toStdString() << '\n';
}

}  // namespace

std::unique_ptr<QGuiApplication> NewPdfApplication(int& argc, char** argv, const char* platform) {
  qputenv("QT_QPA_PLATFORM", platform);
  qInstallMessageHandler(DropRemarks);
  return std::make_unique<QGuiApplication>(argc, argv);
}

QString PrintPdf(Core& core, const PdfRequest& request) {
  NoPrinter printer(request.input.orientation);
  PdfPages pages(WorldOf(core, printer, request.input));
  core.module.Kopien = request.copies;
  // As the window does: once when it is made, and once when it is shown.
  pages.Initialize_fPP();
  pages.Initialize_fPP();
  if (!request.page) {
    pages.CommandDrucken();
  } else {
    const int last = pages.MaxPage.value_or(0);
    if (*request.page < 1 || *request.page > last)
      return u"Keine Seite von 1 bis %1: %2"_s.arg(last).arg(*request.page);
    // As if the user had turned to it; printing lays it out anew.
    pages.Page = *request.page;
    pages.selectPage();
    pages.CommandSeiteDrucken();
  }
  if (pages.printed == 0 || pages.Save(request.file)) return {};
  return u"Die Datei kann nicht geschrieben werden: "_s + request.file;
}

}  // namespace kalivor::print
