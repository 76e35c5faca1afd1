#include "app/gcode_file.h"

#include "app/adapt_program.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/openers.h"
#include "app/program_findings.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/motion/motion.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"

#include <filesystem>

namespace norvik {

namespace {

constexpr std::int32_t Lines_Per_Yield = 500;
constexpr const char* Temporary_Name = "TEMP_NORVIK999.GC";
constexpr const char* Trap_Name = "GCode File Load Error";  // of the save too

void Become_Current(const std::string& path) {
  Main_Form.Current_File = path;
  Set_Caption(path);
}

// What follows once the lines of a program stand in the table.
void Show_New_Program() {
  Machine.StartingStep = 1;
  Compile_Status.CurrentStep = 1;
  Machine.EndingStep = GCodeLineCount();
  GCode_Program.Typed_Waits = false;
  Controller.Estimated_Process_Time.reset();
  Plot_Forget_Path_Before();
  Gcode_Host.Show_Program();
  Display_Gcode_Steps();
  Show_Table_Notice();
  if (MachineSetup.Plot_Auto_Loading != 0) {
    GCode_Compile_All();
  } else if (GCodeLineCount() > 0) {
    SetStatus(1, "GCode was opened and needs to be compiled.", 5);
  }
  Display_Gcode_Steps();
  Check_After_Compile();
  Adapt_As_Opened();
}

bool Is_Temporary(const std::string& path) {
  return Upper(PathFileName(path)) == Temporary_Name;
}

void Delete_If_Temporary(const std::string& path) {
  if (!Is_Temporary(path)) return;
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

// Above these the text box would take the memory of the computer, or its patience.
constexpr std::uintmax_t Most_Bytes = 256U << 20;
constexpr std::size_t Longest_Line = 100'000;

std::string Megabytes(std::uintmax_t bytes) {
  return std::to_string((bytes + (1U << 20) - 1) >> 20) + " MB";
}

std::string Read_Program(const std::string& path) {
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(path, unknown);
  if (!unknown && size > Most_Bytes) {
    throw Fault(Fault_Number::Overflow, path + " has " + Megabytes(size) +
                                            "; a program has at most " + Megabytes(Most_Bytes) +
                                            ". Split it and run the parts one after the other.");
  }
  std::string text = Read_Whole_File(path);
  for (std::size_t start = 0, line = 1; start < text.size(); ++line) {
    const std::size_t end = std::min(text.find_first_of("\r\n", start), text.size());
    if (end - start > Longest_Line) {
      throw Fault(Fault_Number::Overflow, path + " is no program: line " + std::to_string(line) +
                                              " has " + std::to_string(end - start) +
                                              " characters, at most " +
                                              std::to_string(Longest_Line) + " can be read.");
    }
    start = end + 1 + (text.compare(end, 2, "\r\n") == 0 ? 1 : 0);
  }
  return text;
}

bool Load_Lines(const std::string& path) {
  const auto before = GCode_Program.Text;
  SetStatus(1, "Open GCode: Loading File...", 5);
  SaveChanges(Read_Program(path));
  return GCode_Program.Text != before;  // a text that is too large was refused, with a message
}

// Logs a failure and tells the operator what is left.
void Tell_Failure(const Fault& fault, const char* what_stands) {
  ErrorLogWrite(std::string(Trap_Name) + " # " + fault.Description);
  Platform.Message_Box("Norvik 4", fault.Description + "\n\n" + what_stands, Box_Buttons::Ok);
}

std::string Program_Bytes() {
  const auto program = GCode_Program.Text;
  std::string bytes;
  bytes.reserve(program->Whole().size());
  for (std::int32_t line = 1; line <= program->Line_Count(); ++line) {
    bytes.append(program->Line(line)).append("\r\n");
    if (line % Lines_Per_Yield == 0) DoEvents();
  }
  return bytes;
}

}  // namespace

bool Open_GCode(const std::string& path) {
  if (!Stopped_For("Can't open file")) return false;
  if (!FileExists(path)) {
    Platform.Beep();
    return false;
  }
  bool loaded = false;
  Trap_With(
      [](const Fault& fault) { Tell_Failure(fault, "The program that was open before stays."); },
      [&] { loaded = Load_Lines(path); });
  if (!loaded) return false;
  // What an importer made is in no file of the operator's.
  GCode_Program.Unsaved = Is_Temporary(path) && GCodeLineCount() > 0;
  Main_Form.Program_File = Is_Temporary(path) ? std::string() : path;
  Delete_If_Temporary(path);
  Trap(Trap_Name, Show_New_Program);
  return true;
}

bool Save_GCode(const std::string& path) {
  return Trap_With([](const Fault& fault) { Tell_Failure(fault, "The program is not saved."); },
                   [&] {
                     Take_Typed_Text();
                     const Progress_Status progress("Save GCode:");
                     SetStatus(1, "Save GCode: Saving File...", -1);
                     const auto saved = GCode_Program.Text;
                     Replace_File(path, Program_Bytes());
                     // Typed or taken in a yield of the save: that is not in the file.
                     if (GCode_Program.Text == saved && !GCode_Program.Typed_Waits)
                       GCode_Program.Unsaved = false;
                     Main_Form.Program_File = path;
                   });
}

bool May_Lose_Program() {
  if (!GCode_Program.Unsaved) return true;
  const Box_Answer answer =
      Platform.Message_Box("Norvik", "The program has changes that are not saved. Save them?",
                           Box_Buttons::Yes_No_Cancel);
  if (answer != Box_Answer::Yes) return answer == Box_Answer::No;
  Menu_File_Save();
  return !GCode_Program.Unsaved;  // the save was cancelled or failed
}

void Menu_File_Open() {
  if (!Stopped_For("Can't open file") || !May_Lose_Program()) return;
  const auto path =
      Platform.Open_File_Dialog({"Open", "All Files (*.*)|*.*|G Code Files (*.gc)|*.gc",
                                 Last_File(File_Kind::GCode).Directory, "", "gc"});
  if (!path) return;
  RememberFile(File_Kind::GCode, *path);
  Become_Current(*path);
  Add_Recent_File(*path);
  Open_GCode(*path);
}

void Menu_File_Save() {
  if (Main_Form.Program_File.empty()) return Menu_File_Save_As();
  const std::string path = Main_Form.Program_File;
  if (!Save_GCode(path)) return;
  Become_Current(path);
  SetStatus(1, "Saved: " + path, 5);
}

void Menu_File_Save_As() {
  const auto& last = Last_File(File_Kind::GCode);
  const std::string offered = ChangeExtension(PathFileName(Main_Form.Current_File), "GC");
  auto path = Platform.Save_File_Dialog(
      {"Save", "All Files(*.*)|*.*|G Code Files(*.GC)|*.GC", last.Directory, offered, "GC"});
  if (!path) return;
  if (PathFileName(*path).find('.') == std::string::npos) *path += ".GC";
  if (!Save_GCode(*path)) return;
  RememberFile(File_Kind::GCode, *path);
  Become_Current(*path);
  Add_Recent_File(*path);
}

void Menu_File_New() {
  if (!Stopped_For("Can't open file")) return;
  if (GCode_Program.Unsaved &&
      Platform.Message_Box("New File",
                           "Are you sure you want to create a new G-Code file, this will erase the "
                           "current G-Code data?",
                           Box_Buttons::Yes_No_Cancel_Careful) != Box_Answer::Yes)
    return;
  Become_Current(Last_File(File_Kind::GCode).Directory + "New_GCode_File.GC");
  SaveChanges("");
  GCode_Program.Unsaved = false;
  Main_Form.Program_File.clear();
  Show_New_Program();
}

}  // namespace norvik
