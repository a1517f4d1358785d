// Every two characters of a reply changed into every two others: what is accepted is exactly what a sum of
// characters cannot see.
#include <gtest/gtest.h>

#include "base/su.h"
#include "comm/COM_T.h"
#include "unit/line/PlayedLine.h"

using namespace Qt::StringLiterals;

namespace kalivor::test {
namespace {

constexpr int kHeader = 5;  // the character behind it is "?" in a refusal

struct Counts {
  int accepted = 0;  // replies that passed
  int wrong = 0;     // of them, those whose word is another one
  bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out) {
  *out << counts.accepted << " accepted, " << counts.wrong << " wrong";
}

class DoubleSubstitutions : public testing::TestWithParam<QByteArray> {
 protected:
  DoubleSubstitutions() {
    line_.answer = [this](const QByteArray&) { return std::vector<Arrival>{{1, reply_}}; };
    host_.Ports[kSlot] = {kFalse, 1, kControllerProtocol, 1, kSettings9600.toString()};
  }

  // What the program makes of the reply.
  QString Read(const QByteArray& reply) {
    reply_ = reply;
    return transport_.Transact(kSlot, u"R1F00"_s, true);
  }

 private:
  Module1 module_;
  FakeClock clock_;
  PlayedLine line_{clock_};
  QByteArray reply_;
  TH timers_{clock_};
  COM_T_frm host_{module_, line_, timers_};
  COM_T transport_{host_};
};

// How many changes of the characters `first` and `second` the sum alone lets pass: by arithmetic on the two
// codes, without looking at a telegram.
Counts Predicted(const QByteArray& good, int first, int second) {
  const auto code = [&good](int at) { return static_cast<int>(static_cast<unsigned char>(good.at(at))); };
  const int digits = static_cast<int>(good.size()) - 3;  // position of the first digit of the sum
  const int end = digits + 2;
  Counts counts;
  const QByteArray word = good.mid(6, 4);
  // A start character, the mark of a refusal and an end of the line are something else, whatever the sum.
  const auto seen = [](int at, int c) {
    return (at == 0 && c == '#') || (at == kHeader && c == '?') || c <= '\r';
  };
  const auto count = [&](int c, int d) {
    if (seen(first, c) || seen(second, d)) return;
    ++counts.accepted;
    QByteArray changed = good;
    changed[first] = static_cast<char>(c);
    changed[second] = static_cast<char>(d);
    if (Number(changed.mid(6, 4)) != Number(word)) ++counts.wrong;
  };
  if (second == end || first >= digits) return counts;  // the sum shows one of them at least
  for (int c = 0; c < 256; ++c) {
    if (c == code(first)) continue;
    const int by = c - code(first);
    if (second < digits) {
      // The second one takes back what the first one adds.
      const int d = ((code(second) - by) % 256 + 256) % 256;
      count(c, d);
      continue;
    }
    // One digit of the sum follows, if the other one stays.
    const int sum = QByteArray(good.mid(digits, 2)).toInt(nullptr, 16);
    const int other = ((sum + by) % 256 + 256) % 256;
    const bool high = second == digits;
    if (high ? other % 16 != sum % 16 : other / 16 != sum / 16) continue;
    count(c, "0123456789ABCDEF"[high ? other / 16 : other % 16]);
  }
  return counts;
}

TEST_P(DoubleSubstitutions, PassExactlyWhereTheSumIsTheSame) {
  const QByteArray good = Summed(GetParam());
  const auto length = static_cast<int>(good.size());
  Counts all, allPredicted;
  for (int first = 0; first < length; ++first) {
    for (int second = first + 1; second < length; ++second) {
      Counts counts;
      QByteArray reply = good;
      for (int c = 0; c < 256; ++c) {
        if (c == static_cast<unsigned char>(good.at(first))) continue;
        reply[first] = static_cast<char>(c);
        for (int d = 0; d < 256; ++d) {
          if (d == static_cast<unsigned char>(good.at(second))) continue;
          reply[second] = static_cast<char>(d);
          const QString result = Read(reply);
          if (IsError(result)) continue;
          if (c <= '\r' || d <= '\r') {
            // The line has ended early. Even where the sum of the rest happens to fit, it is no word.
            EXPECT_NE(result.size(), 4) << testing::PrintToString(reply);
            continue;
          }
          ++counts.accepted;
          if (result.size() != 4 || su::HexToNumber(result) != Number(good.mid(6, 4))) ++counts.wrong;
        }
      }
      const Counts predicted = Predicted(good, first, second);
      EXPECT_EQ(counts, predicted) << "positions " << first << " and " << second;
      all.accepted += counts.accepted;
      all.wrong += counts.wrong;
      allPredicted.accepted += predicted.accepted;
      allPredicted.wrong += predicted.wrong;
    }
  }
  std::printf("%d accepted, %d wrong words; predicted %d, %d\n", all.accepted, all.wrong,
              allPredicted.accepted, allPredicted.wrong);
  EXPECT_GT(all.wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(Each, DoubleSubstitutions, testing::Values("10102R04D2", "10102RFFFF"),
                         [](const auto& test) { return test.param.mid(6).toStdString(); });

}  // namespace
}  // namespace kalivor::test
