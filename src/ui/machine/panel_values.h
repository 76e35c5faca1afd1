// panel_values.h: the groups of the panel's right column: feeds, Z levels, outputs, timing.
#pragma once

#include "ui/widgets/form_binding.h"

namespace norvik {

class Knob_Widget;

// Cut, travel and jog feed with the override knob, which is handed out in `knob`.
QWidget* Build_Feeds(Form_Binding& binding, Knob_Widget*& knob);
QWidget* Build_Levels(Form_Binding& binding);
QWidget* Build_Outputs(Form_Binding& binding);
// Time constant and autotune of the parallel port.
QWidget* Build_Timing(Form_Binding& binding);

}  // namespace norvik
