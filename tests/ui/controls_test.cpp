// The panel, the jog window and the port display: what ticks, what a hand moves, what ends it.
#include "control/manual/knob.h"
#include "control/panel/panel.h"
#include "core/operation.h"
#include "ui_fixture.h"

#include <QComboBox>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Controls_Test : Ui_Test {
  Controls_Test() { scripted.Yield_Nanoseconds = 200'000; }

  // Runs the program; how often the panel's timer ticked meanwhile.
  int Ticks_Of_A_Run() {
    int ticks = 0;
    std::int16_t last = Controller.Blink_Ticks;
    scripted.On_Yield = [&] {
      QCoreApplication::processEvents();
      if (Controller.Blink_Ticks != last) ++ticks;
      last = Controller.Blink_Ticks;
    };
    Click("Command_CNC_Play");
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
    return ticks;
  }
};

// Each move is shorter than the interval of the timer, which watches switches and shows the run.
TEST_F(Controls_Test, The_Panel_Ticks_On_Through_A_Run_Of_Many_Short_Moves) {
  std::string program = "G1 F60\n";
  for (int pair = 0; pair < 20; ++pair) program += "G1 X0.01 Y0.01\nG1 X0 Y0.01\nG1 X0 Y0\n";
  Open("short.gc", program);
  Click("Command_Update");
  int timers = 0;
  const auto start_timer = Platform.Start_Timer;
  Platform.Start_Timer = [&](int interval_ms, std::function<void()> handler) {
    ++timers;
    return start_timer(interval_ms, std::move(handler));
  };
  const std::int64_t began = scripted.Now;
  const int ticks = Ticks_Of_A_Run();
  const double seconds = static_cast<double>(scripted.Now - began) * 1e-9;
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_GT(seconds, 1.5);
  EXPECT_GE(ticks, static_cast<int>(seconds * 3));
  EXPECT_EQ(timers, 0) << "a move starts no timer";
}

TEST_F(Controls_Test, With_The_Option_The_Displays_Stand_Still_In_A_Move_And_The_Watches_Go_On) {
  MachineSetup.LimitDisableinRunMode = 1;  // a switch in a run is the timer's matter alone
  scripted.Input_Waits = true;             // as on the desktop: every move yields
  for (const bool option : {false, true}) {
    SCOPED_TRACE(option);
    MachineSetup.Axis_Position_Update_Disable = option;
    Open("part.gc", "G1 X1 F15\n");
    Click("Command_Update");
    double shown = -1;
    In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.5; },
                  [&] {
                    shown = Text_Of("Label_Axis_Pos_X").toDouble();
                    Force_Input(2, Input_Force::On);
                  });
    Click("Command_CNC_Play");
    EXPECT_EQ(shown < 0.1, option) << shown;
    EXPECT_TRUE(Machine.EStop_Flag);
    EXPECT_LT(True_Position(1), 0.7);
    EXPECT_EQ(CNC_Controls.Command_Lim_Latch[2].Color, Control_Color::Red);
    // It shows again what is, as soon as the machine stands.
    scripted.Run_For(0.3);
    EXPECT_NEAR(Text_Of("Label_Axis_Pos_X").toDouble(), True_Position(1), 1e-3);

    Force_Input(2, Input_Force::Automatic);
    scripted.Run_For(0.3);
    Click("Command_EStop");
    Click("Command_Lim_Latch_Y");
    EXPECT_EQ(CNC_Controls.Command_Lim_Latch[2].Color, Control_Color::Normal);
    Type_Goto("G00 X0");
    Click("Command_Goto");
    EXPECT_NEAR(True_Position(1), 0, 1e-3);
  }
}

TEST_F(Controls_Test, The_Step_Distance_Is_Offered_In_The_Unit_And_Its_Caret_Stays) {
  auto& box = Find<QComboBox>("Combo_SStep_Distance");
  const auto offered = [&] {
    std::vector<double> distances;
    for (int i = 0; i < box.count(); ++i) distances.push_back(box.itemText(i).toDouble());
    return distances;
  };
  EXPECT_THAT(offered(), testing::ElementsAre(0.001, 0.005, 0.01, 0.05, 0.1, 0.5, 1));
  box.setCurrentIndex(3);
  emit box.activated(3);
  EXPECT_FLOAT_EQ(MachineSetup.CNC_Jog_Increment, 0.05F);

  box.setFocus();
  QTest::keyClick(box.lineEdit(), Qt::Key_Home);
  scripted.Run_For(0.6);
  EXPECT_EQ(box.lineEdit()->cursorPosition(), 0);
  QTest::keyClicks(box.lineEdit(), "1");
  EXPECT_FLOAT_EQ(MachineSetup.CNC_Jog_Increment, 1.05F);
  scripted.Run_For(0.6);
  EXPECT_EQ(box.currentText().toDouble(), 1.05);

  MachineSetup.UnitsofMeasurement = 1;
  Load_CNC_Controls();
  EXPECT_THAT(offered(), testing::ElementsAre(0.01, 0.05, 0.1, 0.5, 1, 5, 10));
}

