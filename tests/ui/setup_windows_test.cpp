// The windows of the menu Machine and the group Timing: calibrating, wiring, looking, assigning.
#include "control/displays/displays.h"
#include "control/manual/table_setup_keys.h"
#include "control/safety/machine_check.h"
#include "core/corrections.h"
#include "core/operation.h"
#include "drive/drive.h"
#include "parallel/pin_map.h"
#include "parallel/port_setup.h"
#include "parallel/system_timing.h"
#include "parallel/timing.h"
#include "simulate/board/board.h"
#include "simulate/board_port.h"
#include "ui_fixture.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QTableWidget>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Setup_Windows_Test : Ui_Test {
  // Opens a window of the menu Machine.
  QWidget& Opened(const QString& name) {
    Choose("Menu_Machine_" + name);
    QCoreApplication::processEvents();
    return Find(name);
  }
  template <class Kind>
  static Kind& In(QWidget& window, const QString& name) {
    Kind* found = window.findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error("No widget " + name.toStdString());
    return *found;
  }
  static void Press(QWidget& window, const QString& name) {
    QTest::mouseClick(&In<QAbstractButton>(window, name), Qt::LeftButton);
  }
  std::string Told() { return Text_Of("Panel_1").toStdString(); }

  // Calls `action` in a yield of a move of the machine.
  void While_Moving(std::function<void()> action) {
    bool called = false;
    In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.1; },
                  [&] {
                    action();
                    called = true;
                  });
    Type_Goto("G01 X0.5");
    Click("Command_Goto");
    EXPECT_TRUE(called);
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
  }

  // A setup that surprises nobody.
  static void Make_Harmless() {
    auto& setup = MachineSetup;
    setup.Axis_SPI.Fill(3000);
    setup.Axis_Max_Feed_Rate.Fill(100);
    setup.Axis_Ramp_Rate = 2;
    setup.Parallel_Time_Constant = 12;
    setup.E_Stop_Output_Disable = true;
    setup.LimitSwitchDisable = 0;
    setup.LimitDisableinRunMode = 1;
    setup.Parallel_MotorEnable_Option = 2;
    setup.Validate_Home_Position = false;
    Take_Corrections(Correction_Set::As_The_System_Was);
  }
};

// --- Timing on the panel -------------------------------------------------------------------------

TEST_F(Setup_Windows_Test, The_Panel_Changes_And_Keeps_The_Time_Constant_And_Autotune) {
  Click("Command_TC_Adjust_0");
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 2);
  EXPECT_EQ(Text_Of("Label_Time_Constant"), "2");
  Click("Command_TC_Adjust_1");
  scripted.Input_Answers = {"37", "fast"};
  QTest::mouseClick(&Find("Label_Time_Constant"), Qt::LeftButton);
  EXPECT_EQ(Text_Of("Label_Time_Constant"), "37");
  QTest::mouseClick(&Find("Label_Time_Constant"), Qt::LeftButton);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 37);
  EXPECT_THAT(Told(), HasSubstr("\"fast\" is no number"));
  Find<QCheckBox>("Check_FeedRate_Autotune").click();
  EXPECT_TRUE(Timing.FeedRate_Autotune);
  Start_Again();
  EXPECT_TRUE(Find<QCheckBox>("Check_FeedRate_Autotune").isChecked());
  EXPECT_TRUE(Timing.FeedRate_Autotune);
  EXPECT_TRUE(Find("Label_Time_Constant").isVisible());
  MachineSetup.Parallel_Port_Type = 2;  // a board makes its own time
  scripted.Run_For(1);
  EXPECT_FALSE(Find("Label_Time_Constant").isVisible());
}

TEST_F(Setup_Windows_Test, The_Panel_Finds_The_Time_Constant_Without_Moving_The_Machine) {
  MachineSetup.Parallel_Time_Constant = 30;
  Click("Command_TC_Adjust_1");
  bool seen = false, tuned = false;
  scripted.On_Yield = [&] {
    QCoreApplication::processEvents();
    seen = seen || Text_Of("Command_Get_Time_Constant") == "Cancel";
    tuned = tuned || (Runs(Operation::Calibration) && Text_Of("Label_Time_Constant").toInt() < 20);
    if (!Runs(Operation::Calibration)) return;
    EXPECT_THAT(Told(), HasSubstr("press ESC to cancel"));
  };
  Click("Command_Get_Time_Constant");
  EXPECT_TRUE(seen && tuned);
  EXPECT_EQ(Text_Of("Command_Get_Time_Constant"), "Find");
  EXPECT_LT(MachineSetup.Parallel_Time_Constant, 10);  // delays alone take time here
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"),
            std::to_string(MachineSetup.Parallel_Time_Constant));
  EXPECT_THAT(Told(), HasSubstr("Time constant found"));
  EXPECT_EQ(True_Position(2), 0);
}

