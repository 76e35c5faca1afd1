// plot_host.h: what the plot asks of the windows above it.
//
// The window fills the record while it is open. Each operation does nothing by default and without
// surfaces nothing is painted, so that the plot runs without a window.
#pragma once

#include "plot/plot_surface.h"

#include <functional>
#include <string>

namespace norvik {

struct Plot_Host_Operations {
  // The surfaces of the open window; null while it is closed. They keep what was drawn, so that
  // cursor and rubber bands move over a finished picture.
  Plot_Surface* Picture1 = nullptr;
  Plot_Surface* Picture_ZAxis = nullptr;

  // What stands on a surface has changed: show it at the next chance.
  std::function<void()> Frame_Changed = [] {};
  // A rubber band, the cursor or the spindle picture has moved.
  std::function<void()> Shapes_Changed = [] {};
  // A control of `Plot_Form` has changed.
  std::function<void()> Form_Changed = [] {};
  // Selects the first match of a text in the G-code window.
  std::function<void(const std::string& text)> Select_Program_Text = [](const std::string&) {};
  // True while the stream of a serial drive moves the machine.
  std::function<bool()> Motion_Active = [] { return false; };
};
extern Plot_Host_Operations Plot_Host;

}  // namespace norvik
