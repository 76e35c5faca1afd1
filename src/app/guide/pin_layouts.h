// pin_layouts.h: how the common breakout boards use a 25-pin connector.
#pragma once

#include "core/indexed.h"

#include <span>
#include <string_view>

namespace norvik {

// Pins of one connector, 0: not used.
struct Pin_Layout {
  std::string_view Name;
  Indexed<int, 1, 4> Step, Direction, Enable;
  Indexed<int, 1, 5> Output;  // spindle CW, CCW, mist, flood, auxiliary
  int EStop = 0;
  Indexed<int, 1, 4> Switch;  // home and limit switch of each axis; axes may share one
  int Auxiliary = 0;
};

std::span<const Pin_Layout> Pin_Layouts();

// Fills the page of pins with the layout, on the connector whose base address it shows, every input
// as a contact that opens when it trips. Nothing acts before the page is applied.
void Show_Pin_Layout(const Pin_Layout& layout);

}  // namespace norvik
