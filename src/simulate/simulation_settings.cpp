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

// A row of each axis, or of the machine as a whole where `key` has no "<n>".
Simulation_Setting Row(std::string_view key, std::string_view label, std::string_view unit,
                       Value_Bounds bounds, std::string_view default_words, std::string_view help) {
  Simulation_Setting row;
  row.Section = Section;
  row.Key = key;
  row.Is_Family = key.ends_with("<n>");
  if (row.Is_Family) {
    row.Loaded = {1, 4};
    row.Entries = "X|Y|Z|A";
  }
  row.Group = "Simulated machine";
  row.Label = label;
  row.Kind = Setting_Kind::Number;
  row.Unit = unit;
  row.Bounds = bounds;
  row.Default_Words = default_words;
  row.Help = help;
  return row;
}

template <class Member>
Simulation_Setting Of_Axis(Simulation_Setting row, Member Axis_Settings::*member) {
  if constexpr (std::is_same_v<Member, bool>) row.Kind = Setting_Kind::Yes_No;
  row.Get = [member](int axis) {
    return static_cast<double>(Simulated_Machine.Axes[axis].Settings.*member);
  };
  row.Set = [member](int axis, Value value) {
    Simulated_Machine.Axes[axis].Settings.*member = static_cast<Member>(*value);
  };
  return row;
}

template <class Member>
Simulation_Setting Of_Switch(Simulation_Setting row, Member Simulated_Input::*member) {
  row.Get = [member](int axis) {
    return static_cast<double>(Simulated_Machine.Inputs[axis].*member);
  };
  row.Set = [member](int axis, Value value) {
    Simulated_Machine.Inputs[axis].*member = static_cast<Member>(*value);
  };
  return row;
}

Simulation_Setting Of_Zone(Simulation_Setting row, std::size_t end, double Switch_Zone::*member) {
  row.Get = [=](int axis) {
    const auto& zone = Simulated_Machine.Inputs[axis].Zones[end];
    return zone ? *zone.*member : 0.0;
  };
  row.Set = [=](int axis, Value value) { Zone(axis, end).*member = *value; };
  return row;
}

std::vector<Simulation_Setting> Travel_Rows() {
  using S = Axis_Settings;
  constexpr Value_Bounds place{-Longest, Longest}, length{0, Longest};
  return {
      Of_Axis(
          Row("Limited_<n>", "Has ends of travel", "", {0, 1}, "1", "No: the axis turns for ever."),
          &S::Limited),
      Of_Axis(Row("Travel_Low_<n>", "Travel from", "units", place,
                  "0; Z: minus half of its length of travel",
                  "Low end of the travel, in the coordinates at the start of the program; moved so "
                  "that the carriage lies inside."),
              &S::Travel_Low),
      Of_Axis(Row("Travel_High_<n>", "Travel to", "units", place,
                  "low end and the length of travel", "High end of the travel."),
              &S::Travel_High),
      Of_Axis(Row("Overtravel_<n>", "Hard stops beyond", "units", length, "2 % of the travel",
                  "How far behind the ends of the travel the hard stops lie."),
              &S::Overtravel),
      Of_Axis(Row("Backlash_<n>", "Backlash", "units", length, "0",
                  "Play of the carriage after each change of direction."),
              &S::Backlash),
  };
}

