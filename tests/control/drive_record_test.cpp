// What the rooms above ask of a drive, shown by one with a queue of moves that writes down each
// call.
#include "control/manual/home.h"
#include "control/manual/jog.h"
#include "control/motion/waits.h"
#include "control/safety/safety.h"
#include "control_fixture.h"
#include "drive/drive.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> Calls;
bool Moves_Are_Taken = true;

void Note(const std::string& call) {
  Calls.push_back(call);
}

// Takes each move over at once and counts it in the position.
constexpr Drive_Operations Queue_Drive = {
    .Name = "a drive with a queue",
    .Overrides_Feed = true,
    .Queues_Moves = true,
    .Refresh_Parameters = [] { Note("parameters"); },
    .Move =
        [](const Step_Request& request, Nullable s_word, std::int32_t step) {
          if (!Moves_Are_Taken) return Move_End::Failed;
          Note("move " + std::to_string(request.Steps[1]) + " of step " + std::to_string(step) +
               (s_word && *s_word != Unchanged_S_Word ? " with S" : ""));
          for (int axis = 1; axis <= 4; ++axis)
            Machine.Position[axis] += (request.Negative[axis] ? -1.0 : 1.0) * request.Steps[axis] /
                                      MachineSetup.Axis_SPI[axis];
          return Move_End::Done;
        },
    .Wait_Empty =
        [] {
          Note("wait");
          return Move_End::Done;
        },
    .Hold = [](bool held) { Note(held ? "hold" : "go on"); },
    .Stop = [] { Note("stop"); },
    .EStop = [](bool engaged) { Note(engaged ? "E-stop" : "clear"); },
    .Release_Jog = [] { Note("release"); },
    .Set_Position = [] { Note("position " + std::to_string(Machine.Position[1])); },
    .Switch_Output = [](int n, bool on) { Note((on ? "on " : "off ") + std::to_string(n)); },
    .Set_Override = [](std::int32_t of_1024) { Note("override " + std::to_string(of_1024)); },
};

struct Drive_Record_Test : Control_Test {
  Drive_Record_Test() {
    Calls.clear();
    Moves_Are_Taken = true;
    Drive_Choice.Of_Setup = []() -> const Drive_Operations& { return Queue_Drive; };
  }
};

TEST_F(Drive_Record_Test, A_run_hands_its_moves_over_and_waits_for_the_last) {
  Load({{.Step = 1, .X = 1.0}, {.Step = 2, .X = 2.0}});
  Command_CNC_Play_Click();
  EXPECT_THAT(Calls, ElementsAre("parameters", "go on", "move 400 of step 1", "move 400 of step 2",
                                 "wait", "wait"));
  EXPECT_EQ(Machine.Position[1], 2);
  EXPECT_EQ(Machine.Theoretical_Pos[1], 2);
}

TEST_F(Drive_Record_Test, A_pause_of_the_program_waits_and_holds) {
  Load({{.Step = 1, .X = 1.0}, {.Step = 1, .Dwell = -1}, {.Step = 2, .X = 2.0}});
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_THAT(Calls, ElementsAre("parameters", "go on", "move 400 of step 1", "move 0 of step 1",
                                 "hold", "wait", "hold", "wait"));
  Calls.clear();
  Command_CNC_Stop_Click();
  EXPECT_THAT(Calls, ElementsAre("stop"));
}

TEST_F(Drive_Record_Test, The_E_stop_reaches_the_drive_before_its_outputs_go_off) {
  MachineSetup.E_Stop_Output_Disable = true;
  Command_EStop_Click();
  EXPECT_THAT(Calls, ElementsAre("stop", "E-stop", "off 1", "off 2", "off 3", "off 4", "off 5"));
  Calls.clear();
  Command_EStop_Click();
  EXPECT_THAT(Calls, ElementsAre("clear"));
}

TEST_F(Drive_Record_Test, Panel_values_reach_the_drive) {
  MachineSetup.ThrottleMaxLim = 200;
  Knob.Knob_Position = 100;
  Knob_Process();
  EXPECT_EQ(CNC_Controls.Label_Feed_Overide.Caption, "200%");
  Set_Axis_Position(1, 3);
  Controller.Jog_Held = true;
  Release_Jog();
  Controller.Jog_Held = false;
  Release_Jog();  // nothing is held
  EXPECT_THAT(Calls, ElementsAre("override 2048", "position 3.000000", "release"));
}

TEST_F(Drive_Record_Test, A_move_that_is_not_taken_ends_the_run_with_its_reason) {
  Moves_Are_Taken = false;
  Load({{.Step = 1, .X = 1.0}, {.Step = 2, .X = 2.0}});
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_THAT(Messages.Panel[1], HasSubstr(std::string(control_text::Ended_By_Failure)));
}

TEST_F(Drive_Record_Test, The_machine_file_chooses_the_drive) {
  Connect_Control();
  const bool can_move[] = {false, true, false, false};  // by Parallel_Port_Type; no board answers
  for (std::int16_t type = 0; type <= 3; ++type) {
    MachineSetup.Parallel_Port_Type = type;
    EXPECT_EQ(Drive().Missing().empty(), can_move[type]) << type;
    EXPECT_EQ(Drive().Times_Half_Steps, can_move[type]) << type;
  }
}

}  // namespace
}  // namespace norvik
