// Folder separators of both kinds.
#include "base/Paths.h"

#include <gtest/gtest.h>
#include <QDir>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

TEST(Paths, BothSlashesSeparate) {
  EXPECT_TRUE(IsSeparator(u'/'));
  EXPECT_TRUE(IsSeparator(u'\\'));
  EXPECT_FALSE(IsSeparator(u':'));
  EXPECT_FALSE(IsSeparator(u' '));
}

TEST(Paths, TheSeparatorIsTheKindInUse) {
  EXPECT_EQ(SeparatorFor(u"C:\\Daten"), u'\\');
  EXPECT_EQ(SeparatorFor(u"a\\b\\c"), u'\\');
}

TEST(Paths, TheSeparatorIsThePlatformsWhereTheTextDoesNotTell) {
  for (const QString& directory : {u""_s, u"Daten"_s, u"/opt/d"_s, u"C:\\Daten/Regler"_s, u"/opt\\d"_s}) {
    EXPECT_EQ(SeparatorFor(directory), QDir::separator()) << directory.toStdString();
  }
}

TEST(Paths, AMissingSeparatorIsAppended) {
  EXPECT_EQ(WithSeparator(u"C:\\Daten"_s), u"C:\\Daten\\"_s);
  EXPECT_EQ(WithSeparator(u"/opt/d"_s), u"/opt/d"_s + QDir::separator());
  EXPECT_EQ(WithSeparator(u"Daten"_s), u"Daten"_s + QDir::separator());
  EXPECT_EQ(WithSeparator(u""_s), QString(QDir::separator()));
}

TEST(Paths, ASeparatorOfEitherKindAtTheEndIsKept) {
  for (const QString& directory : {u"C:\\Daten\\"_s, u"C:\\Daten/"_s, u"/opt/d/"_s, u"/opt/d\\"_s, u"/"_s,
                                   u"\\"_s, u"/opt//"_s, u"C:\\Daten\\\\"_s}) {
    EXPECT_EQ(WithSeparator(directory), directory);
  }
}

}  // namespace
}  // namespace kalivor
