#include "platform/linux/linux_platform.h"
#include "platform/linux/time_stamp_counter.h"
#include "platform/period.h"
#include "platform/platform.h"
#include "platform/rest.h"

#include <cmath>
#include <ctime>

namespace norvik {

namespace {

constexpr std::int64_t Second = 1'000'000'000;

std::int64_t Kernel_Clock() {
  std::timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * Second + now.tv_nsec;
}

// The clock that waits spin on.
struct Spin_Clock_State {
  bool Counter = false;    // false: the kernel's clock
  std::uint64_t Base = 0;  // counter at the calibration
  double Ns_Per_Tick = 0;
  Period_Keeper Keeper;
};
Spin_Clock_State Spin_Clock;

std::int64_t Spin_Now() {
  if (!Spin_Clock.Counter) return Kernel_Clock();
  const auto ticks = static_cast<double>(Read_Time_Stamp_Counter() - Spin_Clock.Base);
  return static_cast<std::int64_t>(ticks * Spin_Clock.Ns_Per_Tick);
}

// Counter and clock read together: of a few tries the one with the least time in between.
struct Clock_Pair {
  std::uint64_t Ticks = 0;
  std::int64_t Ns = 0;
};
Clock_Pair Read_Pair() {
  Clock_Pair best;
  std::int64_t best_gap = INT64_MAX;
  for (int i = 0; i < 10; ++i) {
    const std::int64_t before = Kernel_Clock();
    const std::uint64_t ticks = Read_Time_Stamp_Counter();
    const std::int64_t gap = Kernel_Clock() - before;
    if (gap < best_gap) {
      best_gap = gap;
      best = {ticks, before + gap / 2};
    }
  }
  return best;
}

double Rate_Over(std::int64_t ns) {
  const Clock_Pair first = Read_Pair();
  while (Kernel_Clock() < first.Ns + ns) {
  }
  const Clock_Pair last = Read_Pair();
  return static_cast<double>(last.Ns - first.Ns) / static_cast<double>(last.Ticks - first.Ticks);
}

// The counter is used when two measurements agree, so that one that stutters (a virtual machine
// that traps it, for example) is not.
void Calibrate() {
  Spin_Clock = {};
  if (!Time_Stamp_Counter_Is_Steady()) return;
  constexpr std::int64_t span = Second / 100;
  const double first = Rate_Over(span), second = Rate_Over(span);
  if (!(first > 0) || std::abs(first / second - 1) > 1e-4) return;
  Spin_Clock.Base = Read_Time_Stamp_Counter();
  Spin_Clock.Ns_Per_Tick = (first + second) / 2;
  Spin_Clock.Counter = true;
}

// Without the processor's hint for spinning loops: under a hypervisor a row of them may hand the
// processor to another machine for some microseconds, which one edge in a hundred then shows.
std::int64_t Spin_Until(std::int64_t deadline) {
  std::int64_t now = Spin_Now();
  while (now < deadline) now = Spin_Now();
  return now;
}

void Delay(std::int32_t microseconds) {
  Spin_Until(Spin_Now() + std::int64_t{microseconds} * 1'000);
}

void Sleep(std::int32_t microseconds) {
  if (microseconds <= 0) return;
  constexpr std::int32_t million = 1'000'000;
  const std::timespec time{microseconds / million, microseconds % million * 1'000L};
  ::clock_nanosleep(CLOCK_MONOTONIC, 0, &time, nullptr);
}

void Delay_In_Period(std::int32_t microseconds, std::int64_t period_ns) {
  Period_Keeper& keeper = Spin_Clock.Keeper;
  const std::int64_t asked = std::int64_t{microseconds} * 1'000;
  keeper.Ended(Spin_Until(keeper.Deadline(Spin_Now(), asked, period_ns)));
}

}  // namespace

void Install_Linux_Clock() {
  Calibrate();
  Platform.Monotonic_Clock = Kernel_Clock;
  Platform.Delay_Microseconds = Delay;
  Platform.Delay_In_Period = Delay_In_Period;
  Resting.Sleep_Microseconds = Sleep;
}

}  // namespace norvik
