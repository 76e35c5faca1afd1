// drive_host.h: what a drive asks of the rooms above it.
//
// A drive lies below the run loop and the panel and may not call them. So the control room puts its
// functions into this record when the program starts, and the drives call them here. What is not
// filled in does nothing, so that a drive can be tested alone.
//
// The rest of the traffic goes through flags that both sides read and write: `Machine` holds the
// position, the E-stop flag and the release of a jog, `Application.EscFlag` a press of ESC.
#pragma once

#include <functional>
#include <optional>

namespace norvik {

struct Drive_Host_Operations {
  // The drive met an E-stop, ESC or a limit switch in a move: the program run is over. Changes the
  // run mode and what the panel shows; must not start a move, since one is just ending.
  std::function<void()> Stop_Run = [] {};
  // The ESC key itself is down, whichever program has the focus. Asked as often as the machine
  // makes steps, so an answer must cost no more than a microsecond or two. False where the window
  // system does not tell.
  std::function<bool()> Escape_Held = [] { return false; };
  // The feed that the panel shows, in IPM. Backlash take-up and moves without ramps run at it.
  // Absent: there is no panel, and each move runs at its own speed.
  std::function<std::optional<double>()> Live_Feed = [] { return std::optional<double>(); };
  // Shows this feed on the panel again, after a calibration at another one.
  std::function<void(double ipm)> Set_Live_Feed = [](double) {};
  // How often the panel refreshes itself, in ms; 0: not at all, so that it takes no time from the
  // pulses of a calibration.
  std::function<void(int interval_ms)> Set_Panel_Interval = [](int) {};
  // A move ended at a speed that was not planned: a mark in the plot at the tool's place.
  std::function<void()> Mark_Rate_Error = [] {};
};
extern Drive_Host_Operations Drive_Host;

}  // namespace norvik
