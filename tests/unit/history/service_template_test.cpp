// Pages of HTML with places for texts and rows.
#include "history/ServiceTemplate.h"

#include <gtest/gtest.h>

#include "history/ServiceReport.h"

using namespace Qt::StringLiterals;

namespace kalivor::history {
namespace {

constexpr QStringView kInnerTexts[] = {u"wort", u"eigen"};
constexpr QStringView kOuterTexts[] = {u"zeit", u"eigen"};
constexpr TemplateList kInner[] = {{u"teile", {kInnerTexts}}};
constexpr QStringView kTexts[] = {u"titel", u"leer", u"eigen"};
constexpr TemplateList kLists[] = {{u"zeilen", {kOuterTexts, kInner}}, {u"keine", {kInnerTexts}}};
constexpr TemplateScope kScope{kTexts, kLists};

TemplateRow Values() {
  const TemplateRow first{{u"8:00"_s, u"a"_s}, {{{{u"x"_s, u"p"_s}}, {{u"y"_s, u"q"_s}}}}};
  const TemplateRow second{{u"9:00"_s, u"b"_s}, {{}}};
  return {{u"Bericht"_s, QString(), u"ganz"_s}, {{first, second}, {}}};
}

QString Rendered(const QByteArray& html, const TemplateRow& values = Values()) {
  const ServiceTemplate::Parsed parsed = ServiceTemplate::Parse(html, kScope);
  EXPECT_EQ(parsed.error.toStdString(), "") << html.toStdString();
  const ServiceTemplate::Page page = parsed.page.Render(values);
  EXPECT_EQ(page.error.toStdString(), "");
  return page.html;
}

std::string Error(const QByteArray& html) {
  return ServiceTemplate::Parse(html, kScope).error.toStdString();
}

TEST(ServiceTemplate, TextWithoutMarksStaysAsItIs) {
  EXPECT_EQ(Rendered("<p>Grüße } }} { \r\n</p>"), u"<p>Grüße } }} { \r\n</p>"_s);
  EXPECT_EQ(Rendered(""), QString());
  EXPECT_EQ(Rendered("\xEF\xBB\xBF<p>"), u"<p>"_s) << "the mark of UTF-8 is no text";
}

TEST(ServiceTemplate, PutsInTexts) {
  EXPECT_EQ(Rendered("<b>{{titel}}</b>{{ titel }}|{{leer}}|"), u"<b>Bericht</b>Bericht||"_s);
}

TEST(ServiceTemplate, RepeatsForEachRow) {
  EXPECT_EQ(Rendered("{{#zeilen}}[{{zeit}}]{{/zeilen}}{{#keine}}x{{/keine}}."), u"[8:00][9:00]."_s);
}

TEST(ServiceTemplate, ARowsOwnNamesCountBeforeThoseAroundIt) {
  EXPECT_EQ(
      Rendered("{{eigen}}{{#zeilen}}({{eigen}}{{titel}}{{#teile}}{{eigen}}{{zeit}}{{/teile}}){{/zeilen}}"),
      u"ganz(aBerichtp8:00q8:00)(bBericht)"_s);
}

TEST(ServiceTemplate, ShowsWhatIsForSomethingOrForNothing) {
  EXPECT_EQ(Rendered("{{?titel}}a{{/titel}}{{^titel}}b{{/titel}}{{?leer}}c{{/leer}}{{^leer}}d{{/leer}}"),
            u"ad"_s);
  EXPECT_EQ(
      Rendered("{{?zeilen}}a{{/zeilen}}{{^zeilen}}b{{/zeilen}}{{?keine}}c{{/keine}}{{^keine}}d{{/keine}}"),
      u"ad"_s)
      << "once, however many rows there are";
  EXPECT_EQ(Rendered("{{#zeilen}}{{?teile}}+{{/teile}}{{^teile}}-{{/teile}}{{?keine}}k{{/keine}}{{/zeilen}}"),
            u"+-"_s);
}

// Whatever stands in the history is shown, and does nothing.
TEST(ServiceTemplate, ATextIsNeverTakenAsHtmlOrAsAMark) {
  TemplateRow values = Values();
  values.texts[0] = u"<script>\"x\" & 'y'</script>{{leer}}{{#zeilen}}"_s;
  EXPECT_EQ(Rendered("{{titel}}", values),
            u"&lt;script&gt;&quot;x&quot; &amp; 'y'&lt;/script&gt;{{leer}}{{#zeilen}}"_s);
  values.texts[0] =
      u"a\r\nb\nc\rd\x01"
      "e\x1b\x7f"_s;
  EXPECT_EQ(Rendered("{{titel}}", values), u"a<br>b<br>c<br>d e  "_s);
  values.texts[0] = QString(65536, u'<');
  EXPECT_EQ(Rendered("{{titel}}", values).size(), 4 * 65536);
}

TEST(ServiceTemplate, WhatIsMissingInTheValuesIsEmpty) {
  EXPECT_EQ(Rendered("{{titel}}{{#zeilen}}x{{/zeilen}}{{^zeilen}}y{{/zeilen}}", {}), u"y"_s);
}

TEST(ServiceTemplate, SaysWithItsLineWhatIsWrong) {
  EXPECT_EQ(Error("a\n{{titl}}"), "Zeile 2: {{titl}} gibt es hier nicht.");
  EXPECT_EQ(Error("\n\n{{zeit}}"), "Zeile 3: {{zeit}} gibt es hier nicht.") << "not outside of its row";
  EXPECT_EQ(Error("{{}}"), "Zeile 1: {{}} gibt es hier nicht.");
  EXPECT_EQ(Error("{{titel\n}}\n{{titel"), "Zeile 3: Zu {{ fehlt }}.");
  EXPECT_EQ(Error("{{" + QByteArray(80, 'x') + "}}"), "Zeile 1: Zu {{ fehlt }}.");
  EXPECT_EQ(Error("\n{{?titel}}\n\n"), "Zeile 2: {{?titel}} wird nicht geschlossen: Es fehlt {{/titel}}.");
  EXPECT_EQ(Error("{{/titel}}"), "Zeile 1: {{/titel}} schließt nichts.");
  EXPECT_EQ(Error("{{?titel}}\n{{#zeilen}}\n{{/titel}}{{/zeilen}}"),
            "Zeile 3: {{/titel}} passt nicht: Offen ist {{#zeilen}} aus Zeile 2.");
  EXPECT_EQ(Error("{{zeilen}}"),
            "Zeile 1: {{zeilen}} ist eine Liste, kein Text: {{#zeilen}}…{{/zeilen}} wiederholt, was "
            "dazwischen steht.");
  EXPECT_EQ(Error("{{#titel}}{{/titel}}"),
            "Zeile 1: {{#titel}} ist ein Text, keine Liste: {{?titel}}…{{/titel}} zeigt, was dazwischen "
            "steht, wenn er "
            "nicht leer ist.");
  EXPECT_EQ(Error("ab\n\xFF\n"), "Zeile 2: Das ist kein Text in UTF-8.");
  EXPECT_EQ(Error("ab\n\xC3"), "Zeile 2: Das ist kein Text in UTF-8.") << "cut off";
  EXPECT_EQ(Error(QByteArray(ServiceTemplate::kLargest_bytes + 1, 'x')),
            "Die Vorlage ist größer als 256 KB.");
  EXPECT_EQ(Error(QByteArray(ServiceTemplate::kLargest_bytes, 'x')), "");
}

TEST(ServiceTemplate, SectionsInEachOtherHaveAnEnd) {
  const auto nested = [](int depth) {
    return QByteArray("{{?titel}}").repeated(depth) + QByteArray("{{/titel}}").repeated(depth);
  };
  EXPECT_EQ(Error(nested(ServiceTemplate::kDeepest)), "");
  EXPECT_EQ(Error(nested(ServiceTemplate::kDeepest + 1)), "Zeile 1: Mehr als 8 Abschnitte ineinander.");
}

// Else a page could become as long as the rows multiplied with each other.
TEST(ServiceTemplate, AListIsNotRepeatedInTheRowsOfAnother) {
  EXPECT_EQ(Error("{{#zeilen}}\n{{#keine}}{{/keine}}{{/zeilen}}"),
            "Zeile 2: {{#keine}} kann hier nicht wiederholt werden: Die Liste gehört nicht zu dieser Zeile.");
  EXPECT_EQ(
      Error("{{#zeilen}}{{#zeilen}}{{/zeilen}}{{/zeilen}}"),
      "Zeile 1: {{#zeilen}} kann hier nicht wiederholt werden: Die Liste gehört nicht zu dieser Zeile.");
}

TEST(ServiceTemplate, APageHasALargestLength) {
  const ServiceTemplate::Parsed parsed =
      ServiceTemplate::Parse("{{#zeilen}}" + QByteArray(1000, 'x') + "{{/zeilen}}", kScope);
  const TemplateRow row{{u"8:00"_s}};
  TemplateRow values{{}, {std::vector<TemplateRow>(1000, row)}};
  EXPECT_EQ(parsed.page.Render(values).html.size(), 1000 * 1000);
  values.lists[0].resize(ServiceTemplate::kLongestPage / 1000 + 1, row);
  const ServiceTemplate::Page page = parsed.page.Render(values);
  EXPECT_EQ(page.html, QString());
  EXPECT_EQ(page.error, u"Das Protokoll wird zu lang. Bitte weniger Einträge wählen."_s);
}

TEST(ServiceTemplate, TheBuiltInOneIsInOrder) {
  const ServiceTemplate::Parsed parsed = ServiceTemplate::Parse(BuiltInServiceTemplate(), ServiceScope());
  EXPECT_EQ(parsed.error.toStdString(), "");
  EXPECT_FALSE(parsed.page.Render({}).html.contains(u"{{"_s));
}

}  // namespace
}  // namespace kalivor::history
