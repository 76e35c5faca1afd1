// feed_pass.h: the three speeds of every wire.
//
//   speed         IPM_R             IPM_R
//     ^          .------.         .-------.
//     |         /        :       /         :
//     |  IPM_S /    IPM_E :_____/           : IPM_E = Axis_Ramp_Start
//     |       /          = IPM_S of the next
//     +------o---------------o----------------o----> path
//               wire i          wire i + 1
//
// A chain of short wires runs without stopping at its joints, while no axis exceeds its limit, the
// speed at a joint falls with the sharpness of the corner, and each change of speed fits into the
// steps of its wire under the machine's one acceleration: `Axis_Ramp_Rate` hertz a step. The pass
// looks one move ahead; where a wire cannot brake in time it goes back along the chain.
//
// Units: speeds in units per minute of the major axis (the one with the most steps), scales in
// steps per unit, frequencies in steps per second, angles in degrees. With f(v) = scale x v / 60:
//
//   RampSteps(a, b)    = |f(b) - f(a)| / Axis_Ramp_Rate
//   RampVelocity(n, v) = 60 x (f(v) + whole part of n x Axis_Ramp_Rate) / scale
//   corner speed       = Axis_Ramp_Start + (IPM_D - Axis_Ramp_Start) x (1 - angle / CV angle)
//
// Speeds are computed in doubles and rounded to single at each store into a wire.
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace norvik {

// For information; lives as long as the process.
struct Feed_Pass_Memory_State {
  std::int32_t Backward_Pass_Count = 0;
};
extern Feed_Pass_Memory_State Feed_Pass_Memory;

// Sets the speeds of `wires` and writes the table to `wirePath`, with progress in panel 1 and
// yields on the way. No more than `Wire_Table_Limit` wires stay. ESC while writing cuts the table
// and the file at that wire. Faults are logged as "Nist Optimus Rates Error # ". False when the
// file could not be written: the one of before then stands.
bool NIST_Optimus_Rates(Table<Wire>& wires, const std::string& wirePath);
// The same for the table in a file, which is rewritten.
bool NIST_Optimus_Rates(const std::string& wirePath);

// The forward pass alone: the speeds of all wires, with its yields. A wire that cannot be planned
// is logged as "GetMotionAngleVelocity_Error # " and keeps what it had got.
void Plan_Rates(Record_List<Wire>& wires);

// --- The small formulas --------------------------------------------------------------------------
// Each raises a division fault where its divisor is 0.
struct Ramp {
  double Scale = 0;  // steps per unit of the major axis
  double Rate = 0;   // hertz a step
};
double RampSteps(const Ramp& ramp, double a, double b);
double RampVelocity(const Ramp& ramp, double n, double v0);
// True when n steps suffice to change from s to r and on to e.
bool RampFits(const Ramp& ramp, double n, double s, double r, double e);
// Whether the three speeds of a wire fit into its steps, with steps, scale and rate by the setup as
// it is. A wire without steps fits.
bool RampFits(const Wire& wire);
// Cruise speed of a wire too short for its own: what 75 percent of the share of its steps that goes
// to the ramp up reaches.
double SplitCruise(const Ramp& ramp, double n, double s, double e);

}  // namespace norvik
