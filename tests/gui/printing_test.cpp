// Printing a text, onto the pages of a PDF file.
#include <gtest/gtest.h>
#include <QFile>
#include <QPdfWriter>
#include <QTemporaryDir>

#include "platform/qt/TextPrinter.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;

class TextPrinterTest : public testing::Test {
 protected:
  /// Prints and returns the number of pages, as told and as found in the file.
  int Print(const QString& text) {
    const QString path = folder.filePath(u"report.pdf"_s);
    int pages = 0;
    {
      QPdfWriter device(path);
      device.setPageSize(QPageSize(QPageSize::A4));
      pages = platform::PrintText(device, u"Report"_s, text);
    }
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    EXPECT_EQ(content.count("/Type /Page\n"), pages);
    return pages;
  }

  QTemporaryDir folder;
};

TEST_F(TextPrinterTest, AShortTextTakesOnePage) {
  EXPECT_EQ(Print(u"Empfangen..\r\nEmpfangen beendet\r\n"_s), 1);
}

TEST_F(TextPrinterTest, AnEmptyTextTakesOnePageToo) {
  EXPECT_EQ(Print(QString()), 1);
}

TEST_F(TextPrinterTest, ManyLinesTakeMorePages) {
  QString text;
  for (int i = 0; i < 200; ++i)
    text += u"Zeile %1\r\n"_s.arg(i);
  EXPECT_GE(Print(text), 3);
}

TEST_F(TextPrinterTest, ALongLineGoesOnInTheNext) {
  EXPECT_GE(Print(QString(20000, u'.')), 2);
}

TEST_F(TextPrinterTest, ADeviceThatCannotBeWrittenTakesNone) {
  QPdfWriter device(u"/nicht/vorhanden/report.pdf"_s);
  EXPECT_EQ(platform::PrintText(device, u"Report"_s, u"x"_s), 0);
}

}  // namespace
}  // namespace kalivor::test
