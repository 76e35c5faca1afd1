// Motion files in the menu, the analyzer, and the lists of tools, macros and sounds.
#include "app/motion_menu.h"
#include "app/openers.h"
#include "core/recent_files.h"
#include "tools/macro_list.h"
#include "tools/motion_analyzer.h"
#include "tools/motion_file.h"
#include "tools/sound_list.h"
#include "tools/tool_list.h"
#include "ui/tools/speed_chart_view.h"
#include "ui/tools/tool_picture.h"
#include "ui_fixture.h"

#include <filesystem>

#include <QCheckBox>
#include <QListWidget>
#include <QMenu>
#include <QTableView>
#include <QTableWidget>
#include <QWheelEvent>

namespace norvik {
namespace {

using testing::HasSubstr;

struct List_Windows_Test : Ui_Test {
  List_Windows_Test() {
    Tools = {};
    Tool_Form = {};
    frmMotionAnalyzer = {};
    MachineSetup.Tool_File_Name = Folder.File("mill.tol");
  }
  QString Cell(const QString& view, int row, int column) {
    auto& table = Find<QTableView>(view);
    return table.model()->index(row, column).data().toString();
  }
  static QPoint Place_Of(QTableView& table, int row, int column) {
    return table.visualRect(table.model()->index(row, column)).center();
  }
  void Double_Click(const QString& view, int row, int column) {
    auto& table = Find<QTableView>(view);
    const QPoint place = Place_Of(table, row, column);
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, place);
  }
  // A line in ten pieces with a corner behind it that is taken too fast once a speed is changed.
  void Open_Line() {
    std::string text;
    for (int k = 1; k <= 10; ++k) text += "G1 X" + std::to_string(k) + "\n";
    Open("line.gc", text);
  }
  std::string Told() { return Text_Of("Panel_1").toStdString(); }
};

TEST_F(List_Windows_Test, A_Motion_File_Is_Saved_Opened_Drawn_And_Run) {
  MachineSetup.Motion_File_Any_Length = true;
  Open("square.gc", "G0 X0 Y0\nG1 X0.2\nG1 Y0.2\nG1 X0\nG1 Y0\n");
  const std::string path = Folder.File("square.mcd");
  scripted.Save_Answers.push_back(path);
  Choose("Menu_File_Save_Motion");
  ASSERT_TRUE(FileExists(path));
  EXPECT_EQ(scripted.Save_Dialogs.back().File_Name, "square.mcd");

  Open("other.gc", "G0 X9\nG0 X8\n");
  ASSERT_EQ(Program_Wire.Count(), 2U);
  scripted.Open_Answers.push_back(path);
  Choose("Menu_File_Open_Motion");
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Motion_File);
  EXPECT_EQ(Program_Wire.Count(), 5U);
  EXPECT_TRUE(Window->windowTitle().endsWith("square.mcd"));
  EXPECT_EQ(Text_Of("Text_EndingStep"), "5");
  EXPECT_THAT(Text_Of("Label_Table_Notice").toStdString(), HasSubstr("A motion file is drawn"));
  Click("Command_CNC_Play");
  EXPECT_THAT(Told(), HasSubstr("Machine Run Time"));
  EXPECT_NEAR(Machine.Position[1], 0, 1e-3);
  EXPECT_EQ(Controller.Steps_Executed, 5);

  // The text comes back with a compile, and its own range with it.
  Choose("Menu_Window_GCode");
  Command_Update_Click();
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Program);
  EXPECT_EQ(Machine.EndingStep, 2);
}

TEST_F(List_Windows_Test, A_Motion_File_Opens_Like_Any_File_And_Not_While_The_Machine_Runs) {
  MachineSetup.Motion_File_Any_Length = true;
  Open("a.gc", "G0 X1\nG0 X2\n");
  scripted.Save_Answers.push_back(Folder.File("a"));
  Choose("Menu_File_Save_Motion");
  Open("b.gc", "G0 X1\n");
  Machine.CNCMode = CNC_Running;
  Choose("Menu_File_Open_Motion");
  LoadRecentFile(Folder.File("a.mcd"));
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Program);
  Machine.CNCMode = CNC_Stopped;
  LoadRecentFile(Folder.File("a.mcd"));
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Motion_File);
  EXPECT_EQ(Recent.RecentFiles[1], Folder.File("a.mcd"));
  // Another program takes its place, compiled or not.
  MachineSetup.Plot_Auto_Loading = 0;
  Open("c.gc", "G0 X7\n");
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Other_Text);
}

TEST_F(List_Windows_Test, A_Text_Newer_Than_The_Table_Is_Asked_About_Before_It_Is_Saved) {
  Open("a.gc", "G0 X1\n");
  QTest::keyClicks(&Find("Text_GCode"), "G0 X5");
  scripted.Answer_Box(Box_Answer::Cancel);
  Choose("Menu_File_Save_Motion");
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("The text has changed"));
  EXPECT_TRUE(scripted.Save_Dialogs.empty());
}

