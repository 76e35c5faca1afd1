// units.h: the unit that a foreign file counts in, against that of the setup.
//
// As stated, numbers of a file count as units of the setup, whatever the file says; the report
// names what that does to the size. With the correction `Import_Convert_Units` every reader
// multiplies the lengths of the file by `Unit_Factor` as it reads them, before anything is rounded.
#pragma once

#include "import/pipeline/file_unit.h"

#include <optional>

namespace norvik {

// What the lengths of a file are multiplied by. Absent: the file names no unit, so that the one
// counts that the operator gave for this import (`Import_Placing.Unit`), otherwise that of the
// setup. 1 without the correction.
double Unit_Factor(const std::optional<File_Unit>& unit);

// The note of the report, once what the file says is known; none where file and setup agree.
void Report_Unit(const std::optional<File_Unit>& unit);

}  // namespace norvik
