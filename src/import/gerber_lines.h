// gerber_lines.h: the line file of the artwork import: X1, Y1, X2, Y2 in each record, CR LF.
#pragma once

#include "core/paths.h"

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// A straight cut.
struct Gerber_Cut {
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};

// Every record of the file; none when there is no file. A record that cannot be read is logged
// under `fault_name` and left out. ESC stops.
std::vector<Gerber_Cut> Read_Gerber_Lines(const std::string& path, std::string_view fault_name);

// Raise a file fault.
void Append_Gerber_Lines(const std::string& path, const std::vector<Gerber_Cut>& cuts);
void Replace_Gerber_Lines(const std::string& path, const std::vector<Gerber_Cut>& cuts);

}  // namespace norvik
