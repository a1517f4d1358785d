#include "print/pages/PrintList.h"

#include <algorithm>

#include "base/Numbers.h"
#include "core/TreeTexts.h"

using namespace Qt::StringLiterals;

namespace kalivor::print {
namespace {

// Not the heading of the main window's tree: the columns stand three characters further to the left.
constexpr QStringView kLandscapeRoot =
    u"Anlage                                                      "
    u"Wert           Min.       Max.      Standard";
constexpr QStringView kPortraitRoot = u"Anlage";

}  // namespace

void PrintList::Make(const Module1& module, QStringView plantType, int orientation) {
  const bool landscape = orientation == kLandscape;
  const int lines = LinesPerPage(orientation);
  nodes.clear();
  nodes.push_back({0, RootKey(), (landscape ? kLandscapeRoot : kPortraitRoot).toString(), true});

  QString lastGroup;
  int group = 0;
  for (int i = 1; i < module.ParCount; ++i) {
    const ParameterRecord& record = module.Par[i];
    if (!ShowParam(plantType, record.Zusatz) || module.ParNode[i] == kFalse) continue;
    if (record.Rubrik != lastGroup) {
      lastGroup = record.Rubrik;
      nodes.push_back({1, GroupKey(++group), record.Rubrik, true});
    }
    nodes.push_back({group > 0 ? 2 : 1, ParameterKey(i),
                     DefinedText(module, i, landscape ? ParamText : ParamTextShort), false});
    PageLastPar[Count() / lines] = static_cast<qint16>(i);
  }
  MaxPage = static_cast<qint16>(Count() / lines + 1);
}

const PrintNode& PrintList::Node(int number) const {
  if (number < 1 || number > Count()) throw RuntimeError(RuntimeError::Kind::Bounds);
  return nodes[static_cast<std::size_t>(number - 1)];
}

LineRange PrintList::From(int first, int lines) const {
  return {first, std::min(first + lines - 1, Count())};
}

}  // namespace kalivor::print
