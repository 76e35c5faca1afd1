#include "control/safety/machine_check.h"

#include "core/axes.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"
#include "parallel/timing.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

using Findings = std::vector<Machine_Finding>;

std::string Number(double value) {
  return Shortest_Text(std::round(value * 1000) / 1000);
}

std::string Axis_Key(const char* family, int axis) {
  return family + std::to_string(axis);
}

std::string Axis_Name(int axis) {
  return std::string(1, Axis_Letter(axis));
}

// Axes that can step.
bool In_Use(int axis) {
  return Output_Bit(Step_Slot(axis)).has_value();
}

// The key acts on serial boards only.
void Check_Polarity(Findings& findings) {
  for (int axis = 1; axis <= 4; ++axis) {
    if (!MachineSetup.Axis_Polarity[axis] || !In_Use(axis)) continue;
    findings.push_back({Axis_Name(axis) +
                            " is set to run in reverse, but this key acts on serial "
                            "boards only: on the parallel port " +
                            Axis_Name(axis) +
                            " runs as if it were off, and parts come out mirrored if it is needed. "
                            "Use " +
                            Axis_Key("Parallel_Output_Bit_Invert_", Direction_Slot(axis)) +
                            " instead.",
                        Axis_Key("Axis_Polarity_", axis)});
  }
}

// --- Scales and speeds ---------------------------------------------------------------------------

void Check_Scales(Findings& findings) {
  const double x_scale = MachineSetup.Axis_SPI[1];
  for (int axis = 1; axis <= 4; ++axis) {
    const double scale = MachineSetup.Axis_SPI[axis];
    const std::string key = Axis_Key("Axis_SPI_", axis);
    if (!(scale > 0)) {
      findings.push_back({Axis_Name(axis) + " has " + Number(scale) +
                              " steps per unit, so that it cannot move" +
                              (axis == 1 ? " and no half step can be timed." : "."),
                          key});
    } else if (axis > 1 && In_Use(axis) && x_scale > 0 && scale != x_scale) {
      findings.push_back({Axis_Name(axis) + " has " + Number(scale) + " steps per unit and X has " +
                              Number(x_scale) +
                              ". Every delay is timed by the scale of X: a move of " +
                              Axis_Name(axis) + " alone runs at " + Number(x_scale / scale) +
                              " times the speed asked for.",
                          key});
    }
  }
}

// The planner changes the speed by 60 x rate / scale IPM a step, the step engine by rate / 50.
void Check_Ramps(Findings& findings) {
  constexpr double even_scale = 3000;  // steps per unit where both are the same
  const double scale = MachineSetup.Axis_SPI[1];
  if (!MachineSetup.Axis_Ramping || !(scale > 0)) return;
  const double factor = scale / even_scale;
  if (factor < 0.5 || factor > 2)
    findings.push_back(
        {"At " + Number(scale) + " steps per unit the step engine speeds up and slows down " +
             Number(factor) +
             " times as fast as the planner reckons (both agree at 3000 steps per unit). Moves may "
             "end at a speed that was not planned; lower Axis_Ramp_Rate until none logs \"Step "
             "Rate Error!\".",
         "Axis_Ramp_Rate"});
  if (MachineSetup.Axis_Ramp_Rate < 1)
    findings.push_back({"Ramps are on with a ramp rate of " +
                            std::to_string(MachineSetup.Axis_Ramp_Rate) +
                            ": the speed never changes within a move.",
                        "Axis_Ramp_Rate"});
}