// A question in mid-move would hold up the pulses.
TEST_F(Controls_Test, A_Close_In_Mid_Move_Asks_Nothing_And_Is_Refused) {
  Open("part.gc", "G1 X0.2 F15\nG1 Y0.1\n");
  Click("Command_Update");
  GCode_Program.Unsaved = true;
  In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.1; },
                [&] {
                  EXPECT_FALSE(Window->close());
                  EXPECT_THAT(Text_Of("Panel_1").toStdString(), HasSubstr("Press Stop first"));
                });
  Click("Command_CNC_Play");
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_FALSE(scripted.Process_Ended);
  EXPECT_NEAR(True_Position(2), 0.1, 1e-3) << "the run went on to its end";
  GCode_Program.Unsaved = false;
  Window->close();
  EXPECT_TRUE(scripted.Process_Ended);
}

// --- Every control does something ----------------------------------------------------------------

// Released once the machine has gone a little way: which way, by its true position.
TEST_F(Controls_Test, Each_Jog_Button_Moves_Its_Axes_Its_Way_Until_Released) {
  struct {
    const char* Button;
    std::array<int, 4> Way;
  } const rows[] = {
      {"Jog_X_0", {-1, 0, 0, 0}}, {"Jog_X_1", {1, 0, 0, 0}},    {"Jog_Y_0", {0, -1, 0, 0}},
      {"Jog_Y_1", {0, 1, 0, 0}},  {"Jog_Z_0", {0, 0, -1, 0}},   {"Jog_Z_1", {0, 0, 1, 0}},
      {"Jog_A_0", {0, 0, 0, -1}}, {"Jog_A_1", {0, 0, 0, 1}},    {"Jog_XY_0", {-1, 1, 0, 0}},
      {"Jog_XY_1", {1, 1, 0, 0}}, {"Jog_XY_2", {-1, -1, 0, 0}}, {"Jog_XY_3", {1, -1, 0, 0}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Button);
    std::array<double, 4> began;
    for (int axis = 1; axis <= 4; ++axis) {
      Place_Carriage(axis, 2);
      began[static_cast<std::size_t>(axis - 1)] = True_Position(axis);
    }
    const std::int64_t until = scripted.Now + 300'000'000;
    In_Yield_When([&] { return Runs(Operation::Move) && scripted.Now > until; },
                  [&] { QTest::mouseRelease(&Find(row.Button), Qt::LeftButton); });
    QTest::mousePress(&Find(row.Button), Qt::LeftButton);
    EXPECT_FALSE(Runs(Operation::Move));
    for (std::size_t i = 0; i < 4; ++i) {
      const double way = True_Position(static_cast<int>(i) + 1) - began[i];
      EXPECT_EQ((way > 1e-4) - (way < -1e-4), row.Way[i]) << "axis " << i + 1 << " by " << way;
    }
    EXPECT_LT(scripted.Now, until + 1'000'000'000) << "the release ends it";
  }
}

TEST_F(Controls_Test, Feeds_And_Levels_Ask_And_Take_The_Answer) {
  struct {
    const char *Label, *Prompt, *Answer;
    float& Value;
  } const rows[] = {
      {"Label_FeedRate_Cut", "Enter Cutting feedrate", "11", MachineSetup.Axis_Feed_Rate_Cut},
      {"Label_FeedRate_Travel", "Enter Travel feedrate", "22", MachineSetup.Axis_Feed_Rate_Travel},
      {"Label_FeedRate_Jogging", "Enter Jogging feedrate", "33",
       MachineSetup.Axis_Feed_Rate_Jogging},
      {"Label_Tool_Height_0", "Change Z Axis Travel Depth", "0.75",
       MachineSetup.Axis_Tool_Height[0]},
      {"Label_Tool_Height_1", "Change Z Axis Normal Cut Depth", "-0.5",
       MachineSetup.Axis_Tool_Height[1]},
      {"Label_Tool_Height_2", "Change Z Axis Deep Cut Depth", "-0.25",
       MachineSetup.Axis_Tool_Height[2]}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Label);
    scripted.Input_Answers.push_back(row.Answer);
    Click(row.Label);
    ASSERT_FALSE(scripted.Inputs.empty());
    EXPECT_EQ(scripted.Inputs.back().Prompt, row.Prompt);
    EXPECT_EQ(row.Value, std::stof(row.Answer));
    EXPECT_EQ(Text_Of(row.Label).toFloat(), row.Value);
  }
}

