// Tables for spreadsheets and browsers, read back by readers that share no code with the writers.
#include "core/ListTable.h"

#include <gtest/gtest.h>
#include <QStringDecoder>
#include <QXmlStreamReader>
#include <vector>

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

using Lines = std::vector<QStringList>;

// RFC 4180 with semicolons: fields, with quotes taken off. Fails for what the standard does not allow.
Lines ReadCsv(const QByteArray& bytes) {
  EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString text = decoder(bytes.sliced(3));
  EXPECT_FALSE(decoder.hasError());
  Lines lines;
  QStringList line;
  for (qsizetype i = 0; i < text.size();) {
    QString field;
    if (text.at(i) == u'"') {
      for (++i; i < text.size(); ++i) {
        if (text.at(i) == u'"') {
          if (i + 1 >= text.size() || text.at(i + 1) != u'"') break;
          ++i;
        }
        field += text.at(i);
      }
      ++i;
    } else {
      for (; i < text.size() && text.at(i) != u';' && text.at(i) != u'\r'; ++i) {
        EXPECT_FALSE(text.at(i) == u'"' || text.at(i) == u'\n') << i;
        field += text.at(i);
      }
    }
    line << field;
    if (i < text.size() && text.at(i) == u';') {
      ++i;
      // A separator at the end of a line is followed by an empty field.
      if (i < text.size() && text.at(i) == u'\r') line << QString();
    }
    if (i < text.size() && text.at(i) == u'\r') {
      EXPECT_EQ(text.mid(i, 2), u"\r\n"_s) << i;
      i += 2;
      lines.push_back(std::exchange(line, {}));
    }
  }
  EXPECT_TRUE(line.isEmpty()) << "the last line has its end too";
  return lines;
}

ListTable OneText(const QString& text) {
  return {{}, {u"Name"_s}, {{{text, false}}}};
}

QString CsvText(const QString& text) {
  const Lines lines = ReadCsv(CsvOf(OneText(text)));
  EXPECT_EQ(lines.size(), 2);
  return lines.size() == 2 ? lines[1].value(0) : QString();
}

const QStringList kFormulas{u"=1+1"_s, u"+49 40"_s,   u"-Grenze"_s, u"@SUM(A1)"_s,
                            u"\t=1"_s, u"\r\n=1+1"_s, u"  -5"_s,    u"=HYPERLINK(\"x\";\"y\")"_s};

TEST(CsvOf, HasHeadingTitlesAndRowsWithCommaInNumbersOnly) {
  const ListTable table{{u"V 3.10"_s, u"Datei: C:\\a;b.par"_s},
                        {u"Nr"_s, u"Name"_s, u"Wert"_s},
                        {{{u"1"_s, true}, {u"Vers. 1.5 Größe €"_s}, {u"-0.50"_s, true}},
                         {{u"2"_s, true}, {u""_s}, {u"1.25"_s, false}}}};
  EXPECT_EQ(CsvOf(table), "\xEF\xBB\xBF" +
                              u"V 3.10\r\n\"Datei: C:\\a;b.par\"\r\n\r\nNr;Name;Wert\r\n"
                              "1;Vers. 1.5 Größe €;-0,50\r\n2;;1.25\r\n"_s.toUtf8());
}

TEST(CsvOf, ATableWithoutHeadingBeginsWithItsTitles) {
  EXPECT_EQ(CsvOf({{}, {u"A"_s, u"B"_s}, {}}),
            "\xEF\xBB\xBF"
            "A;B\r\n");
}

TEST(CsvOf, HostileTextsComeBackAsTheyWere) {
  for (const QString& text :
       {u"a;b"_s, u"sagt \"Halt\""_s, u"\""_s, u"a\r\nb"_s, u"a\nb"_s, u"a\rb"_s, u"a\tb"_s, u" Rand "_s,
        u"\";\r\n\";="_s, QString(), QString(100'000, u'x'), QString(100'000, u'"'), u"ä€😀"_s}) {
    EXPECT_EQ(CsvText(text), text);
  }
}

