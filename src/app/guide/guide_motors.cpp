// The pages Motors and Speeds.
#include "app/guide/guide.h"
#include "app/guide/motor_scale.h"
#include "app/guide/values.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/fault.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/pin_map.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

Guide_Axis_Fields& Fields() {
  return Guide_Form.Axes[Guide_Form.Combo_Axis];
}

std::string Axis_Of(const char* family) {
  return family + std::to_string(Guide_Form.Combo_Axis);
}

// Runs `body`; a fault becomes the hint. True when nothing was refused.
template <class Body>
bool Or_Hint(Body&& body) {
  std::string refused;
  Trap_With([&](const Fault& fault) { refused = fault.Description; }, std::forward<Body>(body));
  return refused.empty() || Refuse(refused);
}

void Require_Above_Zero(double value, const char* what) {
  if (!(value > 0))
    throw Fault{Fault_Number::Out_Of_Range, std::string(what) + " must be a number above 0."};
}

// One move to where the axis is now plus `distance`. A hint when it did not arrive.
bool Move_Axis(int axis, double distance, double feed) {
  if (const std::string why = Why_Not_Begin(Operation::Jog); !why.empty()) return Refuse(why);
  if (!Begin_Operation(Operation::Jog)) return Refuse("Not while the machine moves.");
  const Motion_Scope scope(Operation::Jog);
  Resynchronise_Position();
  Move_Order order;
  order.Target[axis] = Machine.Position[axis] + distance;
  order.Start = order.End = std::min(MachineSetup.Axis_Ramp_Start, static_cast<float>(feed));
  order.Run = static_cast<float>(feed);
  const Move_End end = Machine_Move_To_End(order);
  if (Arrived(end)) return true;
  if (end == Move_End::Limit) return Refuse(Ended_By_Limit());
  const std::string_view reason = End_Reason();
  return Refuse(reason.empty() ? "The move did not arrive. The message list says why." : reason);
}

// --- Trial ---------------------------------------------------------------------------------------

// There and back at the trial's speed; the limit of the axis gives way for as long.
void Run_Trial_Move() {
  Speed_Trial& trial = Guide_Form.Trial;
  double distance = 0;
  if (!Or_Hint([&] {
        distance = Typed_Number(Guide_Form.Text_Trial_Distance, "Distance");
        Require_Above_Zero(std::abs(distance), "Distance");
      })) {
    Guide_Form.Trial_Runs = false;
    return;
  }
  float& limit = MachineSetup.Axis_Max_Feed_Rate[trial.Axis];
  const float stored = limit;
  limit = static_cast<float>(trial.Present);
  const bool arrived = Move_Axis(trial.Axis, distance, trial.Present) &&
                       Move_Axis(trial.Axis, -distance, trial.Present);
  limit = stored;
  if (!arrived) Guide_Form.Trial_Runs = false;
  Guide_Host.Form_Changed();
}

// The axis's own limit, and feeds that more than one axis has are held to the slower of X and Y.
void Keep_Trial() {
  const auto kept = Kept_Speed(Guide_Form.Trial);
  if (!kept) {
    Refuse("No move went well: begin the trial again with a smaller speed.");
    return;
  }
  const int axis = Guide_Form.Trial.Axis;
  const float limit = static_cast<float>(*kept);
  const auto held = [&](float feed) { return Guide_Number(std::min(feed, limit)); };
  const std::string key = "Axis_Max_Feed_Rate_" + std::to_string(axis);
  if (axis > 2) {
    Take_Values({{key, Guide_Number(limit)}});
    return;
  }
  Take_Values({{key, Guide_Number(limit)},
               {"Axis_Feed_Rate_Travel", held(MachineSetup.Axis_Feed_Rate_Travel)},
               {"Axis_Feed_Rate_Jogging", held(MachineSetup.Axis_Feed_Rate_Jogging)}});
}

}  // namespace

