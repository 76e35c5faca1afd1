// adapt_bar.h: the bar above the editor for a program of another controller (app/adapt_bar.h).
#pragma once

#include "ui/widgets/form_binding.h"

#include <QWidget>

namespace norvik {

// The bar, bound to `Gcode_Form.Label_Adapt`; it shows itself while that has a text.
QWidget* Make_Adapt_Bar(Form_Binding& binding);

}  // namespace norvik
