#include "compiler/text/program_text.h"

#include "compiler/state/compiler_state.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/indexed.h"
#include "core/messages.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace norvik {

GCode_Program_State GCode_Program;

GCode_Text::GCode_Text(std::string text) : Text(std::move(text)) {
  if (Text.size() >= std::numeric_limits<std::uint32_t>::max()) {
    throw Fault(Fault_Number::Overflow,
                "A program of 4 GB or more cannot be taken; split it into several files");
  }
  Lines.reserve(static_cast<std::size_t>(std::count(Text.begin(), Text.end(), '\n')) + 1);
  const std::string_view all = Text;
  std::size_t start = 0;
  while (start < all.size()) {
    const std::size_t end = std::min(all.find('\n', start), all.size());
    // The stretch up to a line feed may hold carriage returns that end lines of their own.
    while (start < end) {
      const std::size_t length = all.substr(start, end - start).find('\r');
      const std::size_t cut = length == std::string_view::npos ? end : start + length;
      Add_Line(start, cut);
      start = cut + 1;
    }
    start = end + 1;
  }
  Lines.shrink_to_fit();
}

void GCode_Text::Add_Line(std::size_t start, std::size_t end) {
  if (end == start) return;
  Lines.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)});
}

std::string_view GCode_Text::Line(std::int32_t number) const {
  if (number < 1 || number > Line_Count()) Raise_Index_Fault(number, 1, Line_Count());
  const Span span = Lines[static_cast<std::size_t>(number - 1)];
  return std::string_view(Text).substr(span.Start, span.Length);
}

void Range_To_Whole_Program() {
  GCode_Program.Range_Waits = Machine.CNCMode != CNC_Stopped;
  if (!GCode_Program.Range_Waits) Machine.EndingStep = GCodeLineCount();
}

void SaveChanges(std::string text) {
  SetStatus(1, "GCode Step Display: Updateing data...", 5);
  Trap("SaveChanges", [&] {
    GCode_Program.Text = std::make_shared<const GCode_Text>(std::move(text));
    Range_To_Whole_Program();
    Compile_Status.CurrentStep = std::min(Compile_Status.CurrentStep, GCodeLineCount());
  });
}

}  // namespace norvik
