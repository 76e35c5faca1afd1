// Adapting: any text, under any machine and choice, becomes one that stays as it is the second
// time, with an old line for each new one, and with a finding for everything that is marked as not
// adapted.
#include "adapt/adapt.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace norvik;

Adapt_Options Options_Of(std::uint8_t choice) {
  Adapt_Options options;
  options.Millimetres = (choice & 1) != 0;
  options.Centres_From_Start = (choice & 2) != 0;
  options.Decimals = (choice & 4) != 0 ? 4 : 3;
  options.Simplify = (choice & 8) != 0;
  options.Leave_Out_Deleted = (choice & 16) != 0;
  if ((choice & 32) != 0) options.Work_Offsets[2] = Adapt_Axes{1, 2, 3, 4};
  if ((choice & 64) != 0) options.Machine_Zero = options.Home = Adapt_Axes{9, 9, 9, 0};
  options.Most_Lines = 2000;
  return options;
}

void Check_Lines(const Adapted& result) {
  const GCode_Text text(result.Text);
  if (static_cast<std::size_t>(text.Line_Count()) != result.Old_Lines.size()) std::abort();
  if (result.Refused > 0 && result.Findings.empty()) std::abort();
  for (const Adapt_Finding& finding : result.Findings) {
    if (finding.What.empty() || finding.Number < 1) std::abort();
  }
}

}  // namespace

// First byte: machine and choices; the rest: lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Adapt_Options options = Options_Of(data[0]);
  const GCode_Text program(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  const Adapted once = Adapt(program, options);
  Check_Lines(once);
  if (options.Simplify || once.Old_Lines.size() > 1000) return 0;
  options.Work_Offsets = {};
  options.Machine_Zero = options.Home = {};
  const Adapted twice = Adapt(GCode_Text(once.Text), options);
  if (twice.Text != once.Text) std::abort();
  return 0;
}
