// The panel, the jog window and the port display: what ticks, what a hand moves, what ends it.
#include "control/displays.h"
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
  EXPECT_GT(seconds, 3);
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
    In_Yield_When([] { return Step_Engine.Active && True_Position(1) > 0.5; },
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
  Gcode_Form.Text_Edited = true;
  In_Yield_When([] { return Step_Engine.Active && True_Position(1) > 0.1; },
                [&] {
                  EXPECT_FALSE(Window->close());
                  EXPECT_THAT(Text_Of("Panel_1").toStdString(), HasSubstr("Press Stop first"));
                });
  Click("Command_CNC_Play");
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_FALSE(scripted.Process_Ended);
  EXPECT_NEAR(True_Position(2), 0.1, 1e-3) << "the run went on to its end";
  Gcode_Form.Text_Edited = false;
  Window->close();
  EXPECT_TRUE(scripted.Process_Ended);
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
    std::function<void()> Happens, Undone;
  };
  std::vector<Loss> Losses() {
    return {{"focus", [this] { Find("Text_GCode").setFocus(); }, [] {}},
            {"hidden", [this] { Find("JogKey").hide(); }, [] {}},
            {"closed", [this] { Frame_Of("JogKey").close(); }, [] {}},
            {"minimised", [this] { Frame_Of("JogKey").showMinimized(); }, [] {}},
            {"another window in front", [this] { Choose("Menu_Window_Plot"); }, [] {}}};
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

TEST_F(Jog_Window_Test, A_Hidden_Window_Has_No_Timers) {
  const int shown = scripted.Running_Timers();
  Frame_Of("JogKey").close();
  EXPECT_EQ(scripted.Running_Timers(), shown - 2);
  Come_Back();
  EXPECT_EQ(scripted.Running_Timers(), shown);
}

}  // namespace
}  // namespace norvik
