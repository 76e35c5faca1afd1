#include "tools/motion_analyzer.h"

#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/wires/feed_pass.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/geometry.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/replacement_file.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "tools/motion_file.h"
#include "tools/standstill.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace norvik {

frmMotionAnalyzer_Record frmMotionAnalyzer;
Motion_Analyzer_Host_Operations Motion_Analyzer_Host;

namespace {

constexpr const char* Title = "GCode Motion Analyzer";
constexpr const char* Angle_Error = "Check_Motion_Angle_vs_Velocity_Error # ";
constexpr std::int32_t Rows_A_Step = 100;
// A setup that fails every row would fill the log.
constexpr int Faults_Written_Out = 100;

frmMotionAnalyzer_Record& Form() {
  return frmMotionAnalyzer;
}

const Wire& Record(std::int32_t row) {
  return Form().Wires.Rows[static_cast<std::size_t>(row - 1)];
}
Row_Checks& Checks_Of(std::int32_t row) {
  return Form().Checks[static_cast<std::size_t>(row - 1)];
}
bool Is_Row(std::int32_t row) {
  return row >= 1 && row <= Form().RecordCount;
}

std::optional<std::filesystem::file_time_type> Modified(const std::string& path) {
  std::error_code missing;
  const auto time = std::filesystem::last_write_time(path, missing);
  return missing ? std::nullopt : std::optional(time);
}

double At(const Nullable& coordinate) {
  return coordinate.value_or(0);
}

// The next move behind a row, or the last record.
std::int32_t Next_Motion(std::int32_t row) {
  std::int32_t next = row + 1;
  while (next < Form().RecordCount && Record(next).Motion != 1) ++next;
  return next;
}

double Allowed_End(const Wire& wire, const Wire& next) {
  const double widest = MachineSetup.Axis_CV_MotionAngle, start = MachineSetup.Axis_Ramp_Start;
  const double angle =
      std::min(Corner_Angle(At(wire.Start[1]), At(wire.Start[2]), At(wire.Start[3]),
                            At(wire.End[1]), At(wire.End[2]), At(wire.End[3]), At(next.End[1]),
                            At(next.End[2]), At(next.End[3])),
               widest);
  return start + (wire.IPM_D - start) * (1 - Divided(angle, widest));
}

// Also where it is too fast, without the sound.
bool Ends_Slow_Enough(std::int32_t row) {
  constexpr double too_much = 0.01;
  const Wire& wire = Record(row);
  const double allowed = Allowed_End(wire, Record(Next_Motion(row)));
  Form().Allowed = allowed;
  return wire.IPM_E - allowed < too_much;
}

Check_Result Result(bool good) {
  return good ? Check_Result::Ok : Check_Result::Bad;
}

bool Begins_As_Planned(std::int32_t row) {
  if (row == 1) return true;
  const Wire &wire = Record(row), &before = Record(row - 1);
  return wire.Motion != 1 || before.Motion != 1 || wire.IPM_S == before.IPM_E;
}

bool Speeds_Fit(std::int32_t row) {
  bool fit = false;
  Trap_With([](const Fault&) {}, [&] { fit = RampFits(Record(row)); });
  return fit;
}

// The percentage in panel 1; the text of a percentage is made once.
class Check_Progress {
 public:
  void Show(std::int32_t row) {
    const auto percent = static_cast<int>(std::int64_t{row} * 100 / Form().RecordCount);
    if (percent != Shown) {
      Shown = percent;
      Text = "GCode Motion Analyzer: Checking Motion Commands " + std::to_string(percent) +
             "% completed, press ESC to cancel";
    }
    SetStatus(1, Text, -1);
    DoEvents();
  }

 private:
  int Shown = -1;
  std::string Text;
};

// The checks of one row. Faults of the third are logged up to a bound.
void Check_Row(std::int32_t row) {
  Row_Checks& checks = Checks_Of(row);
  checks.Of[0] = Result(Begins_As_Planned(row));
  checks.Of[1] = Result(Speeds_Fit(row));
  checks.Of[2] =
      Record(row).Motion == 1 ? Result(Check_Motion_Angle_vs_Velocity(row)) : Check_Result::No_Move;
  if (checks.Of[2] == Check_Result::Bad && Form().Allowed) {
    Form().Too_Fast.emplace_back(row, *Form().Allowed);
  }
  if (checks.Is_Error()) AddMotionError(row);
}

void Forget_Results() {
  Form().Checks.assign(Form().Wires.Rows.size(), Row_Checks());
  Form().Errors.clear();
  Form().Too_Fast.clear();
  Form().ErrorCount = 0;
}

struct Angle_Fault_State {
  int Count = 0;        // of this run of the checks
  bool Beeped = false;  // since the last yield
};
Angle_Fault_State Angle_Faults;

}  // namespace

