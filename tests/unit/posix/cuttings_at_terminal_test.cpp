// However the characters of an exchange are cut into blocks on their way, it comes to the same: at a real
// terminal device.
#include <sys/eventfd.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <thread>

#include "platform/posix/PosixSerialControl.h"
#include "platform/posix/SystemClock.h"
#include "sim/PtyLine.h"
#include "unit/line/CutExchange.h"

namespace kalivor::test {
namespace {

// What a program reads at a pseudo-terminal with `station` at its other end.
QString ReadAtTerminal(Station& station) {
  const int stop = eventfd(0, EFD_CLOEXEC);
  sim::PtyLine terminal(station.model, stop);
  EXPECT_EQ(terminal.Open(), QString());
  std::thread far([&] { (void)terminal.Run(); });
  platform::SystemClock clock;
  platform::PosixSerialControl line([&](int) { return terminal.DeviceName(); });
  QString result = Reader(line, clock).Read();
  const quint64 one = 1;
  EXPECT_EQ(write(stop, &one, sizeof one), static_cast<ssize_t>(sizeof one));
  far.join();
  close(stop);
  return result;
}

class CuttingsAtATerminal : public testing::TestWithParam<Row> {};

TEST_P(CuttingsAtATerminal, ComeToTheSame) {
  Station inOneBlock;
  inOneBlock.pieces = {GetParam().received};
  EXPECT_EQ(ReadAtTerminal(inOneBlock), GetParam().result) << "in one block";
  Station atLineRate({0, true, false});
  atLineRate.pieces = {GetParam().received};
  EXPECT_EQ(ReadAtTerminal(atLineRate), GetParam().result) << "at the line's rate";
}

INSTANTIATE_TEST_SUITE_P(Of, CuttingsAtATerminal, testing::ValuesIn(kRows),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kalivor::test
