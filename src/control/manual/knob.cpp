#include "control/manual/knob.h"

#include "control/state/cnc_controls_form.h"
#include "core/format.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Knob_State Knob;

namespace {
constexpr double Full_Scale = 1024;
}

double Knob_Override(int position) {
  double value = Full_Scale;
  if (position > 50)
    value += (position - 50) * 0.02 * Full_Scale * (MachineSetup.ThrottleMaxLim / 100 - 1);
  if (position < 50)
    value -= (50 - position) * 0.02 * (Full_Scale - MachineSetup.ThrottleMinLim / 100 * Full_Scale);
  return value;
}

void Knob_Process() {
  Knob.Knob_Position = std::clamp<std::int16_t>(Knob.Knob_Position, 0, 100);
  const bool serial = MachineSetup.Parallel_Port_Type > 1;
  const double value = serial ? Knob_Override(Knob.Knob_Position) : Full_Scale;
  Knob.Override = To_Int32(Whole_Part(value));
  const double percent = std::round(value / Full_Scale * 100 * 100) / 100;
  CNC_Controls.Label_Feed_Overide.Caption = Shortest_Text(percent) + "%";
  CNC_Controls_Host.Form_Changed();
}

void Draw_Knob(int position) {
  constexpr double pi = 3.14;
  const double angle = (position - 50) / 50.0 * 0.75 * pi;  // from straight up, clockwise
  CNC_Controls.Pic_Knob_Pointer.X = std::sin(angle);
  CNC_Controls.Pic_Knob_Pointer.Y = std::cos(angle);
  CNC_Controls_Host.Form_Changed();
}

void Pic_Knob_MouseDown(int button, double y) {
  if (button != 1) return;
  Knob.Dragging = true;
  Knob.Start_Y = y;
  Knob.Start_Position = Knob.Knob_Position;
}

void Pic_Knob_MouseMove(double y) {
  if (!Knob.Dragging) return;
  const double delta = std::clamp((y - Knob.Start_Y) / 2, -100.0, 100.0);
  Knob.Knob_Position = To_Int16(std::clamp(Knob.Start_Position + delta, 0.0, 100.0));
  Knob_Process();
  Draw_Knob(Knob.Knob_Position);
}

void Pic_Knob_MouseUp() {
  Knob.Dragging = false;
}

void Label_Feed_Overide_DblClick() {
  Knob.Knob_Position = 50;
  Knob_Process();
  Draw_Knob(Knob.Knob_Position);
}

}  // namespace norvik
