// What a user types for a day, a month or a year is understood, and nothing else is.
#include "history/DateText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

TEST(DateText, ADayAMonthAndAYearHaveTheirFirstAndLastDays) {
  EXPECT_EQ(DaysOf(u"4.3.2026"), (Days{QDate(2026, 3, 4), QDate(2026, 3, 4)}));
  EXPECT_EQ(DaysOf(u" 04.03.26 "), (Days{QDate(2026, 3, 4), QDate(2026, 3, 4)}));
  EXPECT_EQ(DaysOf(u"2.2024"), (Days{QDate(2024, 2, 1), QDate(2024, 2, 29)}));
  EXPECT_EQ(DaysOf(u"2026"), (Days{QDate(2026, 1, 1), QDate(2026, 12, 31)}));
}

TEST(DateText, NothingIsNoLimit) {
  EXPECT_EQ(DaysOf(u""), Days());
  EXPECT_EQ(DaysOf(u"  "), Days());
}

TEST(DateText, WhatIsNoDateIsNone) {
  for (const QStringView text :
       {u"31.2.2026"_s, u"13.2026"_s, u"heute"_s, u"4.3."_s, u"4.3.2026.1"_s, u"-4.3.2026"_s, u"4,3,2026"_s,
        u"99999"_s, u"٤.٣.٢٠٢٦"_s, u"0.0.0"_s, u"."_s})
    EXPECT_EQ(DaysOf(text), std::nullopt) << text.toString().toStdString();
}

}  // namespace
}  // namespace kalivor::history
