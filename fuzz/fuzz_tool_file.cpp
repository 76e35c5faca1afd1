// Bytes as a tool file: the 200 rows that it gives are written and read back equal.
#include "core/application.h"
#include "core/tool_file.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Take_Tool_Text({reinterpret_cast<const char*>(data), size});
  const Tool_Table taken = Tools;
  const Tool_Findings findings = Take_Tool_Text(Tool_Text());
  if (!(Tools.Diameter == taken.Diameter) || !(Tools.Length == taken.Length)) std::abort();
  if (!findings.Rows.empty()) std::abort();
  return 0;
}
