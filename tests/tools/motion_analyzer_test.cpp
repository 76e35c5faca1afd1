// The three checks of the analyzer on wires made by hand, its grid, its files and its chart.
#include "tools/motion_analyzer.h"

#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/wires/feed_pass.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/geometry.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"
#include "tools/motion_file.h"
#include "tools/speed_chart.h"

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr float Start = 2, Feed = 10;

// A move in the plane from one point to another with its three speeds.
Wire Move(double x0, double y0, double x1, double y1, float s, float r, float e) {
  Wire wire;
  wire.Motion = 1;
  wire.Start = {{x0, y0, 0}};
  wire.End = {{x1, y1, 0}};
  wire.IPM_D = Feed;
  wire.IPM_S = s;
  wire.IPM_R = r;
  wire.IPM_E = e;
  return wire;
}

struct Analyzer_Test : testing::Test {
  Analyzer_Test() {
    Forget();
    Application.Table_Folder = Application.AppDirectory = Folder.Path;
    Application.ErrorFile = Folder.File("errors.txt");
    MachineSetup.Axis_SPI.Fill(4000);
    MachineSetup.Axis_Ramp_Start = Start;
    MachineSetup.Axis_Ramp_Rate = 10;
    MachineSetup.Axis_CV_MotionAngle = 45;
    MachineSetup.Axis_Max_Feed_Rate.Fill(60);
  }
  ~Analyzer_Test() override {
    Forget();
    Motion_Analyzer_Host = {};
    Program_Wire_Host = {};
  }
  static void Forget() { Reset_Tools(); }
  // Checked as a table of these wires and an end that is only looked at.
  void Check(const std::vector<Wire>& wires) {
    Table<Wire> table;
    std::int32_t step = 0;
    for (Wire wire : wires) {
      wire.Step = ++step;
      table.Rows.push_back(wire);
    }
    Take_Analyzer_Wires(std::move(table));
    DisplayData();
  }
  static std::string Status(std::int32_t row) {
    std::string text;
    for (int n = 0; n < 3; ++n) {
      text += (n > 0 ? " " : "") + Grid_Cell(row, grid_column::Status_1 + n);
    }
    return text;
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

TEST_F(Analyzer_Test, A_Straight_Chain_Is_Good_And_The_Last_Row_Is_Only_Shown) {
  Check({Move(0, 0, 1, 0, 2, 10, 10), Move(1, 0, 2, 0, 10, 10, 10), Move(2, 0, 3, 0, 10, 10, 2)});
  EXPECT_EQ(Status(1), "OK OK OK");
  EXPECT_EQ(Status(2), "OK OK OK");
  EXPECT_EQ(Status(3), "not checked not checked not checked");
  EXPECT_EQ(Grid_Cell(1, grid_column::Description_3), "--");
  EXPECT_EQ(Messages.Panel[1], "0 Errors");
  EXPECT_EQ(scripted.Beeps, 0);
}

// The corner of 22.5 degrees is half of 45: half way from the feed of 10 down to 2.
TEST_F(Analyzer_Test, The_Speed_At_A_Corner_Is_Held_Against_What_Its_Angle_Allows) {
  const double x = 1 + std::cos(22.5 * 3.14159265358979 / 180),
               y = std::sin(22.5 * 3.14159265358979 / 180);
  struct Row {
    double X, Y;
    float End;
    const char *Status, *Description;
  };
  const Row rows[] = {
      {2, 0, 10.009F, "OK", "--"},
      {2, 0, 10.011F, "Bad", "Ending Velocity too High. IPM_E 10.0 >> 10.0"},
      {x, y, 6.009F, "OK", "--"},
      {x, y, 6.02F, "Bad", "Ending Velocity too High. IPM_E 6.0 >> 6.0"},
      {1, 1, 2, "OK", "--"},
      {1, 1, 2.5F, "Bad", "Ending Velocity too High. IPM_E 2.5 >> 2.0"},  // sharper than 45
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.End);
    scripted.Beeps = 0;
    Check({Move(0, 0, 1, 0, 2, 10, row.End), Move(1, 0, row.X, row.Y, row.End, 10, 2)});
    EXPECT_EQ(Grid_Cell(1, grid_column::Status_3), row.Status);
    EXPECT_EQ(Grid_Cell(1, grid_column::Description_3), row.Description);
    EXPECT_EQ(scripted.Beeps, std::string(row.Status) == "Bad" ? 1 : 0);
  }
}

TEST_F(Analyzer_Test, The_Corner_Is_That_With_The_Next_Move_Over_Commands) {
  Wire command;
  command.Dwell = 1;
  Check({Move(0, 0, 1, 0, 2, 10, 2.5F), command, Move(1, 0, 1, 1, 2, 10, 2), Wire()});
  EXPECT_EQ(Status(1), "OK OK Bad");
  EXPECT_EQ(Status(2), "OK OK --");
  EXPECT_EQ(Grid_Cell(2, grid_column::Description_3), "--");
}

TEST_F(Analyzer_Test, A_Move_Begins_As_The_One_Before_It_Ends_Unless_A_Command_Stands_Between) {
  Check({Move(0, 0, 1, 0, 2, 10, 10), Move(1, 0, 2, 0, 9, 10, 10), Wire(),
         Move(2, 0, 3, 0, 2, 10, 2), Wire()});
  EXPECT_EQ(Status(2), "Bad OK OK");
  EXPECT_EQ(Grid_Cell(2, grid_column::Description_1), "IPM_S <> IMP_E(previous move)");
  EXPECT_EQ(Status(4), "OK OK OK");
  EXPECT_EQ(frmMotionAnalyzer.ErrorCount, 1);
  EXPECT_EQ(Messages.Panel[1], "1 Errors");
}

// 4 steps of 0.001 units cannot take a ramp from 2 to 60 IPM: 58 x 4000 / 60 / 10 are 386 steps.
TEST_F(Analyzer_Test, Speeds_That_Do_Not_Fit_Into_The_Steps_Are_Invalid) {
  Check({Move(0, 0, 0.001, 0, 2, 60, 2), Move(0.001, 0, 1, 0, 2, 10, 2), Wire()});
  EXPECT_EQ(Status(1), "OK Bad OK");
  EXPECT_EQ(Grid_Cell(1, grid_column::Description_2), "Invalid motion parameters");
  EXPECT_EQ(Status(2), "OK OK OK");
}

TEST_F(Analyzer_Test, What_The_Planner_Makes_Has_No_Error_That_It_Would_Not_Make) {
  Table<Wire> table;
  double x = 0, y = 0;
  for (int k = 0; k < 400; ++k) {
    const double to_x = x + 0.05 * std::cos(k * 0.02), to_y = y + 0.05 * std::sin(k * 0.02);
    table.Rows.push_back(Move(x, y, to_x, to_y, Feed, Feed, Feed));
    x = to_x;
    y = to_y;
  }
  Plan_Rates(table.Rows);
  Take_Analyzer_Wires(std::move(table));
  const Corner_Angle_State before = Corner_Angle_Memory;
  DisplayData();
  EXPECT_EQ(frmMotionAnalyzer.ErrorCount, 0);
  EXPECT_EQ(Corner_Angle_Memory.Cosine, before.Cosine);  // the planner's own memory
}

TEST_F(Analyzer_Test, An_Angle_Of_0_In_The_Setup_Is_Logged_A_Hundred_Times_And_No_More) {
  MachineSetup.Axis_CV_MotionAngle = 0;
  std::vector<Wire> wires;
  for (int k = 0; k < 150; ++k) wires.push_back(Move(k, 0, k + 1, 0, 10, 10, 10));
  Check(wires);
  EXPECT_EQ(frmMotionAnalyzer.ErrorCount, 149);
  EXPECT_EQ(Split_Lines(Read_Whole_File(Application.ErrorFile)).size(), 100U);
  EXPECT_THAT(Grid_Cell(1, grid_column::Description_3), HasSubstr("Axis_CV_MotionAngle is 0"));
}

// 3 of 5 units are X, at 10 IPM and 4000 steps a unit: 0.6 x 10 / 60 x 4000.
TEST_F(Analyzer_Test, The_Grid_Shows_Ways_Speeds_And_Step_Rates) {
  Wire wire = Move(0, 0, 3, -4, 2, 10, 2);
  wire.End[3] = wire.Start[3] = Nullable();
  wire.Block_Text = "G1 X3 Y-4";
  Check({wire, Wire()});
  std::vector<std::string> cells;
  for (int column = 0; column <= grid_column::Hz_Z; ++column) cells.push_back(Grid_Cell(1, column));
  EXPECT_THAT(cells, ElementsAre("1", "G1 X3 Y-4", "3.00", "4.00", ".00", "10.0", "2.0", "10.0",
                                 "2.0", "400", "533", "0"));
  Application.DecimalSeparator = ',';
  EXPECT_EQ(Grid_Cell(1, grid_column::Dx), "3,00");
  EXPECT_EQ(Grid_Cell(3, grid_column::Dx), "");
  EXPECT_EQ(Grid_Cell(1, grid_column::Count), "");
  // Files have points.
  SaveFile(Folder.File("rows.csv"));
  const auto lines = Split_Lines(Read_Whole_File(Folder.File("rows.csv")));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0],
            "1,\"G1 X3 Y-4\",3.00,4.00,.00,10.0,2.0,10.0,2.0,400,533,0,\"OK\",\"OK\",\"OK\",\"--\","
            "\"--\",\"--\"");
}

