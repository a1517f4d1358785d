// Printing into a PDF file on a disk that gets full.
#include "print/FullDisk.h"
#include "print/Poppler.h"
#include "print/WindowSite.h"

namespace kalivor::test {
namespace {

TEST(FullDisk, LeavesTheOldFile) {
  FileSite site;
  QFile old(site.file);
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write("der alte Ausdruck");
  old.close();
  site.module.Kopien = 1;
  site.Open();

  {
    const FullDisk disk(1000);
    site.Press(u"Drucken"_s);
  }
  EXPECT_EQ(TakeBoxes(site.box), QStringList(u"Die Datei kann nicht geschrieben werden: "_s + site.file));
  EXPECT_EQ(site.Files(), QStringList(u"liste.pdf"_s));
  ASSERT_TRUE(old.open(QIODevice::ReadOnly));
  EXPECT_EQ(old.readAll(), "der alte Ausdruck");

  site.Press(u"Drucken"_s);
  EXPECT_EQ(PdfPages(site.file), 3);
  EXPECT_EQ(site.Files(), QStringList(u"liste.pdf"_s)) << "what failed does not count as written";
}

}  // namespace
}  // namespace kalivor::test