TEST_F(Setup_Windows_Test, A_Calibration_Ends_By_Its_Button_And_By_The_EStop_And_Waits_For_A_Move) {
  for (const char* button : {"Command_Get_Time_Constant", "Command_EStop"}) {
    SCOPED_TRACE(button);
    MachineSetup.Parallel_Time_Constant = 400;
    In_Yield_When([] { return Runs(Operation::Calibration); }, [&] { Click(button); });
    Click("Command_Get_Time_Constant");
    EXPECT_FALSE(Runs(Operation::Calibration));
    EXPECT_GT(MachineSetup.Parallel_Time_Constant, 390);
    EXPECT_THAT(Told(), HasSubstr("Cancelled"));
  }
  Click("Command_EStop");
  MachineSetup.Parallel_Time_Constant = 1;
  While_Moving([&] {
    Click("Command_Get_Time_Constant");
    EXPECT_FALSE(Runs(Operation::Calibration));
    EXPECT_THAT(Told(), HasSubstr("Can't find the time constant while CNC running"));
  });
  EXPECT_NEAR(True_Position(1), 0.5, 1e-3);
}

// --- System_Timing -------------------------------------------------------------------------------

TEST_F(Setup_Windows_Test, The_Timing_Window_Shows_The_Search_And_Puts_Back_What_Was_Cancelled) {
  MachineSetup.Parallel_Time_Constant = 30;
  QWidget& window = Opened("System_Timing");
  EXPECT_EQ(In<QLabel>(window, "Text_TimeConstant").text(), "30");
  auto& feed = In<QLineEdit>(window, "Text_FeedRate");
  feed.setText("20");
  int readings = 0;
  scripted.On_Yield = [&] {
    QCoreApplication::processEvents();
    if (!Runs(Operation::Calibration) || In<QLabel>(window, "Text_TimeConstant").text() == "30")
      return;
    EXPECT_FALSE(In<QPushButton>(window, "Command_Start").isEnabled());
    EXPECT_EQ(In<QLabel>(window, "Label_Actual_FeedRate").text().toStdString(),
              System_Timing.Label_Actual_FeedRate);
    if (++readings == 4) Press(window, "Command_Cancel");
  };
  Press(window, "Command_Start");
  EXPECT_EQ(readings, 4);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 30);
  EXPECT_EQ(Text_Of("Command_Start"), "Start");
  EXPECT_EQ(feed.text(), "20.00");
  EXPECT_EQ(Controller.Live_Feed, MachineSetup.Axis_Feed_Rate_Cut);

  scripted.On_Yield = [] { QCoreApplication::processEvents(); };
  Press(window, "Command_Start");
  EXPECT_EQ(In<QPushButton>(window, "Command_Start").text(), "Done");
  EXPECT_EQ(In<QPushButton>(window, "Command_Cancel").text(), "OK");
  EXPECT_THAT(In<QLabel>(window, "Label_Result").text().toStdString(), HasSubstr("found"));
  Press(window, "Command_Cancel");
  EXPECT_FALSE(Window->Tool_Window_Is_Open("System_Timing"));
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"),
            std::to_string(MachineSetup.Parallel_Time_Constant));
  EXPECT_EQ(In<QPushButton>(Opened("System_Timing"), "Command_Start").text(), "Start");
}

TEST_F(Setup_Windows_Test, A_Search_Whose_Window_Is_Closed_Is_Cancelled) {
  MachineSetup.Parallel_Time_Constant = 400;
  QWidget& window = Opened("System_Timing");
  In_Yield_When([] { return Runs(Operation::Calibration); },
                [&] { Frame_Of("System_Timing").close(); });
  Press(window, "Command_Start");
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 400);
}

// --- Machine_Check -------------------------------------------------------------------------------

