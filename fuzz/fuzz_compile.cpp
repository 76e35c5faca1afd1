// A whole compile: program, macros, repeats, dwells, cycles and compensation with a tool file, as
// tables on disk and as a Goto line. What must hold: nothing but the machine's own limits ends it,
// both tables are of one compile and read back as what runs.
//
// First four bytes: choices. Then texts parted by bytes of 0: the program, two macros, the tool
// file.
#include "art_work.h"
#include "compiler/check/program_check.h"
#include "compiler/compile/compile.h"
#include "compiler/compile/table_pair.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/text/program_text.h"
#include "core/tool_file.h"
#include "platform/platform.h"

#include <cctype>
#include <fstream>
#include <memory>
#include <string_view>

namespace {

using namespace norvik;

// Counts and pecks without bound are right, but take long: numbers keep their first digits, counts
// one of them, and a depth of peck is whole.
std::string Shortened(std::string_view text) {
  std::string short_text;
  char word = ' ';
  int digits = 0;
  for (const char c : text) {
    if (std::isalpha(static_cast<unsigned char>(c)) != 0) {
      word = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      digits = 0;
    }
    const bool digit = std::isdigit(static_cast<unsigned char>(c)) != 0;
    if (digit && ++digits > (word == 'L' ? 1 : 4)) continue;
    short_text += word == 'Q' && (c == '.' || c == ',' || c == '0') ? '1' : c;
  }
  return short_text;
}

std::string Next_Text(std::string_view& rest) {
  const auto end = std::min(rest.find('\0'), rest.size());
  std::string text = Shortened(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return text;
}

void Write(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

void Choose(std::uint32_t choice) {
  const auto bit = [choice](int n) { return (choice >> n & 1U) != 0; };
  Application.DecimalSeparator = bit(0) ? ',' : '.';
  MachineSetup.GC_IJ_Incremental = bit(1);
  MachineSetup.Arc_Resolution = bit(2) ? 32 : 180;
  MachineSetup.Arc_Max_Segments = 360;
  MachineSetup.Axis_Ramping = bit(3);
  MachineSetup.UnitsofMeasurement = bit(4) ? 1 : 0;
  MachineSetup.Outputs_Before_Dwell = bit(5);
  MachineSetup.Slow_Before_Stops = bit(6);
  MachineSetup.Run_In_Table_Order = bit(7);
}

void Check_Tables(bool whole) {
  const std::string& folder = Application.Table_Folder;
  Check(whole);
  Check(Standing_Of_Pair(folder) == Pair_Standing::Whole);
  const Table<Wire> wires = Read_Wire_Table(Join_Path(folder, Wire_Table_Name));
  Check(wires.Rows.size() == Program_Wire.Count());
  Read_LineArc_Table(Join_Path(folder, LineArc_Table_Name));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = Enter_Work_Folder();
  static std::int64_t clock = 0;
  Platform.Monotonic_Clock = [] { return clock += 1'000'000'000; };  // no wait takes time
  Application = {};  // no error file: nothing is written
  Application.Table_Folder = folder;
  Machine = {};
  Compile_Losses = {};
  Compiler_Memory = {};
  Program_Wire = {};
  MachineSetup = {};
  Restore_Factory_Setup();
  Line_Pass_Limits = {.Lines = 3000, .Macro_Calls = 200, .Text_Bytes = 2'000'000};
  Byte_Source bytes{data, size};
  Choose(bytes.Take<std::uint32_t>());
  std::string_view rest(reinterpret_cast<const char*>(bytes.Data), bytes.Size);
  const std::string program = Next_Text(rest);
  for (int macro = 1; macro <= 2; ++macro) {
    MachineSetup.MacroFile[macro] = folder + "/macro" + std::to_string(macro);
    Write(MachineSetup.MacroFile[macro], Next_Text(rest));
  }
  Write(folder + "/tools.tol", Next_Text(rest));
  Read_Tool_File(folder + "/tools.tol");

  SaveChanges(program);
  const bool whole = CompileProgram();
  // A speed beyond what the executing table holds is refused, and only that.
  if (whole || Program_Wire.Count() > 0) Check_Tables(whole);
  Check_Program(GCode_Program.Text);
  Start_Position from;
  from[1] = 1;
  CompileBlock(GCodeLineCount() > 0 ? GCode_Line(1) : std::string_view(), from);
  return 0;
}
