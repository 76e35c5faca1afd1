// run_plot_host.h: what the run loop asks of the plot.
//
// The plot draws; it never waits, repeats or moves. Each operation does nothing by default.
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>
#include <functional>

namespace norvik {

struct Run_Plot_Host_Operations {
  // Draw the segment of wire `k` of the executing table (counted from 0).
  std::function<void(std::size_t k, const Wire&)> Draw_Segment = [](std::size_t, const Wire&) {};
  // Draw the cursor at the live position.
  std::function<void()> Draw_Cursor = [] {};
  // A run starts with `Plot_FastDraw` on: draw the whole program anew.
  std::function<void()> Refresh = [] {};
  // An "X" at the cursor: a move ended at a speed that was not planned.
  std::function<void()> Mark_Rate_Error = [] {};
  // A Goto has ended; its line is still the executing table.
  std::function<void()> Goto_Ended = [] {};
};
extern Run_Plot_Host_Operations Run_Plot_Host;

}  // namespace norvik
