// The pages Timing, Corrections, First program and Check.
#include "app/drive_session.h"
#include "app/gcode_file.h"
#include "app/guide/guide.h"
#include "app/guide/values.h"
#include "control/manual/timing_edits.h"
#include "control/safety/machine_check.h"
#include "core/application.h"
#include "core/corrections.h"
#include "core/fault.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr const char* First_Program_Name = "first_program.gc";

// Half the table wide, around its middle, at the height of travel moves.
std::string Square_In_The_Air() {
  const double x = MachineSetup.Axis_Depth[1], y = MachineSetup.Axis_Depth[2];
  const std::string left = Guide_Number(x / 4), right = Guide_Number(x * 3 / 4);
  const std::string front = Guide_Number(y / 4), back = Guide_Number(y * 3 / 4);
  const std::string up = Guide_Number(MachineSetup.Axis_Tool_Height[0]);
  return "(A square in the air: spindle off, no tool)\n"
         "G90\n"
         "G0 Z" +
         up +
         "\n"
         "G0 X" +
         left + " Y" + front +
         "\n"
         "G1 X" +
         right +
         "\n"
         "G1 Y" +
         back +
         "\n"
         "G1 X" +
         left +
         "\n"
         "G1 Y" +
         front +
         "\n"
         "G0 X0 Y0\n"
         "M30\n";
}

bool Same(const Machine_Finding& a, const Machine_Finding& b) {
  return a.Key == b.Key && a.Text == b.Text;
}

}  // namespace

void Guide_Find_Time_Constant() {
  if (const std::string why = Why_Not_Begin(Operation::Calibration); !why.empty()) {
    Refuse(why);
    return;
  }
  Guide_Form.Label_Hint.clear();
  Panel_Get_Time_Constant_Click();
  Refuse("The time constant is " + std::to_string(MachineSetup.Parallel_Time_Constant) +
         " microseconds.");
}

void Guide_Take_Corrections(bool recommended) {
  if (!May_Change("Can't change the corrections")) return;
  End_Drive_Session();
  Take_Corrections(recommended ? Correction_Set::Recommended : Correction_Set::As_The_System_Was);
  const bool saved = SaveMachineSetup();
  Begin_Drive_Session();
  Refuse(saved ? std::to_string(Corrections_On()) + " corrections are on."
               : "The machine file can't be written: this holds until Norvik ends.");
}

void Guide_Open_First_Program() {
  if (MachineSetup.Axis_Depth[1] <= 0 || MachineSetup.Axis_Depth[2] <= 0) {
    Refuse("X and Y need a length first: go back to the page Motors.");
    return;
  }
  if (!May_Lose_Program()) return;
  const std::string path = Join_Path(Application.AppDirectory, First_Program_Name);
  std::string failed;
  Trap_With([&](const Fault& fault) { failed = fault.Description; },
            [&] { Replace_File(path, Square_In_The_Air()); });
  if (!failed.empty()) {
    Refuse("The program can't be written: " + failed);
    return;
  }
  Refuse(Open_GCode(path) ? "The program is in the editor. Look at the plot, then press Play."
                          : "The program could not be opened while the machine works.");
}

void Guide_Check() {
  const std::vector<Guide_Finding> before = std::move(Guide_Form.List_Findings);
  Guide_Form.List_Findings.clear();
  for (Machine_Finding& finding : Machine_Check()) {
    const auto earlier = std::ranges::find_if(
        before, [&](const Guide_Finding& old) { return Same(old.Finding, finding); });
    const bool accepted = earlier != before.end() && earlier->Accepted;
    Guide_Form.List_Findings.push_back({std::move(finding), accepted});
  }
  Guide_Host.Form_Changed();
}

void Guide_Accept_Finding(std::size_t index, bool accepted) {
  if (index < Guide_Form.List_Findings.size()) Guide_Form.List_Findings[index].Accepted = accepted;
  Guide_Host.Form_Changed();
}

bool Guide_Finish() {
  Guide_Check();
  const auto open = std::ranges::count_if(Guide_Form.List_Findings,
                                          [](const Guide_Finding& f) { return !f.Accepted; });
  if (open > 0)
    return Refuse(std::to_string(open) + (open == 1 ? " finding has" : " findings have") +
                  " no answer yet: mend it on its page, or tick that it is meant so.");
  if (!SaveMachineSetup()) return Refuse("The machine file can't be written.");
  Guide_Form.Label_Hint = "Saved as " + PathFileName(Application.MachineFile) + ".";
  Guide_Host.Form_Changed();
  return true;
}

}  // namespace norvik