void Take_Analyzer_Wires(Table<Wire>&& wires) {
  Form().File.clear();
  Form().Modified.reset();
  Form().Wires = std::move(wires);
  Form().RecordCount = static_cast<std::int32_t>(Form().Wires.Rows.size());
  Form().Edited = false;
  Forget_Results();
}

void Load_Analyzer_File(const std::string& path) {
  const auto modified = Modified(path);
  Take_Analyzer_Wires(Read_Wire_Table(path));
  Form().File = path;
  Form().Modified = modified;
}

void AddMotionError(std::int32_t row) {
  ++Form().ErrorCount;
  Form().Errors.push_back(row);
}

bool Check_Motion_Angle_vs_Velocity(std::int32_t row) {
  bool result = false;
  Form().Allowed.reset();
  if (row >= Form().RecordCount) return result;
  const auto report = [](const Fault& fault) {
    if (++Angle_Faults.Count > Faults_Written_Out) return;
    Log_Fault(Angle_Error, fault);
  };
  const bool checked = Trap_With(report, [&] { result = Ends_Slow_Enough(row); });
  // One sound between two yields is all that can be heard.
  if (checked && !result && !std::exchange(Angle_Faults.Beeped, true)) Platform.Beep();
  return result;
}

void DisplayData() {
  if (Form().Busy) return;
  const Value_In_Scope busy(Form().Busy, true);
  // An ESC that was pressed before is not meant for these checks.
  if (Present_Operation() == nullptr) Operation_Host.Forget_Presses();
  Form().Caption = Title;
  Motion_Analyzer_Host.Caption_Changed();
  SetStatus(1, "GCode Motion Analyzer: Checking Motion Commands...", -1);
  Forget_Results();
  Angle_Faults = {};
  // What the planning pass remembers of its last corner is its own.
  const Corner_Angle_State kept = Corner_Angle_Memory;
  Check_Progress progress;
  bool cancelled = false;
  for (std::int32_t row = 1; row < Form().RecordCount && !cancelled; ++row) {
    Check_Row(row);
    if (row % Rows_A_Step != 0) continue;
    progress.Show(row);
    Angle_Faults.Beeped = false;
    cancelled = std::exchange(Application.EscFlag, false);
  }
  Corner_Angle_Memory = kept;
  SetStatus(1, std::to_string(Form().ErrorCount) + " Errors" + (cancelled ? ", cut short" : ""),
            -1);
  Motion_Analyzer_Host.Data_Changed();
}

// --- The grid ------------------------------------------------------------------------------------

namespace {

constexpr std::array<std::string_view, grid_column::Count> Titles{"P",
                                                                  "G-Code",
                                                                  "Dx",
                                                                  "Dy",
                                                                  "Dz",
                                                                  "IPM_D",
                                                                  "IPM_S",
                                                                  "IPM_R",
                                                                  "IPM_E",
                                                                  "X Hz",
                                                                  "Y Hz",
                                                                  "Z Hz",
                                                                  "Status 1",
                                                                  "Status 2",
                                                                  "Status 3",
                                                                  "Status 1 Description",
                                                                  "Status 2 Description",
                                                                  "Status 3 Description"};

double Travel(const Wire& wire, int axis) {
  return std::abs(At(wire.End[axis]) - At(wire.Start[axis]));
}

// The axis's share of the way, in steps a second at the run speed.
double Step_Rate(const Wire& wire, int axis) {
  const double length = std::hypot(Travel(wire, 1), Travel(wire, 2), Travel(wire, 3));
  if (length == 0) return 0;
  return Travel(wire, axis) / length * wire.IPM_R / 60 * MachineSetup.Axis_SPI[axis];
}

std::string Status(std::int32_t row, int check) {
  switch (Checks_Of(row).Of[check]) {
    case Check_Result::Ok:
      return "OK";
    case Check_Result::Bad:
      return "Bad";
    case Check_Result::Not_Checked:
      return "not checked";
    case Check_Result::No_Move:
      break;
  }
  return "--";
}

std::string Too_Fast(std::int32_t row) {
  const auto at = std::lower_bound(Form().Too_Fast.begin(), Form().Too_Fast.end(),
                                   std::pair(row, -std::numeric_limits<double>::infinity()));
  if (at == Form().Too_Fast.end() || at->first != row)
    return "No speed can be allowed: Axis_CV_MotionAngle is 0";
  return "Ending Velocity too High. IPM_E " + Format_Number(Record(row).IPM_E, "#.0") + " >> " +
         Format_Number(at->second, "#.0");
}

std::string Description(std::int32_t row, int check) {
  if (Checks_Of(row).Of[check] != Check_Result::Bad) return "--";
  if (check == 0) return "IPM_S <> IMP_E(previous move)";
  return check == 1 ? "Invalid motion parameters" : Too_Fast(row);
}

float Wire::*Speed_Of(int column) {
  switch (column) {
    case grid_column::IPM_D:
      return &Wire::IPM_D;
    case grid_column::IPM_S:
      return &Wire::IPM_S;
    case grid_column::IPM_R:
      return &Wire::IPM_R;
    case grid_column::IPM_E:
      return &Wire::IPM_E;
    default:
      return nullptr;
  }
}

std::string Cell(std::int32_t row, int column) {
  using namespace grid_column;
  const Wire& wire = Record(row);
  if (column == Step) return std::to_string(wire.Step);
  if (column == GCode) return std::string(wire.Block_Text);
  if (column <= Dz) return Format_Number(Travel(wire, column - Dx + 1), "###.00");
  if (float Wire::*speed = Speed_Of(column)) return Format_Number(wire.*speed, "###.0");
  if (column <= Hz_Z) {
    return Format_Number(Round_Half_Even(Step_Rate(wire, column - Hz_X + 1)), "0");
  }
  if (column <= Status_3) return Status(row, column - Status_1);
  return Description(row, column - Description_1);
}

}  // namespace