TEST_F(Setup_Windows_Test, The_Machine_Check_Lists_What_It_Finds_And_Says_When_There_Is_Nothing) {
  Make_Harmless();
  MachineSetup.Axis_SPI[2] = 1500;
  MachineSetup.Axis_Backlash_Enable = true;
  QWidget& window = Opened("Machine_Check");
  auto& table = In<QTableWidget>(window, "List_Findings");
  const auto findings = Machine_Check();
  ASSERT_EQ(findings.size(), 2U);
  ASSERT_EQ(table.rowCount(), 2);
  for (int row = 0; row < 2; ++row) {
    const auto& finding = findings[static_cast<std::size_t>(row)];
    EXPECT_EQ(table.item(row, 0)->text().toStdString(), finding.Text);
    EXPECT_EQ(table.item(row, 1)->text().toStdString(), finding.Key);
    // The whole text is to be seen.
    const QRect needed = table.fontMetrics().boundingRect(
        QRect(0, 0, table.columnWidth(0), 10'000), Qt::TextWordWrap, table.item(row, 0)->text());
    EXPECT_GE(table.rowHeight(row), needed.height());
  }
  EXPECT_FALSE(In<QPushButton>(window, "Command_Copy_Key").isEnabled());
  table.selectRow(1);
  Press(window, "Command_Copy_Key");
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), findings[1].Key);

  Make_Harmless();
  MachineSetup.Axis_Backlash_Enable = false;
  Press(window, "Command_Refresh");
  EXPECT_EQ(table.rowCount(), 0);
  EXPECT_TRUE(In<QLabel>(window, "Label_Nothing_Found").isVisible());
}

TEST_F(Setup_Windows_Test, A_Finding_With_A_Correction_Switches_It_On) {
  Make_Harmless();
  MachineSetup.LimitDisableinRunMode = 0;  // a finding that no correction answers
  MachineSetup.Axis_Backlash_Enable = true;
  QWidget& window = Opened("Machine_Check");
  auto& table = In<QTableWidget>(window, "List_Findings");
  ASSERT_EQ(table.rowCount(), 2);
  auto& button = In<QPushButton>(window, "Command_Switch_Correction_On");
  for (int row = 1; row >= 0; --row) {
    table.selectRow(row);
    EXPECT_EQ(button.isEnabled(), table.item(row, 1)->text() == "Axis_Backlash_Enable");
  }
  Press(window, "Command_Switch_Correction_On");
  EXPECT_TRUE(MachineSetup.Backlash_Even);
  EXPECT_EQ(ReadSetup("Corrections", "Backlash_Even"), "True");
  EXPECT_EQ(table.rowCount(), 1);
}

// --- Port_Setup ----------------------------------------------------------------------------------

constexpr int Pin = 1, Port = 2, Bit = 3, Invert = 4, Name = 5;  // columns
constexpr int X_Step = 0, Output_1 = 12, EStop = 17;             // rows