std::vector<Simulation_Setting> Motor_Rows() {
  using S = Axis_Settings;
  constexpr Value_Bounds rate{0, Fastest}, time{0, Second};
  return {
      Of_Axis(Row("Pull_In_Rate_<n>", "Starts at once to", "steps/s", rate, "0",
                  "Rate up to which the motor starts and stops at once."),
              &S::Pull_In_Rate),
      Of_Axis(Row("Top_Rate_<n>", "Fastest", "steps/s", rate, "twice the axis's feed limit",
                  "Rate above which the motor loses its steps; 0: none."),
              &S::Top_Rate),
      Of_Axis(Row("Acceleration_<n>", "Acceleration", "steps/s2", {0, 1e12}, "0",
                  "What the motor can follow above the rate at which it starts; 0: any."),
              &S::Acceleration),
      Of_Axis(Row("Shortest_Pulse_ns_<n>", "Shortest pulse", "ns", time, "1000",
                  "Least time that the driver needs the step pin high, and low; 0: any."),
              &S::Shortest_Pulse),
      Of_Axis(Row("Direction_Setup_ns_<n>", "Direction before step", "ns", time, "2000",
                  "Least time from a change of direction to a step; 0: any."),
              &S::Direction_Setup),
      Of_Axis(Row("Direction_Hold_ns_<n>", "Direction after step", "ns", time, "1000",
                  "Least time from a step to a change of direction; 0: any."),
              &S::Direction_Hold),
      Of_Axis(Row("Enable_Time_ns_<n>", "Enable before step", "ns", time, "0",
                  "Least time from the enable to the first step; 0: any."),
              &S::Enable_Time),
      Of_Axis(Row("Strict_<n>", "Driver loses such steps", "", {0, 1}, "0",
                  "Yes: a step that breaks one of the four times is lost, not only noticed."),
              &S::Strict),
      Of_Axis(Row("Sink_Rate_<n>", "Sinks without motor", "units/min", {-1e6, 1e6}, "0",
                  "Speed towards the negative direction while the motor is off, once it has held "
                  "the axis; negative: the other way; 0: it stays."),
              &S::Sink_Rate),
  };
}

std::vector<Simulation_Setting> Switch_Rows() {
  constexpr Value_Bounds place{-Longest, Longest};
  constexpr const char* half_way = "half way to the hard stop";
  return {
      Of_Zone(Row("Switch_Low_From_<n>", "Low switch from", "units", place, "far out",
                  "Where the switch at the low end is pressed: from here ..."),
              0, &Switch_Zone::From),
      Of_Zone(Row("Switch_Low_To_<n>", "Low switch to", "units", place, half_way, "... to here."),
              0, &Switch_Zone::To),
      Of_Zone(Row("Switch_High_From_<n>", "High switch from", "units", place, half_way,
                  "Where the switch at the high end is pressed: from here ..."),
              1, &Switch_Zone::From),
      Of_Zone(
          Row("Switch_High_To_<n>", "High switch to", "units", place, "far out", "... to here."), 1,
          &Switch_Zone::To),
      Of_Switch(Row("Switch_Hysteresis_<n>", "Switch lets go after", "units", {0, Longest},
                    "a twentieth of the overtravel",
                    "How far outside its range a pressed switch lets go."),
                &Simulated_Input::Hysteresis),
      Of_Switch(Row("Switch_Bounce_ns_<n>", "Switch bounces", "ns", {0, Second}, "0",
                    "Chatter of the contact after each change."),
                &Simulated_Input::Bounce),
  };
}

