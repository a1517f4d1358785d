// The program's printer, with a file to print into.
#pragma once

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

#include "fakes/QtPrinters.h"
#include "platform/qt/QtPrinter.h"

namespace kalivor::test {

using namespace Qt::StringLiterals;

struct PrinterSite {
  QTemporaryDir folder;
  QString file = folder.filePath(u"druck.pdf"_s);
  platform::QtPrinter printer;

  PrinterSite() { printer.UseFile(file); }

  void Print(const QString& text) {
    printer.PrintPage([text](QPainter& painter) {
      // A font of 1 cm, on a painter in centimetres.
      QFont font;
      font.setPixelSize(100);
      painter.setFont(font);
      painter.translate(2, 5);
      painter.scale(0.01, 0.01);
      painter.drawText(QPointF(0, 0), text);
    });
  }
};

}  // namespace kalivor::test