TEST_F(List_Windows_Test, The_Analyzer_Stands_In_The_Menu_As_The_Setup_Says) {
  auto* entry = &Find<QAction>("Menu_Window_frmMotionAnalyzer");
  auto* menu = qobject_cast<QMenu*>(entry->associatedObjects().value(0));
  ASSERT_NE(menu, nullptr);
  emit menu->aboutToShow();
  EXPECT_FALSE(entry->isVisible());
  MachineSetup.Motion_Analyzer_Enable = 1;
  emit menu->aboutToShow();
  EXPECT_TRUE(entry->isVisible());
  Open_Line();  // shows it behind the compile
  EXPECT_TRUE(Window->Tool_Window_Is_Open("frmMotionAnalyzer"));
  EXPECT_EQ(Find<QTableView>("Grid1").model()->rowCount(), 10);
  Open("short.gc", "G1 X1\nG1 X2\n");
  EXPECT_EQ(Find<QTableView>("Grid1").model()->rowCount(), 2);
}

TEST_F(List_Windows_Test, The_Analyzer_Marks_Errors_Finds_Them_And_Writes_What_Is_Changed) {
  Open_Line();
  Choose("Menu_Window_frmMotionAnalyzer");
  EXPECT_EQ(Told(), "0 Errors");
  EXPECT_EQ(Cell("Grid1", 9, grid_column::Status_1), "not checked");
  const QString speed = Cell("Grid1", 4, grid_column::IPM_S);
  scripted.Input_Answers = {"1.25"};
  Double_Click("Grid1", 4, grid_column::IPM_S);
  EXPECT_EQ(Cell("Grid1", 4, grid_column::IPM_S), "1.3");
  Click("mnuVerify");
  EXPECT_EQ(Told().substr(0, 8), "1 Errors");
  EXPECT_EQ(Program_Wire.Rows()[4].IPM_S, 1.25F);

  auto& grid = Find<QTableView>("Grid1");
  EXPECT_EQ(grid.currentIndex().row(), 4) << "edit and check leave the row where it was";
  grid.setCurrentIndex(grid.model()->index(0, 0));
  QTest::keyClick(&grid, Qt::Key_F7);
  EXPECT_EQ(grid.currentIndex().row(), 4);
  EXPECT_EQ(Find("frmMotionAnalyzer").windowTitle(), "5 of 10");
  Find<QCheckBox>("Check_Only_Errors").setChecked(true);
  EXPECT_EQ(grid.model()->rowCount(), 1);
  EXPECT_EQ(Cell("Grid1", 0, grid_column::Description_1), "IPM_S <> IMP_E(previous move)");
  Click("Command_Next_Error");
  EXPECT_EQ(Told(), "No error behind this row.");
  EXPECT_NE(speed, "1.3");
}

