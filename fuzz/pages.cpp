// Printed pages: any table against a plain count of its lines and pages.
#include <algorithm>
#include <memory>

#include "Targets.h"
#include "base/Module1.h"
#include "print/pages/PageTexts.h"
#include "print/pages/PrintList.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

// One run of equal parameters.
struct Run {
  int count = 0;
  int group = 0;
  bool checked = false;
  bool shown = false;
};

// Two bytes for each run: the count, large only rarely, and group and marks.
std::vector<Run> RunsOf(QByteArrayView input) {
  std::vector<Run> runs;
  int total = 0;
  for (qsizetype i = 0; i + 1 < input.size(); i += 2) {
    const auto count = static_cast<quint8>(input.at(i));
    const auto kind = static_cast<quint8>(input.at(i + 1));
    Run run{count < 248 ? count % 8 : (count - 240) * 40, kind & 3, (kind & 4) == 0, (kind & 8) == 0};
    run.count = std::min(run.count, kLastParameter - total);
    total += run.count;
    runs.push_back(run);
  }
  return runs;
}

void Fill(Module1& module, const std::vector<Run>& runs) {
  static const QString groups[] = {u""_s, u"A"_s, u"B"_s, u"C"_s};
  static const QString luft = u"Luft"_s;
  static const QString wasser = u"Wasser"_s;
  static const FixedText<8> text(u"string4"_s);
  int next = 1;
  for (const Run& run : runs) {
    for (int i = 0; i < run.count; ++i, ++next) {
      ParameterRecord& record = module.Par[next];
      record.Rubrik = groups[run.group];
      record.Zusatz = run.shown ? luft : wasser;
      record.Typ = text;
      module.ParNode[next] = run.checked ? kTrue : kFalse;
    }
  }
  module.ParCount = static_cast<qint16>(next);
}

// The lines of the list, the page of each parameter's line, and whether one falls on page 60.
struct Count {
  int lines = 1;
  std::vector<int> pageLast = std::vector<int>(60, 0);
  bool tooLong = false;
};

Count PlainCount(const std::vector<Run>& runs, int linesPerPage) {
  Count count;
  int group = 0;
  int parameter = 0;
  for (const Run& run : runs) {
    for (int i = 0; i < run.count && !count.tooLong; ++i) {
      ++parameter;
      if (!run.checked || !run.shown) continue;
      if (run.group != group) ++count.lines;
      group = run.group;
      ++count.lines;
      const int page = count.lines / linesPerPage;
      count.tooLong = page > 59;
      if (!count.tooLong) count.pageLast[static_cast<std::size_t>(page)] = parameter;
    }
  }
  return count;
}

void CheckList(const Module1& module, const std::vector<Run>& runs, int orientation) {
  const int linesPerPage = orientation == print::kLandscape ? 34 : 57;
  const Count expected = PlainCount(runs, linesPerPage);
  print::PrintList list;
  bool failed = false;
  try {
    list.Make(module, u"Luft", orientation);
  } catch (const RuntimeError& error) {
    failed = error.GetKind() == RuntimeError::Kind::Bounds;
    Require(failed, "only too many pages end the list");
  }
  Require(failed == expected.tooLong, "a list has at most 60 pages");
  Require(list.Count() == expected.lines, "the lines of the list");
  for (int page = 0; page < 60; ++page)
    Require(list.PageLastPar[page] == expected.pageLast[static_cast<std::size_t>(page)],
            "the last one of a page");
  if (failed) return;

  // Every line is on exactly one page, and the last page holds the last line or is empty.
  int seen = 0;
  for (int page = 1; page <= list.MaxPage.value_or(0); ++page) {
    const print::LineRange lines = list.From((page - 1) * linesPerPage + 1, linesPerPage);
    Require(lines.first == seen + 1, "a page begins where the one before ends");
    seen += std::max(0, lines.last - lines.first + 1);
  }
  Require(seen == expected.lines, "each line is on a page");
  Require(list.MaxPage == expected.lines / linesPerPage + 1, "the number of pages");
}

// The footer's path is shortened as far as it must be, and stays the end of the path.
void CheckFooter(QByteArrayView input) {
  const QString path = QString::fromLatin1(input);
  const auto width = [](const QString& text) { return static_cast<double>(text.size()); };
  constexpr double room = 40;
  try {
    const QString footer = print::FittedFooter(u"Datum"_s, u"Seite"_s, path, room, width);
    Require(static_cast<double>(footer.size()) <= room, "the footer fits");
    Require(footer.startsWith(u"Datum   Seite   "_s), "date and page stand in front");
    const QString shown = footer.mid(16);
    Require(shown == path || (shown.left(6) == path.left(3) + u"..."_s && path.endsWith(shown.mid(6))),
            "folders are left out from the left");
  } catch (const RuntimeError& error) {
    Require(error.GetKind() == RuntimeError::Kind::InvalidArgument, "a footer that cannot be made to fit");
    Require(static_cast<double>(path.size()) > room - 16, "a short path needs no shortening");
  }
}

}  // namespace

void Pages(QByteArrayView input) {
  static const std::unique_ptr<Module1> module = std::make_unique<Module1>();
  const std::vector<Run> runs = RunsOf(input);
  Fill(*module, runs);
  for (const int orientation : {print::kPortrait, print::kLandscape})
    CheckList(*module, runs, orientation);
  CheckFooter(input);
}

}  // namespace kalivor::fuzz
