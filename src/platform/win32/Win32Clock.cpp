#include "platform/win32/Win32Clock.h"

// Behind windows.h.
#include <timeapi.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kalivor::platform {
namespace {

constexpr UINT kResolution_ms = 1;
// The system counts time in these.
constexpr std::int64_t kUnits_perSecond = 10'000'000;
constexpr std::int64_t kUnits_perDay = 86400 * kUnits_perSecond;

// From Windows 10, version 1803; older headers do not name it.
constexpr DWORD kHighResolution = 0x00000002;

Handle NewTimer() {
  Handle timer(CreateWaitableTimerExW(nullptr, nullptr, kHighResolution, TIMER_ALL_ACCESS));
  return timer.Valid() ? std::move(timer) : Handle(CreateWaitableTimerW(nullptr, FALSE, nullptr));
}

std::int64_t UnitsOf(const FILETIME& time) {
  return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

}  // namespace

Win32Clock::Win32Clock() : timer_(NewTimer()) {
  (void)timeBeginPeriod(kResolution_ms);
}

Win32Clock::~Win32Clock() {
  (void)timeEndPeriod(kResolution_ms);
}

double Win32Clock::SecondsSinceMidnight() const {
  FILETIME now{};
  FILETIME local{};
  GetSystemTimePreciseAsFileTime(&now);
  if (FileTimeToLocalFileTime(&now, &local) == 0) return 0;
  return static_cast<double>(UnitsOf(local) % kUnits_perDay) / static_cast<double>(kUnits_perSecond);
}

void Win32Clock::Sleep(double seconds) {
  // Written so that what is no number is not slept either.
  if (!(seconds > 0)) return;
  constexpr double kLongest_s = 86400;
  const double wait_s = std::min(seconds, kLongest_s);
  LARGE_INTEGER due{};
  // Negative: from now on.
  due.QuadPart = -static_cast<std::int64_t>(std::ceil(wait_s * static_cast<double>(kUnits_perSecond)));
  if (SetWaitableTimer(timer_.Get(), &due, 0, nullptr, nullptr, FALSE) == 0 ||
      WaitForSingleObject(timer_.Get(), INFINITE) != WAIT_OBJECT_0)
    ::Sleep(static_cast<DWORD>(std::ceil(wait_s * 1000)));
}

}  // namespace kalivor::platform
