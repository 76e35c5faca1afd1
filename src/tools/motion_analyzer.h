// motion_analyzer.h: the window `frmMotionAnalyzer`: the planned speeds of a wire table, checked.
//
//   wire file --Load--> Wires --DisplayData--> three checks a row --> Grid1, chart, list of errors
//
//   check 1   a move begins at the speed at which the move before it ends
//   check 2   its three speeds fit into its steps (RampFits)
//   check 3   it ends no faster than the corner behind it allows:
//             Allowed = Axis_Ramp_Start + (IPM_D - Axis_Ramp_Start) x (1 - angle / CV angle)
//
// Rows and records count from 1. The last record is shown and not checked: nothing follows it. A
// million rows are no million texts: the grid asks for the cells that it shows.
#pragma once

#include "compiler/state/tables.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvik {

namespace grid_column {
inline constexpr int Step = 0, GCode = 1, Dx = 2, Dy = 3, Dz = 4, IPM_D = 5, IPM_S = 6, IPM_R = 7,
                     IPM_E = 8, Hz_X = 9, Hz_Y = 10, Hz_Z = 11, Status_1 = 12, Status_2 = 13,
                     Status_3 = 14, Description_1 = 15, Description_2 = 16, Description_3 = 17,
                     Count = 18;
}

enum class Check_Result : std::uint8_t {
  Not_Checked,
  Ok,
  Bad,
  No_Move,  // check 3 is for moves only
};

struct Row_Checks {
  Check_Result Of[3] = {};
  bool Is_Error() const {
    return Of[0] == Check_Result::Bad || Of[1] == Check_Result::Bad || Of[2] == Check_Result::Bad;
  }
};

struct frmMotionAnalyzer_Record {
  std::string Caption = "GCode Motion Analyzer";
  std::string File;  // the wire file that is shown; empty: none
  Table<Wire> Wires;
  std::vector<Row_Checks> Checks;  // one for each record
  std::int32_t RecordCount = 0, ErrorCount = 0;
  std::vector<std::int32_t> Errors;  // rows with an error, in their order
  // Speed that the last check of a corner allowed; absent: it could not be told.
  std::optional<double> Allowed;
  // Of the rows that end too fast: row and speed allowed, in their order.
  std::vector<std::pair<std::int32_t, double>> Too_Fast;
  bool Edited = false;       // rows differ from the file
  bool Only_Errors = false;  // the grid shows `Errors` alone
  bool Busy = false;         // the checks run
  // Of the file as it was read; absent: there was none.
  std::optional<std::filesystem::file_time_type> Modified;
};
extern frmMotionAnalyzer_Record frmMotionAnalyzer;

// What the logic asks of the window and the rooms above. Each does nothing by default.
struct Motion_Analyzer_Host_Operations {
  std::function<void()> Data_Changed = [] {};  // other records or other results
  std::function<void()> Caption_Changed = [] {};
  // May the executing table be replaced now? Tells the operator why not.
  std::function<bool()> May_Replace_Table = [] { return true; };
  // A row was chosen: its step in the plot, its line in the program.
  std::function<void(std::int32_t step, std::string_view text)> Show_Step = [](std::int32_t,
                                                                               std::string_view) {};
};
extern Motion_Analyzer_Host_Operations Motion_Analyzer_Host;

// --- Data and checks -----------------------------------------------------------------------------

// Takes the records of a wire file without checking them. Raises a file fault as `Read_Wire_Table`
// does; what was shown before then stays.
void Load_Analyzer_File(const std::string& path);
// The same for records that are in no file of their own.
void Take_Analyzer_Wires(Table<Wire>&& wires);
// Fills the grid and runs the checks, with progress in panel 1 and yields. ESC leaves the rest
// unchecked.
void DisplayData();
// Counts the row and marks it.
void AddMotionError(std::int32_t row);
// True where the row ends no faster than the corner behind it allows; the speed that is allowed
// goes to `Allowed`. False for the last row and where it cannot be told, as with a CV angle of 0.
bool Check_Motion_Angle_vs_Velocity(std::int32_t row);

// --- The grid ------------------------------------------------------------------------------------

std::string_view Grid_Title(int column);
// Text of a cell with the region's decimal sign; blank for a row that does not exist.
std::string Grid_Cell(std::int32_t row, int column);
// Rows that the grid shows, and the record of each, both from 1.
std::int32_t Grid_Rows();
std::int32_t Grid_Record(std::int32_t grid_row);
// The next row with an error behind `row`, or before it; absent: none.
std::optional<std::int32_t> Next_Error(std::int32_t row);
std::optional<std::int32_t> Previous_Error(std::int32_t row);

// --- Handlers ------------------------------------------------------------------------------------

// Opens on the wire file of the program and checks it.
void frmMotionAnalyzer_Load();
void mnuOpen_Click();
// Writes the rows to the file, checks them again and makes them the executing table. Refused while
// the machine works and where the file is no longer the one that was read.
void mnuVerify_Click();
void mnuSave_Click();
// Writes the rows of the grid, one record a row, with a point in every region. Raises a file fault.
void SaveFile(const std::string& path);
// Asks for another text or speed of the cell and keeps it until it is verified.
void Grid1_DblClick(std::int32_t row, int column);
// The row that keys or the mouse have reached.
void Grid1_RowChange(std::int32_t row);

}  // namespace norvik