void Check_Highest_Speeds(Findings& findings) {
  constexpr double engine_limit = 2000;  // IPM; the delay of a half step is held there
  constexpr double shortest_us = 10;     // a half step that a port can still make
  for (int axis = 1; axis <= 4; ++axis) {
    const double highest = MachineSetup.Axis_Max_Feed_Rate[axis];
    const double scale = MachineSetup.Axis_SPI[axis];
    const std::string key = Axis_Key("Axis_Max_Feed_Rate_", axis);
    if (highest > engine_limit)
      findings.push_back({Axis_Name(axis) + " may run at " + Number(highest) +
                              " units per minute, but no move is timed faster than 2000.",
                          key});
    const double half_step = 60e6 / (scale * std::min(highest, engine_limit)) / 2;
    if (In_Use(axis) && scale > 0 && highest > 0 && half_step < shortest_us)
      findings.push_back({Axis_Name(axis) + " at " + Number(highest) +
                              " units per minute needs a half step of " + Number(half_step) +
                              " microseconds; a parallel port does not make it.",
                          key});
  }
}

// The loop looks at stops and yields between two half steps only.
void Check_Lowest_Speed(Findings& findings, const std::string& name, double ipm,
                        const std::string& key) {
  constexpr double lowest = 0.1;                    // units per minute
  constexpr double bearable = 0.25, longest = 2.0;  // seconds
  const double rate = MachineSetup.Axis_SPI[1] * std::max(ipm, 0.0) / 60;
  const double half_step = rate > 0 ? std::min(1 / rate / 2, longest) : longest;
  if (ipm >= lowest && half_step <= bearable) return;
  findings.push_back({name + " is " + Number(ipm) + " units per minute: a half step takes up to " +
                          Number(half_step) +
                          " seconds, the axes seem to stand, and no button is heard before the "
                          "half step is over. Set a higher speed.",
                      key});
}

void Check_Lowest_Speeds(Findings& findings) {
  const auto& setup = MachineSetup;
  if (!(setup.Axis_SPI[1] > 0)) return;  // said already
  const auto check = [&](const char* name, double ipm, const std::string& key) {
    Check_Lowest_Speed(findings, name, ipm, key);
  };
  check("The feed rate for cutting", setup.Axis_Feed_Rate_Cut, "Axis_Feed_Rate_Cut");
  check("The feed rate for travel", setup.Axis_Feed_Rate_Travel, "Axis_Feed_Rate_Travel");
  check("The feed rate for jogging", setup.Axis_Feed_Rate_Jogging, "Axis_Feed_Rate_Jogging");
  if (setup.Axis_Ramping)
    check("The speed at which ramps start", setup.Axis_Ramp_Start, "Axis_Ramp_Start");
  if (!setup.Validate_Home_Position) return;
  check("The speed of homing", setup.Axis_HomeIPM[0], "Axis_HomeIPM_0");
  check("The speed of the second approach in homing", setup.Axis_HomeIPM[1], "Axis_HomeIPM_1");
}

void Check_Time_Constant(Findings& findings) {
  constexpr std::int32_t as_delivered = 50;  // microseconds
  if (MachineSetup.Parallel_Time_Constant == 0)
    findings.push_back(
        {"The time constant is 0. A stored 0 counts as not set: after the next start it is 50 "
         "microseconds, and every move runs too fast. Set it to 1.",
         "Parallel_Time_Constant"});
  if (MachineSetup.Parallel_Time_Constant == as_delivered)
    findings.push_back(
        {"The time constant has its first value of 50 microseconds: it was never "
         "calibrated on this computer, and feed rates are off. Find it in the panel "
         "or in the System Timing window.",
         "Parallel_Time_Constant"});
}

// --- Homing --------------------------------------------------------------------------------------

void Check_Tap(Findings& findings, int axis) {
  const std::string& path_text = MachineSetup.Axis_HomePath[axis];
  const std::string& home_text = MachineSetup.Axis_HomeTarget[axis];
  if (path_text.empty() || home_text.empty()) return;
  const double path = RegionalNumber(path_text), home = RegionalNumber(home_text);
  const double sign = home >= path ? 1 : -1;
  const double tap = -sign * 0.1 * MachineSetup.Axis_SPI[axis];
  if ((home - tap) * sign <= 0)
    findings.push_back({"Homing taps the switch of " + Axis_Name(axis) + " with a move to " +
                            Number(tap) + ", which does not lie behind the switch at " +
                            Number(home) +
                            ": the position would be set without the switch having been met.",
                        Axis_Key("Axis_HomeTarget_", axis)});
}