TEST_F(List_Windows_Test, The_Chart_Zooms_Drags_Chooses_And_Holds) {
  Open_Line();
  Choose("Menu_Window_frmMotionAnalyzer");
  auto& chart = Find<Speed_Chart_View>("Picture_Speeds");
  auto& grid = Find<QTableView>("Grid1");
  EXPECT_NEAR(chart.Shown().To(), 10, 1e-9);
  const QPoint middle = chart.rect().center();
  QTest::mouseClick(&chart, Qt::LeftButton, {}, middle);
  EXPECT_NEAR(grid.currentIndex().row(), 4, 1);
  QWheelEvent wheel(middle, chart.mapToGlobal(middle), {}, {0, 480}, {}, {}, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(&chart, &wheel);
  const double from = chart.Shown().From(), to = chart.Shown().To();
  EXPECT_NEAR(to - from, 10 / std::pow(1.25, 4), 1e-6);
  QTest::mousePress(&chart, Qt::LeftButton, {}, middle);
  QTest::mouseMove(&chart, middle + QPoint(50, 0));
  QTest::mouseRelease(&chart, Qt::LeftButton, {}, middle + QPoint(50, 0));
  EXPECT_LT(chart.Shown().From(), from);
  Find<QCheckBox>("Check_Hold").setChecked(true);
  const double held = chart.Shown().From();
  grid.setCurrentIndex(grid.model()->index(9, 0));
  EXPECT_EQ(chart.Shown().From(), held);
  Find<QCheckBox>("Check_Hold").setChecked(false);
  grid.setCurrentIndex(grid.model()->index(0, 0));
  grid.setCurrentIndex(grid.model()->index(9, 0));
  EXPECT_NE(chart.Shown().From(), held);
  Click("Command_Show_All");
  EXPECT_NEAR(chart.Shown().To(), 10, 1e-9);
}

TEST_F(List_Windows_Test, A_Tool_Is_Given_In_Its_Cell_Or_A_Box_Found_And_Saved) {
  Open("tools.gc", "T3 M6\nG1 X1\n");
  Choose("Menu_Window_Tool");
  auto& list = Find<QTableView>("List_Tools");
  EXPECT_EQ(list.model()->rowCount(), 200);
  EXPECT_EQ(Cell("List_Tools", 2, tool_column::Used), "used");
  EXPECT_EQ(Cell("List_Tools", 3, tool_column::Used), "");
  EXPECT_TRUE(list.model()->setData(list.model()->index(2, tool_column::Diameter), "0.25"));
  EXPECT_EQ(Tools.Diameter[3], 0.25);
  scripted.Input_Answers = {"-1.5"};
  Double_Click("List_Tools", 2, tool_column::Offset);
  EXPECT_EQ(Cell("List_Tools", 2, tool_column::Offset), "-1.5");
  list.setCurrentIndex(list.model()->index(100, 1));
  QTest::keyClicks(&Find("Text_Find_Diameter"), "0,2");
  QTest::keyClick(&Find("Text_Find_Diameter"), Qt::Key_Return);
  EXPECT_EQ(list.currentIndex().row(), 2);
  EXPECT_TRUE(Text_Of("Label_Note").contains("modified and not saved"));
  scripted.Answer_Box(Box_Answer::Yes);
  Click("Command_OK");
  EXPECT_FALSE(Window->Tool_Window_Is_Open("Tool"));
  EXPECT_THAT(Read_Whole_File(MachineSetup.Tool_File_Name), HasSubstr("\r\n0.25,-1.5\r\n"));
}

TEST_F(List_Windows_Test, A_Tool_Is_Drawn_At_The_Largest_Round_Scale_That_Fits) {
  EXPECT_EQ(Picture_Scale(96, 100), 1);
  EXPECT_EQ(Picture_Scale(12, 100), 5);
  EXPECT_EQ(Picture_Scale(1000, 100), 0.1);
  EXPECT_EQ(Picture_Scale(0, 100), 1);
}

TEST_F(List_Windows_Test, Macros_Are_Assigned_Shown_And_Kept_When_The_Window_Closes) {
  Open("calls.gc", "M98 5\nM98 7\n");
  const std::string file = Write_Program("five.gc", "G0 X1\n");
  Choose("Menu_Window_MacroFiles");
  auto& list = Find<QTableWidget>("List_Macros");
  EXPECT_EQ(list.item(7, 2)->text(), "called, no file");
  list.setCurrentCell(5, 1);
  scripted.Open_Answers.push_back(file);
  Click("Command_Add");
  EXPECT_EQ(list.item(5, 1)->text().toStdString(), file);
  EXPECT_EQ(Text_Of("Text_First_Lines"), "G0 X1\n");
  Find("MacroFiles").findChild<QPushButton*>("Command_Close")->click();
  EXPECT_FALSE(Window->Tool_Window_Is_Open("MacroFiles"));
  EXPECT_EQ(ReadSetup("Macros", "MacroFile5"), file);
}

TEST_F(List_Windows_Test, Sounds_Are_Taken_Played_And_Silenced) {
  Choose("Menu_Window_Event_Sounds");
  auto& list = Find<QListWidget>("List_Sounds");
  ASSERT_EQ(list.count(), 9);
  Click("Command_Own_Sounds");
  EXPECT_TRUE(list.item(5)->text().endsWith("Sounds/estop.wav"));
  scripted.Sounds.clear();
  QTest::mouseClick(list.viewport(), Qt::RightButton, {},
                    list.visualItemRect(list.item(5)).center());
  ASSERT_EQ(scripted.Sounds.size(), 1U);
  EXPECT_TRUE(scripted.Sounds[0].ends_with("estop.wav"));
  list.setCurrentRow(5);
  Find("Event_Sounds").findChild<QPushButton*>("Command_Delete")->click();
  EXPECT_EQ(MachineSetup.Sound_Files[5], "Disabled");
}

TEST_F(List_Windows_Test, No_Box_Opens_While_The_Machine_Moves) {
  Open_Line();
  for (const char* name : {"Tool", "MacroFiles", "Event_Sounds", "frmMotionAnalyzer"}) {
    Choose(QString("Menu_Window_") + name);
  }
  const auto boxes = scripted.Boxes.size() + scripted.Open_Dialogs.size();
  bool tried = false;
  In_Yield_When([] { return Machine.Position[1] > 0.1; },
                [&] {
                  tried = true;
                  List_Tools_DblClick(1, tool_column::Diameter);
                  Tool_Command_Load_Click();
                  Tool_Command_Save_Click();
                  Tool_Command_Clear_Click();
                  MacroFiles_Command_Add_Click();
                  MacroFiles_Command_Index_Click();
                  MacroFiles_Print_Data();
                  List_Sounds_DblClick(0);
                  mnuOpen_Click();
                  mnuSave_Click();
                  mnuVerify_Click();
                  Grid1_DblClick(1, grid_column::IPM_S);
                  Menu_File_Open_Motion();
                  Menu_File_Save_Motion();
                });
  Type_Goto("G01 X0.5");
  Click("Command_Goto");
  EXPECT_TRUE(tried);
  EXPECT_EQ(scripted.Boxes.size() + scripted.Open_Dialogs.size(), boxes);
  EXPECT_TRUE(scripted.Inputs.empty());
  EXPECT_TRUE(scripted.Save_Dialogs.empty());
}

}  // namespace
}  // namespace norvik