TEST_F(Setup_Windows_Test, A_Pin_Fills_Port_And_Bit_And_Applied_It_Is_The_Setup) {
  QWidget& window = Opened("Port_Setup");
  auto& table = In<QTableWidget>(window, "Table_Pins");
  EXPECT_EQ(table.item(X_Step, Pin)->text(), "2");
  EXPECT_EQ(table.item(EStop, Port)->text(), "&H379");
  EXPECT_EQ(table.item(EStop, Invert)->checkState(), Qt::Checked);
  const auto editable = [&](int column) {
    return table.item(X_Step, column)->flags().testFlag(Qt::ItemIsEditable);
  };
  EXPECT_TRUE(!editable(Pin) && editable(Port) && editable(Bit));
  In<QRadioButton>(window, "Option_LPT_Setup_Type_2").click();
  EXPECT_TRUE(editable(Pin) && !editable(Port) && !editable(Bit));
  table.item(X_Step, Pin)->setText("14");
  EXPECT_EQ(table.item(X_Step, Port)->text(), "&H37A");
  EXPECT_EQ(table.item(X_Step, Bit)->text(), "1");
  table.item(Output_1, Name)->setText("Laser");
  table.item(Output_1, Invert)->setCheckState(Qt::Checked);
  auto& motors = In<QComboBox>(window, "Option_MotorEnable");
  EXPECT_FALSE(In<QComboBox>(window, "Combo_MotorEnable_Time").isEnabled());
  motors.setCurrentIndex(2);
  emit motors.activated(2);
  In<QComboBox>(window, "Combo_MotorEnable_Time").setEditText("120");
  EXPECT_EQ(MachineSetup.Parallel_Output_Bit[1], "0");  // nothing acts before it is applied

  Find<QCheckBox>("Check_Outputs_4").click();
  ASSERT_NE(Platform.Port_Read(634) & 4, 0);
  Press(window, "Command_Apply");
  EXPECT_EQ(Platform.Port_Read(634) & 4, 0);   // what ran is off
  EXPECT_NE(Platform.Port_Read(632) & 16, 0);  // output 1 is off by its new sense
  EXPECT_FALSE(Find<QCheckBox>("Check_Outputs_4").isChecked());
  EXPECT_EQ(Find<QCheckBox>("Check_Outputs_0").text(), "Laser");
  EXPECT_THAT(Told(), HasSubstr("is saved"));
  MachineSetup = {};
  LoadMachineSetup();
  EXPECT_EQ(MachineSetup.Output_Port[1], 890);
  EXPECT_EQ(MachineSetup.Parallel_Output_Bit[1], "1");
  EXPECT_EQ(MachineSetup.Output_Names[1], "Laser");
  EXPECT_TRUE(MachineSetup.Parallel_Output_Bit_Invert[13]);
  EXPECT_EQ(MachineSetup.Parallel_MotorEnable_Option, 2);
  EXPECT_EQ(MachineSetup.Parallel_MotorEnable_Time, 120);
  EXPECT_EQ(MachineSetup.Parallel_Setup_Type, Pin_Setup_Page);
}

TEST_F(Setup_Windows_Test, The_Port_Window_Tells_What_It_Cannot_Take_And_Forgets_What_Is_Closed) {
  QWidget& window = Opened("Port_Setup");
  auto& table = In<QTableWidget>(window, "Table_Pins");
  table.item(X_Step, Port)->setText("LPT1");
  EXPECT_EQ(table.item(X_Step, Port)->text(), "&H378");
  EXPECT_TRUE(In<QLabel>(window, "Label_Hint").isVisible());
  EXPECT_THAT(In<QLabel>(window, "Label_Hint").text().toStdString(), HasSubstr("\"LPT1\""));
  table.item(X_Step, Bit)->setText("NU");
  EXPECT_EQ(In<QComboBox>(window, "Option_Port_Type").count(), 3);  // the port and two boards
  Press(window, "Command_Cancel");
  EXPECT_EQ(In<QTableWidget>(Opened("Port_Setup"), "Table_Pins").item(X_Step, Bit)->text(), "0");
  EXPECT_EQ(MachineSetup.Parallel_Output_Bit[1], "0");
}

// Applied in a move, pins would change under the step loop.
TEST_F(Setup_Windows_Test, Nothing_Is_Opened_Or_Applied_While_The_Machine_Moves) {
  QWidget& ports = Opened("Port_Setup");
  In<QTableWidget>(ports, "Table_Pins").item(X_Step, Bit)->setText("7");
  QWidget& keys = Opened("Table_Setup");
  Press(keys, "Command_JoyJog_RestoreDefaults");
  const auto boxes = scripted.Boxes.size();
  While_Moving([&] {
    Press(ports, "Command_Apply");
    EXPECT_THAT(Told(), HasSubstr("Can't change the port setup while CNC running"));
    Press(keys, "Command_Apply");
    EXPECT_THAT(Told(), HasSubstr("Can't change the jog keys while CNC running"));
    Choose("Menu_Machine_System_Timing");
    EXPECT_FALSE(Window->Tool_Window_Is_Open("System_Timing"));
    Choose("Menu_Machine_Diagnostics");
    EXPECT_EQ(scripted.Boxes.size(), boxes);
    Choose("Menu_Machine_Machine_Check");  // looks only
    EXPECT_TRUE(Window->Tool_Window_Is_Open("Machine_Check"));
  });
  EXPECT_EQ(MachineSetup.Parallel_Output_Bit[1], "0");
  EXPECT_NEAR(True_Position(1), 0.5, 1e-3);
  Choose("Menu_Machine_Diagnostics");
  ASSERT_EQ(scripted.Boxes.size(), boxes + 1);
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("XSteps=2000"));
}