// A seek that meets no switch ends at the home path, and the position is set there all the same.
void Check_Met_Switches(Findings& findings) {
  if (MachineSetup.Home_Needs_Switch) return;
  bool seeks = false;
  for (int axis = 1; axis <= 4; ++axis) {
    if (MachineSetup.Axis_HomePath[axis].empty() || MachineSetup.Axis_HomeTarget[axis].empty()) {
      continue;
    }
    seeks = true;
    if (MachineSetup.Parallel_Port_Type != 1 || Input_Bit(Limit_Input(axis))) continue;
    findings.push_back({"Homing seeks the switch of " + Axis_Name(axis) +
                            ", and none is wired: it runs to the end of the home path and sets a "
                            "false position there. Wire the switch, empty the axis's home path, or "
                            "switch Home_Needs_Switch on.",
                        Axis_Key("Parallel_Input_Bit_", Limit_Input(axis))});
  }
  if (seeks) {
    findings.push_back(
        {"Homing that does not meet a switch (a broken wire, a motor that lost its steps) ends "
         "with "
         "\"Homing Completed!\" and a false position. Switch Home_Needs_Switch on: homing then "
         "ends there and sets no position.",
         "Home_Needs_Switch"});
  }
}

void Check_Homing(Findings& findings) {
  if (!MachineSetup.Validate_Home_Position) return;
  Check_Met_Switches(findings);
  for (int axis = 1; axis <= 4; ++axis) {
    const bool read = Trap_With([](const Fault&) {}, [&] { Check_Tap(findings, axis); });
    if (!read)
      findings.push_back({"Home path or home target of " + Axis_Name(axis) +
                              " is no number, so that homing ends there.",
                          Axis_Key("Axis_HomeTarget_", axis)});
  }
  if (MachineSetup.UnitsofMeasurement == 1)
    findings.push_back(
        {"Homing backs off 0.05 units, here 0.05 millimetre. Most switches need more "
         "to open again; then the tap begins on the switch and finds no edge.",
         "UnitsofMeasurement"});
  if (MachineSetup.LimitSwitchDisable != 0)
    findings.push_back(
        {"Homing with validation needs the limit switches, and they are switched "
         "off: it will be refused.",
         "LimitSwitchDisable"});
}

// --- Motion and safety ---------------------------------------------------------------------------

void Check_Safety(Findings& findings) {
  const auto& setup = MachineSetup;
  if (setup.Axis_Backlash_Enable)
    findings.push_back(
        {"Backlash take-up makes an odd number of half steps at each reversal, one "
         "toggle too many, so that the step pin ends at its other level and the axis "
         "wanders by up to a step at each second reversal.",
         "Axis_Backlash_Enable"});
  if (setup.LimitSwitchDisable == 1)
    findings.push_back(
        {"The limit switches are not looked at: nothing ends a move into the end of "
         "an axis.",
         "LimitSwitchDisable"});
  else if (setup.LimitDisableinRunMode != 1)
    findings.push_back(
        {"A limit switch that is met in a run ends the run, but the E-stop is not "
         "engaged: motors and outputs stay as they are.",
         "LimitDisableinRunMode"});
  if (!setup.E_Stop_Output_Disable)
    findings.push_back(
        {"The E-stop leaves the outputs as they are: a spindle keeps turning. The E-stop input "
         "ends "
         "what moves and lets nothing begin as long as it is on; it switches no output off, takes "
         "no "
         "motor its power and does not latch. Set this key, and let the E-stop contact cut the "
         "power "
         "of motors and spindle itself.",
         "E_Stop_Output_Disable"});
  if (setup.Parallel_MotorEnable_Option == 0)
    findings.push_back(
        {"Motors are switched off after every move: an axis under load may sink or "
         "be pushed, and its position is lost.",
         "Parallel_MotorEnable_Option"});
  if (setup.Parallel_MotorEnable_Option == 1)
    findings.push_back(
        {"Motors stay enabled until the program ends, also while the E-stop button "
         "reads MOTORS DISABLED.",
         "Parallel_MotorEnable_Option"});
}

