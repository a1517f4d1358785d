// What counts of a line mean, in words and as a picture.
#include "core/LineHint.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include "comm/ExchangeLog.h"
#include "core/QualityPicture.h"
#include "fakes/QtPrinters.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

using Judgement = LineHint::Judgement;

LineQuality With(qint64 good, qint64 LineQuality::*what = nullptr, qint64 count = 0) {
  LineQuality quality;
  quality.good = good;
  quality.answers[3] = good;
  if (what != nullptr) quality.*what = count;
  return quality;
}

QString Text(const LineQuality& quality) {
  const LineHint hint = HintOf(quality);
  const QString mark = hint.judgement == Judgement::None   ? u"? "_s
                       : hint.judgement == Judgement::Good ? u"+ "_s
                                                           : u"- "_s;
  return mark + hint.texts.join(u" | "_s);
}

TEST(LineHint, FewTelegramsAreNoJudgement) {
  EXPECT_EQ(Text({}), u"? Noch ist kein Telegramm gesendet worden.");
  EXPECT_EQ(Text(With(1)), u"? Für ein Urteil sind es noch zu wenige Telegramme.");
  EXPECT_EQ(Text(With(10, &LineQuality::damaged, 9)), u"? Für ein Urteil sind es noch zu wenige Telegramme.");
  EXPECT_EQ(Text(With(0, &LineQuality::silent, 2)), u"? Für ein Urteil sind es noch zu wenige Telegramme.");
}

TEST(LineHint, AGoodLineIsSaidToBeGood) {
  EXPECT_EQ(Text(With(20)), u"+ Die Leitung ist gut, es gibt nichts zu beanstanden.");
  EXPECT_EQ(Text(With(99, &LineQuality::damaged, 1)),
            u"+ Die Leitung ist gut, es gibt nichts zu beanstanden.")
      << "one in a hundred is repeated and forgotten";
}

TEST(LineHint, WhereNothingSucceedsThreeAttemptsAreEnough) {
  EXPECT_EQ(Text(With(0, &LineQuality::noPort, 3)),
            u"- Die Schnittstelle ließ sich nicht öffnen. Steckt der Adapter, und benutzt ihn kein anderes "
            "Programm?");
  EXPECT_EQ(Text(With(0, &LineQuality::silent, 3)),
            u"- Es kam keine einzige Antwort. Regler, Kabel, Schnittstelle und Geräteadresse prüfen.");
  EXPECT_EQ(Text(With(0, &LineQuality::echoOnly, 3)),
            u"- Es kam nur das Echo der Anfragen zurück. Der Adapter arbeitet; Regler, Geräteadresse und die "
            "Adern zum Regler prüfen.");
  EXPECT_EQ(Text(With(0, &LineQuality::refused, 3)),
            u"- Der Regler hat jede Anfrage abgelehnt. Passen Reglerversion und Definitionen zu ihm?");
  EXPECT_EQ(
      Text(With(0, &LineQuality::damaged, 3)),
      u"- Keine einzige Antwort war lesbar. Kabel, Schirm und Adapter prüfen; vielleicht antwortet auch "
      "ein anderes Gerät.");
  LineQuality mixed = With(0, &LineQuality::damaged, 2);
  mixed.silent = 1;
  EXPECT_EQ(Text(mixed), u"- Kein einziger Versuch ist gelungen: 2 beschädigt, 1 ohne Antwort.");
}

TEST(LineHint, DamagedRepliesAreCountedAmongReplies) {
  LineQuality quality = With(875, &LineQuality::damaged, 125);
  EXPECT_EQ(Text(quality), u"- Jede achte Antwort war beschädigt. Kabel, Schirm und Adapter prüfen.");
  quality.noPort = 10;
  EXPECT_EQ(HintOf(quality).texts.value(0),
            u"Jede achte Antwort war beschädigt. Kabel, Schirm und Adapter prüfen.");
  EXPECT_TRUE(Text(With(49, &LineQuality::damaged, 1)).startsWith(u"- Jede 50. Antwort war beschädigt."));
  EXPECT_TRUE(Text(With(87, &LineQuality::damaged, 13)).startsWith(u"- Jede achte Antwort war"));
  EXPECT_TRUE(Text(With(14, &LineQuality::damaged, 1 + 6)).startsWith(u"- Jede dritte Antwort war"));
  EXPECT_TRUE(Text(With(88, &LineQuality::damaged, 8)).startsWith(u"- Jede 12. Antwort war"));
  EXPECT_TRUE(Text(With(966, &LineQuality::damaged, 34)).startsWith(u"- Jede 30. Antwort war"));
  EXPECT_TRUE(Text(With(50, &LineQuality::damaged, 50)).startsWith(u"- Jede zweite Antwort war"));
  EXPECT_TRUE(
      Text(With(10, &LineQuality::damaged, 30)).startsWith(u"- Die meisten Antworten waren beschädigt."));
}