TEST_F(Setup_Windows_Test, Another_Machine_Closes_The_Windows_That_Show_The_Old_One) {
  Opened("Port_Setup");
  Opened("Table_Setup");
  Replace_File(Folder.File("work/other.ini"),
               Read_Whole_File(std::string(NORVIK_SAMPLES_FOLDER) + "/metric.ini"));
  scripted.Open_Answers.push_back(Folder.File("work/other.ini"));
  Choose("Menu_Machine_Load_Machine_Setup");
  EXPECT_FALSE(Window->Tool_Window_Is_Open("Port_Setup"));
  EXPECT_FALSE(Window->Tool_Window_Is_Open("Table_Setup"));
}

// --- Table_Setup ---------------------------------------------------------------------------------

TEST_F(Setup_Windows_Test, A_Key_Is_Read_Named_And_Applied) {
  Choose("Menu_Window_JogKey");
  EXPECT_THAT(Text_Of("Picture1_1").toStdString(), HasSubstr("Num 6"));
  QWidget& window = Opened("Table_Setup");
  auto& code = In<QLineEdit>(window, "Text_KeyJog_Code_1");
  EXPECT_EQ(code.text(), "102");
  auto& test = In<QWidget>(window, "JogKey_Test");
  Press(window, "Command_JogKey_1");
  QTest::keyClick(&test, Qt::Key_Escape);
  EXPECT_EQ(code.text(), "102");
  Press(window, "Command_JogKey_1");
  EXPECT_TRUE(test.isVisible());
  QTest::keyPress(&test, Qt::Key_Right);
  EXPECT_EQ(In<QLabel>(test, "Label_Current_Key_Value").text(), "39");
  QTest::keyRelease(&test, Qt::Key_Right);
  EXPECT_FALSE(test.isVisible());
  EXPECT_EQ(code.text(), "39");
  EXPECT_EQ(In<QLabel>(window, "Label_Key_Name_1").text(), "Right");
  Press(window, "Command_Find_Key");  // shows only
  QTest::keyClick(&test, Qt::Key_Left);
  EXPECT_TRUE(test.isVisible());
  EXPECT_EQ(In<QLabel>(test, "Label_Current_Key_Value").text(), "None");
  EXPECT_EQ(code.text(), "39");

  auto& joystick = In<QLineEdit>(window, "Text_JoyJog_Code_3");
  joystick.selectAll();
  QTest::keyClicks(&joystick, "NU\r");
  auto& wrong = In<QLineEdit>(window, "Text_KeyJog_Code_4");
  wrong.selectAll();
  QTest::keyClicks(&wrong, "plus\r");
  Press(window, "Command_Apply");
  EXPECT_THAT(In<QLabel>(window, "Label_Hint").text().toStdString(), HasSubstr("\"plus\""));
  EXPECT_EQ(wrong.text(), "107");
  EXPECT_EQ(ReadSetup("Keyboard", "KeyJog_KeyValue_1"), "39");
  EXPECT_EQ(MachineSetup.JoyJog_KeyValue[3], "NU");
  EXPECT_THAT(Text_Of("Picture1_1").toStdString(), HasSubstr("Right"));
  Press(window, "Command_KeyJog_RestoreDefaults");
  EXPECT_EQ(code.text(), "102");
}

// --- A serial board ------------------------------------------------------------------------------

struct Serial_Page_Window_Test : Setup_Windows_Test {
  Serial_Page_Window_Test() { Install_Simulated_Boards(); }
  ~Serial_Page_Window_Test() override { Forget_Simulated_Boards(); }

  // Chooses the board in the list of drives, as by hand, and applies.
  QWidget& Choose_Pelmar() {
    QWidget& window = Opened("Port_Setup");
    auto& types = In<QComboBox>(window, "Option_Port_Type");
    types.setCurrentIndex(types.findText("Serial Port (Pelmar v5.xx"));
    emit types.activated(types.currentIndex());
    EXPECT_EQ(In<QTabWidget>(window, "Tab_Port_Setup").currentIndex(), 1);
    Press(window, "Command_Apply");
    return window;
  }
  static Simulated_Board& Board() { return Simulated_Line(Board_Generation::Pelmar_V5).Board; }
  // The window's next look at the board.
  static void Look(QWidget& window) {
    In<QAbstractButton>(window, "Command_Dravon_ResetErrors").click();
  }
  static QString Shown(QWidget& window, const QString& name) {
    return In<QLabel>(window, name).text();
  }
};