void Show_Guide_Axes() {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Guide_Axis_Fields& fields = Guide_Form.Axes[axis];
    fields.Text_Travel = Guide_Number(MachineSetup.Axis_Depth[axis]);
    const bool homes = !MachineSetup.Axis_HomePath[axis].empty();
    fields.Combo_Home_End = !homes ? 0 : MachineSetup.Axis_HomePath[axis].front() == '-' ? 1 : 2;
    const bool metric = MachineSetup.UnitsofMeasurement == 1;
    if (fields.Text_Asked.empty()) fields.Text_Asked = metric ? "50" : "2";
  }
  if (Guide_Form.Text_First_Speed.empty())
    Guide_Form.Text_First_Speed = Guide_Number(MachineSetup.Axis_Feed_Rate_Jogging);
  if (Guide_Form.Text_Trial_Distance.empty())
    Guide_Form.Text_Trial_Distance = MachineSetup.UnitsofMeasurement == 1 ? "50" : "2";
}

void Guide_Take_Steps() {
  Or_Hint([] {
    const Guide_Axis_Fields& fields = Fields();
    Motor_Parts parts;
    parts.Steps = Typed_Number(fields.Text_Motor_Steps, "Motor steps");
    parts.Microsteps = Typed_Number(fields.Text_Microsteps, "Microsteps");
    parts.Gear = Typed_Number(fields.Text_Gear, "Gear");
    parts.Turn_Travel = Typed_Number(fields.Text_Turn_Travel, "Travel of one turn");
    Take_Values({{Axis_Of("Axis_SPI_"), Guide_Number(Steps_Per_Unit(parts))}});
  });
  Guide_Host.Form_Changed();
}

void Guide_Wrong_Way() {
  const int axis = Guide_Form.Combo_Axis;
  if (Drive().Times_Half_Steps) {
    const bool inverted = MachineSetup.Parallel_Output_Bit_Invert[Direction_Slot(axis)];
    Take_Values({{"Parallel_Output_Bit_Invert_" + std::to_string(Direction_Slot(axis)),
                  inverted ? "False" : "True"}});
  } else {
    Take_Values({{Axis_Of("Axis_Polarity_"), MachineSetup.Axis_Polarity[axis] ? "False" : "True"}});
  }
  Guide_Host.Form_Changed();
}

void Guide_Try_Move(bool negative) {
  Guide_Form.Label_Hint.clear();
  Or_Hint([&] {
    const double asked = Typed_Number(Fields().Text_Asked, "Distance");
    Require_Above_Zero(asked, "Distance");
    Require_Scale(Guide_Form.Combo_Axis, asked);
    Move_Axis(Guide_Form.Combo_Axis, negative ? -asked : asked,
              MachineSetup.Axis_Feed_Rate_Jogging);
  });
  Guide_Host.Form_Changed();
}

void Guide_Take_Measured() {
  Or_Hint([] {
    const double asked = Typed_Number(Fields().Text_Asked, "Distance");
    const double measured = Typed_Number(Fields().Text_Measured, "Measured");
    const double scale = MachineSetup.Axis_SPI[Guide_Form.Combo_Axis];
    if (Take_Values(
            {{Axis_Of("Axis_SPI_"), Guide_Number(Corrected_Scale(scale, asked, measured))}}))
      Fields().Text_Measured.clear();
  });
  Guide_Host.Form_Changed();
}

void Guide_Take_Travel() {
  Or_Hint([] {
    const double travel = Typed_Number(Fields().Text_Travel, "Length");
    Require_Above_Zero(travel, "Length");
    Take_Values({{Axis_Of("Axis_Depth_"), Guide_Number(travel)}});
  });
  Guide_Host.Form_Changed();
}

void Guide_Begin_Trial() {
  Guide_Form.Label_Hint.clear();
  double first = 0;
  const bool read = Or_Hint([&] {
    first = Typed_Number(Guide_Form.Text_First_Speed, "First speed");
    Require_Above_Zero(first, "First speed");
  });
  if (!read) return;
  Guide_Form.Trial = Begin_Speed_Trial(Guide_Form.Combo_Axis, first);
  Guide_Form.Trial_Runs = true;
  Run_Trial_Move();
}

void Guide_Trial_Good() {
  if (!Guide_Form.Trial_Runs) return;
  Went_Well(Guide_Form.Trial);
  if (!Guide_Form.Trial.Over) return Run_Trial_Move();
  Guide_Form.Trial_Runs = false;
  Keep_Trial();
  Guide_Host.Form_Changed();
}

void Guide_Trial_Bad() {
  if (!Guide_Form.Trial_Runs) return;
  Went_Wrong(Guide_Form.Trial);
  Guide_Form.Trial_Runs = false;
  Keep_Trial();
  Guide_Host.Form_Changed();
}

}  // namespace norvik
