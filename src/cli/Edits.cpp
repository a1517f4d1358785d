#include "cli/Edits.h"

#include <optional>
#include <vector>

#include "commands/EditorCommands.h"
#include "core/ParameterTypes.h"

using namespace Qt::StringLiterals;

namespace kalivor::cli {
namespace {

// Every parameter with that variable name, in table order.
std::vector<int> FindVariable(const Module1& module, QStringView name) {
  std::vector<int> found;
  for (int i = 1; i < module.ParCount; ++i) {
    if (module.Par[i].Variable == name) found.push_back(i);
  }
  return found;
}

}  // namespace

void SetParameter(Module1& module, const QString& edit) {
  const qsizetype equals = edit.indexOf(u'=');
  const QString name = edit.left(equals);
  const QString text = edit.sliced(equals + 1);
  const std::vector<int> found = FindVariable(module, name);
  if (found.empty()) throw BadInput{u"Unbekannte Variable: "_s + name};
  if (found.size() > 1) throw BadInput{u"Mehrere Parameter haben die Variable "_s + name};
  const int index = found.front();
  const ParameterRecord& record = module.Par[index];
  if (IsStringForTree(record)) {
    const int longest = TextEditOf(module, index).MaxLength;
    if (longest > 0 && text.size() > longest) {
      throw BadInput{u"Text für %1 ist länger als %2 Zeichen: %3"_s.arg(name).arg(longest).arg(text)};
    }
    module.SetText(index, text, ValueSource::Edited);
  } else {
    const NumberEdit limits = NumberEditOf(module, index, 0);
    const std::optional<qint32> value = EditedValue(record, limits.TextVon, text, limits.TextBis);
    if (!value) {
      throw BadInput{u"Wert für %1 liegt nicht zwischen %2 und %3: %4"_s.arg(name, limits.TextVon,
                                                                             limits.TextBis, text)};
    }
    module.SetNumber(index, *value, ValueSource::Edited);
    module.ParNode[index] = kTrue;
  }
}

void SetMarks(Module1& module, const MarkChange& change) {
  const QString& what = change.what;
  std::vector<int> indices;
  const int number = what.toInt();
  if (number >= 1 && number < module.ParCount) {
    indices.push_back(number);
  } else if (what == u"all" || what.startsWith(u"group=")) {
    for (int i = 1; i < module.ParCount; ++i) {
      if (what == u"all" || module.Par[i].Rubrik == QStringView(what).sliced(6)) indices.push_back(i);
    }
  } else {
    indices = FindVariable(module, what);
  }
  if (indices.empty() && what != u"all") throw BadInput{u"Kein Parameter: "_s + what};
  for (const int i : indices)
    module.ParNode[i] = change.checked ? kTrue : kFalse;
}

}  // namespace kalivor::cli
