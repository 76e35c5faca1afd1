// knob.h: the override knob.
//
//   Knob_Position   0 ......... 50 ......... 100
//   override        ThrottleMinLim   100 %   ThrottleMaxLim
//
// The override acts on a serial board only; on the parallel port it stays at 100 percent.
#pragma once

#include <cstdint>

namespace norvik {

struct Knob_State {
  std::int16_t Knob_Position = 50;  // 0..100
  std::int32_t Override = 1024;     // 1024 is 100 percent
  // --- Of a running drag ------------------------------------------------------------------------
  bool Dragging = false;
  double Start_Y = 0;  // of the pointer, pixels, downward
  std::int16_t Start_Position = 50;
};
extern Knob_State Knob;

// Override on the scale of 1024 for a position 0..100.
double Knob_Override(int position);
// Holds the position to 0..100, works out the override and shows it.
void Knob_Process();
// The pointer line: straight up at 50, three quarters of a half turn to either side.
void Draw_Knob(int position);

// A drag turns the knob by one for two pixels downward.
void Pic_Knob_MouseDown(int button, double y);
void Pic_Knob_MouseMove(double y);
void Pic_Knob_MouseUp();
void Label_Feed_Overide_DblClick();

}  // namespace norvik