TEST(CsvOf, ControlCharactersBecomeBlanks) {
  EXPECT_EQ(CsvText(u"a\x0001"
                    "b\x001B[31m\x007F\x0085"
                    "c"_s),
            u"a b [31m  c"_s);
  EXPECT_EQ(CsvText(u"a"_s + QChar(0) + u"b"_s), u"a b"_s);
}

TEST(CsvOf, ATextIsNoFormula) {
  for (const QString& text : kFormulas)
    EXPECT_EQ(CsvText(text), u'\'' + text);
  for (const QString& text : {u"a=1"_s, u"5-3"_s, u"'"_s, u"a@b"_s})
    EXPECT_EQ(CsvText(text), text);
  const Lines lines = ReadCsv(CsvOf({{u"=Datei"_s}, {u"-Titel"_s}, {}}));
  EXPECT_EQ(lines[0], QStringList{u"'=Datei"_s});
  EXPECT_EQ(lines[2], QStringList{u"'-Titel"_s});
}

TEST(CsvOf, ANumberCellIsANumberOnlyWhenItIsOne) {
  const auto field = [](const QString& text) {
    return ReadCsv(CsvOf({{}, {u"Wert"_s}, {{{text, true}}}}))[1][0];
  };
  EXPECT_EQ(field(u"-5"_s), u"-5"_s);
  EXPECT_EQ(field(u"+5.0"_s), u"+5,0"_s);
  EXPECT_EQ(field(u"2147483647"_s), u"2147483647"_s);
  EXPECT_EQ(field(u"nicht gelesen"_s), u"nicht gelesen"_s);
  EXPECT_EQ(field(u"V 1.5"_s), u"V 1.5"_s);
  for (const QString& text : {u"-5+cmd"_s, u"=5"_s, u"-"_s, u"-.5"_s, u"-1.2.3"_s, u"-\u0665"_s})
    EXPECT_EQ(field(text), u'\'' + text);
}

// A page in the spelling of XML, which is what the writer's escaping has to hold against.
struct Page {
  QStringList elements;  // "td.n", "th"
  QStringList texts;     // of cells and lines of the heading
  QString title, language;
};

Page ReadHtml(const QByteArray& bytes) {
  EXPECT_TRUE(bytes.startsWith("<!DOCTYPE html>\n"));
  QByteArray xml = bytes;
  // What HTML does not close.
  for (qsizetype at = xml.indexOf("<meta "); at >= 0; at = xml.indexOf("<meta ", at + 1))
    xml.insert(xml.indexOf('>', at), '/');
  QXmlStreamReader reader(xml);
  Page page;
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    const QString name = reader.name().toString();
    if (name == u"html"_s) page.language = reader.attributes().value(u"lang"_s).toString();
    if (name == u"title"_s) page.title = reader.readElementText();
    if (name == u"th"_s) {
      EXPECT_EQ(reader.attributes().value(u"scope"_s), u"col"_s);
    }
    if (name == u"th"_s || name == u"td"_s || name == u"p"_s) {
      const QString kind = reader.attributes().value(u"class"_s).toString();
      page.elements << (kind.isEmpty() ? name : name + u'.' + kind);
      page.texts << reader.readElementText();
    }
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
  return page;
}

TEST(HtmlOf, IsATableWithHeadingInGerman) {
  const Page page = ReadHtml(HtmlOf(
      {{u"V 3.10"_s, u"Standard"_s},
       {u"Name"_s, u"Wert"_s},
       {{{u"Größe"_s}, {u"-0.50"_s, true}}, {{u"Ort"_s}, {u"Süd"_s}}, {{u"Zeit"_s}, {u"7"_s, true}}}}));
  EXPECT_EQ(page.language, u"de"_s);
  EXPECT_EQ(page.title, u"V 3.10"_s);
  EXPECT_EQ(page.elements, (QStringList{u"p"_s, u"p"_s, u"th"_s, u"th.n"_s, u"td"_s, u"td.n"_s, u"td"_s,
                                        u"td"_s, u"td"_s, u"td.n"_s}));
  EXPECT_EQ(page.texts, (QStringList{u"V 3.10"_s, u"Standard"_s, u"Name"_s, u"Wert"_s, u"Größe"_s, u"-0.50"_s,
                                     u"Ort"_s, u"Süd"_s, u"Zeit"_s, u"7"_s}));
}