std::string_view Grid_Title(int column) {
  return Titles.at(static_cast<std::size_t>(column));
}

std::string Grid_Cell(std::int32_t row, int column) {
  if (!Is_Row(row) || column < 0 || column >= grid_column::Count) return {};
  std::string text;
  Trap_With([](const Fault&) {}, [&] { text = Cell(row, column); });
  return text;
}

std::int32_t Grid_Rows() {
  return Form().Only_Errors ? static_cast<std::int32_t>(Form().Errors.size()) : Form().RecordCount;
}

std::int32_t Grid_Record(std::int32_t grid_row) {
  if (!Form().Only_Errors) return grid_row;
  const auto index = static_cast<std::size_t>(grid_row - 1);
  return index < Form().Errors.size() ? Form().Errors[index] : 0;
}

std::optional<std::int32_t> Next_Error(std::int32_t row) {
  const auto next = std::upper_bound(Form().Errors.begin(), Form().Errors.end(), row);
  return next == Form().Errors.end() ? std::nullopt : std::optional(*next);
}

std::optional<std::int32_t> Previous_Error(std::int32_t row) {
  const auto at = std::lower_bound(Form().Errors.begin(), Form().Errors.end(), row);
  return at == Form().Errors.begin() ? std::nullopt : std::optional(*std::prev(at));
}

// --- Handlers ------------------------------------------------------------------------------------

namespace {

// Loads and checks; a file that cannot be had is told in words.
bool Open_And_Check(const std::string& path) {
  if (Form().Busy) return false;
  if (!Stands_Still()) return false;  // the checks of a long table would hold up the pulses
  const auto report = [](const Fault& fault) {
    Log_Fault("frmMotionAnalyzer_Load_Error", fault);
    SetStatus(1, fault.Description, 10);
  };
  if (!Trap_With(report, [&] { Load_Analyzer_File(path); })) return false;
  DisplayData();
  return true;
}

// What a table with these rows is: the program's own wires stay those of the program.
Table_Origin Origin_Of_Rows() {
  const Table_Origin& program = Program_Wire.Program_Origin();
  if (Form().File == Program_Wire_File() && program.Kind != Table_Kind::None) return program;
  auto sources = std::make_shared<Compile_Sources>();
  sources->Text = GCode_Program.Text;
  Table_Origin origin;
  origin.Kind = Table_Kind::Motion_File;
  origin.Sources = std::move(sources);
  return origin;
}

void Write_Rows() {
  Write_Wire_Table(Form().File, Form().Wires);
  Form().Modified = Modified(Form().File);
  Form().Edited = false;
}

void Verify() {
  Write_Rows();
  Install_Table(Table<Wire>(Form().Wires), Origin_Of_Rows());
  DisplayData();  // last, so that its result stays on the panel
}

}  // namespace

void frmMotionAnalyzer_Load() {
  Open_And_Check(Program_Wire_File());
}

void mnuOpen_Click() {
  if (!Stands_Still()) return;
  const auto path =
      Platform.Open_File_Dialog({"Open", "Wire Files (*.csv)|*.csv|All Files(*.*)|*.*",
                                 PathDirectory(Program_Wire_File()), "", "csv"});
  if (path) Open_And_Check(*path);
}