TEST_F(Analyzer_Test, Errors_Are_Found_By_A_Key_And_Shown_Alone) {
  std::vector<Wire> wires(12);
  wires[3] = Move(0, 0, 1, 0, 2, 10, 10);
  wires[4] = Move(1, 0, 2, 0, 9, 10, 10);     // row 5
  wires[8] = Move(0, 0, 1e-3, 0, 2, 60, 60);  // row 9
  Check(wires);
  ASSERT_THAT(frmMotionAnalyzer.Errors, ElementsAre(5, 9));
  EXPECT_EQ(Next_Error(0), 5);
  EXPECT_EQ(Next_Error(5), 9);
  EXPECT_EQ(Next_Error(9), std::nullopt);
  EXPECT_EQ(Previous_Error(9), 5);
  EXPECT_EQ(Previous_Error(5), std::nullopt);
  EXPECT_EQ(Grid_Rows(), 12);
  frmMotionAnalyzer.Only_Errors = true;
  EXPECT_EQ(Grid_Rows(), 2);
  EXPECT_EQ(Grid_Record(2), 9);
  std::int32_t shown = 0;
  Motion_Analyzer_Host.Show_Step = [&](std::int32_t step, std::string_view) { shown = step; };
  Grid1_RowChange(9);
  EXPECT_EQ(shown, 9);
  EXPECT_EQ(frmMotionAnalyzer.Caption, "9 of 12");
}

