#include "compiler/wires/feed_pass.h"

#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/geometry.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace norvik {

Feed_Pass_Memory_State Feed_Pass_Memory;

namespace {

// Step frequency of a speed of the major axis.
double Frequency(const Ramp& ramp, double speed) {
  return ramp.Scale * speed / 60;
}

void Limit(float& speed, double highest) {
  if (speed > highest) speed = To_Single(highest);
}

}  // namespace

double RampSteps(const Ramp& ramp, double a, double b) {
  return Divided(std::abs(Frequency(ramp, b) - Frequency(ramp, a)), ramp.Rate);
}

double RampVelocity(const Ramp& ramp, double n, double v0) {
  return Divided(60 * (Frequency(ramp, v0) + Whole_Part(n) * ramp.Rate), ramp.Scale);
}

bool RampFits(const Ramp& ramp, double n, double s, double r, double e) {
  if (n == 0) return true;
  const double up = Whole_Part(RampSteps(ramp, s, r));
  const double down = Whole_Part(RampSteps(ramp, r, e));
  return !(n - up - down <= -1);
}

double SplitCruise(const Ramp& ramp, double n, double s, double e) {
  const double share = Whole_Part(Divided(100 * e, e + s)) / 100;
  return RampVelocity(ramp, 0.75 * n * share, s);
}

namespace {

// What the pass knows of one wire besides its speeds.
struct Wire_Steps {
  Indexed<double, 1, 4> Of;  // steps of each axis, whole
  double Major = 0;          // the largest of them
  double Major_SPI = 0;      // steps per unit of that axis; of the last such axis where several tie
};

// What the pass needs of the setup, read once at its start.
struct Feed_Limits {
  Indexed<double, 1, 4> SPI, Max_Feed;
  double Ramp_Start = MachineSetup.Axis_Ramp_Start;
  double Ramp_Rate = MachineSetup.Axis_Ramp_Rate;
  double CV_Angle = MachineSetup.Axis_CV_MotionAngle;
  bool Secondary = MachineSetup.Axis_Limit_Secondary_Velocity == 1;
  bool Slow_Before_Stops = MachineSetup.Slow_Before_Stops;

  Feed_Limits() {
    for (int k = 1; k <= 4; ++k) {
      SPI[k] = MachineSetup.Axis_SPI[k];
      Max_Feed[k] = MachineSetup.Axis_Max_Feed_Rate[k];
    }
  }
};

template <class Scales>
Wire_Steps Steps_Of_Wire(const Wire& wire, const Scales& scales) {
  Wire_Steps steps;
  for (int k = 1; k <= 4; ++k) {
    const double distance = std::abs(wire.End[k].value_or(0) - wire.Start[k].value_or(0));
    steps.Of[k] = Whole_Part(scales[k] * distance);
  }
  steps.Major = *std::max_element(steps.Of.begin(), steps.Of.end());
  for (int k = 1; k <= 4; ++k) {
    if (steps.Of[k] == steps.Major) steps.Major_SPI = scales[k];
  }
  return steps;
}

// A setup that fails every wire would fill the log with 900,000 lines. So many are written out; the
// rest is counted.
constexpr std::int64_t Faults_Written_Out = 100;

class Feed_Planner {
 public:
  explicit Feed_Planner(Record_List<Wire>& wires) : Wires(wires) {}

  void Plan_All();

 private:
  // --- Geometry ---------------------------------------------------------------------------------
  Wire_Steps Steps_Of(const Wire& wire) const { return Steps_Of_Wire(wire, Limits.SPI); }
  Wire_Steps Steps_In_Backward_Pass(const Wire& wire) const;
  std::size_t Next_Motion(std::size_t i) const;
  bool Machine_Stands_Behind(std::size_t i) const;
  const Wire& At_Or_Past_End(std::size_t index) const {
    return index < Wires.size() ? Wires[index] : Past_End;
  }
  Ramp Ramp_Of(const Wire_Steps& steps) const { return {steps.Major_SPI, Limits.Ramp_Rate}; }

  // --- One wire ---------------------------------------------------------------------------------
  void GetMotionAngleVelocity(std::size_t i);
  double Fastest_Feed(const Wire& wire) const;
  double Corner_Speed(const Wire& wire, const Wire& next) const;
  double SecondaryVelocity(const Wire& wire, const Wire& next) const;
  void Fit_Cruise(Wire& wire, double fastest) const;
  void Backward_Pass(std::size_t i, double fastest);
  bool Ease_Before(Wire& wire, double next_start) const;

  void Plan_One(std::size_t i);
  void Report_Rest_Of_Faults() const;