TEST(LineHint, SilenceBetweenAnswersIsTheConnection) {
  LineQuality quality = With(80, &LineQuality::silent, 15);
  quality.echoOnly = 5;
  EXPECT_EQ(
      Text(quality),
      u"- Jede fünfte Anfrage blieb ohne Antwort. Stecker und Klemmen prüfen, und ob noch jemand auf der "
      "Leitung fragt.");
  EXPECT_TRUE(
      Text(With(10, &LineQuality::silent, 90)).startsWith(u"- Die meisten Anfragen blieben ohne Antwort."));
}

TEST(LineHint, SlowAnswersComeNearTheTimeOut) {
  LineQuality quality = With(90);
  quality.repeated = 10;
  quality.answers[34] = 0;
  EXPECT_EQ(HintOf(quality).judgement, Judgement::Good);
  quality.answers[35] = 6;
  quality.answers[44] = 4;
  EXPECT_EQ(AnswersFrom(quality, kSlow_ms), 10);
  EXPECT_EQ(Text(quality),
            u"- Jede zehnte Antwort brauchte 350 ms oder länger; nach 400 ms wartet das Programm nicht mehr. "
            "Regler ausgelastet, oder Verzögerung im Adapter oder Netz?");
  quality.answers[34] = 10;
  EXPECT_EQ(AnswersFrom(quality, kSlow_ms), 10) << "340 ms are not slow";
}

TEST(LineHint, RefusalsAndAPortThatComesAndGoes) {
  EXPECT_EQ(Text(With(90, &LineQuality::refused, 10)),
            u"- Jede zehnte Anfrage hat der Regler abgelehnt. Passen Reglerversion und Definitionen zu ihm?");
  EXPECT_EQ(Text(With(90, &LineQuality::noPort, 10)),
            u"- Die Schnittstelle war zeitweise nicht zu öffnen. Sitzt der Stecker des Adapters fest, und "
            "benutzt ihn kein anderes Programm?");
}

TEST(LineHint, EverythingThatIsBadIsSaid) {
  LineQuality quality = With(60, &LineQuality::damaged, 20);
  quality.silent = 20;
  EXPECT_EQ(HintOf(quality).texts.size(), 2);
}

TEST(LineHint, TheCountsInOneLine) {
  EXPECT_EQ(QualityLine({}), u"");
  EXPECT_EQ(QualityLine(With(1)), u"1 Versuch: 1 gut");
  LineQuality quality{1200, 20, 4, 0, 10, 0, 0, {}, 0};
  EXPECT_EQ(QualityLine(quality),
            u"1234 Versuche: 1200 gut, 20 wiederholt, 14 fehlgeschlagen (10 beschädigt, 4 ohne Antwort)");
}

// --- the picture ---

double WidthOf(const std::vector<PictureShape>& shapes, PictureInk ink) {
  double width = 0;
  for (const PictureShape& shape : shapes)
    if (shape.kind == PictureShape::Kind::Box && shape.ink == ink && shape.place.height() == 22)
      width += shape.place.width();
  return width;
}

bool Says(const std::vector<PictureShape>& shapes, const QString& text) {
  return std::any_of(shapes.begin(), shapes.end(),
                     [&text](const PictureShape& shape) { return shape.text == text; });
}

LineQuality Noisy() {
  LineQuality quality = With(700, &LineQuality::damaged, 125);
  quality.repeated = 50;
  quality.answers[6] = 50;
  quality.silent = 125;
  quality.slowest_s = 0.0655;
  return quality;
}

