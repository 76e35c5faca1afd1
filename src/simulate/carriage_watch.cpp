#include "simulate/carriage_watch.h"

#include "core/setup.h"
#include "simulate/findings.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr int X = 1, Y = 2, Z = 3, A = 4;
constexpr double Infinite = std::numeric_limits<double>::infinity();
constexpr double Trail_Part = 0.001;    // of the travel
constexpr double Least_Trail_Step = 3;  // steps

// Half the room of a slave pair: neither can bring the skew to its limit within it.
double Skew_Room() {
  const double apart = std::abs(Gantry_Skew());
  return std::max(std::abs(Simulated_Machine.Skew_Limit - apart) / 2, 1.0);
}

bool Watches_Skew(int axis) {
  const int master = Simulated_Machine.Master;
  return master != 0 && Simulated_Machine.Skew_Limit > 0 && (axis == A || axis == master);
}

// The carriage may go so many steps before the trail or the skew is looked at.
double Room(int axis) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  double room = Infinite;
  if (axis <= Z) {
    const double travel = a.Settings.Travel_High - a.Settings.Travel_Low;
    room = std::max(travel * Trail_Part * a.Scale, Least_Trail_Step);
  }
  if (!Watches_Skew(axis)) return room;
  return std::min(room, Skew_Room() * a.Scale / Simulated_Machine.Axes[A].Scale);
}

void Narrow(int axis) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const double room = Room(axis);
  a.Quiet_From = a.Look_Next ? Infinite : std::max(a.Border_From, a.Carriage - room);
  a.Quiet_To = a.Look_Next ? -Infinite : std::min(a.Border_To, a.Carriage + room);
}

void Find_Borders(int axis) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const Simulated_Input& input = Simulated_Machine.Inputs[axis];
  double from = -Infinite, to = Infinite;
  const double here = True_Position(axis);
  // A border at or below the carriage bounds the range from below, another from above.
  const auto border = [&](double place) {
    if (place <= here) from = std::max(from, place);
    if (place >= here) to = std::min(to, place);
  };
  for (const auto& zone : input.Zones) {
    if (!zone) continue;
    for (const double margin : {0.0, input.Hysteresis}) {
      border(zone->From - margin);
      border(zone->To + margin);
    }
  }
  if (a.Settings.Limited) {
    border(a.Settings.Travel_Low - a.Settings.Overtravel);
    border(a.Settings.Travel_High + a.Settings.Overtravel);
  }
  if (axis == Z && Simulated_Machine.Material_Top) {
    border(*Simulated_Machine.Material_Top - a.Shift);
  }
  // A step less on both sides, for the rounding of the borders.
  a.Border_From = (from - a.Start) * a.Scale + 1;
  a.Border_To = (to - a.Start) * a.Scale - 1;
}

// X or Y has moved.
void Check_Cut(std::int64_t time) {
  Simulated_Machine_State& m = Simulated_Machine;
  const bool in_material = m.Material_Top && True_Position(Z) + m.Axes[Z].Shift < *m.Material_Top;
  const bool dry = in_material && !Spindle_Asked();
  if (dry && !m.Cuts_Dry && Count_Finding(Finding_Kind::Cut_Without_Spindle, 0, time)) {
    Word_Finding("The tool was moved through the material with the spindle off");
  }
  m.Cuts_Dry = dry;
}

void Check_Skew(std::int64_t time) {
  Simulated_Machine_State& m = Simulated_Machine;
  const bool askew = std::abs(Gantry_Skew()) > m.Skew_Limit;
  if (askew && !m.Askew && Count_Finding(Finding_Kind::Skew, A, time)) {
    Word_Finding("more than " + std::to_string(m.Skew_Limit) + " steps away from " +
                 std::string(1, " XYZ"[m.Master]) + ", which it is slaved to: the gantry is askew");
  }
  m.Askew = askew;
  Narrow(A);
  Narrow(m.Master);
}

bool Is_Held(const Simulated_Axis& a) {
  return a.Enabled && !Power_Is_Cut();
}

}  // namespace

void Carriage_Left_Quiet_Range(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Look_Next = false;
  if (a.Carriage <= a.Border_From || a.Carriage >= a.Border_To) {
    Carriage_Moved(axis, time);
    Find_Borders(axis);
  }
  if (axis <= Z) Note_Trail_Point(Spindle_Asked());
  if (axis <= Y) Check_Cut(time);
  if (axis == Z) Watch_Spindle();
  Narrow(axis);
  if (Watches_Skew(axis)) Check_Skew(time);
}

void Set_Quiet_Range(int axis) {
  Find_Borders(axis);
  Narrow(axis);
}

void Watch_Spindle() {
  if (!Simulated_Machine.Material_Top) return;
  for (const int axis : {X, Y}) {
    Simulated_Machine.Axes[axis].Look_Next = true;
    Narrow(axis);
  }
}

// --- Slave pair ----------------------------------------------------------------------------------

int Slave_Master() {
  const std::string& words = MachineSetup.Slave_A_Axis_to;
  for (int axis = X; axis <= Z; ++axis) {
    if (words == std::string(1, " XYZ"[axis]) + " Axis") return axis;
  }
  return 0;
}

void Straighten_Gantry() {
  Simulated_Machine_State& m = Simulated_Machine;
  m.Master = Slave_Master();
  m.Askew = false;
  m.Skew_Origin = m.Master == 0 ? 0 : True_Position(A) - True_Position(m.Master);
  for (int axis = X; axis <= A; ++axis) Set_Quiet_Range(axis);
}

// --- Weight --------------------------------------------------------------------------------------

bool Is_Sinking(int axis) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  return a.Settings.Sink_Rate != 0 && a.Was_Held && !Is_Held(a);
}

void Let_Sink(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const double minutes = static_cast<double>(time - a.Sink_Time) / 60e9;
  a.Sink_Time = time;
  if (!Is_Sinking(axis) || minutes <= 0) return;
  const Simulated_Axis_Settings& s = a.Settings;
  const double before = a.Carriage;
  double position = True_Position(axis) - s.Sink_Rate * minutes;
  if (s.Limited) {
    position = std::clamp(position, s.Travel_Low - s.Overtravel, s.Travel_High + s.Overtravel);
  }
  a.Carriage = (position - a.Start) * a.Scale;
  a.Sunk += before - a.Carriage;
  if (!a.Sinking_Told && std::abs(a.Sunk) >= 1) {
    a.Sinking_Told = true;
    if (Count_Finding(Finding_Kind::Sank, axis, time)) {
      Word_Finding("sank while its motor was off: keep the motors on, or fit a brake");
    }
  }
  if (a.Carriage <= a.Quiet_From || a.Carriage >= a.Quiet_To) {
    Carriage_Left_Quiet_Range(axis, time);
  }
}

void Note_Hold(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Sink_Time = time;
  if (!Is_Held(a)) return;
  a.Was_Held = true;
  // The rotor went along with the carriage.
  const std::int64_t steps = std::llround(a.Sunk);
  a.Motor -= steps;
  a.Lost += std::abs(steps);
  a.Sunk = 0;
  a.Sinking_Told = false;
}

}  // namespace norvik
