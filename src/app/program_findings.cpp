#include "app/program_findings.h"

#include "app/adapt_bar.h"
#include "app/gcode_form.h"
#include "compiler/compile/compile.h"
#include "compiler/interpreter/compile_section.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/loss_text.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <string>

namespace norvik {

Program_Findings_State Program_Findings;

namespace {

// Above so many lines the check waits until it is wanted.
constexpr std::int32_t Check_At_Once = 200'000;
// A box must stay readable.
constexpr int Most_Shown = 12;

bool Is_Serious(const Check_Finding& finding) {
  const Check_Grade grade = Info_Of(finding.Kind).Grade;
  return grade == Check_Grade::Lost || grade == Check_Grade::Wrong;
}

std::string Line_Of(const Check_Finding& finding) {
  std::string text =
      finding.Macro ? "Macro " + std::to_string(*finding.Macro) + ", line " : std::string("Line ");
  text += std::to_string(finding.Text_Line()) + ": " +
          std::string(Name_Of(Info_Of(finding.Kind).Grade)) + ": " + finding.What;
  constexpr std::size_t most = 160;
  return text.size() > most ? text.substr(0, most) + "..." : text;
}

// What a run of the table would do otherwise than the text says; empty: nothing.
std::string Reasons_Not_To_Run() {
  std::string text;
  int count = 0;
  const auto add = [&](const std::string& line) {
    if (++count <= Most_Shown) text += line + "\n";
  };
  const auto scattered = Program_Wire.First_Scattered_Step();
  if (scattered && !MachineSetup.Run_In_Table_Order) {
    add("Line " + std::to_string(Text_Line_Of_Step(*scattered)) +
        " and others run several times (REPEAT): the machine makes all passes of one line before "
        "it goes on to the next line, not in the order that the plot shows. The setting "
        "Run_In_Table_Order makes it follow the plot.");
  }
  for (const Check_Finding& finding : Program_Findings.List)
    if (Is_Serious(finding)) add(Line_Of(finding));
  // What the compile itself has left out, where the check says nothing of it.
  if (count == 0)
    for (const Compile_Loss& loss : Program_Wire.Origin().Losses.List) add(Text_Of(loss));
  if (count > Most_Shown) text += "and " + std::to_string(count - Most_Shown) + " more\n";
  return text;
}

bool Is_Agreed() {
  const auto& agreed = Program_Findings.Agreed;
  return agreed && (agreed == GCode_Program.Text || Same_Lines(*agreed, *GCode_Program.Text));
}

}  // namespace

void Check_Now() {
  if (Compile_Busy()) return;  // in a yield of a compile or of another check
  const auto text = GCode_Program.Text;
  const auto sources = Program_Wire.Program_Origin().Sources;
  bool whole = false;
  std::vector<Check_Finding> found = Check_Program(text, &whole);
  Program_Findings.List = std::move(found);
  // What a part of the text shows is shown, but stands for no run.
  Program_Findings.Text = whole ? text : nullptr;
  if (!whole)
    AddMessage("The check was cut short: lines behind it are not looked at. Check again.");
  Program_Findings.Sources = sources;
  Gcode_Host.Show_Findings();
  Judge_Adaption();
}

void Check_After_Compile() {
  if (Anything_Moves() || Application.ShutdownFlag) return;
  if (GCodeLineCount() <= Check_At_Once) return Check_Now();
  Program_Findings.List.clear();
  Program_Findings.Text.reset();
  Gcode_Host.Show_Findings();
  Judge_Adaption();
}

bool May_Begin_Run() {
  // A motion file has no text to check.
  if (Program_Wire.Origin().Kind != Table_Kind::Program || Is_Agreed()) return true;
  const auto& sources = Program_Wire.Origin().Sources;
  if (Program_Findings.Text != GCode_Program.Text || Program_Findings.Sources != sources)
    Check_Now();
  if (Program_Findings.Text != GCode_Program.Text || Program_Findings.Sources != sources)
    return false;  // another check runs, or a yield has brought another program
  const std::string reasons = Reasons_Not_To_Run();
  if (reasons.empty()) return true;
  const Box_Answer answer = Platform.Message_Box(
      "Check before the run",
      "The machine will not do what this program says:\n\n" + reasons + "\nRun it all the same?",
      Box_Buttons::Ok_Cancel);
  if (answer != Box_Answer::Ok) return false;
  Program_Findings.Agreed = GCode_Program.Text;
  return true;
}

std::string_view Setting_Of(Check_Kind kind) {
  switch (kind) {
    case Check_Kind::Other_Units:
      return "UnitsofMeasurement";
    case Check_Kind::Word_Rounded:
      return "Axis_Format";
    case Check_Kind::No_Feed:
    case Check_Kind::Feed_Of_Setup:
      return "Axis_Feed_Rate_Cut";
    case Check_Kind::Dwell_Before_Outputs:
      return "Outputs_Before_Dwell";
    case Check_Kind::Stop_At_Full_Feed:
      return "Slow_Before_Stops";
    case Check_Kind::Arc_Other_Centre:
      return "GC_IJ_Incremental";
    case Check_Kind::Macro_Missing:
      return "MacroFile0";
    case Check_Kind::Repeat_Order:
      return "Run_In_Table_Order";
    case Check_Kind::Comp_Without_Diameter:
      return "Tool_File_Name";
    default:
      return {};
  }
}

}  // namespace norvik
