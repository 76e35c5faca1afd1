#include "simulate/simulation_settings.h"

#include "core/error_log.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/setup.h"
#include "simulate/carriage_watch.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"

#include <algorithm>
#include <map>
#include <type_traits>

namespace norvik {

namespace {

constexpr const char* Section = "Simulated Machine";
constexpr double Overtravel_Part = 0.02;  // of the travel

using Axis_Settings = Simulated_Axis_Settings;

using Value = std::optional<double>;

// A zone that a key may add: absent while both ends are 0.
Switch_Zone& Zone(int axis, std::size_t end) {
  auto& zone = Simulated_Machine.Inputs[axis].Zones[end];
  if (!zone) zone.emplace();
  return *zone;
}

constexpr double Longest = 1e9;  // units
constexpr double Fastest = 1e9;  // steps/s
constexpr double Second = 1e9;   // ns

template <class Member>
Simulation_Setting Axis_Setting(const char* name, Member Axis_Settings::*member, double least,
                                double most, const char* label, const char* meaning) {
  constexpr bool yes_no = std::is_same_v<Member, bool>;
  return {.Name = name,
          .Label = label,
          .Meaning = meaning,
          .Kind = yes_no ? Setting_Kind::Yes_No : Setting_Kind::Number,
          .Least = least,
          .Most = most,
          .Get =
              [member](int axis) {
                return static_cast<double>(Simulated_Machine.Axes[axis].Settings.*member);
              },
          .Set =
              [member](int axis, Value value) {
                Simulated_Machine.Axes[axis].Settings.*member = static_cast<Member>(*value);
              }};
}

template <class Member>
Simulation_Setting Switch_Setting(const char* name, Member Simulated_Input::*member, double most,
                                  const char* label, const char* meaning) {
  return {
      .Name = name,
      .Label = label,
      .Meaning = meaning,
      .Most = most,
      .Get = [member](
                 int axis) { return static_cast<double>(Simulated_Machine.Inputs[axis].*member); },
      .Set =
          [member](int axis, Value value) {
            Simulated_Machine.Inputs[axis].*member = static_cast<Member>(*value);
          }};
}

Simulation_Setting Zone_Setting(const char* name, std::size_t end, double Switch_Zone::*member,
                                const char* label, const char* meaning) {
  return {.Name = name,
          .Label = label,
          .Meaning = meaning,
          .Least = -Longest,
          .Most = Longest,
          .Get =
              [=](int axis) {
                const auto& zone = Simulated_Machine.Inputs[axis].Zones[end];
                return zone ? *zone.*member : 0.0;
              },
          .Set = [=](int axis, Value value) { Zone(axis, end).*member = *value; }};
}

std::vector<Simulation_Setting> Axis_Table() {
  using S = Axis_Settings;
  return {
      Axis_Setting("Limited", &S::Limited, 0, 1, "Has ends of travel",
                   "No: the axis turns for ever."),
      Axis_Setting("Travel_Low", &S::Travel_Low, -Longest, Longest, "Travel from, units",
                   "Low end of the travel, in the coordinates at the start of the program."),
      Axis_Setting("Travel_High", &S::Travel_High, -Longest, Longest, "Travel to, units",
                   "High end of the travel."),
      Axis_Setting("Overtravel", &S::Overtravel, 0, Longest, "Hard stops beyond, units",
                   "How far behind the ends of the travel the hard stops lie."),
      Axis_Setting("Backlash", &S::Backlash, 0, Longest, "Backlash, units",
                   "Play of the carriage after each change of direction."),
      Axis_Setting("Pull_In_Rate", &S::Pull_In_Rate, 0, Fastest, "Starts at once to, steps/s",
                   "Rate up to which the motor starts and stops at once."),
      Axis_Setting("Top_Rate", &S::Top_Rate, 0, Fastest, "Fastest, steps/s",
                   "Rate above which the motor loses its steps; 0: none."),
      Axis_Setting("Acceleration", &S::Acceleration, 0, 1e12, "Acceleration, steps/s2",
                   "What the motor can follow above the rate at which it starts; 0: any."),
      Axis_Setting("Shortest_Pulse_ns", &S::Shortest_Pulse, 0, Second, "Shortest pulse, ns",
                   "Least time that the driver needs the step pin high, and low; 0: any."),
      Axis_Setting("Direction_Setup_ns", &S::Direction_Setup, 0, Second,
                   "Direction before step, ns",
                   "Least time from a change of direction to a step; 0: any."),
      Axis_Setting("Direction_Hold_ns", &S::Direction_Hold, 0, Second, "Direction after step, ns",
                   "Least time from a step to a change of direction; 0: any."),
      Axis_Setting("Enable_Time_ns", &S::Enable_Time, 0, Second, "Enable before step, ns",
                   "Least time from the enable to the first step; 0: any."),
      Axis_Setting("Strict", &S::Strict, 0, 1, "Driver loses such steps",
                   "Yes: a step that breaks one of the four times is lost, not only noticed."),
      Axis_Setting("Sink_Rate", &S::Sink_Rate, -1e6, 1e6, "Sinks without motor, units/min",
                   "Speed towards the negative direction while the motor is off; negative: the "
                   "other way; 0: it stays."),
      Zone_Setting("Switch_Low_From", 0, &Switch_Zone::From, "Low switch from, units",
                   "Where the switch at the low end is pressed: from here ..."),
      Zone_Setting("Switch_Low_To", 0, &Switch_Zone::To, "Low switch to, units", "... to here."),
      Zone_Setting("Switch_High_From", 1, &Switch_Zone::From, "High switch from, units",
                   "Where the switch at the high end is pressed: from here ..."),
      Zone_Setting("Switch_High_To", 1, &Switch_Zone::To, "High switch to, units", "... to here."),
      Switch_Setting("Switch_Hysteresis", &Simulated_Input::Hysteresis, Longest,
                     "Switch lets go after, units",
                     "How far outside its range a pressed switch lets go."),
      Switch_Setting("Switch_Bounce_ns", &Simulated_Input::Bounce, Second, "Switch bounces, ns",
                     "Chatter of the contact after each change."),
  };
}

// Of the machine as a whole.
std::vector<Simulation_Setting> Machine_Table() {
  Simulated_Machine_State& m = Simulated_Machine;
  return {
      {.Name = "Access_Time_ns",
       .Label = "Port access takes, ns",
       .Meaning = "Time of one read or write of a port.",
       .Of_Axis = false,
       .Most = 1e6,
       .Get = [&m](int) { return static_cast<double>(m.Access_Time); },
       .Set = [&m](int, Value value) { m.Access_Time = static_cast<std::int64_t>(*value); }},
      {.Name = "EStop_Cuts_Power",
       .Label = "E-stop cuts the motors' power",
       .Meaning = "As a safety relay would; no: the E-stop only tells the program.",
       .Of_Axis = false,
       .Kind = Setting_Kind::Yes_No,
       .Most = 1,
       .Get = [&m](int) { return m.EStop_Cuts_Power ? 1.0 : 0.0; },
       .Set = [](int, Value value) { Set_EStop_Cuts_Power(*value != 0); }},
      {.Name = "Output_Read_Back",
       .Label = "Reading an output gives",
       .Meaning = "What a read of an output register answers; some ports do not tell what was "
                  "written.",
       .Of_Axis = false,
       .Kind = Setting_Kind::Choice,
       .Most = 2,
       .Get = [&m](int) { return static_cast<double>(m.Output_Read_Back); },
       .Set =
           [&m](int, Value value) {
             m.Output_Read_Back = static_cast<Read_Back>(static_cast<int>(*value));
             Refresh_Reads();
           },
       .Choices = {"what was written", "zeros", "ones"}},
      {.Name = "Material_Top",
       .Label = "Top of the material, Z in units",
       .Meaning = "Below this Z of the program, X and Y may move with the spindle on only; empty: "
                  "not looked at.",
       .Of_Axis = false,
       .Least = -Longest,
       .Most = Longest,
       .May_Be_Absent = true,
       .Get = [&m](int) { return m.Material_Top; },
       .Set = [&m](int, Value value) { m.Material_Top = value; }},
      {.Name = "Skew_Limit",
       .Label = "Gantry may be askew by, steps",
       .Meaning = "Steps that a slaved A may be away from its master; 0: not looked at.",
       .Of_Axis = false,
       .Most = 1e6,
       .Get = [&m](int) { return static_cast<double>(m.Skew_Limit); },
       .Set = [&m](int, Value value) { m.Skew_Limit = static_cast<int>(*value); }},
  };
}

// --- One value -----------------------------------------------------------------------------------

std::string Text_Of(Value value) {
  return value ? Shortest_Text(*value) : std::string();
}

// What is wrong with a text as the value of a setting; empty: nothing, and `value` is set.
std::string Wrong_With(const Simulation_Setting& setting, std::string_view text, Value& value) {
  const std::string trimmed = Trim(std::string(text));
  value = Try_Number(trimmed);
  if (trimmed.empty() && setting.May_Be_Absent) return "";
  const std::string name = std::string(setting.Label) + ": ";
  if (!value) return name + "\"" + trimmed + "\" is no number. The old value stays.";
  if (*value >= setting.Least && *value <= setting.Most) return "";
  return name + "write a number from " + Shortest_Text(setting.Least) + " to " +
         Shortest_Text(setting.Most) + ". The old value stays.";
}

// Ends in the wrong order.
std::string Wrong_Ends(int axis) {
  if (axis == 0) return "";
  const Axis_Settings& s = Simulated_Machine.Axes[axis].Settings;
  if (s.Travel_Low > s.Travel_High) return "Travel: its low end must lie below its high end.";
  for (const auto& zone : Simulated_Machine.Inputs[axis].Zones) {
    if (zone && zone->From > zone->To) return "Switch: \"from\" must lie below \"to\".";
  }
  return "";
}

std::string Key(const Simulation_Setting& setting, int axis) {
  return setting.Of_Axis ? std::string(setting.Name) + "_" + std::to_string(axis) : setting.Name;
}

template <class Visit>
void For_Each_Value(Visit&& visit) {
  for (const Simulation_Setting& setting : Simulation_Settings()) {
    const int first = setting.Of_Axis ? 1 : 0, last = setting.Of_Axis ? 4 : 0;
    for (int axis = first; axis <= last; ++axis) visit(setting, axis);
  }
}

// The defaults as they were worked out last; a saved value is one that differs.
struct Simulation_Defaults_State {
  std::map<std::string, std::string> Text;  // by key
};
Simulation_Defaults_State Defaults;

// --- Defaults ------------------------------------------------------------------------------------

void Place_Travel(int axis, Axis_Settings& s) {
  constexpr int z = 3;
  const int along = axis == 4 && Slave_Master() != 0 ? Slave_Master() : axis;
  const double depth = std::max(static_cast<double>(MachineSetup.Axis_Depth[along]), 0.0);
  s.Travel_Low = along == z ? -depth / 2 : 0;
  const double here = Simulated_Machine.Axes[axis].Start;
  if (here < s.Travel_Low) s.Travel_Low = here;
  if (here > s.Travel_Low + depth) s.Travel_Low = here - depth;
  s.Travel_High = s.Travel_Low + depth;
  s.Overtravel = depth * Overtravel_Part;
}

void Place_Switches(int axis, const Axis_Settings& s) {
  const double far = 1e6;
  Simulated_Input& input = Simulated_Machine.Inputs[axis];
  input.Zones[0] = {-far, s.Travel_Low - s.Overtravel / 2};
  input.Zones[1] = {s.Travel_High + s.Overtravel / 2, far};
  input.Hysteresis = s.Overtravel / 20;
}

}  // namespace

const std::vector<Simulation_Setting>& Simulation_Settings() {
  static const std::vector<Simulation_Setting> table = [] {
    std::vector<Simulation_Setting> all = Axis_Table();
    for (Simulation_Setting& setting : Machine_Table()) all.push_back(std::move(setting));
    return all;
  }();
  return table;
}

std::string Text_Of_Setting(const Simulation_Setting& setting, int axis) {
  return Text_Of(setting.Get(axis));
}

std::string Change_Setting(const Simulation_Setting& setting, int axis, std::string_view text) {
  Value value;
  const std::string wrong = Wrong_With(setting, text, value);
  if (!wrong.empty()) return wrong;
  const Value before = setting.Get(axis);
  for (int other = 1; other <= 4; ++other) Let_Sink(other, Machine_Time());
  setting.Set(axis, value);
  const std::string ends = Wrong_Ends(axis);
  if (!ends.empty()) setting.Set(axis, before);
  for (int other = 1; other <= 4; ++other) Settings_Changed(other);
  return ends;
}

void Default_Simulation_Settings() {
  for (int axis = 1; axis <= 4; ++axis) {
    Axis_Settings& s = Simulated_Machine.Axes[axis].Settings;
    Place_Travel(axis, s);
    Place_Switches(axis, s);
    const double scale = Simulated_Machine.Axes[axis].Scale;
    s.Top_Rate = 2.0 * MachineSetup.Axis_Max_Feed_Rate[axis] * scale / 60;
  }
  Defaults = {};
  For_Each_Value([](const Simulation_Setting& setting, int axis) {
    Defaults.Text[Key(setting, axis)] = Text_Of_Setting(setting, axis);
  });
}

void Restore_Simulation_Defaults() {
  for (int axis = 1; axis <= 4; ++axis) {
    Let_Sink(axis, Machine_Time());
    Simulated_Machine.Axes[axis].Settings = {};
    Simulated_Machine.Inputs[axis].Bounce = 0;
  }
  for (const Simulation_Setting& setting : Machine_Table()) {
    setting.Set(0, Try_Number(Defaults.Text[setting.Name]));
  }
  Default_Simulation_Settings();
  for (int axis = 1; axis <= 4; ++axis) Settings_Changed(axis);
}

void Load_Simulation_Settings() {
  For_Each_Value([](const Simulation_Setting& setting, int axis) {
    const std::string text = ReadPointer(Section, Key(setting, axis));
    if (text.empty()) return;
    Value value;
    const std::string wrong = Wrong_With(setting, text, value);
    if (wrong.empty()) return setting.Set(axis, value);
    ErrorLogWrite("Norvik.Ini, " + std::string(Section) + ", " + Key(setting, axis) + ": " + wrong);
  });
}

bool Save_Simulation_Settings() {
  return Write_Pointer_Together([] {
    For_Each_Value([](const Simulation_Setting& setting, int axis) {
      const std::string key = Key(setting, axis), text = Text_Of_Setting(setting, axis);
      const bool is_default = text == Defaults.Text[key];
      // An empty value takes the default; keys that were never given are not begun.
      if (is_default && ReadPointer(Section, key).empty()) return;
      WritePointer(Section, key, is_default ? "" : text);
    });
  });
}

}  // namespace norvik