TEST(HtmlOf, TextsAreShownAsTheyStand) {
  const QStringList texts{u"<script>alert(1)</script>"_s,
                          u"a & b &amp; \"c\" 'd'"_s,
                          u"</td></table>"_s,
                          u"a\nb\tc"_s,
                          QString(100'000, u'<'),
                          u"ä€😀"_s,
                          u"]]>-->"_s};
  for (const QString& text : texts) {
    const Page page = ReadHtml(HtmlOf({{text}, {text}, {{{text}}}}));
    EXPECT_EQ(page.texts, (QStringList{text, text, text}));
    EXPECT_EQ(page.title, text);
  }
  EXPECT_EQ(ReadHtml(HtmlOf(OneText(u"a\x0001"
                                    "b"_s +
                                    QChar(0))))
                .texts.last(),
            u"a b "_s);
}

TEST(HtmlOf, TakesNothingFromElsewhere) {
  const QByteArray page = HtmlOf(OneText(u"x"_s));
  for (const char* word : {"http:", "https:", "src=", "href=", "url(", "@import"})
    EXPECT_FALSE(page.contains(word)) << word;
}

TEST(HtmlOf, RepeatsTheTitlesOnPaperAndGoesByTheColourScheme) {
  const QByteArray page = HtmlOf(OneText(u"x"_s));
  EXPECT_TRUE(page.contains("display: table-header-group"));
  EXPECT_TRUE(page.contains("prefers-color-scheme: dark"));
}

TEST(ClipboardText, HasTitlesAndALineForEachRow) {
  EXPECT_EQ(ClipboardText({{u"not this"_s},
                           {u"Name"_s, u"Wert"_s},
                           {{{u"Größe 1.5"_s}, {u"-0.50"_s, true}}, {{u""_s}, {u"7"_s, true}}}}),
            u"Name\tWert\nGröße 1.5\t-0,50\n\t7\n"_s);
}

TEST(ClipboardText, NoTextLeavesItsCell) {
  const auto cell = [](const QString& text) {
    const QString all = ClipboardText(OneText(text));
    EXPECT_TRUE(all.startsWith(u"Name\n"_s) && all.endsWith(u'\n'));
    return all.sliced(5).chopped(1);
  };
  EXPECT_EQ(cell(u"a\tb\r\nc\x0001"_s), u"a b  c "_s);
  EXPECT_EQ(cell(u"\"offen"_s), u"\"\"\"offen\""_s);
  EXPECT_EQ(cell(u"5\" Rohr"_s), u"5\" Rohr"_s);
  EXPECT_EQ(cell(QString(100'000, u'\n')), QString(100'000, u' '));
  EXPECT_EQ(cell(u"=1+1"_s), u"'=1+1"_s);
  EXPECT_EQ(cell(u"\n-Grenze"_s), u"' -Grenze"_s);
}

TEST(IsNumberColumn, GoesByMostOfItsCells) {
  const ListTable table{{},
                        {u"A"_s, u"B"_s, u"C"_s},
                        {{{u"1"_s, true}, {u"x"_s}, {QString()}},
                         {{u"2"_s, true}, {u"1"_s, true}, {QString()}},
                         {{u"-"_s}, {QString(), true}, {QString()}}}};
  EXPECT_TRUE(IsNumberColumn(table, 0));
  EXPECT_FALSE(IsNumberColumn(table, 1));
  EXPECT_FALSE(IsNumberColumn(table, 2));
  EXPECT_FALSE(IsNumberColumn(table, 3));
}

}  // namespace
}  // namespace kalivor::test
