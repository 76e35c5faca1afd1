// time_stamp_counter.h: the processor's cycle counter, where it is a clock.
#pragma once

#include <cstdint>

namespace norvik {

// True when the counter runs at one rate whatever the processor's speed and sleep state.
bool Time_Stamp_Counter_Is_Steady();
// Ticks; 0 on processors without such a counter.
std::uint64_t Read_Time_Stamp_Counter();

}  // namespace norvik