  Record_List<Wire>& Wires;
  const Feed_Limits Limits;
  const Wire Past_End{};         // the empty element past the last record
  Wire_Steps Current, Upcoming;  // steps of the wire at hand and of the next motion
  std::size_t Next = 0;          // place of the next motion; the table's size when there is none
  std::int64_t Faults = 0;
};

// Going back meets commands too, not only moves. A command has no steps, so it fits, and the way
// back ends there.
Wire_Steps Feed_Planner::Steps_In_Backward_Pass(const Wire& wire) const {
  return wire.Motion == 1 ? Steps_Of(wire) : Wire_Steps{};
}

std::size_t Feed_Planner::Next_Motion(std::size_t i) const {
  std::size_t j = i + 1;
  while (j < Wires.size() && Wires[j].Motion != 1) ++j;
  return j;
}

// True when a dwell, a pause or a wait for an input stands between this move and the next one. A
// dwell and a wait come before the motion of their wire, a pause behind it.
bool Feed_Planner::Machine_Stands_Behind(std::size_t i) const {
  if (Wires[i].Dwell < 0) return true;
  for (std::size_t j = i + 1; j < Wires.size() && j <= Next; ++j) {
    const Wire& wire = Wires[j];
    if (wire.Dwell > 0 || wire.Aux_Wait == 1 || (wire.Dwell < 0 && j < Next)) return true;
  }
  return false;
}

// The fastest that the major axis may go so that no axis exceeds its limit.
double Feed_Planner::Fastest_Feed(const Wire& wire) const {
  double fastest = wire.IPM_D;
  for (int k = 1; k <= 4; ++k) {
    if (!(Current.Of[k] > 0)) continue;
    const double limit = Limits.Max_Feed[k] * Current.Major / Current.Of[k];
    if (fastest > limit) fastest = limit;
  }
  // A second guard with the same aim, kept because the speeds of existing programs depend on it. It
  // compares 60 x feed / scale, which is no speed, with a speed: with the usual thousands of steps
  // per unit the left side is tiny and nothing happens. With fewer than some 60 steps per unit it
  // acts, and as it sets the limit instead of lowering it, it may allow more than the loop above.
  // The drive holds every axis to its limit once more when the move runs.
  for (int k = 1; k <= 4; ++k) {
    if (!(Current.Of[k] >= 1)) continue;
    if (!(60 * wire.IPM_D / Limits.SPI[k] > Limits.Max_Feed[k])) continue;
    const double ratio = Divided(Limits.SPI[k] * Current.Major, Current.Major_SPI * Current.Of[k]);
    fastest = std::max(ratio, 1.0) * Limits.Max_Feed[k];
  }
  return fastest;
}

// The speed through the joint of two wires. Straight on, nothing forbids the full feed. At a corner
// the axes change their speeds within one step, with no ramp, and the sharper the corner the more
// they change. The one jump that every axis is known to survive is the start of a ramp. So the
// speed falls in proportion to the angle, from the full feed at 0 degrees to the ramp's start speed
// at the angle of the setup, and stays there for sharper corners.
double Feed_Planner::Corner_Speed(const Wire& wire, const Wire& next) const {
  const auto at = [](const Nullable& coordinate) { return coordinate.value_or(0); };
  const double angle =
      std::min(Corner_Angle(at(wire.Start[1]), at(wire.Start[2]), at(wire.Start[3]),
                            at(wire.End[1]), at(wire.End[2]), at(wire.End[3]), at(next.End[1]),
                            at(next.End[2]), at(next.End[3])),
               Limits.CV_Angle);
  return Limits.Ramp_Start +
         (wire.IPM_D - Limits.Ramp_Start) * (1 - Divided(angle, Limits.CV_Angle));
}

// The corner speed looks at the direction in X, Y and Z; an axis that does little of the move can
// still have to change its own speed a lot at a joint. Where the change is above 1 unit per minute
// and the faster of its two speeds above the ramps' start, the joint is slowed until that speed is
// the ramps' start.
double Feed_Planner::SecondaryVelocity(const Wire& wire, const Wire& next) const {
  double result = wire.IPM_E;
  if (Current.Major == 0 || Upcoming.Major == 0) return result;
  for (int k = 1; k <= 4; ++k) {
    const double end = wire.IPM_E * Current.Of[k] / Current.Major;
    const double ratio = Upcoming.Of[k] / Upcoming.Major;
    const double start = next.IPM_S * ratio;  // still the desired feed of the next wire
    if (!(ratio < 1) || !(std::max(start, end) > Limits.Ramp_Start)) continue;
    if (!(std::abs(end - start) > 1)) continue;
    const double cap = Limits.Ramp_Start / std::max(end, start) * wire.IPM_E;
    result = std::min(result, std::max(cap, Limits.Ramp_Start));
  }
  return result;
}

// A wire too short to reach its cruise speed and to brake again gets a lower one: the speed that is
// reached in 75 percent of the steps that its ends leave for speeding up. Where even that does not
// fit, it runs at the higher of the speeds at its ends.
void Feed_Planner::Fit_Cruise(Wire& wire, double fastest) const {
  const Ramp ramp = Ramp_Of(Current);
  if (RampFits(ramp, Current.Major, wire.IPM_S, wire.IPM_R, wire.IPM_E)) return;
  wire.IPM_R = To_Single(SplitCruise(ramp, Current.Major, wire.IPM_S, wire.IPM_E));
  if (!RampFits(ramp, Current.Major, wire.IPM_S, wire.IPM_R, wire.IPM_E)) {
    wire.IPM_R = std::max(wire.IPM_S, wire.IPM_E);
  }
  Limit(wire.IPM_R, fastest);
}

void Feed_Planner::GetMotionAngleVelocity(std::size_t i) {
  Wire& wire = Wires[i];
  const Wire& next = At_Or_Past_End(Next);
  const Ramp ramp = Ramp_Of(Current);
  const double fastest = Fastest_Feed(wire);
  if (Next + 1 == Wires.size()) wire.IPM_R = wire.IPM_E = To_Single(Limits.Ramp_Start);

  wire.IPM_E = To_Single(Corner_Speed(wire, next));
  if (Limits.Slow_Before_Stops && Machine_Stands_Behind(i)) Limit(wire.IPM_E, Limits.Ramp_Start);
  Limit(wire.IPM_E, fastest);
  Limit(wire.IPM_E, RampVelocity(ramp, Current.Major, wire.IPM_S));
  if (Limits.Secondary) Limit(wire.IPM_E, SecondaryVelocity(wire, next));
  Limit(wire.IPM_R, fastest);
  Limit(wire.IPM_E, fastest);
  Fit_Cruise(wire, fastest);

  if (RampSteps(ramp, wire.IPM_S, wire.IPM_E) - Current.Major > 1) {
    ++Feed_Pass_Memory.Backward_Pass_Count;
    Backward_Pass(i, fastest);
  }
}

// A wire that cannot brake to the speed at its end within its own steps has to start slower, so the
// wire before it has to end slower, and so on. This goes back along the chain until a wire fits as
// it is.
void Feed_Planner::Backward_Pass(std::size_t i, double fastest) {
  Wire& wire = Wires[i];
  const Ramp ramp = Ramp_Of(Current);
  wire.IPM_S = To_Single(RampVelocity(ramp, Current.Major, wire.IPM_E));
  Limit(wire.IPM_S, fastest);
  wire.IPM_R = To_Single(SplitCruise(ramp, Current.Major, wire.IPM_S, wire.IPM_E));
  Limit(wire.IPM_R, fastest);
  if (!RampFits(ramp, Current.Major, wire.IPM_S, wire.IPM_R, wire.IPM_E)) {
    wire.IPM_R = std::max(wire.IPM_S, wire.IPM_E);
  }
  double next_start = wire.IPM_S;
  bool fits = false;
  for (std::size_t j = i; j > 0 && !fits;) {
    --j;
    fits = Ease_Before(Wires[j], next_start);
    next_start = Wires[j].IPM_S;
  }
}

// True when the wire can end at the start of the next one as it is; otherwise its own start and
// cruise are lowered.
bool Feed_Planner::Ease_Before(Wire& wire, double next_start) const {
  const Wire_Steps steps = Steps_In_Backward_Pass(wire);
  const Ramp ramp = Ramp_Of(steps);
  Limit(wire.IPM_E, next_start);
  if (RampFits(ramp, steps.Major, wire.IPM_S, wire.IPM_R, wire.IPM_E)) return true;
  Limit(wire.IPM_S, RampVelocity(ramp, steps.Major, wire.IPM_E));
  wire.IPM_R = To_Single(SplitCruise(ramp, steps.Major, wire.IPM_S, wire.IPM_E));
  if (!RampFits(ramp, steps.Major, wire.IPM_S, wire.IPM_R, wire.IPM_E)) {
    wire.IPM_R = std::max(wire.IPM_S, wire.IPM_E);
  }
  return false;
}

// A wire whose planning fails keeps the speeds that it had got until then.
void Feed_Planner::Plan_One(std::size_t i) {
  const auto plan = [&] { GetMotionAngleVelocity(i); };
  const bool done = Faults < Faults_Written_Out ? Trap("GetMotionAngleVelocity_Error # ", plan)
                                                : Trap_With([](const Fault&) {}, plan);
  if (!done) ++Faults;
}

void Feed_Planner::Report_Rest_Of_Faults() const {
  if (Faults <= Faults_Written_Out) return;
  ErrorLogWrite("GetMotionAngleVelocity_Error # " + std::to_string(Faults - Faults_Written_Out) +
                " more of them");
}

// The percentage in panel 1 and in the progress window. The text of a percentage is made once.
class Rates_Progress {
 public:
  void Show(double percent) {
    if (percent != Shown) {
      Shown = percent;
      Text = "GCode Compile: Generating Contour Feed Rates " + Format_Number(percent, "###.00") +
             "% completed, press ESC to cancel";
    }
    Compile_Status.CompileProgress = static_cast<float>(percent);
    SetStatus(1, Text, 5);
    DoEvents();
  }

