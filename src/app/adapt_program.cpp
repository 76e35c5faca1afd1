#include "app/adapt_program.h"

#include "adapt/adapt.h"
#include "app/adapt_bar.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/program_findings.h"
#include "app/transform_menu.h"
#include "compiler/compile/compile.h"
#include "control/motion/motion.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"

#include <string>
#include <utility>

namespace norvik {

namespace {

constexpr int Status_Seconds = 10;
constexpr const char* Title = "Norvik";
// A box must stay readable.
constexpr int Most_Shown = 10;

// What is left to the operator, in words.
std::string Refusals_Of(const Adapted& result) {
  std::string text;
  int shown = 0;
  for (const Adapt_Finding& finding : result.Findings) {
    if (finding.Grade != Adapt_Grade::Refused) continue;
    if (++shown > Most_Shown) break;
    text += std::to_string(finding.Number) + ", line " + std::to_string(finding.Line) + ": " +
            finding.What + "\n";
  }
  if (result.Refused > Most_Shown) {
    text += "and " + std::to_string(result.Refused - Most_Shown) + " more\n";
  }
  return text;
}

void Tell_Result(const Adapted& result) {
  const std::string done = "Adapted; Ctrl+Z brings the old text back, and Save asks for a name.";
  SetStatus(1, done, Status_Seconds);
  AddMessage(done);
  for (const Adapt_Finding& finding : result.Findings) {
    if (finding.Grade == Adapt_Grade::Note && finding.Line == 0) AddMessage(finding.What);
  }
  if (result.Refused == 0) return;
  Platform.Message_Box(
      Title,
      "The program is adapted, but for what is left to you. The text has a comment "
      "\"not adapted\" at each of these places, and halts where the tool would have "
      "moved:\n\n" +
          Refusals_Of(result),
      Box_Buttons::Ok);
}

void Compile_And_Check() {
  if (MachineSetup.Plot_Auto_Loading != 0) GCode_Compile_All();
  Display_Gcode_Steps();
  Check_After_Compile();
}

bool Adapt_Shown_Program() {
  Adapted result = Adapt(*GCode_Program.Text, Adapt_Options_Of_Setup());
  Plot_Keep_Path_Before();
  if (!Take_New_Text(std::move(result.Text))) return false;
  Main_Form.Program_File.clear();  // the file that was opened stays as it is
  Compile_And_Check();
  Tell_Result(result);
  return true;
}

}  // namespace

void Adapt_As_Opened() {
  Adapt_Bar.Left = false;
  Judge_Adaption();
  if (MachineSetup.Adapt_Always && !Gcode_Form.Label_Adapt.Caption.empty()) Command_Adapt_Click();
}

void Command_Adapt_Click() {
  if (!Stopped_For("Can't change the program")) return;
  Take_Typed_Text();
  if (GCodeLineCount() == 0) return;
  Trap_With(
      [](const Fault& fault) {
        ErrorLogWrite(std::string("GCode Adapt Error # ") + fault.Description);
        Platform.Message_Box(Title, fault.Description + "\n\nThe text is as it was.",
                             Box_Buttons::Ok);
      },
      [] { Adapt_Shown_Program(); });
}

}  // namespace norvik
