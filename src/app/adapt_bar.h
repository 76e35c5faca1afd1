// adapt_bar.h: the bar above the editor: what of the program would be lost or misread.
#pragma once

#include <cstdint>

namespace norvik {

struct Adapt_Bar_State {
  bool Left = false;            // the operator keeps the program as it is, until another is opened
  std::int32_t First_Line = 0;  // the first line that would be lost or misread; 0: none
};
extern Adapt_Bar_State Adapt_Bar;

// Puts into `Gcode_Form.Label_Adapt` what the findings of the check mean for the program; empty
// where Adapt would help nothing.
void Judge_Adaption();

// Goes to the first line that would be lost or misread.
void Command_Adapt_Show_Click();
void Command_Adapt_Leave_Click();

}  // namespace norvik
