// Journal of a sending: any bytes; what is read is what would be written, up to a line that is not complete.
#include <algorithm>

#include "SummedText.h"
#include "Targets.h"
#include "core/BackupText.h"

namespace kalivor::fuzz {
namespace {

QByteArray Lines(const std::vector<quint16>& begun) {
  QByteArray lines;
  for (const quint16 address : begun)
    lines += ComposeBegun(address);
  return lines;
}

void CheckRead(const QByteArray& bytes, const Sending& sending) {
  const QByteArray whole = ComposeSending(sending) + Lines(sending.begun);
  Require(bytes.startsWith(whole), "what was read is what would be written");
  Require(!bytes.sliced(whole.size()).contains('\n'), "all but a line that is not complete");
  Require(sending.wanted.size() == sending.before.size(), "every word as it was");
  for (const CodedWord& word : sending.wanted) {
    Require(sending.before.contains(word.address), "every word as it was");
    Require(word.address % 2 == 0 && word.mask != 0 && (word.bits & ~word.mask) == 0,
            "words as they are sent");
  }
  for (const quint16 address : sending.begun)
    Require(std::ranges::count(sending.wanted, address, &CodedWord::address) == 1, "begun words are wanted");
  Require(ParseSending(whole) == sending, "what is written reads back the same");
}

// The program can end anywhere: what had been begun completely by then is there, and the header is whole or
// nothing.
void CheckCut(const QByteArray& bytes, const Sending& sending) {
  const QByteArray header = ComposeSending(sending);
  unsigned place = 0;
  for (const char c : bytes)
    place = place * 31 + static_cast<unsigned char>(c);
  const auto size = static_cast<qsizetype>(place % static_cast<unsigned>(bytes.size()));
  const std::optional<Sending> cut = ParseSending(bytes.first(size));
  Require(cut.has_value() == (size >= header.size()), "a header that is cut off is none");
  if (!cut) return;
  const auto lines = static_cast<std::size_t>(bytes.first(size).sliced(header.size()).count('\n'));
  Require(cut->begun.size() == lines && std::ranges::equal(cut->begun, std::span(sending.begun).first(lines)),
          "complete lines count");
}

void CheckDamage(QByteArray bytes, const Sending& sending) {
  const QByteArray header = ComposeSending(sending);
  const auto at = static_cast<qsizetype>(static_cast<std::size_t>(bytes.size()) * 7 %
                                         static_cast<std::size_t>(header.size()));
  bytes[at] = static_cast<char>(bytes.at(at) ^ 1 << at % 8);
  Require(!ParseSending(bytes), "a changed header is noticed");
}

}  // namespace

void Journal(QByteArrayView input) {
  const QByteArray raw = input.toByteArray();
  const std::optional<Sending> asItIs = ParseSending(raw);
  if (asItIs) CheckRead(raw, *asItIs);
  const QByteArray bytes = WithRightSum(input);
  const std::optional<Sending> sending = bytes == raw ? asItIs : ParseSending(bytes);
  if (!sending) return;
  CheckRead(bytes, *sending);
  CheckCut(bytes, *sending);
  CheckDamage(bytes, *sending);
}

}  // namespace kalivor::fuzz
