#include "compiler/compile/compile.h"

#include "compiler/compensation/compensation.h"
#include "compiler/compile/table_pair.h"
#include "compiler/interpreter/compile_section.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/text/compile_sources.h"
#include "compiler/wires/feed_pass.h"
#include "compiler/wires/wire_pass.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/working_name.h"
#include "platform/platform.h"

#include <optional>
#include <utility>

namespace norvik {

namespace {

bool Refused() {
  if (Compile_Busy()) Platform.Beep();
  return Compile_Busy();
}

void Set_Paths(const std::string& folder, std::string_view wire_name) {
  Compile_Tables.LineArc_Path = Join_Path(folder, LineArc_Table_Name);
  Compile_Tables.Wire_Path = Join_Path(folder, wire_name);
}

void Report_Unwritten(const Fault& fault) {
  ErrorLogWrite("Compile table not written: " + fault.Description);
  AddMessage("The compile could not write its tables: " + fault.Description);
}

// The tables of one compile in a folder of their own, so that no other program writes into them,
// until both are complete and take their place together.
class Tables_In_Work {
 public:
  explicit Tables_In_Work(std::string_view wire_name) : Wire_Name(wire_name) {
    Trap_With(Report_Unwritten, [&] { Folder.emplace(Application.Table_Folder); });
    if (Folder) Set_Paths(Folder->Path(), Wire_Name);
  }
  ~Tables_In_Work() { Set_Paths(Application.Table_Folder, Wire_Name); }
  Tables_In_Work(const Tables_In_Work&) = delete;
  Tables_In_Work& operator=(const Tables_In_Work&) = delete;

  bool Can_Be_Written() const { return Folder.has_value(); }
  // True when both stand where others read them.
  bool Put_In_Place() {
    return Trap_With(Report_Unwritten, [&] {
      Place_Table_Pair(Application.Table_Folder, Compile_Tables.LineArc_Path,
                       Compile_Tables.Wire_Path);
    });
  }

 private:
  std::string_view Wire_Name;
  std::optional<Working_Folder> Folder;
};

// `Program_LineArc` on its way to disk. The records of a stretch of lines are written before the
// yield that ends it, so that no long write stands at the end.
class Record_File {
 public:
  explicit Record_File(const Tables_In_Work& tables) {
    Whole = tables.Can_Be_Written() &&
            Trap_With(Report_Unwritten, [&] { Writer.emplace(Compile_Tables.LineArc_Path); });
  }

  // Appends the records made since the last call. Records that are still to be compensated wait.
  void Add_New() {
    if (!Compiler.UsesCompensation) Append_New();
  }

  // Writes what is left, with the records as they will stay. True when nothing has failed.
  bool Complete() {
    if (Compiler.UsesCompensation) Begin_Anew();
    return Append_New();
  }

  // The file takes its place. True when it is complete on disk.
  bool Finish() {
    return Whole && Trap_With(Report_Unwritten, [&] { Writer->Finish(); });
  }

 private:
  // After compensation nothing that was written stands any more.
  void Begin_Anew() {
    if (!Whole) return;
    Writer.reset();
    Written = 0;
    Whole = Trap_With(Report_Unwritten, [&] { Writer.emplace(Compile_Tables.LineArc_Path); });
  }

  bool Append_New() {
    Whole = Whole && Trap_With(Report_Unwritten, [&] {
              const auto& rows = Compile_Tables.Program_LineArc.Rows;
              while (Written < rows.size()) Writer->Add(rows[Written++]);
            });
    return Whole;
  }

