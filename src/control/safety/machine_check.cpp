#include "control/safety/machine_check.h"

#include "core/axes.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/setup.h"
#include "drive/drive.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

using Findings = std::vector<Machine_Finding>;

// --- Homing --------------------------------------------------------------------------------------

void Check_Tap(Findings& findings, int axis) {
  const std::string& path_text = MachineSetup.Axis_HomePath[axis];
  const std::string& home_text = MachineSetup.Axis_HomeTarget[axis];
  if (path_text.empty() || home_text.empty()) return;
  // Read all the same, so that what is no number is told.
  const double path = RegionalNumber(path_text), home = RegionalNumber(home_text);
  const double sign = home >= path ? 1 : -1;
  const double tap = -sign * 0.1 * MachineSetup.Axis_SPI[axis];
  if ((home - tap) * sign <= 0 && !MachineSetup.Home_Tap_Target)
    findings.push_back({"Homing taps the switch of " + Axis_Name(axis) + " with a move to " +
                            Setup_Number(tap) + ", which does not lie behind the switch at " +
                            Setup_Number(home) +
                            ": the position would be set without the switch having been met.",
                        Axis_Key("Axis_HomeTarget_", axis), "Home_Tap_Target"});
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
    if (Drive().Has_Switch(axis)) continue;
    findings.push_back({"Homing seeks the switch of " + Axis_Name(axis) +
                            ", and none is wired: it runs to the end of the home path and sets a "
                            "false position there. Wire the switch, empty the axis's home path, or "
                            "switch Home_Needs_Switch on.",
                        Axis_Key("Parallel_Input_Bit_", axis), "Home_Needs_Switch"});
  }
  if (seeks) {
    findings.push_back(
        {"Homing that does not meet a switch (a broken wire, a motor that lost its steps) ends "
         "with "
         "\"Homing Completed!\" and a false position. Switch Home_Needs_Switch on: homing then "
         "ends there and sets no position.",
         "Home_Needs_Switch", "Home_Needs_Switch"});
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
  const bool drives_pins = Drive().Times_Half_Steps;
  if (drives_pins && setup.Axis_Backlash_Enable && !setup.Backlash_Even)
    findings.push_back(
        {"Backlash take-up makes an odd number of half steps at each reversal, one "
         "toggle too many, so that the step pin ends at its other level and the axis "
         "wanders by up to a step at each second reversal.",
         "Axis_Backlash_Enable", "Backlash_Even"});
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
  if (drives_pins && setup.Parallel_MotorEnable_Option == 0)
    findings.push_back(
        {"Motors are switched off after every move: an axis under load may sink or "
         "be pushed, and its position is lost.",
         "Parallel_MotorEnable_Option"});
  if (drives_pins && setup.Parallel_MotorEnable_Option == 1)
    findings.push_back(
        {"Motors stay enabled until the program ends, also while the E-stop button "
         "reads MOTORS DISABLED.",
         "Parallel_MotorEnable_Option"});
}

}  // namespace

std::vector<Machine_Finding> Machine_Check() {
  Findings findings;
  Check_Safety(findings);
  Check_Homing(findings);
  Drive().Check_Setup(findings);
  return findings;
}

}  // namespace norvik
