// drive_choice.h: the one place that knows every drive and which machine file asks for which.
//
//   Parallel_Port_Type   1 the parallel port   2 the first serial board   above 2 the second one
#pragma once

namespace norvik {

// From here on `Drive()` is the one that the loaded machine file asks for.
void Choose_Drive_By_Setup();

}  // namespace norvik
