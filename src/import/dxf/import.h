// import.h: ASCII DXF to G-code; the steps are described in import/dxf/table.h.
#pragma once

#include <string>

namespace norvik {

// False when the file does not exist, after a beep.
bool Import_DXF_File(const std::string& path);

}  // namespace norvik
