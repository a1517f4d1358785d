#include "history/EntryBackup.h"

#include "core/ControllerImage.h"

namespace kalivor::history {
namespace {

// Words that the value shares with others are theirs as well.
void Put(ControllerImage& image, const std::vector<CodedWord>& words) {
  for (const CodedWord& word : words) {
    quint16& now = image[word.address];
    now = static_cast<quint16>((now & ~word.mask) | word.bits);
  }
}

}  // namespace

Backup BackupOf(const Module1& module, const Entry& entry, const ValueSet& values) {
  Backup backup;
  backup.head = {entry.stamp.time, entry.version, entry.plantType, 0,
                 entry.address,    entry.port,    entry.program};
  for (const ComparedValue& row : CompareSets(module, values, TableValues(module))) {
    const SetValue* const value = ValueAt(values, row.left);
    if (value == nullptr) continue;
    const bool known = row.index > 0 && row.difference != Difference::OtherType;
    const ParameterRecord& record = module.Par[row.index];
    const CodedValue coded = known ? Coded(record, value->value) : CodedValue();
    if (coded.words.empty() || IsCut(record, *value, values.origin)) {
      // Without its address nobody takes words for it that it shares with others.
      backup.values.push_back({value->Variable, QString(), value->Typ.Trimmed()});
    } else {
      backup.values.push_back(NameOf(record));
      Put(backup.words, coded.words);
    }
  }
  return backup;
}

}  // namespace kalivor::history
