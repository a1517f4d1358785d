// Folder separators of both kinds.
#include "base/Paths.h"

#include <gtest/gtest.h>
#include <QDir>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

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

TEST(SplitPath, SplitsBehindTheLastSeparatorOfEitherKind) {
  const struct {
    QString folder, file;
  } cases[] = {
      {u"C:\\Werte\\"_s, u"a.qpf"_s},
      {u"C:\\"_s, u"x.qpf"_s},
      {u"C:/"_s, u"x.qpf"_s},
      {u"/home/u/"_s, u"a.qpf"_s},
      {u"/"_s, u"a.qpf"_s},
      {u"C:\\Werte/"_s, u"a.qpf"_s},
      {u"/home/u\\"_s, u"a.qpf"_s},
      {u"C:\\Werte\\\\"_s, u"a.qpf"_s},
      {u"\\\\server\\share\\"_s, u"a"_s},
      {u"C:\\Werte\\"_s, u""_s},
  };
  for (const auto& example : cases) {
    const PathParts parts = SplitPath(example.folder + example.file);
    EXPECT_EQ(parts.folder, example.folder);
    EXPECT_EQ(parts.file, example.file);
  }
}

TEST(SplitPath, APathWithoutAFolderIsNone) {
  for (const QString& path : {u"a.qpf"_s, QString(), u"C:a.qpf"_s})
    EXPECT_EQ(test::ThrownKind([&] { (void)SplitPath(path); }), RuntimeError::Kind::InvalidArgument);
}

}  // namespace
}  // namespace kalivor