TEST_F(Analyzer_Test, ESC_Leaves_The_Rest_Unchecked_And_A_Second_Check_Does_Not_Begin_Within) {
  std::vector<Wire> wires;
  for (int k = 0; k < 500; ++k) wires.push_back(Move(k, 0, k + 1, 0, 10, 10, 10));
  scripted.On_Yield = [&] {
    DisplayData();
    frmMotionAnalyzer_Load();
    Application.EscFlag = true;
  };
  Check(wires);
  EXPECT_EQ(scripted.Yields, 1);
  EXPECT_EQ(Status(100), "OK OK OK");
  EXPECT_EQ(Status(101), "not checked not checked not checked");
  EXPECT_EQ(Messages.Panel[1], "0 Errors, cut short");
  EXPECT_FALSE(Application.EscFlag);
  scripted.On_Yield = {};
  Application.EscFlag = true;  // of a press before the next check
  DisplayData();
  EXPECT_EQ(Status(101), "OK OK OK");
}

struct Analyzer_File_Test : Analyzer_Test {
  void Write_Program() {
    Table<Wire> table;
    table.Rows.push_back(Move(0, 0, 1, 0, 2, 10, 10));
    table.Rows.push_back(Move(1, 0, 2, 0, 9, 10, 2));
    table.Rows.push_back(Wire());
    Write_Wire_Table(Program_Wire_File(), table);
    Install_Table(std::move(table));
  }
};

