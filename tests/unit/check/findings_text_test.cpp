// Findings as the user reads them.
#include "check/FindingsText.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

TEST(SummaryOf, CountsKindsAndFiles) {
  const Finding error{u"A"_s, 1, true, u"x"_s};
  const Finding warning{u"B"_s, 1, false, u"x"_s};
  EXPECT_EQ(SummaryOf({}), u"Keine Beanstandungen"_s);
  EXPECT_EQ(SummaryOf({error}), u"1 Fehler in 1 Datei"_s);
  EXPECT_EQ(SummaryOf({warning}), u"1 Warnung in 1 Datei"_s);
  EXPECT_EQ(SummaryOf({error, warning, error, warning}), u"2 Fehler, 2 Warnungen in 2 Dateien"_s);
  EXPECT_EQ(SeverityText(error), u"Fehler"_s);
  EXPECT_EQ(SeverityText(warning), u"Warnung"_s);
}

}  // namespace
}  // namespace kalivor::test
