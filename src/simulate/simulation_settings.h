// simulation_settings.h: what the simulated machine is like.
//
// Defaults follow the machine setup; section "Simulated Machine" of the pointer file may give other
// values (it concerns this computer and not the machine). One table names the keys, with rows of
// the same kind as those of the machine file: load, save, the settings window and the manual walk
// it.
//
//   travel       X, Y, A: 0 to Axis_Depth; Z: half of it to both sides of 0; a slaved A: that of
//                its master; moved so that the carriage lies inside
//   hard stops   2 percent of the travel beyond its ends
//   switches     one at each end, from half way to the hard stop on
//   motor        twice the axis's feed limit at most, no limit of acceleration
#pragma once

#include "core/setting_row.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// One key of each axis, or of the machine as a whole (its index is then 0). Whole numbers with
// choices stand for the machine's own lists; yes and no are stored as 1 and 0.
struct Simulation_Setting : Setting_Row {
  bool May_Be_Absent = false;  // the empty text
  std::function<std::optional<double>(int axis)> Get;
  std::function<void(int axis, std::optional<double> value)> Set;
};
const std::vector<Simulation_Setting>& Simulation_Settings();

// Its label with the unit, without the axis: "Backlash, units".
std::string Setting_Head(const Simulation_Setting& setting);
// The table of the manual.
std::string Simulation_Settings_Table();

// The value as text: a point as decimal sign, empty for absent.
std::string Text_Of_Setting(const Simulation_Setting& setting, int axis);
// Takes a text and lets the machine follow at once. Answers the empty text, or what is wrong with
// it and what to write instead; the old value then stays.
std::string Change_Setting(const Simulation_Setting& setting, int axis, std::string_view text);
// Puts all to the defaults for the setup; the pointer file stays as it is.
void Restore_Simulation_Defaults();

// Settings of all axes and switches from `MachineSetup` and the carriages' places.
void Default_Simulation_Settings();
// Values of the pointer file over the present ones. A text that is no number or not allowed is
// logged and leaves the value.
void Load_Simulation_Settings();

}  // namespace norvik
