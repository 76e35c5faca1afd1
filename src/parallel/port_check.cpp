#include "parallel/port_check.h"

#include "core/setup.h"
#include "drive/move_plan.h"
#include "parallel/pin_map.h"
#include "parallel/port_ranges.h"
#include "parallel/ports.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string>

namespace norvik {

namespace {

using Findings = std::vector<Machine_Finding>;

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
      findings.push_back({Axis_Name(axis) + " has " + Setup_Number(scale) +
                              " steps per unit, so that it cannot move" +
                              (axis == 1 ? " and no half step can be timed." : "."),
                          key});
    } else if (axis > 1 && In_Use(axis) && x_scale > 0 && scale != x_scale &&
               !MachineSetup.Axis_Scale_Delay) {
      findings.push_back({Axis_Name(axis) + " has " + Setup_Number(scale) +
                              " steps per unit and X has " + Setup_Number(x_scale) +
                              ". Every delay is timed by the scale of X: a move of " +
                              Axis_Name(axis) + " alone runs at " + Setup_Number(x_scale / scale) +
                              " times the speed asked for.",
                          key, "Axis_Scale_Delay"});
    }
  }
}

// The feed planner reckons with 60 x rate / scale IPM a step, whatever the scale; the step engine
// changes the speed by the same amount in each of the two half steps of a step.
void Check_Ramps(Findings& findings) {
  const double scale = MachineSetup.Axis_SPI[1];
  if (!MachineSetup.Axis_Ramping || !(scale > 0)) return;
  const double factor = 2 * Ramp_Increment(1) * scale / 60;
  if (!MachineSetup.One_Acceleration && (factor < 0.5 || factor > 2))
    findings.push_back(
        {"At " + Setup_Number(scale) + " steps per unit the step engine speeds up and slows down " +
             Setup_Number(factor) +
             " times as fast as the planner reckons (both agree at 3000 steps per unit). Moves may "
             "end at a speed that was not planned; lower Axis_Ramp_Rate until none logs \"Step "
             "Rate Error!\".",
         "Axis_Ramp_Rate", "One_Acceleration"});
  if (MachineSetup.Axis_Ramp_Rate < 1)
    findings.push_back({"Ramps are on with a ramp rate of " +
                            std::to_string(MachineSetup.Axis_Ramp_Rate) +
                            ": the speed never changes within a move.",
                        "Axis_Ramp_Rate"});
}

void Check_Highest_Speeds(Findings& findings) {
  constexpr double shortest_us = 10;  // a half step that a port can still make
  for (int axis = 1; axis <= 4; ++axis) {
    const double highest = MachineSetup.Axis_Max_Feed_Rate[axis];
    const double scale = MachineSetup.Axis_SPI[axis];
    const std::string key = Axis_Key("Axis_Max_Feed_Rate_", axis);
    if (highest > Fastest_IPM)
      findings.push_back({Axis_Name(axis) + " may run at " + Setup_Number(highest) +
                              " units per minute, but no move is timed faster than 2000.",
                          key});
    const double half_step = Half_Period(scale, highest);
    if (In_Use(axis) && scale > 0 && highest > 0 && half_step < shortest_us)
      findings.push_back({Axis_Name(axis) + " at " + Setup_Number(highest) +
                              " units per minute needs a half step of " + Setup_Number(half_step) +
                              " microseconds; a parallel port does not make it.",
                          key});
  }
}

// The loop looks at stops and yields between two half steps only.
void Check_Lowest_Speed(Findings& findings, const std::string& name, double ipm,
                        const std::string& key) {
  constexpr double lowest = 0.1;                    // units per minute
  constexpr double bearable = 0.25, longest = 2.0;  // seconds
  const double half_step = std::min(Half_Period(MachineSetup.Axis_SPI[1], ipm) / 1e6, longest);
  if (ipm >= lowest && half_step <= bearable) return;
  findings.push_back({name + " is " + Setup_Number(ipm) +
                          " units per minute: a half step takes up to " + Setup_Number(half_step) +
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

// --- Wiring
// ---------------------------------------------------------------------------------------

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

// Each address once, however many functions it has.
void Check_Foreign_Ports(Findings& findings) {
  std::set<std::int32_t> told;
  const auto check = [&](std::int32_t port, const std::string& key) {
    if (port < Lowest_Port || port > 65535 || Is_Machine_Port(port)) return;
    if (told.insert(port).second) findings.push_back({Words_About_Refused_Port(port), key});
  };
  for (int slot = 1; slot <= 17; ++slot)
    if (Output_Bit(slot))
      check(MachineSetup.Output_Port[slot], "Output_Port_" + std::to_string(slot));
  for (int slot = 0; slot <= 5; ++slot)
    if (Input_Bit(slot)) check(MachineSetup.Input_Port[slot], "Input_Port_" + std::to_string(slot));
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
  Check_Foreign_Ports(findings);
  if (MachineSetup.Parallel_IODLL != 1 && MachineSetup.Parallel_IODLL != 2)
    findings.push_back(
        {"No way of port access is chosen: nothing is read or written.", "Parallel_IODLL"});
}

}  // namespace

void Check_Port_Setup(std::vector<Machine_Finding>& findings) {
  Check_EStop_Wiring(findings);
  Check_Shared_Bits(findings);
  Check_Ports(findings);
  Check_Polarity(findings);
  Check_Scales(findings);
  Check_Ramps(findings);
  Check_Highest_Speeds(findings);
  Check_Lowest_Speeds(findings);
  Check_Time_Constant(findings);
}

}  // namespace norvik