 private:
  double Shown = -1;
  std::string Text;
};

void Feed_Planner::Plan_All() {
  constexpr int wires_a_yield = 11;
  Rates_Progress progress;
  const std::size_t total = Wires.size();
  float previous_end = To_Single(Limits.Ramp_Start);
  int since_yield = 0;

  std::size_t i = total == 0 || Wires[0].Motion == 1 ? 0 : Next_Motion(0);
  Current = i < total ? Steps_Of(Wires[i]) : Wire_Steps{};
  for (; i < total; i = Next, Current = Upcoming) {
    Next = Next_Motion(i);
    Upcoming = Next < total ? Steps_Of(Wires[Next]) : Wire_Steps{};
    Wires[i].IPM_S = previous_end;
    Plan_One(i);
    if (++since_yield == wires_a_yield) {
      since_yield = 0;
      progress.Show(Whole_Part(75.0 * static_cast<double>(i) / static_cast<double>(total)));
    }
    previous_end = Wires[i].IPM_E;
  }
  Report_Rest_Of_Faults();
}

bool Cut_By_Esc() {
  const bool cut = std::exchange(Application.EscFlag, false);
  if (cut) Compile_Status.Cut_Short = true;
  return cut;
}

// Writes the table; ESC cuts it at the wire at hand.
void Write_Rates(Table<Wire>& wires, const std::string& path) {
  constexpr int wires_a_yield = 26;
  Rates_Progress progress;
  Table_Writer<Wire> file(path);
  const std::size_t total = wires.Rows.size();
  int since_yield = 0;
  for (std::size_t i = 0; i < wires.Rows.size(); ++i) {
    file.Add(wires.Rows[i]);
    if (++since_yield < wires_a_yield) continue;
    since_yield = 0;
    progress.Show(75 + Whole_Part(25.0 * static_cast<double>(i) / static_cast<double>(total)));
    if (Cut_By_Esc()) wires.Rows.Cut_To(i + 1);
  }
  file.Finish();
}

void Open_Progress() {
  SetStatus(1, "GCode Compile: Generating Contour Feed Rates...", 5);
  Compile_Host.Show_Progress("GCode Optimize Feed Rates");
  for (int yields = 0; yields < 4; ++yields) DoEvents();
}

// Drops the records that the pass does not plan: those beyond the limit of the table, and all but
// the first where ESC was pressed.
void Take_Records(Table<Wire>& wires) {
  wires.Rows.Cut_To(Wire_Table_Limit);
  if (!wires.Rows.empty() && Cut_By_Esc()) wires.Rows.Cut_To(1);
}

void Finish_Rates() {
  Compile_Status.CompileDone = true;
  if (MachineSetup.Motion_Analyzer_Enable == 1) Compile_Host.Show_Motion_Analyzer();
}

bool Trap_Rates(const std::function<void()>& body) {
  const auto report = [](const Fault& fault) {
    ErrorLogWrite("Nist Optimus Rates Error # " + std::to_string(static_cast<int>(fault.Number)) +
                  " " + fault.Description);
    AddMessage("The feeds of the program are not set: " + fault.Description);
  };
  return Trap_With(report, body);
}

}  // namespace

bool RampFits(const Wire& wire) {
  const Wire_Steps steps = Steps_Of_Wire(wire, MachineSetup.Axis_SPI);
  return RampFits({steps.Major_SPI, static_cast<double>(MachineSetup.Axis_Ramp_Rate)}, steps.Major,
                  wire.IPM_S, wire.IPM_R, wire.IPM_E);
}

void Plan_Rates(Record_List<Wire>& wires) {
  Feed_Planner(wires).Plan_All();
}

bool NIST_Optimus_Rates(Table<Wire>& wires, const std::string& wirePath) {
  return Trap_Rates([&] {
    Open_Progress();
    Take_Records(wires);
    Plan_Rates(wires.Rows);
    Write_Rates(wires, wirePath);
    Finish_Rates();
  });
}

bool NIST_Optimus_Rates(const std::string& wirePath) {
  Table<Wire> wires;
  return Trap_Rates([&] { wires = Read_Wire_Table(wirePath, Wire_Table_Limit); }) &&
         NIST_Optimus_Rates(wires, wirePath);
}

}  // namespace norvik
