#include "platform/linux/time_stamp_counter.h"

#if defined(__x86_64__) || defined(__i386__)

#include <cpuid.h>
#include <x86intrin.h>

namespace norvik {

bool Time_Stamp_Counter_Is_Steady() {
  // "Invariant TSC": leaf 80000007H, bit 8 of EDX (processor manuals, instruction CPUID).
  unsigned a = 0, b = 0, c = 0, d = 0;
  return __get_cpuid(0x80000007, &a, &b, &c, &d) != 0 && (d & 1u << 8) != 0;
}

std::uint64_t Read_Time_Stamp_Counter() {
  return __rdtsc();
}
void Spin_Hint() {
  _mm_pause();
}

}  // namespace norvik

#else

namespace norvik {

bool Time_Stamp_Counter_Is_Steady() {
  return false;
}
std::uint64_t Read_Time_Stamp_Counter() {
  return 0;
}

}  // namespace norvik

#endif
