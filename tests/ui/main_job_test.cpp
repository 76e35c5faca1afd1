// The main job through the windows: open, look, edit, run, stop.
#include "app/shutdown.h"
#include "app/yield_watch.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/version.h"
#include "ui/program/gcode_colors.h"
#include "ui/program/gcode_editor.h"
#include "ui_fixture.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QWheelEvent>

namespace norvik {
namespace {

using testing::HasSubstr;

constexpr const char* Three_Moves = "G0 X0 Y0\nG1 X0.5 F60\nG1 Y0.25\n";

struct Main_Job_Test : Ui_Test {
  void Expect_Machine_At(double x, double y) {
    EXPECT_NEAR(True_Position(1), x, 1e-3);
    EXPECT_NEAR(True_Position(2), y, 1e-3);
  }
};

TEST_F(Main_Job_Test, An_Opened_Program_Is_Shown_Compiled_And_Compiled_Again_After_An_Edit) {
  Open("part.gc", Three_Moves);
  auto& text = Find<QPlainTextEdit>("Text_GCode");
  EXPECT_EQ(text.toPlainText().trimmed().toStdString(), "G0 X0 Y0\nG1 X0.5 F60\nG1 Y0.25");
  EXPECT_EQ(Text_Of("Label_GC_NOS"), "3");
  EXPECT_THAT(Window->windowTitle().toStdString(), HasSubstr("part.gc"));
  Click("Command_Update");
  ASSERT_GT(Program_Wire.Rows().size(), 0U);
  const auto wires = Program_Wire.Rows().size();

  text.moveCursor(QTextCursor::End);
  QTest::keyClick(&text, Qt::Key_Return);
  QTest::keyClicks(&text, "G1 X0");
  EXPECT_TRUE(GCode_Program.Typed_Waits);
  EXPECT_EQ(Program_Wire.Rows().size(), wires);  // typed text waits
  Click("Command_Update");
  EXPECT_FALSE(GCode_Program.Typed_Waits);
  EXPECT_GT(Program_Wire.Rows().size(), wires);
  EXPECT_EQ(Text_Of("Label_GC_NOS"), "4");
}

TEST_F(Main_Job_Test, The_Line_Numbers_Of_A_Long_Program_Stand_Beside_The_Text) {
  auto& text = Find<GCode_Editor>("Text_GCode");
  const int before = text.viewport()->x();
  std::string program;
  for (int line = 0; line < 12'000; ++line) program += "G1 X1\n";
  MachineSetup.Plot_Auto_Loading = 0;
  Open("long.gc", program);
  EXPECT_GT(text.viewport()->x(), before);
  EXPECT_GE(text.viewport()->x(), text.Margin_Width());
}

// What is underlined is not read, and what is read is not underlined.
TEST_F(Main_Job_Test, A_Macro_Call_Is_Underlined_Only_Where_It_Runs_Nothing) {
  MachineSetup.MacroFile[12] = Folder.File("twelve.gc");
  Replace_File(MachineSetup.MacroFile[12], "G1 X1\n");
  const auto underlined = [](const QString& line) {
    std::string words;
    for (const auto& span : GCode_HighlightWords(line))
      if (span.format.underlineStyle() != QTextCharFormat::NoUnderline)
        words += line.mid(span.start, span.length).trimmed().toStdString() + ";";
    return words;
  };
  EXPECT_EQ(underlined("N5 M98 12 (file 7)"), "");
  EXPECT_EQ(underlined("m98P12"), "");
  EXPECT_EQ(underlined("M98 13"), "M98 13;");
  EXPECT_EQ(underlined("M98"), "M98;");
  EXPECT_EQ(underlined("G1 X1 M98 12"), "G1;X1;");  // the call alone is read
  EXPECT_EQ(underlined("(M98 13)"), "M98 13;");
  EXPECT_EQ(underlined("G1 X1 M97"), "M97;");
}

TEST_F(Main_Job_Test, Mouse_And_Wheel_Zoom_The_Plot) {
  Open("part.gc", Three_Moves);
  auto& picture = Find("Picture1");
  const auto shown_width = [] { return View.ViewRight - View.ViewLeft; };
  const double whole = shown_width();
  QWheelEvent notch(QPointF(20, 20), picture.mapToGlobal(QPointF(20, 20)), {}, {0, 120},
                    Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&picture, &notch);
  const double closer = shown_width();
  EXPECT_LT(closer, whole);
  Click("Command_ZoomIn");
  EXPECT_TRUE(Find<QAbstractButton>("Command_ZoomIn").isChecked());
  QTest::mouseClick(&picture, Qt::LeftButton, {}, picture.rect().center());
  EXPECT_LT(shown_width(), closer);
}

TEST_F(Main_Job_Test, A_Program_Runs_To_Its_End_By_Play_And_By_Steps) {
  Open("part.gc", Three_Moves);
  Click("Command_Update");
  Click("Command_CNC_Play");
  Expect_Machine_At(0.5, 0.25);
  EXPECT_EQ(Text_Of("Label_CNC_Status"), "CNC Stopped");

  Click("Command_CNC_Step");  // each press runs one step, the first press the first
  EXPECT_EQ(Text_Of("Label_CNC_Status"), "CNC Stepped");
  Expect_Machine_At(0, 0);
  Click("Command_CNC_Step");
  Expect_Machine_At(0.5, 0);
  Click("Command_CNC_Stop");
  EXPECT_EQ(Text_Of("Label_CNC_Status"), "CNC Stopped");
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

// Pressed in a yield of the second move. Pause and Stop let that move end, the E-stop does not.
TEST_F(Main_Job_Test, Pause_Stop_And_EStop_Act_While_The_Machine_Moves) {
  struct {
    const char *Button, *Status;
    std::int16_t Mode;
    bool Ends_In_The_Move, EStop;
  } const rows[] = {{"Command_CNC_Pause", "CNC Paused", CNC_Paused, false, false},
                    {"Command_CNC_Stop", "CNC Stopped", CNC_Stopped, false, false},
                    {"Command_EStop", "EStop Pressed", CNC_Stopped, true, true}};
  double pressed_at = 0;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Button);
    Open("part.gc", Three_Moves);
    Click("Command_Update");
    In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.1; },
                  [&] {
                    Click(row.Button);
                    // Heard while the move goes on, whatever it does to the move.
                    EXPECT_EQ(Text_Of("Label_CNC_Status"), row.Status);
                    pressed_at = True_Position(1);
                    if (row.EStop) return;
                    EXPECT_THAT(Text_Of("Panel_1").toStdString(), HasSubstr("is finished first"));
                  });
    Click("Command_CNC_Play");
    EXPECT_EQ(Machine.CNCMode, row.Mode);
    EXPECT_EQ(Machine.EStop_Flag, row.EStop);
    EXPECT_NEAR(True_Position(2), 0, 1e-3);  // the third move never began
    if (row.Ends_In_The_Move) {
      EXPECT_NEAR(True_Position(1), pressed_at, 1.5 / MachineSetup.Axis_SPI[1]);
    } else {
      EXPECT_NEAR(True_Position(1), 0.5, 1e-3);
    }
    if (row.EStop) {
      EXPECT_EQ(Text_Of("Command_EStop"), "MOTORS DISABLED");
      Click("Command_EStop");
      EXPECT_FALSE(Machine.EStop_Flag);
    }
    if (Machine.CNCMode != CNC_Stopped) Click("Command_CNC_Stop");
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
    Type_Goto("G00 X0 Y0");
    Click("Command_Goto");
    Expect_Machine_At(0, 0);
  }
}

