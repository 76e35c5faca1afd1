// jog_pad.h: the buttons that move the axes by hand.
#pragma once

#include "ui/widgets/form_binding.h"

class QWidget;

namespace norvik {

// The arrow block for X and Y with its diagonals, the columns of Z and A, the single-step box with
// its distance and the jog feed.
QWidget* Build_Jog_Pad(Form_Binding& binding);

}  // namespace norvik
