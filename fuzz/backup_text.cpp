// Text of a backup: any bytes; what is read is exactly what would be written.
#include "SummedText.h"
#include "Targets.h"
#include "core/BackupText.h"

namespace kalivor::fuzz {
namespace {

// Rows of hexadecimal words behind the line that begins with `key`, counted without the program's reader.
qsizetype RowsBehind(const QByteArray& bytes, QByteArrayView key) {
  const qsizetype begin = bytes.lastIndexOf(key);
  return bytes.sliced(begin).count('\n') - 2;
}

void CheckRead(const QByteArray& bytes, const Backup& backup) {
  Require(ComposeBackup(backup) == bytes, "what was read is what would be written");
  Require(bytes.endsWith(PlainSum(bytes.chopped(bytes.size() - bytes.lastIndexOf("Prüfsumme: "))) + '\n'),
          "the sum is right");
  Require(backup.head.time.isValid() && backup.head.time.time().msec() == 0, "a time to the second");
  Require(backup.head.address >= 0 && backup.head.address <= 255, "an address of a station");
  Require(backup.values.size() <= 2000, "no more values than there can be");
  Require(RowsBehind(bytes, "\nWörter: ") - 1 == static_cast<qsizetype>(backup.words.size()),
          "every row is a word");
  const std::optional<Backup> again = ParseBackup(ComposeBackup(backup));
  Require(again == backup, "what is written reads back the same");
}

// Every single damage is noticed: that is what a sum of 32 bits does.
void CheckDamage(QByteArray bytes) {
  unsigned place = 0;
  for (const char c : bytes)
    place = place * 31 + static_cast<unsigned char>(c);
  const auto at = static_cast<qsizetype>(place % static_cast<unsigned>(bytes.size()));
  bytes[at] = static_cast<char>(bytes.at(at) ^ 1 << place % 8);
  Require(!ParseBackup(bytes), "a changed bit is noticed");
  Require(!ParseBackup(bytes.first(at)), "a missing end is noticed");
}

}  // namespace

void BackupText(QByteArrayView input) {
  const QByteArray raw = input.toByteArray();
  const std::optional<Backup> asItIs = ParseBackup(raw);
  if (asItIs) CheckRead(raw, *asItIs);
  const QByteArray bytes = WithRightSum(input);
  const std::optional<Backup> backup = bytes == raw ? asItIs : ParseBackup(bytes);
  if (!backup) return;
  CheckRead(bytes, *backup);
  CheckDamage(bytes);
}

}  // namespace kalivor::fuzz