// A request to terminate comes in a yield of the move that the pressed button runs: the windows go
// while that button is still being served.
TEST_F(Main_Job_Test, The_Program_Can_End_While_The_Machine_Moves) {
  Open("part.gc", "M3\n" + std::string(Three_Moves));
  Click("Command_Update");
  double ended_at = 0;
  In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.1; },
                [&] {
                  ended_at = True_Position(1);
                  bye();
                  EXPECT_FALSE(Simulated_Machine.Outputs[1].On);
                  EXPECT_FALSE(Simulated_Machine.Axes[1].Enabled);
                });
  Click("Command_CNC_Play");
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_GT(ended_at, 0.1);
  EXPECT_EQ(True_Position(1), ended_at);  // no step after it
  EXPECT_NEAR(std::stod(ReadSetup("Axis Position", "Axis_Cur_Pos_1")), ended_at, 1e-6);
  EXPECT_FALSE(Simulated_Machine.Axes[1].Enabled);
  EXPECT_EQ(ReadSetup("Form Position", "Plot_Open"), "True");
}

TEST_F(Main_Job_Test, A_Jog_Lasts_As_Long_As_Its_Button_Is_Held) {
  In_Yield_When([] { return True_Position(1) > 0.2; },
                [&] { QTest::mouseRelease(&Find("Jog_X_1"), Qt::LeftButton); });
  QTest::mousePress(&Find("Jog_X_1"), Qt::LeftButton);
  EXPECT_FALSE(Runs(Operation::Move));
  EXPECT_GT(True_Position(1), 0.2);
  EXPECT_LT(True_Position(1), 0.4);
  EXPECT_NEAR(True_Position(1), Machine.Position[1], 1e-3);
}

