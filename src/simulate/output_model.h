// output_model.h: spindle, coolant and the auxiliary output.
#pragma once

#include <cstdint>

namespace norvik {

// Output 1..5 has been switched.
void Output_Changed(int n, bool on, std::int64_t time);
// The outputs ask the spindle to turn.
bool Spindle_Asked();
// -1..1 at a time; full speed after the run-up, standstill after coasting.
double Spindle_Speed(std::int64_t time);

}  // namespace norvik