TEST_F(Controls_Test, Outputs_Knob_Estimate_And_Port_Address_Reach_Their_Handlers) {
  for (int output = 0; output <= 4; ++output) {
    SCOPED_TRACE(output);
    const QString name = QString("Check_Outputs_%1").arg(output);
    for (const bool on : {true, false}) {
      Find<QAbstractButton>(name).click();
      EXPECT_EQ(Simulated_Machine.Outputs[output + 1].On, on);
    }
  }

  auto& knob = Find("Pic_Knob");
  QTest::mousePress(&knob, Qt::LeftButton, {}, {10, 10});
  QTest::mouseMove(&knob, {10, 30});
  QTest::mouseRelease(&knob, Qt::LeftButton, {}, {10, 30});
  EXPECT_EQ(Knob.Knob_Position, 60);
  QTest::mouseDClick(&Find("Label_Feed_Overide"), Qt::LeftButton);
  EXPECT_EQ(Knob.Knob_Position, 50);

  Open("part.gc", "G1 X1 F15\n");
  Click("Command_Update");
  Click("Command_Estimate_Process_Time");
  EXPECT_THAT(Text_Of("Label_MaterialProcess_Time").toStdString(), HasSubstr("00:00:0"));
  EXPECT_EQ(True_Position(1), 0);

  Choose("Menu_Window_Port_IO");
  EXPECT_THAT(Find("Combo_Port_Address").toolTip().toStdString(), HasSubstr(" &H378"));
  auto& address = Find<QComboBox>("Combo_Port_Address");
  address.setCurrentIndex(1);
  emit address.activated(1);
  EXPECT_EQ(MachineSetup.Parallel_Display_IO_Address, 0x278);
}

// --- The jog window ------------------------------------------------------------------------------

struct Jog_Window_Test : Controls_Test {
  Jog_Window_Test() {
    scripted.Yield_Nanoseconds = 500'000;
    Choose("Menu_Window_JogKey");
    Find("JogKey").setFocus();
    Window->activateWindow();
    QCoreApplication::processEvents();
  }
  void Stick_At(std::int32_t x) {
    scripted.Joysticks[0] = {};
    scripted.Joysticks[0].Axis_X = x;
  }
  void Rest() {
    Stick_At(32767);
    scripted.Run_For(0.05);
  }
  // How the operator comes to lose the window.
  struct Loss {
    const char* Name;
    std::function<void()> Happens;
  };
  std::vector<Loss> Losses() {
    return {{"focus", [this] { Find("Text_GCode").setFocus(); }},
            {"hidden", [this] { Find("JogKey").hide(); }},
            {"closed", [this] { Frame_Of("JogKey").close(); }},
            {"minimised", [this] { Frame_Of("JogKey").showMinimized(); }},
            {"another window in front", [this] { Choose("Menu_Window_Plot"); }}};
  }
  void Come_Back() {
    Choose("Menu_Window_JogKey");
    Find("JogKey").setFocus();
  }
};

TEST_F(Jog_Window_Test, A_Stick_Moves_Nothing_Once_The_Window_Is_Lost) {
  Click("Option_JoyCtrl_1");
  for (const Loss& loss : Losses()) {
    SCOPED_TRACE(loss.Name);
    Rest();
    const double began = True_Position(1);
    double lost_at = began;
    In_Yield_When([&] { return True_Position(1) > began + 0.03; },
                  [&] {
                    loss.Happens();
                    lost_at = True_Position(1);
                  });
    Stick_At(65535);
    scripted.Run_For(0.05);  // the jog runs in here
    EXPECT_GT(lost_at, began + 0.03) << "the stick jogs while the window has the focus";
    EXPECT_NEAR(True_Position(1), lost_at, 0.01) << "the loss ends it";

    // Neither back to rest and out again behind the other window, nor held over into this one.
    const double stands = True_Position(1);
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
    Rest();
    Stick_At(65535);
    scripted.Run_For(0.5);
    Come_Back();
    scripted.Run_For(0.5);
    EXPECT_EQ(True_Position(1), stands);
    Stick_At(32767);
  }
}

TEST_F(Jog_Window_Test, A_Held_Key_Moves_Until_It_Is_Up_Or_The_Window_Is_Lost) {
  auto ends = Losses();
  ends.push_back({"released", [this] { QTest::keyRelease(&Find("JogKey"), Qt::Key_A); }});
  MachineSetup.KeyJog_KeyValue[1] = 'A';
  for (const Loss& end : ends) {
    SCOPED_TRACE(end.Name);
    Come_Back();
    scripted.Keys_Held = {'A'};
    const double began = True_Position(1);
    double ended_at = began;
    In_Yield_When([&] { return True_Position(1) > began + 0.03; },
                  [&] {
                    ended_at = True_Position(1);
                    end.Happens();
                  });
    QTest::keyPress(&Find("JogKey"), Qt::Key_A);
    EXPECT_GT(ended_at, began + 0.03);
    EXPECT_NEAR(True_Position(1), ended_at, 0.01);
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
  }
}

TEST_F(Jog_Window_Test, A_Hidden_Window_Has_No_Timers) {
  const int shown = scripted.Running_Timers();
  Frame_Of("JogKey").close();
  EXPECT_EQ(scripted.Running_Timers(), shown - 2);
  Come_Back();
  EXPECT_EQ(scripted.Running_Timers(), shown);
}

}  // namespace
}  // namespace norvik