TEST_F(Analyzer_File_Test, An_Edit_Is_Verified_Into_File_And_Executing_Table) {
  Write_Program();
  frmMotionAnalyzer_Load();
  EXPECT_EQ(frmMotionAnalyzer.ErrorCount, 1);
  scripted.Input_Answers = {"G1 X2 (slower)", "10,0", "fast", "1"};
  Grid1_DblClick(2, grid_column::GCode);
  Grid1_DblClick(2, grid_column::IPM_S);
  Grid1_DblClick(2, grid_column::IPM_R);  // is no speed
  Grid1_DblClick(2, grid_column::Dx);     // asks nothing
  EXPECT_EQ(scripted.Inputs.size(), 3U);
  EXPECT_EQ(scripted.Inputs[0].Title, "Data Entry");
  EXPECT_EQ(Read_Wire_Table(Program_Wire_File()).Rows[1].IPM_S, 9);  // not yet
  mnuVerify_Click();
  const Table<Wire> written = Read_Wire_Table(Program_Wire_File());
  EXPECT_EQ(written.Rows[1].IPM_S, 10);
  EXPECT_EQ(written.Rows[1].IPM_R, 10);
  EXPECT_EQ(written.Rows[1].Block_Text, "G1 X2 (slower)");
  EXPECT_EQ(Program_Wire.Rows()[1].IPM_S, 10);
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Program);
  EXPECT_EQ(frmMotionAnalyzer.ErrorCount, 0);
}

TEST_F(Analyzer_File_Test, A_File_That_Has_Changed_Or_Gone_Is_Not_Overwritten) {
  Write_Program();
  frmMotionAnalyzer_Load();
  const auto later = std::filesystem::last_write_time(Program_Wire_File()) + std::chrono::hours(1);
  std::filesystem::last_write_time(Program_Wire_File(), later);
  const std::string before = Read_Whole_File(Program_Wire_File());
  scripted.Input_Answers = {"3"};
  Grid1_DblClick(1, grid_column::IPM_S);
  mnuVerify_Click();
  EXPECT_THAT(Messages.Panel[1], HasSubstr("not the one that was read"));
  EXPECT_EQ(Read_Whole_File(Program_Wire_File()), before);
  std::filesystem::remove(Program_Wire_File());
  mnuVerify_Click();
  EXPECT_FALSE(FileExists(Program_Wire_File()));
  // Rows that were read stay to be looked at; a load says that there is no file.
  EXPECT_EQ(Grid_Cell(2, grid_column::Status_1), "Bad");
  frmMotionAnalyzer_Load();
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("frmMotionAnalyzer_Load_Error"));
  EXPECT_EQ(frmMotionAnalyzer.RecordCount, 3);
}

TEST_F(Analyzer_File_Test, Nothing_Is_Replaced_While_The_Machine_Works) {
  Write_Program();
  frmMotionAnalyzer_Load();
  Motion_Analyzer_Host.May_Replace_Table = [] { return false; };
  Program_Wire.Rows()[0].IPM_R = 7;
  mnuVerify_Click();
  EXPECT_EQ(Program_Wire.Rows()[0].IPM_R, 7);
}

TEST(Speed_Chart_Test, Shows_A_Section_Of_The_Way_With_Few_Points) {
  Record_List<Wire> wires;
  for (int k = 0; k < 10'000; ++k) {
    wires.push_back(Move(k, 0, k + 1, 0, 1, k == 5000 ? 99 : 10, 1));
    wires.push_back(Wire());
  }
  Speed_Chart chart;
  chart.Take(wires);
  EXPECT_EQ(chart.Length(), 10'000);
  EXPECT_EQ(chart.Fastest(), 99);
  const auto all = chart.Points(wires, Speed_Chart::Line::IPM_R, 100);
  EXPECT_LE(all.size(), 4U * 101);
  EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const auto& p) { return p.Speed == 99; }));

  chart.Zoom(5000, 1000);  // ten units around the middle
  EXPECT_NEAR(chart.From(), 4995, 1e-6);
  EXPECT_NEAR(chart.To(), 5005, 1e-6);
  EXPECT_EQ(chart.Row_At(5000.5), 10'001);
  const auto few = chart.Points(wires, Speed_Chart::Line::IPM_E, 1000);
  EXPECT_NEAR(static_cast<double>(few.size()), 11, 1);
  chart.Move_By(-6000);  // not beyond the start
  EXPECT_EQ(chart.From(), 0);
  chart.Follow(4001);
  EXPECT_LE(chart.From(), 2000);
  EXPECT_GE(chart.To(), 2001);
  chart.Held = true;
  const double held = chart.From();
  chart.Follow(1);
  chart.Take(wires);
  EXPECT_EQ(chart.From(), held);
  chart.Held = false;
  chart.Take({});
  EXPECT_TRUE(chart.Points({}, Speed_Chart::Line::IPM_S, 100).empty());
  chart.Zoom(0, 2);
  chart.Move_By(1);
  EXPECT_EQ(chart.Row_At(1), 0);
}

}  // namespace
}  // namespace norvik
