// File of named selections: any bytes; what is marked by them, and what saving makes of them.
#include <memory>

#include "Targets.h"
#include "World.h"
#include "commands/DamagedFile.h"
#include "commands/Selections.h"

using namespace Qt::StringLiterals;

namespace kalivor::fuzz {
namespace {

const QString kPath = u"own/Auswahlen.json"_s;

std::unique_ptr<Module1> SmallTable() {
  auto module = std::make_unique<Module1>();
  module->VersionList.Add(u"AB1-123.4"_s);
  module->VersionList.Select(0);
  // A variable that occurs once, an array, one whose addresses are not known, and none.
  for (const auto& [variable, address] : {std::pair{u"a"_s, u"1F00"_s},
                                          {u"f"_s, u"1F02"_s},
                                          {u"f"_s, u"1F04"_s},
                                          {u"g"_s, u""_s},
                                          {u"g"_s, u""_s},
                                          {u""_s, u""_s}}) {
    ParameterRecord& record = module->Par[module->ParCount++];
    record.Variable = variable;
    record.VarAdresse = address;
    record.Wert = module->ParCount;
  }
  return module;
}

void Reset(Module1& module) {
  for (int i = 0; i <= module.ParCount; ++i)
    module.ParNode[i] = i % 2 == 0 ? kTrue : kFalse;
}

bool IsNamed(const Module1& module, int index, const Selection& selection) {
  const ParameterRecord& record = module.Par[index];
  int sameVariable = 0;
  for (int i = 1; i < module.ParCount; ++i)
    sameVariable += module.Par[i].Variable == record.Variable ? 1 : 0;
  for (const SelectedParameter& named : selection.parameters) {
    const bool meant = named.VarAdresse ? *named.VarAdresse == record.VarAdresse : sameVariable == 1;
    if (named.Variable == record.Variable && meant) return true;
  }
  return false;
}

void CheckRecalling(Selections& selections, const Selection& selection, Module1& module) {
  Reset(module);
  const Selections::Recalled recalled = selections.Recall(module, selection.name);
  Require(recalled.error.isEmpty(), "what the file holds can be recalled");
  Require(recalled.version == selection.version, "with its version");
  for (int i = 1; i < module.ParCount; ++i) {
    Require((module.ParNode[i] != kFalse) == IsNamed(module, i, selection),
            "exactly what is named is marked");
    Require(module.Par[i].Wert == i + 1, "marks are no values");
  }
  Require(module.ParNode[0] == kTrue &&
              module.ParNode[module.ParCount] == (module.ParCount % 2 == 0 ? kTrue : kFalse),
          "only parameters are marked");
}

}  // namespace

void SelectionsFile(QByteArrayView input) {
  static const std::unique_ptr<Module1> made = SmallTable();
  Module1& module = *made;
  test::MemoryFiles files;
  const QByteArray bytes = input.toByteArray();
  files.files[kPath] = bytes;
  Selections selections(files, kPath);

  const std::optional<std::vector<Selection>> parsed = ParseSelections(bytes);
  // To put names into their order costs more than the rest.
  if (!parsed && !InSample(input, 8)) return;
  const Selections::Listed listed = selections.Names();
  Require(listed.error.isEmpty() == (parsed.has_value() || bytes.isEmpty()), "a damaged file is told");
  Require(listed.names.size() == (parsed ? static_cast<qsizetype>(parsed->size()) : 0),
          "every name is listed");
  if (parsed) {
    Require(ParseSelections(ComposeSelections(*parsed)) == parsed, "what is written reads back the same");
    if (!parsed->empty()) CheckRecalling(selections, parsed->back(), module);
  }
  Require(files.files.size() == 1 && files.files.value(kPath) == bytes, "reading changes no file");

  if (!InSample(input, 8)) return;
  Reset(module);
  Require(selections.Save(module, u" neu "_s).isEmpty(), "a selection can be saved");
  const std::optional<std::vector<Selection>> saved = ParseSelections(files.files.value(kPath));
  Require(saved.has_value(), "what was saved can be read");
  const bool damaged = !parsed && !bytes.isEmpty();
  Require(files.files.contains(DamagedName(kPath)) == damaged &&
              (!damaged || files.files.value(DamagedName(kPath)) == bytes),
          "damaged bytes are set aside");
  Require(std::ranges::count(*saved, SelectionOf(module, u"neu"_s)) == 1, "it holds the marks");
  Require(saved->size() >= (parsed ? parsed->size() : 0), "the others stay");
  Require(selections.Delete(u"neu"_s).isEmpty() && !selections.Names().names.contains(u"neu"_s),
          "a selection can be deleted");
}

}  // namespace kalivor::fuzz
