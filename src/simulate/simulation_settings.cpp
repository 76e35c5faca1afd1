#include "simulate/simulation_settings.h"

#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup.h"
#include "simulate/simulated_machine.h"

#include <algorithm>
#include <functional>

namespace norvik {

namespace {

constexpr const char* Section = "Simulated Machine";
constexpr double Overtravel_Part = 0.02;  // of the travel

using Axis_Settings = Simulated_Axis_Settings;

// A zone that the file may add: absent while both ends are 0.
Switch_Zone& Zone(int axis, std::size_t end) {
  auto& zone = Simulated_Machine.Inputs[axis].Zones[end];
  if (!zone) zone.emplace();
  return *zone;
}

// One key of an axis: `Name` + "_" + the axis's number.
struct Setting {
  const char* Name;
  std::function<double(int axis)> Get;
  std::function<void(int axis, double value)> Set;
};

template <class Member>
Setting Axis_Setting(const char* name, Member Axis_Settings::*member) {
  return {name,
          [member](int axis) {
            return static_cast<double>(Simulated_Machine.Axes[axis].Settings.*member);
          },
          [member](int axis, double value) {
            Simulated_Machine.Axes[axis].Settings.*member = static_cast<Member>(value);
          }};
}

template <class Member>
Setting Switch_Setting(const char* name, Member Simulated_Input::*member) {
  return {
      name,
      [member](int axis) { return static_cast<double>(Simulated_Machine.Inputs[axis].*member); },
      [member](int axis, double value) {
        Simulated_Machine.Inputs[axis].*member = static_cast<Member>(value);
      }};
}

Setting Zone_Setting(const char* name, std::size_t end, double Switch_Zone::*member) {
  return {name,
          [=](int axis) {
            const auto& zone = Simulated_Machine.Inputs[axis].Zones[end];
            return zone ? *zone.*member : 0.0;
          },
          [=](int axis, double value) { Zone(axis, end).*member = value; }};
}

const std::vector<Setting>& Settings() {
  static const std::vector<Setting> table{
      Axis_Setting("Limited", &Axis_Settings::Limited),
      Axis_Setting("Travel_Low", &Axis_Settings::Travel_Low),
      Axis_Setting("Travel_High", &Axis_Settings::Travel_High),
      Axis_Setting("Overtravel", &Axis_Settings::Overtravel),
      Axis_Setting("Backlash", &Axis_Settings::Backlash),
      Axis_Setting("Pull_In_Rate", &Axis_Settings::Pull_In_Rate),
      Axis_Setting("Top_Rate", &Axis_Settings::Top_Rate),
      Axis_Setting("Acceleration", &Axis_Settings::Acceleration),
      Axis_Setting("Shortest_Pulse_ns", &Axis_Settings::Shortest_Pulse),
      Axis_Setting("Direction_Setup_ns", &Axis_Settings::Direction_Setup),
      Axis_Setting("Direction_Hold_ns", &Axis_Settings::Direction_Hold),
      Axis_Setting("Enable_Time_ns", &Axis_Settings::Enable_Time),
      Axis_Setting("Strict", &Axis_Settings::Strict),
      Zone_Setting("Switch_Low_From", 0, &Switch_Zone::From),
      Zone_Setting("Switch_Low_To", 0, &Switch_Zone::To),
      Zone_Setting("Switch_High_From", 1, &Switch_Zone::From),
      Zone_Setting("Switch_High_To", 1, &Switch_Zone::To),
      Switch_Setting("Switch_Hysteresis", &Simulated_Input::Hysteresis),
      Switch_Setting("Switch_Bounce_ns", &Simulated_Input::Bounce),
  };
  return table;
}

std::string Key(const Setting& setting, int axis) {
  return std::string(setting.Name) + "_" + std::to_string(axis);
}

// Keys of the machine as a whole.
constexpr const char* Access_Key = "Access_Time_ns";
constexpr const char* Power_Key = "EStop_Cuts_Power";

void Place_Travel(int axis, Axis_Settings& s) {
  constexpr int z = 3;
  const double depth = std::max(static_cast<double>(MachineSetup.Axis_Depth[axis]), 0.0);
  s.Travel_Low = axis == z ? -depth / 2 : 0;
  const double here = Simulated_Machine.Axes[axis].Start;
  if (here < s.Travel_Low) s.Travel_Low = here;
  if (here > s.Travel_Low + depth) s.Travel_Low = here - depth;
  s.Travel_High = s.Travel_Low + depth;
  s.Overtravel = depth * Overtravel_Part;
}

void Place_Switches(int axis, const Axis_Settings& s) {
  const double far = 1e9;
  Simulated_Input& input = Simulated_Machine.Inputs[axis];
  input.Zones[0] = {-far, s.Travel_Low - s.Overtravel / 2};
  input.Zones[1] = {s.Travel_High + s.Overtravel / 2, far};
  input.Hysteresis = s.Overtravel / 20;
}

template <class Read>
void Take(const std::string& key, Read&& read) {
  Trap("Load_Simulation_Settings_Error", [&] {
    const std::string text = ReadPointer(Section, key);
    if (!text.empty()) read(To_Double(text));
  });
}

}  // namespace

void Default_Simulation_Settings() {
  for (int axis = 1; axis <= 4; ++axis) {
    Axis_Settings& s = Simulated_Machine.Axes[axis].Settings;
    Place_Travel(axis, s);
    Place_Switches(axis, s);
    const double scale = Simulated_Machine.Axes[axis].Scale;
    s.Top_Rate = 2.0 * MachineSetup.Axis_Max_Feed_Rate[axis] * scale / 60;
  }
}

void Load_Simulation_Settings() {
  for (const Setting& setting : Settings()) {
    for (int axis = 1; axis <= 4; ++axis) {
      Take(Key(setting, axis), [&](double value) { setting.Set(axis, value); });
    }
  }
  Take(Access_Key,
       [](double value) { Simulated_Machine.Access_Time = static_cast<std::int64_t>(value); });
  Take(Power_Key, [](double value) { Simulated_Machine.EStop_Cuts_Power = value != 0; });
}

void Save_Simulation_Settings() {
  for (const Setting& setting : Settings()) {
    for (int axis = 1; axis <= 4; ++axis) {
      WritePointer(Section, Key(setting, axis), Shortest_Text(setting.Get(axis)));
    }
  }
  WritePointer(Section, Access_Key, std::to_string(Simulated_Machine.Access_Time));
  WritePointer(Section, Power_Key, Simulated_Machine.EStop_Cuts_Power ? "1" : "0");
}

}  // namespace norvik
