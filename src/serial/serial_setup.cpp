#include "serial/serial_setup.h"

#include "core/axes.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "serial/move_entry.h"
#include "serial/serial_link.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

using Findings = std::vector<Machine_Finding>;

bool Is_Second_Board() {
  return Generation_Of_Setup() > 0;
}

double Reference_SPI() {
  return std::min(MachineSetup.Axis_SPI[1], MachineSetup.Axis_SPI[2]);
}

void Check_Scales(Findings& findings) {
  if (MachineSetup.Serial_Path_Feed) return;
  const double reference = Reference_SPI();
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double scale = MachineSetup.Axis_SPI[axis];
    if (scale == reference || !(scale > 0) || !(reference > 0)) continue;
    findings.push_back({"The board reckons all rates by " + Setup_Number(reference) +
                            " steps per unit, the smaller scale of X and Y: a move of " +
                            Axis_Name(axis) + " alone runs at " +
                            Setup_Number(reference / scale * 100) + " % of its feed.",
                        Axis_Key("Axis_SPI_", axis)});
  }
}

void Check_Diagonals(Findings& findings) {
  if (MachineSetup.Serial_Path_Feed) return;
  findings.push_back(
      {"The board counts a feed on the axis with the most steps: a move at 45 degrees "
       "between two axes of one scale is 1.41 times as fast as the program says, "
       "between three 1.73 times. Switch on Serial_Path_Feed (Corrections), or write smaller "
       "feeds.",
       "Serial_Path_Feed"});
}

void Check_Slowest_Speed(Findings& findings) {
  const int sasf = Effective_SASF(MachineSetup.Dravon_SASF);
  std::string speeds;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double scale = MachineSetup.Axis_SPI[axis];
    if (!(scale > 0)) continue;
    speeds += (speeds.empty() ? "" : ", ") + Axis_Name(axis) + " " +
              Setup_Number(60.0 * Slowest_Board_Rate / sasf / scale);
  }
  findings.push_back({"The board moves no slower than 77 Hz; in units per minute: " + speeds +
                          ". A slower feed runs at that speed.",
                      "Dravon_SASF"});
}

void Check_Counters(Findings& findings) {
  constexpr double largest = 8'388'607, longest_move = 0xFFFFFF;
  const int sasf = Effective_SASF(MachineSetup.Dravon_SASF);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double steps = double{MachineSetup.Axis_Depth[axis]} * MachineSetup.Axis_SPI[axis];
    if (steps > largest)
      findings.push_back({"The travel of " + Axis_Name(axis) + " is " + Setup_Number(steps) +
                              " steps; the board counts to 8388607.",
                          Axis_Key("Axis_Depth_", axis)});
    if (steps * sasf > longest_move)
      findings.push_back({"A move over the whole travel of " + Axis_Name(axis) + " has " +
                              Setup_Number(steps * sasf) +
                              " counts with its smoothing; a move holds 16777215 and would end "
                              "early.",
                          "Dravon_SASF"});
  }
}

void Check_Encoders(Findings& findings) {
  if (!Is_Second_Board()) return;
  constexpr float factory = 1'000;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (MachineSetup.Dravon_Enc_Enable[axis] == 0) continue;
    if (MachineSetup.Dravon_Enc_CFactor[axis] == factory)
      findings.push_back({"The encoder of " + Axis_Name(axis) +
                              " is in use with the correction factor that a new setup has (1000): "
                              "one count would stand for 1000 steps.",
                          Axis_Key("Dravon_Enc_CFactor", axis)});
    if (MachineSetup.Dravon_Enc_StopOnFault[axis] == 0)
      findings.push_back({"An encoder fault of " + Axis_Name(axis) +
                              " does not stop the board; Norvik sees it at the next status reply.",
                          Axis_Key("Dravon_Enc_StopOnFault", axis)});
  }
}

void Check_Spindle(Findings& findings) {
  if (MachineSetup.Dravon_PWM_Inv)
    findings.push_back(
        {"The spindle speed output is inverted: while the board gives no signal, the "
         "spindle may run at its fastest.",
         "Dravon_PWM_Inv"});
}

// The bytes that one move takes on the line, both ways: status, encoders, two axes, the move.
double Line_Seconds() {
  constexpr double first_board = 4 + 23 + 2 * (5 + 5) + 36 + 5,
                   second_board = 4 + 38 + 4 + 33 + 2 * (5 + 5) + 39 + 6, bits = 10;
  return (Is_Second_Board() ? second_board : first_board) * bits / Default_Baud;
}

void Check_Line_Time(Findings& findings) {
  const double feed = MachineSetup.Axis_Feed_Rate_Cut;
  if (!(feed > 0)) return;
  const double shortest = feed / 60 * Line_Seconds();
  findings.push_back({"A move takes " + Setup_Number(Line_Seconds() * 1'000) +
                          " ms on the line: at " + Setup_Number(feed) +
                          " units per minute chords shorter than " + Setup_Number(shortest) +
                          " are cut faster than they can be sent.",
                      "Axis_Feed_Rate_Cut"});
}

}  // namespace

int Generation_Of_Setup() {
  return Drive().Board.value_or(0);
}

void Check_Serial_Setup(Findings& findings) {
  Check_Scales(findings);
  Check_Diagonals(findings);
  Check_Slowest_Speed(findings);
  Check_Counters(findings);
  Check_Encoders(findings);
  Check_Spindle(findings);
  Check_Line_Time(findings);
}

}  // namespace norvik
