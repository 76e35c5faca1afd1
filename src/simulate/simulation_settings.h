// simulation_settings.h: what the simulated machine is like.
//
// Defaults follow the machine setup; section "Simulated Machine" of the pointer file may give other
// values (it concerns this computer and not the machine). One table names the keys: load, save, the
// settings window and the tests of the manual walk it.
//
//   travel       X, Y, A: 0 to Axis_Depth; Z: half of it to both sides of 0; a slaved A: that of
//                its master; moved so that the carriage lies inside
//   hard stops   2 percent of the travel beyond its ends
//   switches     one at each end, from half way to the hard stop on
//   motor        twice the axis's feed limit at most, no limit of acceleration
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Setting_Kind { Number, Yes_No, Choice };

// One key: `Name` + "_" + the axis's number, or `Name` alone for the machine as a whole.
struct Simulation_Setting {
  const char* Name = "";
  const char* Label = "";  // for the operator, with its unit
  const char* Meaning = "";
  bool Of_Axis = true;
  Setting_Kind Kind = Setting_Kind::Number;
  double Least = 0, Most = 0;  // what a number may be
  bool May_Be_Absent = false;  // the empty text
  // `axis` is 1..4, 0 for the machine as a whole.
  std::function<std::optional<double>(int axis)> Get = {};
  std::function<void(int axis, std::optional<double> value)> Set = {};
  std::vector<const char*> Choices = {};  // the words of 0, 1, ...
};
const std::vector<Simulation_Setting>& Simulation_Settings();

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