TEST(QualityPicture, TheBarIsDividedInShares) {
  const std::vector<PictureShape> shapes = QualityPicture(Noisy());
  EXPECT_NEAR(WidthOf(shapes, PictureInk::Good), 0.70 * kPictureWidth, 0.01);
  EXPECT_NEAR(WidthOf(shapes, PictureInk::Repeated), 0.05 * kPictureWidth, 0.01);
  EXPECT_NEAR(WidthOf(shapes, PictureInk::Damaged), 0.125 * kPictureWidth, 0.01);
  EXPECT_EQ(WidthOf(shapes, PictureInk::Refused), 0);
  EXPECT_TRUE(Says(shapes, u"Anteile an 1000 Versuchen"_s));
  EXPECT_TRUE(Says(shapes, u"700 gut (70,0 %)"_s));
  EXPECT_TRUE(Says(shapes, u"125 beschädigt (12,5 %)"_s));
}

TEST(QualityPicture, WhatIsRareIsSeenAllTheSame) {
  const LineQuality quality = With(1'000'000, &LineQuality::refused, 1);
  const std::vector<PictureShape> shapes = QualityPicture(quality);
  EXPECT_GE(WidthOf(shapes, PictureInk::Refused), 1.9);
  EXPECT_TRUE(Says(shapes, u"1 abgelehnt (<0,1 %)"_s));
  EXPECT_TRUE(Says(shapes, u"1000000 gut (>99,9 %)"_s));
}

TEST(QualityPicture, TheHistogramHasABarForEachStepThatOccurs) {
  const std::vector<PictureShape> shapes = QualityPicture(Noisy());
  std::vector<QRectF> bars;
  for (const PictureShape& shape : shapes)
    if (shape.kind == PictureShape::Kind::Box && shape.ink == PictureInk::Good && shape.place.bottom() > 200)
      bars.push_back(shape.place);
  ASSERT_EQ(bars.size(), 2U);
  EXPECT_NEAR(bars[1].height() / bars[0].height(), 50.0 / 700, 1e-6);
  EXPECT_LT(bars[0].right(), bars[1].left());
  EXPECT_TRUE(Says(shapes, u"Antwortzeiten in Millisekunden: mittlere 35, längste 66"_s));
}

TEST(QualityPicture, TheMiddleTimeIsNoLongerThanTheLongest) {
  LineQuality quality;
  quality.good = quality.answers[0] = 20;
  quality.slowest_s = 0.004;
  EXPECT_TRUE(Says(QualityPicture(quality), u"Antwortzeiten in Millisekunden: mittlere 4, längste 4"_s));
}

TEST(QualityPicture, EverythingStaysInside) {
  LineQuality all = Noisy();
  all.echoOnly = all.refused = all.noPort = 1;
  all.answers.fill(7);
  for (const LineQuality& quality : {LineQuality(), Noisy(), all, With(1'000'000, &LineQuality::noPort, 1)}) {
    for (const PictureShape& shape : QualityPicture(quality)) {
      EXPECT_GE(shape.place.width(), 0);
      EXPECT_GE(shape.place.height(), 0);
      EXPECT_LE(shape.place.right(), kPictureWidth + 1) << shape.text.toStdString();
      EXPECT_LE(shape.place.bottom(), kPictureHeight);
      EXPECT_GE(shape.place.top(), 0);
      if (shape.kind == PictureShape::Kind::Box) {
        EXPECT_GE(shape.place.left(), 0);
      }
    }
  }
}

TEST(QualityPicture, TheSvgIsWellFormedAndSaysTheSame) {
  const QString svg = QualitySvg(Noisy());
  QXmlStreamReader reader(svg);
  int boxes = 0, texts = 0;
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    if (reader.name() == u"rect") ++boxes;
    if (reader.name() == u"text") ++texts;
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
  int shapeBoxes = 0;
  for (const PictureShape& shape : QualityPicture(Noisy()))
    shapeBoxes += shape.kind == PictureShape::Kind::Box ? 1 : 0;
  EXPECT_EQ(boxes, shapeBoxes + 1) << "and the paper";
  EXPECT_EQ(texts, static_cast<int>(QualityPicture(Noisy()).size()) - shapeBoxes);
  EXPECT_TRUE(svg.contains(u"aria-label=\"1000 Versuche: 700 gut"_s));
  EXPECT_TRUE(svg.contains(u"1 abgelehnt (&lt;0,1 %)"_s) ||
              QualitySvg(With(1'000'000, &LineQuality::refused, 1)).contains(u"1 abgelehnt (&lt;0,1 %)"_s));
}

}  // namespace
}  // namespace kalivor