void Check_EStop_Wiring(Findings& findings) {
  const std::string key = "Parallel_Input_Bit_Invert_0";
  if (!Input_Bit(EStop_Input))
    findings.push_back(
        {"No E-stop input is wired: only the button on the screen and ESC stop the "
         "machine.",
         "Parallel_Input_Bit_0"});
  else if (!MachineSetup.Parallel_Input_Bit_Invert[EStop_Input])
    findings.push_back(
        {"The E-stop input is on when its line is low. A broken wire reads high and "
         "the E-stop is lost; wire a contact that opens, and invert the input.",
         key});
}

// --- Pins ----------------------------------------------------------------------------------------

struct Wired_Bit {
  std::string Name, Key;
  std::int32_t Port;
  int Bit;
};

std::vector<Wired_Bit> Wired_Bits() {
  std::vector<Wired_Bit> bits;
  for (int slot = 1; slot <= 17; ++slot)
    if (const auto bit = Output_Bit(slot))
      bits.push_back({Output_Role(slot), "Parallel_Output_Bit_" + std::to_string(slot),
                      MachineSetup.Output_Port[slot], *bit});
  for (int slot = 0; slot <= 5; ++slot)
    if (const auto bit = Input_Bit(slot))
      bits.push_back({Input_Role(slot), "Parallel_Input_Bit_" + std::to_string(slot),
                      MachineSetup.Input_Port[slot], *bit});
  return bits;
}

void Check_Shared_Bits(Findings& findings) {
  const auto bits = Wired_Bits();
  for (std::size_t i = 0; i < bits.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (bits[i].Port == bits[j].Port && bits[i].Bit == bits[j].Bit)
        findings.push_back({bits[j].Name + " and " + bits[i].Name + " are both on bit " +
                                std::to_string(bits[i].Bit) + " of port " +
                                std::to_string(bits[i].Port) + ".",
                            bits[i].Key});
}

void Check_Ports(Findings& findings) {
  const auto answers = [](std::int32_t port) { return port >= Lowest_Port && port <= 65535; };
  for (int slot = 0; slot <= 5; ++slot) {
    const std::int32_t port = MachineSetup.Input_Port[slot];
    if (!Input_Bit(slot) || answers(port)) continue;
    const bool inverted = MachineSetup.Parallel_Input_Bit_Invert[slot];
    findings.push_back({Input_Role(slot) + " is on port " + std::to_string(port) +
                            ", which is never read: it counts as " + (inverted ? "off" : "on") +
                            " for ever.",
                        "Input_Port_" + std::to_string(slot)});
  }
  for (int slot = 1; slot <= 17; ++slot) {
    const std::int32_t port = MachineSetup.Output_Port[slot];
    if (Output_Bit(slot) && !answers(port))
      findings.push_back(
          {Output_Role(slot) + " is on port " + std::to_string(port) + ", which is never written.",
           "Output_Port_" + std::to_string(slot)});
  }
  if (MachineSetup.Parallel_IODLL != 1 && MachineSetup.Parallel_IODLL != 2)
    findings.push_back(
        {"No way of port access is chosen: nothing is read or written.", "Parallel_IODLL"});
}

}  // namespace

std::vector<Machine_Finding> Machine_Check() {
  Findings findings;
  Check_Safety(findings);
  Check_Homing(findings);
  if (MachineSetup.Parallel_Port_Type != 1) return findings;
  Check_EStop_Wiring(findings);
  Check_Shared_Bits(findings);
  Check_Ports(findings);
  Check_Polarity(findings);
  Check_Scales(findings);
  Check_Ramps(findings);
  Check_Highest_Speeds(findings);
  Check_Lowest_Speeds(findings);
  Check_Time_Constant(findings);
  return findings;
}

}  // namespace norvik