void mnuVerify_Click() {
  if (Form().Busy || Form().File.empty() || !Motion_Analyzer_Host.May_Replace_Table()) return;
  if (Modified(Form().File) != Form().Modified) {
    SetStatus(
        1,
        "The wire file is not the one that was read: it was compiled again or deleted. Open it "
        "again, then verify.",
        10);
    return;
  }
  Trap_With(
      [](const Fault& fault) {
        Log_Fault("frmMotionAnalyzer_Verify_Error", fault);
        Platform.Message_Box(Title, fault.Description, Box_Buttons::Ok);
      },
      Verify);
}

void mnuSave_Click() {
  if (Form().Busy || !Stands_Still()) return;
  const auto path =
      Platform.Save_File_Dialog({"Save", "Text Files (*.csv)|*.csv|All Files(*.*)|*.*",
                                 Last_File(File_Kind::Motion).Directory, "", "csv"});
  if (!path) return;
  const bool saved = Trap_With(
      [](const Fault& fault) {
        Log_Fault("frmMotionAnalyzer_Save_Error", fault);
        Platform.Message_Box(Title, fault.Description, Box_Buttons::Ok);
      },
      [&] { SaveFile(*path); });
  if (saved) SetStatus(1, "Saved: " + *path, 5);
}

namespace {

bool Is_Number_Column(int column) {
  return column == grid_column::Step || (column >= grid_column::Dx && column <= grid_column::Hz_Z);
}

void Append_Cell(std::string& line, std::int32_t row, int column) {
  if (column > 0) line += ',';
  if (Is_Number_Column(column)) {
    std::string text = Grid_Cell(row, column);
    std::replace(text.begin(), text.end(), ',', '.');
    line += text;
    return;
  }
  line += '"';
  for (const char c : Grid_Cell(row, column)) line.append(c == '"' ? 2 : 1, c);
  line += '"';
}

}  // namespace

void SaveFile(const std::string& path) {
  constexpr std::size_t portion = 1 << 18;
  Replacement_File file(path);
  std::string lines;
  for (std::int32_t grid_row = 1; grid_row <= Grid_Rows(); ++grid_row) {
    for (int column = 0; column < grid_column::Count; ++column) {
      Append_Cell(lines, Grid_Record(grid_row), column);
    }
    lines += "\r\n";
    if (lines.size() < portion) continue;
    file.Write(lines);
    lines.clear();
  }
  file.Write(lines);
  file.Commit(Flush_To_Disk::Yes);
}

namespace {

// The texts of a table are kept with it; one that is typed joins them.
void Keep_Text(Wire& wire, std::string text) {
  struct Texts {
    std::shared_ptr<const void> Before;
    std::string Typed;
  };
  auto kept = std::make_shared<Texts>(Texts{std::move(Form().Wires.Texts), std::move(text)});
  wire.Block_Text = kept->Typed;
  Form().Wires.Texts = std::move(kept);
}

// False, with the reason told, for what is no speed.
bool Take_Speed(Wire& wire, int column, const std::string& text) {
  const auto number = Try_Number(text);
  if (!number || !(*number >= 0) || *number > 32'767) {
    SetStatus(1, "\"" + text + "\" is no speed between 0 and 32767; the old one stays.", 10);
    return false;
  }
  wire.*Speed_Of(column) = To_Single(*number);
  return true;
}

}  // namespace

void Grid1_DblClick(std::int32_t row, int column) {
  if (Form().Busy || !Is_Row(row) || !Stands_Still()) return;
  if (column != grid_column::GCode && Speed_Of(column) == nullptr) {
    SetStatus(1, "This column is worked out from the others; text and speeds can be changed.", 5);
    return;
  }
  const std::string before = Grid_Cell(row, column);
  const auto typed = Platform.Input_Box("Data Entry", std::string(Grid_Title(column)), before);
  if (!typed || *typed == before || !Is_Row(row)) return;
  Wire& wire = Form().Wires.Rows[static_cast<std::size_t>(row - 1)];
  if (column == grid_column::GCode) {
    Keep_Text(wire, *typed);
  } else if (!Take_Speed(wire, column, *typed)) {
    return;
  }
  Form().Edited = true;
  SetStatus(1, "Verify writes the change to the wire file and checks it.", 5);
  Motion_Analyzer_Host.Data_Changed();
}

void Grid1_RowChange(std::int32_t row) {
  if (!Is_Row(row)) return;
  Form().Caption = std::to_string(row) + " of " + std::to_string(Form().RecordCount);
  Motion_Analyzer_Host.Caption_Changed();
  Motion_Analyzer_Host.Show_Step(Record(row).Step, Record(row).Block_Text);
}

}  // namespace norvik
