#include "core/tool_file.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/foreign_file.h"
#include "core/numbers.h"
#include "core/paths.h"

#include <algorithm>

namespace norvik {

namespace {

// Blank fields and a missing second number count as 0; absent: no number.
std::optional<double> Field_Number(std::string_view field) {
  return Trim(field).empty() ? 0.0 : Try_Number(field);
}

bool Take_Row(int tool, std::string_view line) {
  const auto comma = std::min(line.find(','), line.size());
  const auto diameter = Field_Number(line.substr(0, comma));
  const auto length = Field_Number(line.substr(std::min(comma + 1, line.size())));
  Tools.Diameter[tool] = diameter.value_or(0);
  Tools.Length[tool] = length.value_or(0);
  return diameter && length;
}

}  // namespace

bool Read_Tool_File(const std::string& path) {
  Tools = {};
  if (path.empty() || !FileExists(path)) return false;
  return Trap("Read Tool File", [&] {
    const auto lines = Split_Lines(Read_Foreign_File(path, Largest_Tool_File));
    const int rows = static_cast<int>(std::min<std::size_t>(lines.size(), Tools.Diameter.last));
    for (int tool = 1; tool <= rows; ++tool) {
      const std::string& line = lines[static_cast<std::size_t>(tool - 1)];
      if (Take_Row(tool, line)) continue;
      ErrorLogWrite("Tool file " + path + ", line " + std::to_string(tool) +
                    " is not diameter,offset; the missing number counts as 0");
    }
  });
}

}  // namespace norvik
