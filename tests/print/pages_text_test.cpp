// The pages as text.
#include "print/pages/PagesText.h"

#include "print/PrintSite.h"

namespace kalivor::test {
namespace {

TEST(PagesText, WritesHeaderLinesAndFooterOfEachPage) {
  PrintSite site;
  site.Add(u"Antrieb"_s);
  site.module.Par[1].Name = u"Drehzahl"_s;
  site.module.Par[1].Wert = 1500;
  site.module.Par[1].Zahl1 = 1;
  site.module.Par[1].Einheit = u"1/m"_s;
  EXPECT_EQ(PagesText(site.core, site.Input()),
            u"=== Seite 1 von 1\n"
            "AB1-123.4 Anlagenart: \n"
            "Anlage\n"
            "  Antrieb\n"
            "    Drehzahl..........................................   150.0 1/m \n"
            "Samstag, 21 November 2026   Seite  1 von 1   C:\\Daten\\test.qpf\n"_s);
}

TEST(PagesText, LandscapeHasTheColumns) {
  PrintSite site;
  site.Add(u"Antrieb"_s);
  site.module.PlantTypeOffered = false;
  const QStringList lines = PagesText(site.core, site.Input(kLandscape)).split(u'\n');
  EXPECT_EQ(lines[1], u"AB1-123.4"_s);
  EXPECT_EQ(lines[2].size(), 104);
  EXPECT_EQ(lines[4].count(u'|'), 3);
}

TEST(PagesText, EveryPageCarriesTheFooterOfTheFirst) {
  PrintSite site;
  site.Fill(57);
  site.module.Kopien = 5;
  const QStringList lines = PagesText(site.core, site.Input()).split(u'\n');
  ASSERT_EQ(lines.size(), 3 + 57 + 3 + 1) << "each page once; the second is empty";
  EXPECT_EQ(lines[60], u"=== Seite 2 von 2"_s);
  EXPECT_EQ(lines[62], lines[59]);
  EXPECT_EQ(lines[62], u"Samstag, 21 November 2026   Seite  1 von 2   C:\\Daten\\test.qpf"_s);
}

}  // namespace
}  // namespace kalivor::test