TEST_F(Serial_Page_Window_Test, A_Board_Is_Chosen_Shows_Itself_And_Survives_Its_Cable) {
  QWidget& window = Choose_Pelmar();
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 3);
  EXPECT_EQ(Drive().Missing(), "");
  Look(window);
  EXPECT_EQ(Shown(window, "Label_ComOK"), "Present");
  EXPECT_TRUE(Shown(window, "Label_Firmware_Revision").startsWith("5."));
  EXPECT_EQ(Shown(window, "Label_Dravon_Buffer"), "3250");
  Press(window, "Command_Dravon_Aux_Output_5");  // output 6
  EXPECT_EQ(Board().Outputs, 32);
  Unplug(Simulated_Line(Board_Generation::Pelmar_V5));
  Look(window);
  EXPECT_EQ(Shown(window, "Label_DravonErrorMsg"), "Comm Error!!!");
  EXPECT_EQ(Shown(window, "Label_ComOK"), "Failure");
  EXPECT_NE(Drive().Missing(), "");
  Plug_In(Simulated_Line(Board_Generation::Pelmar_V5));
  scripted.Advance(2);
  Drive().Tick();
  Look(window);
  EXPECT_EQ(Shown(window, "Label_ComOK"), "Present");
  EXPECT_EQ(Drive().Missing(), "");
}

TEST_F(Serial_Page_Window_Test, Encoders_Are_Set_Up_And_Their_Faults_Cleared) {
  QWidget& window = Choose_Pelmar();
  In<QTabWidget>(window, "Tab_Port_Setup").setCurrentIndex(2);
  Press(window, "Check_Dravon_Enc_Enable_1");
  Press(window, "Check_Dravon_Enc_StopOnFault_1");
  In<QComboBox>(window, "Combo_Dravon_Enc_Mode_1").setEditText("4X");
  In<QComboBox>(window, "Combo_Dravon_Enc_Error_1").setEditText("50");
  auto& factor = In<QLineEdit>(window, "Text_Dravon_Enc_CFactor_1");
  factor.selectAll();
  QTest::keyClicks(&factor, "0.5");
  Press(window, "Command_Set_Encoder");
  EXPECT_EQ(Board().Axes[1].Encoder_Byte, 195);
  EXPECT_EQ(Board().Axes[1].Encoder_Factor, 500U);
  EXPECT_EQ(Board().Axes[1].Encoder_Error, 50U);
  EXPECT_EQ(ReadSetup("Dravon Setup", "Dravon_Enc_Mode_1"), "3");
  EXPECT_EQ(Drive().Missing(), "");  // the board has what the setup says
  // A wrong factor is named and changes nothing.
  factor.selectAll();
  QTest::keyClicks(&factor, "much");
  Press(window, "Command_Apply");
  EXPECT_THAT(In<QLabel>(window, "Label_Hint").text().toStdString(),
              HasSubstr("Encoder factor of X"));
  EXPECT_EQ(factor.text(), "0.5");
  Board().Axes[1].Encoder_Fault = true;
  Look(window);
  EXPECT_EQ(Drive().Alarm(), "Dravon Fault");
  Press(window, "Command_Enc_Fault_Flag_1");
  EXPECT_FALSE(Board().Axes[1].Encoder_Fault);
  EXPECT_EQ(Drive().Alarm(), "");
}

TEST_F(Serial_Page_Window_Test, The_Spindle_Slider_Is_There_For_A_Board_And_Acts) {
  EXPECT_FALSE(Find("Slider_RPM").isVisible());
  Choose_Pelmar();
  Display_IO();
  auto& slider = Find<QSlider>("Slider_RPM");
  EXPECT_TRUE(slider.isVisible());
  slider.setValue(512);
  EXPECT_EQ(Pwm_Value(Board()), 512);
  EXPECT_EQ(Text_Of("Label_RPM"), "Spindle speed 5005 rpm");
  Drive().Tick();
  Click("Command_EStop");
  slider.setValue(900);
  EXPECT_EQ(Pwm_Value(Board()), 512);
  EXPECT_EQ(slider.value(), 512);
}

}  // namespace
}  // namespace norvik
