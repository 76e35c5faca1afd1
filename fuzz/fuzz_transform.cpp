// The scanner and the transforms: any text, under any format, is transformed without a fault, no
// line is lost that should stay, and what the operator is told has a line to point to.
#include "core/application.h"
#include "core/setup.h"
#include "transform/gcode_process.h"
#include "transform/line_text.h"
#include "transform/scanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace norvik;

constexpr const char* Axis_Formats[] = {"000.000", "000.0000", "0.0##", "#.#", "", "0,0 mm"};

void Check_Scan(std::string_view line) {
  GCode_Scanner scanner;
  const GCode_Words& words = scanner.Parse_GCode_Line(line);
  if (!line.ends_with(words.Comment)) std::abort();
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (words.Has(letter) && words.Text(letter).size() > line.size()) std::abort();
  }
  if (Strip_Number(Strip_Number(line)).size() > line.size()) std::abort();
}

std::ptrdiff_t Line_Ends(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

void Check_Transform(const GCode_Text& program, Transform transform) {
  Transform_Values values;
  values.Axis[1] = 2.5F;
  values.Axis[2] = -1e6F;
  values.Axis[3] = 0.001F;
  const Transformed result = Transform_Program(program, transform, values);
  const bool loses_lines = transform == Transform::Absolute || transform == Transform::Incremental;
  if (result.State == Transform_State::Refused) {
    if (transform != Transform::Offset || result.Refusal.empty()) std::abort();
    return;
  }
  if (result.State != Transform_State::Done) std::abort();
  if (transform != Transform::Sort && !loses_lines &&
      Line_Ends(result.Text) != program.Line_Count()) {
    std::abort();
  }
  if (result.Losses.Any() != !Texts_Of(result.Losses).empty()) std::abort();
  if (result.Losses.Dropped_Lines.Count > program.Line_Count()) std::abort();
}

}  // namespace

// First byte: decimal sign and axis format; the rest: lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Application = {};
  Application.DecimalSeparator = (data[0] & 1) != 0 ? ',' : '.';
  MachineSetup = {};
  MachineSetup.Axis_Format = Axis_Formats[(data[0] >> 1) % std::size(Axis_Formats)];
  MachineSetup.Scale_Cnvrt_Metric_X = MachineSetup.Scale_Cnvrt_Metric_Y =
      MachineSetup.Scale_Cnvrt_Metric_Z = 25.4F;
  const GCode_Text program(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  for (std::int32_t line = 1; line <= program.Line_Count(); ++line) Check_Scan(program.Line(line));
  for (const Transform transform : All_Transforms) Check_Transform(program, transform);
  return 0;
}