// A typed step counts at once, also without Enter; while the program runs the boxes are locked.
TEST_F(Main_Job_Test, The_Step_Range_Is_The_Operators_Only_While_The_Machine_Is_Stopped) {
  Open("part.gc", Three_Moves);
  Click("Command_Update");
  auto& first = Find<QLineEdit>("Text_StartingStep");
  EXPECT_EQ(first.text(), "1");
  first.setFocus();
  first.selectAll();
  QTest::keyClicks(&first, "3");
  bool locked = false;
  In_Yield_When([] { return Runs(Operation::Move) && True_Position(2) > 0.2; },
                [&] { locked = !first.isEnabled() && !Find("Text_EndingStep").isEnabled(); });
  Click("Command_CNC_Play");
  EXPECT_TRUE(locked);
  EXPECT_EQ(Controller.Steps_Executed, 1);  // the third step alone
  scripted.Advance(1);
  DoEvents();
  EXPECT_TRUE(first.isEnabled());
  EXPECT_EQ(first.text(), "3");
  first.selectAll();
  QTest::keyClicks(&first, "-7");
  QTest::keyClick(&first, Qt::Key_Return);
  EXPECT_EQ(Machine.StartingStep, 1);
  EXPECT_EQ(first.text(), "1");
}

// The figure of the about box is what a second look at the same yields finds.
TEST_F(Main_Job_Test, The_About_Box_Tells_The_Longest_Gap_Between_Two_Yields_Of_The_Run) {
  Open("part.gc", Three_Moves);
  Click("Command_Update");
  Choose("Menu_Help_About");
  EXPECT_THAT(Text_Of("Text_Support").toStdString(), HasSubstr("not measured"));
  Find("About").close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

  std::int64_t last = -1, longest = 0;
  scripted.On_Yield = [&] {
    QCoreApplication::processEvents();
    if (last >= 0 && Runs(Operation::Move))
      longest = std::max(longest, Platform.Monotonic_Clock() - last);
    last = Platform.Monotonic_Clock();
  };
  Click("Command_CNC_Play");
  ASSERT_GT(longest, 0);
  const double gap_ms = static_cast<double>(longest) * 1e-6;
  EXPECT_NEAR(Longest_Yield_Gap_Ms(), gap_ms, 0.002);  // a yield itself takes 1 us
  Choose("Menu_Help_About");
  const std::string text = Text_Of("Text_Support").toStdString();
  EXPECT_THAT(text, HasSubstr(": " + Format_Number_Point(gap_ms, "0.0") + " ms\n"));
  EXPECT_THAT(text, HasSubstr(std::string(Program_Version())));
  EXPECT_THAT(text, HasSubstr("Port: simulated machine"));
  EXPECT_THAT(text, HasSubstr(Folder.File("work/mill.ini")));
  // The time between two motions is no gap.
  scripted.Advance(30);
  Type_Goto("G01 X0 Y0");
  Click("Command_Goto");
  Expect_Machine_At(0, 0);
  EXPECT_LT(Longest_Yield_Gap_Ms(), 300);
  Click("Command_Copy_Support");
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text);
}

TEST_F(Main_Job_Test, Goto_Runs_A_Line_And_Zero_Renames_The_Place) {
  Type_Goto("G01 X0.3 Y0.1");
  Click("Command_Goto");
  Expect_Machine_At(0.3, 0.1);
  Click("Command_Zero_Pos_X");
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_NEAR(Machine.Position[2], 0.1, 1e-3);
  EXPECT_EQ(Text_Of("Label_Axis_Pos_X").toStdString(), CNC_Controls.Label_Axis_Pos[1].Caption);
  EXPECT_EQ(Text_Of("Label_Axis_Pos_X").toDouble(), 0);

  // Words that run together give nothing; the operator is told what to type.
  Type_Goto("G1X1Y2");
  Click("Command_Goto");
  EXPECT_NEAR(True_Position(1), 0.3, 1e-3);
  EXPECT_THAT(Text_Of("Panel_1").toStdString(), HasSubstr("a blank between its words"));
}

}  // namespace
}  // namespace norvik
