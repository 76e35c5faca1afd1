#include "app/adapt_bar.h"

#include "app/gcode_form.h"
#include "app/program_findings.h"
#include "compiler/text/program_text.h"
#include "core/setup.h"

#include <algorithm>
#include <set>
#include <string>

namespace norvik {

Adapt_Bar_State Adapt_Bar;

namespace {

// What no other writing of the program changes.
bool Is_Of_The_Job(Check_Kind kind) {
  using enum Check_Kind;
  constexpr Check_Kind kinds[] = {
      Travel_Too_Long,   Too_Many_Records, Too_Many_Wires,     Stop_At_Full_Feed,
      No_Feed,           Macro_Missing,    Macro_Calls_Itself, Comp_Without_Diameter,
      Comp_Does_Not_Fit, Comp_Lead_Cuts,   Comp_Changes_Side,  Comp_Leaves_Material};
  return std::ranges::find(kinds, kind) != std::end(kinds);
}

// Lines with the digits in groups: "4,140".
std::string Count_Text(std::size_t count) {
  std::string text = std::to_string(count);
  for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, ",");
  return text;
}

std::string Lines_Text(std::size_t count) {
  return Count_Text(count) + (count == 1 ? " line" : " lines");
}

struct Judged_Lines {
  std::set<std::int32_t> Lost, Wrong;
  bool Other_Units = false;
};

Judged_Lines Lines_Of_Findings() {
  Judged_Lines lines;
  for (const Check_Finding& finding : Program_Findings.List) {
    const Check_Grade grade = Info_Of(finding.Kind).Grade;
    if (finding.Macro || finding.Line < 1 || Is_Of_The_Job(finding.Kind)) continue;
    if (grade == Check_Grade::Lost) lines.Lost.insert(finding.Line);
    if (grade == Check_Grade::Wrong) lines.Wrong.insert(finding.Line);
    lines.Other_Units = lines.Other_Units || finding.Kind == Check_Kind::Other_Units;
  }
  for (const std::int32_t line : lines.Lost) lines.Wrong.erase(line);
  return lines;
}

// "4,140 of 4,160 lines would be lost; 3 lines would be misread; units are mm".
std::string Text_Of(const Judged_Lines& lines) {
  std::string text;
  if (!lines.Lost.empty()) {
    text = Count_Text(lines.Lost.size()) + " of " +
           Lines_Text(static_cast<std::size_t>(GCodeLineCount())) + " would be lost";
  }
  if (!lines.Wrong.empty()) {
    text += (text.empty() ? "" : "; ") + Lines_Text(lines.Wrong.size()) + " would be misread";
  }
  if (lines.Other_Units) {
    text += std::string("; units are ") + (MachineSetup.UnitsofMeasurement == 1 ? "inch" : "mm");
  }
  return text;
}

}  // namespace

void Judge_Adaption() {
  const Judged_Lines lines = Lines_Of_Findings();
  Adapt_Bar.First_Line = 0;
  for (const auto* set : {&lines.Lost, &lines.Wrong}) {
    if (set->empty()) continue;
    const std::int32_t first = *set->begin();
    if (Adapt_Bar.First_Line == 0 || first < Adapt_Bar.First_Line) Adapt_Bar.First_Line = first;
  }
  Gcode_Form.Label_Adapt.Caption = Adapt_Bar.Left ? std::string() : Text_Of(lines);
  Gcode_Host.Form_Changed();
}

void Command_Adapt_Show_Click() {
  const std::int32_t line = Text_Line_Of_Step(Adapt_Bar.First_Line);
  if (line > 0) Gcode_Host.GCode_HighlightWords(line);
}

void Command_Adapt_Leave_Click() {
  Adapt_Bar.Left = true;
  Judge_Adaption();
}

}  // namespace norvik
