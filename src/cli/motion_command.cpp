// The command `motion`: motion files and the checks of their speeds.
#include "app/openers.h"
#include "cli/companion.h"
#include "cli/json_text.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/paths.h"
#include "core/setup.h"
#include "tools/motion_analyzer.h"
#include "tools/motion_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

namespace norvik {

namespace {

struct Motion_Options {
  std::string File, Tables, Output;
  bool Accept_Losses = false, Json = false, Errors_Only = false;
};

// Runs `work`; a fault is printed and is a failure.
int Guarded(const std::function<int()>& work) {
  try {
    return work();
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
}

// False, with the reason printed, unless exactly one of both is given.
bool One_Of(const std::string& file, const std::string& tables) {
  if (file.empty() != tables.empty()) return true;
  Complain("Name either a file or the folder of tables that exist (--tables DIR).");
  return false;
}

std::string Packed(const std::string& wire_file) {
  File_Source source(wire_file);
  Value_Stream wires(source, wire_file);
  Motion_Content content;
  return Packed_Motion(wires, content);
}

// The bytes of a wire table from a motion file; they have been read as wires.
struct Motion_Input {
  std::string Bytes;
  Table<Wire> Wires;
  Motion_Content Content;
};
Motion_Input Read_Motion(const std::string& path) {
  Motion_Input motion;
  const std::string bytes = Read_Input(path);
  Memory_Source source(bytes);
  const std::string name = path == "-" ? "standard input" : path;
  Value_Stream values(source, name);
  motion.Bytes = Unpacked_Motion(values, motion.Content);
  motion.Wires = Parse_Wire_Table(motion.Bytes, name);
  return motion;
}

int Compile_For_Save(const Companion& companion, const Motion_Options& options) {
  if (!Load_Program(options.File)) return Failed;
  const int status = Compile_Whole(companion, [] { return CompileProgram(); });
  if (status != Done || !Compile_Losses.Any() || options.Accept_Losses) return status;
  Complain("left out: " + Summary_Of(Compile_Losses) +
           ". Nothing is saved; correct the program, or save it with --accept-losses.");
  return Failed;
}

int Save(const Companion& companion, const Motion_Options& options) {
  if (!One_Of(options.File, options.Tables)) return Wrong_Usage;
  if (!options.File.empty()) {
    const int status = Compile_For_Save(companion, options);
    if (status != Done) return status;
  } else {
    Application.Table_Folder = options.Tables;
  }
  return Guarded([&] {
    Write_Output(options.Output, Packed(Program_Wire_File()));
    return Done;
  });
}

// Where the path lies; a motion file does not say in which unit.
std::string Extent_Text(const Table<Wire>& wires) {
  std::string text;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    std::optional<double> low, high;
    for (const Wire& wire : wires.Rows) {
      if (!wire.End[axis]) continue;
      low = std::min(low.value_or(*wire.End[axis]), *wire.End[axis]);
      high = std::max(high.value_or(*wire.End[axis]), *wire.End[axis]);
    }
    if (!low) continue;
    text += std::string(1, ' ') + Axis_Letter(axis) + " " + Format_Number_Point(*low, "0.####") +
            " to " + Format_Number_Point(*high, "0.####");
  }
  return text;
}

int Load(const Motion_Options& options) {
  return Guarded([&]() -> int {
    const Motion_Input motion = Read_Motion(options.File);
    std::error_code failure;
    std::filesystem::create_directories(options.Tables, failure);  // the write says why it cannot
    Application.Table_Folder = options.Tables;
    Replace_File(Program_Wire_File(), motion.Bytes);
    std::cout << "Lines    " << motion.Content.Lines << '\n'
              << "Wires    " << motion.Wires.Rows.size() << '\n'
              << "Extent  " << Extent_Text(motion.Wires) << '\n'
              << "Table    " << Program_Wire_File() << '\n';
    std::cerr << "A motion file holds no unit; these are taken as "
              << (MachineSetup.UnitsofMeasurement == 1 ? "millimetres" : "inches")
              << ", as the machine file says.\n";
    const std::string finding = Count_Finding(motion.Content);
    if (!finding.empty()) Complain(finding);
    return motion.Content.Lines < motion.Content.RecordCount ? Failed : Done;
  });
}

void Print_Row_Text(std::int32_t row) {
  for (int column = 0; column < grid_column::Count; ++column) {
    std::cout << (column == 0 ? "" : "\t") << Grid_Cell(row, column);
  }
  std::cout << '\n';
}

bool Is_Text(int column) {
  return column == grid_column::GCode || column >= grid_column::Status_1;
}

void Print_Row_Json(std::int32_t row, bool first) {
  std::cout << (first ? "\n  {" : ",\n  {");
  for (int column = 0; column < grid_column::Count; ++column) {
    const std::string cell = Grid_Cell(row, column);
    std::cout << (column == 0 ? "" : ", ") << Json_Text(Grid_Title(column)) << ": "
              << (Is_Text(column) ? Json_Text(cell) : Json_Number(cell));
  }
  std::cout << '}';
}

void Print_Rows(const Motion_Options& options) {
  frmMotionAnalyzer.Only_Errors = options.Errors_Only;
  if (!options.Json) {
    for (int column = 0; column < grid_column::Count; ++column) {
      std::cout << (column == 0 ? "" : "\t") << Grid_Title(column);
    }
    std::cout << '\n';
  } else {
    std::cout << "{\"records\": " << frmMotionAnalyzer.RecordCount
              << ", \"errors\": " << frmMotionAnalyzer.ErrorCount << ", \"rows\": [";
  }
  for (std::int32_t row = 1; row <= Grid_Rows(); ++row) {
    if (options.Json) {
      Print_Row_Json(Grid_Record(row), row == 1);
    } else {
      Print_Row_Text(Grid_Record(row));
    }
  }
  std::cout << (options.Json ? "\n]}\n"
                             : std::to_string(frmMotionAnalyzer.ErrorCount) + " Errors\n");
}

int Verify(const Companion& companion, const Motion_Options& options) {
  if (!One_Of(options.File, options.Tables)) return Wrong_Usage;
  return Guarded([&]() -> int {
    std::string finding;
    if (options.File.empty()) {
      Application.Table_Folder = options.Tables;
      Load_Analyzer_File(Program_Wire_File());
    } else {
      Motion_Input motion = Read_Motion(options.File);
      finding = Count_Finding(motion.Content);
      Take_Analyzer_Wires(std::move(motion.Wires));
    }
    DisplayData();
    if (companion.Was_Interrupted()) return Interrupted_By_Operator;
    // A decimal comma would part the numbers of JSON.
    if (options.Json) Application.DecimalSeparator = '.';
    Print_Rows(options);
    if (!finding.empty()) Complain(finding);
    return frmMotionAnalyzer.ErrorCount == 0 && finding.empty() ? Done : Failed;
  });
}

}  // namespace

bool Is_Motion_File(const std::string& path) {
  return path != "-" && Kind_Of_File(path) == Opened_Kind::Motion;
}

std::string Take_Motion_File(const std::string& path) {
  try {
    Motion_Input motion = Read_Motion(path);
    if (motion.Content.Lines < motion.Content.RecordCount) return Count_Finding(motion.Content);
    Install_Table(std::move(motion.Wires),
                  {.Kind = Table_Kind::Motion_File, .Sources = {}, .Losses = {}});
    return {};
  } catch (const Fault& fault) {
    return fault.Description;
  }
}

void Add_Motion_Command(CLI::App& app, Companion& companion) {
  CLI::App* motion = app.add_subcommand("motion", "Motion files: compiled programs without text");
  motion->require_subcommand(1);
  const auto options = std::make_shared<Motion_Options>();

  CLI::App* save = motion->add_subcommand("save", "Compile a program into a motion file");
  save->add_option("program", options->File, "G-code file; - is standard input")
      ->type_name("PROGRAM");
  save->add_option("--tables", options->Tables,
                   "Folder with tables that exist, instead of a program")
      ->type_name("DIR");
  save->add_option("-o,--output", options->Output, "Motion file; - is standard output")
      ->required()
      ->type_name("FILE.mcd");
  save->add_flag("--accept-losses", options->Accept_Losses,
                 "Save although the compile left out lines, macros or wires");
  save->callback([&companion, options] {
    companion.Command = [&companion, options] { return Save(companion, *options); };
  });

  CLI::App* load = motion->add_subcommand("load", "Make the wire table of a motion file");
  load->add_option("file", options->File, "Motion file; - is standard input")
      ->required()
      ->type_name("FILE.mcd");
  load->add_option("--tables", options->Tables, "Folder for the wire table")
      ->required()
      ->type_name("DIR");
  load->callback(
      [&companion, options] { companion.Command = [options] { return Load(*options); }; });

  CLI::App* verify = motion->add_subcommand(
      "verify", "Check the speeds of each move; exit status 1 when one is wrong");
  verify->add_option("file", options->File, "Motion file; - is standard input")
      ->type_name("FILE.mcd");
  verify
      ->add_option("--tables", options->Tables, "Folder with tables that exist, instead of a file")
      ->type_name("DIR");
  verify->add_flag("--json", options->Json, "Rows as JSON");
  verify->add_flag("--errors", options->Errors_Only, "Only rows with an error");
  verify->callback([&companion, options] {
    companion.Command = [&companion, options] { return Verify(companion, *options); };
  });
}

}  // namespace norvik
