// What a text for others does not say.
#include "diagnosis/LeftOut.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

QString Names(const QStringList& names, const QString& text) {
  return Discretion({names, {}}).Of(text);
}
QString Folders(const QStringList& folders, const QString& text) {
  return Discretion({{}, folders}).Of(text);
}

TEST(LeftOut, NothingIsLeftOutByItself) {
  EXPECT_EQ(Discretion({}).Of(u"/home/müller: PC17 & Co."_s), u"/home/müller: PC17 & Co."_s);
}

TEST(LeftOut, NamesGoWhereverTheyStand) {
  EXPECT_EQ(Names({u"müller"_s, u"PC-17"_s}, u"müller, MÜLLER_x@pc-17.firma C:\\Users\\Müller\\a (müller)"_s),
            u"…, …_x@….firma C:\\Users\\…\\a (…)"_s);
}

TEST(LeftOut, ANameThatIsPartOfAWordStays) {
  EXPECT_EQ(Names({u"max"_s}, u"Maximum, Klimax, max, 3max, max3, Max."_s),
            u"Maximum, Klimax, …, 3max, max3, …."_s);
}

TEST(LeftOut, ANameIsNoPattern) {
  EXPECT_EQ(Names({u"a.b(c"_s, u"\\E"_s}, u"axb(c a.b(c \\E \\Q"_s), u"axb(c … … \\Q"_s);
}

TEST(LeftOut, TheLongerNameGoesFirst) {
  EXPECT_EQ(Names({u"pc"_s, u"pc müller"_s}, u"pc müller und pc"_s), u"… und …"_s);
}

TEST(LeftOut, FoldersGoWithEitherKindOfSeparator) {
  EXPECT_EQ(Folders({u"C:\\Users\\Ich\\Regler\\"_s},
                    u"c:\\users\\ich\\regler\\VF.INI C:/Users/Ich/Regler\\\\D1.TXT C:\\Users\\Ich\\Regler"_s),
            u"…\\VF.INI …\\\\D1.TXT …"_s);
  EXPECT_EQ(Folders({u"/home/ich"_s}, u"/home/ich/a /home/ich /home/ichbins/a"_s),
            u"…/a … /home/ichbins/a"_s);
}

TEST(LeftOut, TheInnerFolderGoesFirst) {
  EXPECT_EQ(Folders({u"/home/ich"_s, u"/home/ich/Kunde A"_s}, u"/home/ich/Kunde A/x /home/ich/x"_s),
            u"…/x …/x"_s);
}

TEST(LeftOut, WhatIsEmptyOrARootLeavesEverythingAsItIs) {
  const QString text = u"/dev/ttyUSB0 C:\\x 10 / 20 "_s;
  EXPECT_EQ(
      Discretion({{QString(), u" "_s}, {QString(), u"/"_s, u"C:\\"_s, u"\\\\"_s, u"relativ"_s}}).Of(text),
      text);
}

}  // namespace
}  // namespace kalivor