// Of the machine as a whole.
std::vector<Simulation_Setting> Machine_Table() {
  Simulated_Machine_State& m = Simulated_Machine;
  Simulation_Setting access = Row("Access_Time_ns", "Port access takes", "ns", {0, 1e6}, "1000",
                                  "Time of one read or write of a port.");
  access.Get = [&m](int) { return static_cast<double>(m.Access_Time); };
  access.Set = [&m](int, Value value) { m.Access_Time = static_cast<std::int64_t>(*value); };

  Simulation_Setting power =
      Row("EStop_Cuts_Power", "E-stop cuts the motors' power", "", {0, 1}, "0",
          "As a safety relay would; no: the E-stop only tells the program.");
  power.Kind = Setting_Kind::Yes_No;
  power.Get = [&m](int) { return m.EStop_Cuts_Power ? 1.0 : 0.0; };
  power.Set = [](int, Value value) { Set_EStop_Cuts_Power(*value != 0); };

  Simulation_Setting read_back =
      Row("Output_Read_Back", "Reading an output gives", "", {0, 2}, "0",
          "What a read of an output register gives; some ports do not give back what was written.");
  read_back.Kind = Setting_Kind::Whole_Number;
  read_back.Choices = {{"0", "what was written"}, {"1", "zeros"}, {"2", "ones"}};
  read_back.Get = [&m](int) { return static_cast<double>(m.Output_Read_Back); };
  read_back.Set = [&m](int, Value value) {
    m.Output_Read_Back = static_cast<Read_Back>(static_cast<int>(*value));
    Refresh_Reads();
  };

  Simulation_Setting top =
      Row("Material_Top", "Top of the material, Z", "units", {-Longest, Longest}, "empty",
          "Below this Z of the program, X and Y may move with the spindle on only; empty: not "
          "looked at.");
  top.May_Be_Absent = true;
  top.Get = [&m](int) { return m.Material_Top; };
  top.Set = [&m](int, Value value) { m.Material_Top = value; };

  Simulation_Setting skew =
      Row("Skew_Limit", "Gantry may be askew by", "steps", {0, 1e6}, "20",
          "Steps that a slaved A may be away from its master; 0: not looked at.");
  skew.Get = [&m](int) { return static_cast<double>(m.Skew_Limit); };
  skew.Set = [&m](int, Value value) { m.Skew_Limit = static_cast<int>(*value); };
  return {access, power, read_back, top, skew};
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
  const std::string name = Setting_Head(setting) + ": ";
  if (!value) return name + "\"" + trimmed + "\" is no number. The old value stays.";
  if (*value >= setting.Bounds.Low && *value <= setting.Bounds.High) return "";
  return name + "write a number from " + Shortest_Text(setting.Bounds.Low) + " to " +
         Shortest_Text(setting.Bounds.High) + ". The old value stays.";
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

template <class Visit>
void For_Each_Value(Visit&& visit) {
  for (const Simulation_Setting& setting : Simulation_Settings()) {
    for (int axis = setting.Loaded.First; axis <= setting.Loaded.Last; ++axis) {
      visit(setting, axis);
    }
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
    std::vector<Simulation_Setting> all;
    for (const auto& part : {Travel_Rows(), Motor_Rows(), Switch_Rows(), Machine_Table()}) {
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }();
  return table;
}

std::string Setting_Head(const Simulation_Setting& setting) {
  std::string head(setting.Label);
  if (!setting.Unit.empty()) head += ", " + std::string(setting.Unit);
  return head;
}

std::string Simulation_Settings_Table() {
  std::string table = Setting_Table_Head();
  for (const Simulation_Setting& setting : Simulation_Settings()) {
    table += Setting_Table_Line(setting, std::string(setting.Default_Words));
  }
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
    Defaults.Text[Setting_Key(setting, axis)] = Text_Of_Setting(setting, axis);
  });
}

void Restore_Simulation_Defaults() {
  for (int axis = 1; axis <= 4; ++axis) {
    Let_Sink(axis, Machine_Time());
    Simulated_Machine.Axes[axis].Settings = {};
    Simulated_Machine.Inputs[axis].Bounce = 0;
  }
  for (const Simulation_Setting& setting : Machine_Table()) {
    setting.Set(0, Try_Number(Defaults.Text[Setting_Key(setting, 0)]));
  }
  Default_Simulation_Settings();
  for (int axis = 1; axis <= 4; ++axis) Settings_Changed(axis);
}

void Load_Simulation_Settings() {
  For_Each_Value([](const Simulation_Setting& setting, int axis) {
    const std::string text = ReadPointer(Section, Setting_Key(setting, axis));
    if (text.empty()) return;
    Value value;
    const std::string wrong = Wrong_With(setting, text, value);
    if (wrong.empty()) return setting.Set(axis, value);
    ErrorLogWrite("Norvik.Ini, " + std::string(Section) + ", " + Setting_Key(setting, axis) + ": " +
                  wrong);
  });
}

bool Save_Simulation_Settings() {
  return Write_Pointer_Together([] {
    For_Each_Value([](const Simulation_Setting& setting, int axis) {
      const std::string key = Setting_Key(setting, axis), text = Text_Of_Setting(setting, axis);
      const bool is_default = text == Defaults.Text[key];
      // An empty value takes the default; keys that were never given are not begun.
      if (is_default && ReadPointer(Section, key).empty()) return;
      WritePointer(Section, key, is_default ? "" : text);
    });
  });
}

}  // namespace norvik
