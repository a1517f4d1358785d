// All tests of this program, and the programs that they start, run without network (main.cpp). Here it is
// shown that anyone who tried it would be found out.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace kalivor::test {
namespace {

TEST(NetworkDeathTest, NobodyMakesASocketOfTheNetwork) {
  EXPECT_EXIT(socket(AF_INET, SOCK_STREAM, 0), testing::KilledBySignal(SIGSYS), "");
  EXPECT_EXIT(socket(AF_INET6, SOCK_DGRAM, 0), testing::KilledBySignal(SIGSYS), "");
  EXPECT_EXIT(socket(AF_NETLINK, SOCK_RAW, 0), testing::KilledBySignal(SIGSYS), "");
}

TEST(NetworkDeathTest, NobodyListens) {
  EXPECT_EXIT(listen(0, 1), testing::KilledBySignal(SIGSYS), "");
}

TEST(NetworkDeathTest, LocalSocketsStay) {
  const int local = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(local, 0);
  close(local);
}

}  // namespace
}  // namespace kalivor::test