  std::optional<Table_Writer<LineArc>> Writer;
  std::size_t Written = 0;
  bool Whole = false;  // nothing has failed so far
};

Table<Wire> Convert_To_Wires() {
  return NIST_ConvertLineArctoWire(std::exchange(Compile_Tables.Program_LineArc, {}));
}

// The wire pass stops one wire behind the end of the executing table.
void Note_Cut_Wires(const Record_List<Wire>& wires) {
  if (wires.size() <= Wire_Table_Limit) return;
  const Wire& first_left_out = wires[Wire_Table_Limit];
  Note_Loss_At(first_left_out.Step, Loss_Kind::Wires, first_left_out.Block_Text,
               "the program makes more than " + std::to_string(Wire_Table_Limit) +
                   " wires; split it into several files");
}

void Begin_Program() {
  SetStatus(1, "GCode Compile: Compiling Data...", 5);
  DoEvents();
  Compile_Status.CompileDone = Compile_Status.Cut_Short = false;
  Compile_Status.CompileProgress = 0;
  Compile_Losses = {};
  Present_Compile = Present_Sources();
  Compile_Host.Show_Progress("GCode Compile Progress");
}

void End_Program() {
  Set_Panel(1, "");
  Compile_Host.Play_Sound_Slot(6);
  Compile_Status.CompileDone = true;
}

// All passes, up to the wires. True when both files are complete.
bool Run_Passes(Table<Wire>& wires) {
  Tables_In_Work tables(Wire_Table_Name);
  Record_File records(tables);
  Line_Pass_Operations operations = Compile_Operations();
  operations.Before_Yield = [&] { records.Add_New(); };
  Run_Line_Pass(Present_Compile.Text, std::move(operations));
  if (Compiler.UsesCompensation) {
    Present_Compile.Tool_Diameters = Tools.Diameter;
    AddRadiusCompensation(Compile_Tables.Program_LineArc);
  }
  // The two tables belong together: where one cannot be written, both of before stand.
  if (!records.Complete()) return false;
  wires = Convert_To_Wires();
  Note_Cut_Wires(wires.Rows);
  if (!NIST_Optimus_Rates(wires, Compile_Tables.Wire_Path)) {
    AddMessage("The compile could not write its wire table; the error log says why");
    return false;
  }
  return records.Finish() && tables.Put_In_Place();
}

// The wires become the executing table. Those that cannot be taken leave an empty one that is not
// to be run. True when they were taken.
bool Hand_Over(Table<Wire>&& wires, Table_Kind kind, bool whole) {
  Table_Origin origin;
  origin.Kind = kind;
  origin.Whole = whole && !Compile_Status.Cut_Short;
  origin.Sources = std::make_shared<const Compile_Sources>(std::move(Present_Compile));
  origin.Losses = Compile_Losses;
  const auto report = [](const Fault& fault) {
    ErrorLogWrite("The wires cannot be taken: " + fault.Description);
    AddMessage(fault.Description);
  };
  const bool taken =
      Trap_With(report, [&] { Program_Wire.Install(std::move(wires), Table_Origin(origin)); });
  if (!taken) {
    origin.Whole = false;
    Program_Wire.Install({}, std::move(origin));
  }
  Program_Wire_Host.Installed();
  return taken;
}

}  // namespace

bool CompileProgram() {
  if (Refused()) return false;
  Table<Wire> wires;
  bool whole = false;
  {
    const Compile_Section section(Operation::Compile);
    Begin_Program();
    Trap("CompileProgram", [&] { whole = Run_Passes(wires); });
  }
  End_Program();
  const bool taken = Hand_Over(std::move(wires), Table_Kind::Program, whole);
  // It reads the wire file, which stands in its place now.
  if (whole && MachineSetup.Motion_Analyzer_Enable == 1) Compile_Host.Show_Motion_Analyzer();
  return taken && whole;
}

bool CompileBlock(std::string_view text, const Start_Position& from) {
  if (Refused()) return false;
  Table<Wire> wires;
  bool whole = false;
  std::optional<Compile_Section> section(std::in_place, Operation::Compile_Line);
  SetStatus(1, "GCode Compile: Compiling Block...", 5);
  DoEvents();
  Compile_Losses = {};
  Present_Compile = {};
  Trap("CompileBlock", [&] {
    Tables_In_Work tables(Block_Wire_Table_Name);
    Record_File records(tables);
    Run_Block_Pass(std::string(text), Compile_Operations(), from);
    Compiler.UsesCompensation = false;  // a block is not compensated
    if (!records.Complete()) return;
    wires = Convert_To_Wires();
    whole =
        Trap_With(Report_Unwritten, [&] { Write_Wire_Table(Compile_Tables.Wire_Path, wires); }) &&
        records.Finish() && tables.Put_In_Place();
  });
  Set_Panel(1, "");
  section.reset();
  return whole && Hand_Over(std::move(wires), Table_Kind::Goto, whole);
}

bool GCode_Compile_All() {
  if (Refused()) return false;
  const bool whole = CompileProgram() && !Compile_Status.Cut_Short;
  if (GCode_Program.Range_Waits) Range_To_Whole_Program();
  Machine.StartingStep = 0;
  Compile_Status.CurrentStep = Machine.StartingStep;
  AddMessage("Compiling GCode");
  if (Compile_Status.Cut_Short)
    AddMessage("The compile was cut short: the plot shows a part. Compile again before a run.");
  return whole;
}

}  // namespace norvik
