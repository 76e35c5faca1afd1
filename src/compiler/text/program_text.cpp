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

namespace {

// Counts line ends from where the last question left off, so that following a run through a long
// program costs little.
struct Line_Count_State {
  std::weak_ptr<const GCode_Text> Text;
  std::size_t Offset = 0;
  std::int32_t Line = 1;

  bool Is_Of(const std::shared_ptr<const GCode_Text>& text) const {
    return !Text.owner_before(text) && !text.owner_before(Text);
  }
};
Line_Count_State Line_Count;

// True when a line of the text ends with the character at `at`.
bool Ends_Line(std::string_view text, std::size_t at) {
  return text[at] == '\n' || (text[at] == '\r' && (at + 1 == text.size() || text[at + 1] != '\n'));
}

std::int32_t Line_At(std::size_t offset) {
  const auto& text = GCode_Program.Text;
  if (!Line_Count.Is_Of(text)) Line_Count = {text, 0, 1};
  const std::string_view whole = text->Whole();
  for (; Line_Count.Offset < offset; ++Line_Count.Offset) {
    if (Ends_Line(whole, Line_Count.Offset)) ++Line_Count.Line;
  }
  for (; Line_Count.Offset > offset; --Line_Count.Offset) {
    if (Ends_Line(whole, Line_Count.Offset - 1)) --Line_Count.Line;
  }
  return Line_Count.Line;
}

std::size_t Offset_Of_Step(std::int32_t step) {
  return static_cast<std::size_t>(GCode_Line(step).data() - GCode_Program.Text->Whole().data());
}

}  // namespace

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

std::int32_t Text_Line_Of_Step(std::int32_t step) {
  if (step < 1 || step > GCodeLineCount()) return 0;
  return Line_At(Offset_Of_Step(step));
}

std::int32_t Step_Of_Text_Line(std::int32_t text_line) {
  const std::string_view whole = GCode_Program.Text->Whole();
  std::size_t start = 0;
  for (std::int32_t line = 1; line < text_line && start < whole.size(); ++start) {
    if (Ends_Line(whole, start)) ++line;
  }
  // The last step that begins at or before the start of the line.
  std::int32_t low = 0, high = GCodeLineCount();
  while (low < high) {
    const std::int32_t middle = low + (high - low + 1) / 2;
    if (Offset_Of_Step(middle) <= start) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
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
