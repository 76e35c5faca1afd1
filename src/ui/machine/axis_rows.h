// axis_rows.h: the readouts of the four axes with their switches and Zero buttons.
#pragma once

#include "ui/widgets/form_binding.h"

#include <vector>

#include <QGridLayout>

namespace norvik {

// Adds one row for each axis to `grid`: name, position, unit, distance to go, switch lamps, Zero.
// The A row is left out while `Hide_CNC_A_Axis` is set. The labels of the distances to go, which a
// narrow panel may hide.
std::vector<QWidget*> Build_Axis_Rows(QGridLayout& grid, Form_Binding& binding);

}  // namespace norvik
