#include "core/LineHint.h"

#include <QString>

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

// How many there are, and of what; nothing where it is not worth a word.
struct Share {
  QString text;         // "Jede achte Antwort", "Die meisten Antworten"
  bool plural = false;  // of its verb
};

// The word behind "jede", for small numbers; above them the number rounded to what one remembers.
QString Ordinal(qint64 n) {
  static constexpr QStringView kWords[] = {u"",        u"",       u"zweite", u"dritte", u"vierte", u"fünfte",
                                           u"sechste", u"siebte", u"achte",  u"neunte", u"zehnte"};
  if (n < static_cast<qint64>(std::size(kWords))) return kWords[n].toString();
  const qint64 rounded = n < 20 ? n : (n + 5) / 10 * 10;
  return QString::number(rounded) + u'.';
}

bool IsWorthMentioning(qint64 count, qint64 all) {
  return count > 0 && count * kWorthMentioning >= all;
}

Share ShareText(qint64 count, qint64 all, const QString& one, const QString& many) {
  if (count == all) return {u"Jede "_s + one, false};
  // Three of five and more; "jede zweite" would be too few.
  if (count * 5 >= all * 3) return {u"Die meisten "_s + many, true};
  return {u"Jede "_s + Ordinal((all + count / 2) / count) + u' ' + one, false};
}

// Every attempt failed, and in which way.
QString HopelessText(const LineQuality& quality) {
  const qint64 all = quality.All();
  if (quality.noPort == all) {
    return u"Die Schnittstelle ließ sich nicht öffnen. Steckt der Adapter, und benutzt ihn kein anderes "
           "Programm?"_s;
  }
  if (quality.silent == all) {
    return u"Es kam keine einzige Antwort. Regler, Kabel, Schnittstelle und Geräteadresse prüfen."_s;
  }
  if (quality.echoOnly == all) {
    return u"Es kam nur das Echo der Anfragen zurück. Der Adapter arbeitet; Regler, Geräteadresse und die "
           "Adern zum Regler prüfen."_s;
  }
  if (quality.refused == all) {
    return u"Der Regler hat jede Anfrage abgelehnt. Passen Reglerversion und Definitionen zu ihm?"_s;
  }
  if (quality.damaged == all) {
    return u"Keine einzige Antwort war lesbar. Kabel, Schirm und Adapter prüfen; vielleicht antwortet auch "
           "ein anderes Gerät."_s;
  }
  return u"Kein einziger Versuch ist gelungen: %1."_s.arg(QualityLine(quality).section(u'(', 1).chopped(1));
}

QString DamagedText(const LineQuality& quality) {
  const qint64 replies = quality.good + quality.repeated + quality.damaged + quality.refused;
  if (!IsWorthMentioning(quality.damaged, replies)) return {};
  const Share share = ShareText(quality.damaged, replies, u"Antwort"_s, u"Antworten"_s);
  return share.text + (share.plural ? u" waren"_s : u" war"_s) +
         u" beschädigt. Kabel, Schirm und Adapter prüfen."_s;
}

QString SilentText(const LineQuality& quality) {
  const qint64 asked = quality.All() - quality.noPort;
  const qint64 silent = quality.silent + quality.echoOnly;
  if (!IsWorthMentioning(silent, asked)) return {};
  const Share share = ShareText(silent, asked, u"Anfrage"_s, u"Anfragen"_s);
  return share.text + (share.plural ? u" blieben"_s : u" blieb"_s) +
         u" ohne Antwort. Stecker und Klemmen prüfen, und ob noch jemand auf der Leitung fragt."_s;
}

QString NoPortText(const LineQuality& quality) {
  if (!IsWorthMentioning(quality.noPort, quality.All())) return {};
  return u"Die Schnittstelle war zeitweise nicht zu öffnen. Sitzt der Stecker des Adapters fest, und benutzt "
         "ihn kein anderes Programm?"_s;
}

QString RefusedText(const LineQuality& quality) {
  const qint64 replies = quality.good + quality.repeated + quality.damaged + quality.refused;
  if (!IsWorthMentioning(quality.refused, replies)) return {};
  const Share share = ShareText(quality.refused, replies, u"Anfrage"_s, u"Anfragen"_s);
  return share.text + u" hat der Regler abgelehnt."_s + u" Passen Reglerversion und Definitionen zu ihm?"_s;
}

QString SlowText(const LineQuality& quality) {
  const qint64 answers = quality.good + quality.repeated;
  const qint64 slow = AnswersFrom(quality, kSlow_ms);
  if (!IsWorthMentioning(slow, answers)) return {};
  const Share share = ShareText(slow, answers, u"Antwort"_s, u"Antworten"_s);
  return share.text +
         (share.plural ? u" brauchten %1 ms oder länger"_s : u" brauchte %1 ms oder länger"_s).arg(kSlow_ms) +
         u"; nach 400 ms wartet das Programm nicht mehr. Regler ausgelastet, oder Verzögerung im Adapter oder Netz?"_s;
}

}  // namespace

qint64 AnswersFrom(const LineQuality& quality, int ms) {
  qint64 count = 0;
  for (std::size_t step = static_cast<std::size_t>(ms / LineQuality::kStep_ms); step < quality.answers.size();
       ++step)
    count += quality.answers[step];
  return count;
}

LineHint HintOf(const LineQuality& quality) {
  using Judgement = LineHint::Judgement;
  const qint64 all = quality.All();
  if (all == 0) return {Judgement::None, {u"Noch ist kein Telegramm gesendet worden."_s}};
  if (quality.Failed() == all && all >= kEnoughOfOneKind) return {Judgement::Bad, {HopelessText(quality)}};
  if (all < kEnoughForShares) {
    return {Judgement::None, {u"Für ein Urteil sind es noch zu wenige Telegramme."_s}};
  }
  LineHint hint{Judgement::Bad, {}};
  for (const QString& text : {NoPortText(quality), DamagedText(quality), SilentText(quality),
                              RefusedText(quality), SlowText(quality)})
    if (!text.isEmpty()) hint.texts.append(text);
  if (hint.texts.isEmpty())
    return {Judgement::Good, {u"Die Leitung ist gut, es gibt nichts zu beanstanden."_s}};
  return hint;
}

QString QualityLine(const LineQuality& quality) {
  if (quality.All() == 0) return {};
  const auto counted = [](qint64 count, const QString& what) {
    return count == 0 ? QString() : QString::number(count) + u' ' + what;
  };
  const auto joined = [](const QStringList& parts) {
    QStringList kept;
    for (const QString& part : parts)
      if (!part.isEmpty()) kept.append(part);
    return kept.join(u", "_s);
  };
  const QString reasons =
      joined({counted(quality.damaged, u"beschädigt"_s), counted(quality.silent, u"ohne Antwort"_s),
              counted(quality.echoOnly, u"nur Echo"_s), counted(quality.refused, u"abgelehnt"_s),
              counted(quality.noPort, u"ohne Schnittstelle"_s)});
  const QString failed = counted(quality.Failed(), u"fehlgeschlagen"_s);
  return (quality.All() == 1 ? u"1 Versuch: "_s : QString::number(quality.All()) + u" Versuche: "_s) +
         joined({counted(quality.good, u"gut"_s), counted(quality.repeated, u"wiederholt"_s),
                 failed.isEmpty() ? failed : failed + u" ("_s + reasons + u')'});
}

}  // namespace kalivor
