// drive_host.h: what the parallel drive asks of the rooms above it.
//
// The control room fills the record at start. Each operation does nothing by default, so that the
// drive runs alone in its tests. Besides these calls the drive reads and writes `Machine`
// (position, E-stop flag, jog release) and `Application.EscFlag`.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

namespace norvik {

struct Drive_Host_Operations {
  // CNC_Stop: an E-stop, ESC or a limit of a released jog was met in a move. Changes the run state
  // only; must not start a move.
  std::function<void()> Stop_Run = [] {};
  // The panel's live feed in IPM: speed of backlash take-up and of moves without ramps. Absent:
  // no panel; the speed of the move stands.
  std::function<std::optional<double>()> Live_Feed = [] { return std::optional<double>(); };
  // Puts the live feed back after a calibration.
  std::function<void(double ipm)> Set_Live_Feed = [](double) {};
  // Interval of the panel's timer in ms, 0 for stopped.
  std::function<void(int interval_ms)> Set_Panel_Interval = [](int) {};
  // Prints a text at the cursor of the plot.
  std::function<void(std::string_view text)> Mark_Plot = [](std::string_view) {};
};
extern Drive_Host_Operations Drive_Host;

}  // namespace norvik
