// pens.h: what a pen of the file means on the machine.
#pragma once

#include "import/pipeline/line.h"
#include "import/pipeline/pipeline.h"

#include <cstdint>

namespace norvik {

// Number, feeds and plunge depth of pen 1..8 into the record. Higher pens can be selected, but no
// settings exist for them. A setting that is no number counts as not set and is a fault.
void Take_HPGL_Pen(ImportLine& record, std::int16_t pen, Import_Faults& faults);

}  // namespace norvik
