// Header, footer, page number.
#include "print/pages/PageTexts.h"

#include <gtest/gtest.h>

#include "fakes/QtPrinters.h"
#include "fakes/ThrownKind.h"

namespace kalivor::test {
namespace {

using namespace Qt::StringLiterals;
using namespace print;

TEST(PageText, HasABlankOrMinusBeforeThePageNumber) {
  EXPECT_EQ(PageText(1, 3), u"Seite  1 von 3"_s);
  EXPECT_EQ(PageText(12, 60), u"Seite  12 von 60"_s);
  EXPECT_EQ(PageText(0, std::nullopt), u"Seite  0 von "_s);
  EXPECT_EQ(PageText(-1, 3), u"Seite -1 von 3"_s);
  EXPECT_EQ(PageText(1.5, 3), u"Seite  1.5 von 3"_s);
}

TEST(DateText, WritesWeekdayAndMonthOut) {
  const QLocale german(QLocale::German);
  EXPECT_EQ(DateText({2026, 11, 21}, german), u"Samstag, 21 November 2026"_s);
  EXPECT_EQ(DateText({2027, 3, 1}, german), u"Montag, 01 März 2027"_s);
  EXPECT_EQ(DateText({2026, 9, 24}, german), u"Donnerstag, 24 September 2026"_s);
  EXPECT_EQ(DateText({2027, 3, 1}, QLocale(QLocale::French)), u"lundi, 01 mars 2027"_s);
}

TEST(HeaderText, NamesThePlantTypeWhileItsSelectorIsOn) {
  EXPECT_EQ(HeaderText(u"AB1-123.4"_s, true, u"Luft"_s), u"AB1-123.4 Anlagenart: Luft"_s);
  EXPECT_EQ(HeaderText(u"AB1-123.4"_s, true, u""_s), u"AB1-123.4 Anlagenart: "_s);
  EXPECT_EQ(HeaderText(u"AB1-123.4"_s, false, u"Luft"_s), u"AB1-123.4"_s);
}

TEST(FooterText, SeparatesItsPartsByThreeBlanks) {
  EXPECT_EQ(FooterText(u"Heute"_s, u"Seite  1 von 3"_s, u"C:\\x.qpf"_s),
            u"Heute   Seite  1 von 3   C:\\x.qpf"_s);
  EXPECT_EQ(FooterText(u"Heute"_s, u""_s, u""_s), u"Heute      "_s);
}

// --- shortening ---

// All forms of `path` down to the error.
QStringList Steps(QString path) {
  QStringList steps{path};
  while (!ThrownKind([&] { path = ShortenedPath(path); }))
    steps.append(path);
  return steps;
}

TEST(ShortenedPath, LosesAFolderAtATimeAndThenTheName) {
  EXPECT_EQ(Steps(u"C:\\Daten\\Regler\\Werte\\test.qpf"_s),
            (QStringList{u"C:\\Daten\\Regler\\Werte\\test.qpf"_s, u"C:\\...\\Regler\\Werte\\test.qpf"_s,
                         u"C:\\...\\Werte\\test.qpf"_s, u"C:\\...\\test.qpf"_s, u"C:\\..."_s}));
}

TEST(ShortenedPath, TheEndIsAnInvalidArgument) {
  for (const QString& path : {u""_s, u"C:\\"_s, u"C:\\..."_s})
    EXPECT_EQ(ThrownKind([&] { (void)ShortenedPath(path); }), RuntimeError::Kind::InvalidArgument)
        << path.toStdString();
}

TEST(ShortenedPath, KnowsBothSeparators) {
  EXPECT_EQ(Steps(u"/home/anna/werte/test.qpf"_s),
            (QStringList{u"/home/anna/werte/test.qpf"_s, u"/ho.../werte/test.qpf"_s, u"/ho.../test.qpf"_s,
                         u"/ho..."_s}));
}

TEST(ShortenedPath, KeepsTheFirstThreeCharactersOfANetworkPath) {
  EXPECT_EQ(ShortenedPath(u"\\\\server\\freigabe\\test.qpf"_s), u"\\\\s...\\freigabe\\test.qpf"_s);
}

TEST(ShortenedPath, WithoutFoldersOnlyTheDriveIsLeft) {
  EXPECT_EQ(ShortenedPath(u"C:\\einlangername.qpf"_s), u"C:\\..."_s);
}

// --- fitting ---

double Characters(const QString& text) {
  return static_cast<double>(text.size());
}

TEST(FittedFooter, StaysWholeWhenItJustFits) {
  const QString path = u"C:\\Daten\\Werte\\test.qpf"_s;
  const QString whole = FooterText(u"D"_s, u"S"_s, path);
  EXPECT_EQ(FittedFooter(u"D"_s, u"S"_s, path, Characters(whole), Characters), whole);
  EXPECT_EQ(FittedFooter(u"D"_s, u"S"_s, path, Characters(whole) - 1, Characters),
            u"D   S   C:\\...\\Werte\\test.qpf"_s);
}

TEST(FittedFooter, ShortensUntilItFits) {
  const QString path = u"C:\\Daten\\Regler\\Werte\\test.qpf"_s;
  EXPECT_EQ(FittedFooter(u"D"_s, u"S"_s, path, 8 + 21, Characters), u"D   S   C:\\...\\Werte\\test.qpf"_s);
  EXPECT_EQ(FittedFooter(u"D"_s, u"S"_s, path, 8 + 20, Characters), u"D   S   C:\\...\\test.qpf"_s);
  EXPECT_EQ(FittedFooter(u"D"_s, u"S"_s, path, 8 + 6, Characters), u"D   S   C:\\..."_s);
}

TEST(FittedFooter, AnEvenNarrowerOneIsAnError) {
  EXPECT_EQ(ThrownKind([] { (void)FittedFooter(u"D"_s, u"S"_s, u"C:\\a\\b.qpf"_s, 8 + 5, Characters); }),
            RuntimeError::Kind::InvalidArgument);
}

}  // namespace
}  // namespace kalivor::test
