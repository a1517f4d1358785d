// The clock against the system's own words.
#include "platform/win32/Win32Clock.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>

namespace kalivor::platform {
namespace {

double LocalTime_s() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
}

TEST(Win32Clock, TellsTheLocalTimeThatTheSystemTells) {
  Win32Clock clock;
  // The hour of one second is that of the next.
  for (int i = 0; i < 8; ++i) {
    const double before = LocalTime_s();
    const double told = clock.SecondsSinceMidnight();
    const auto apart = std::fmod(told - before + 86400, 86400);
    // The system's own reading follows in steps.
    EXPECT_TRUE(apart < 0.1 || apart > 86400 - 0.02) << before << ' ' << told;
    clock.Sleep(0.15);
  }
}

TEST(Win32Clock, SleepingTakesHardlyAnyProcessorTime) {
  Win32Clock clock;
  const auto used_s = [] {
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    EXPECT_NE(GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user), 0);
    return (static_cast<double>(kernel.dwLowDateTime) + static_cast<double>(user.dwLowDateTime)) * 1e-7;
  };
  const double before_s = used_s();
  for (int i = 0; i < 50; ++i)
    clock.Sleep(0.004);
  // A fifth of the time.
  EXPECT_LT(used_s() - before_s, 0.04);
}

TEST(Win32Clock, LeavesNoHandleOpen) {
  DWORD before = 0;
  DWORD after = 0;
  { const Win32Clock first; }
  ASSERT_NE(GetProcessHandleCount(GetCurrentProcess(), &before), 0);
  for (int i = 0; i < 50; ++i)
    const Win32Clock clock;
  ASSERT_NE(GetProcessHandleCount(GetCurrentProcess(), &after), 0);
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace kalivor::platform
