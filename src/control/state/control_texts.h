// control_texts.h: what the run loop and the panel say to the operator, each text in one place.
#pragma once

#include "core/operation.h"

#include <string_view>

namespace norvik::control_text {

// --- Run state ----------------------------------------------------------------------------------
inline constexpr std::string_view CNC_Status[] = {"CNC Stopped", "CNC Paused", "CNC Stepped",
                                                  "CNC Running"};
inline constexpr std::string_view Paused_For_Retooling = "CNC Process: Paused for retooling";
inline constexpr std::string_view Machine_Run_Time = "Machine Run Time: ";
inline constexpr std::string_view Waiting_For_Aux = "Waiting for Aux Input.";
inline constexpr std::string_view Timer = "Timer: ";
inline constexpr std::string_view Estimate = "Estimated Material Process Time ";

// --- Safety -------------------------------------------------------------------------------------
inline constexpr std::string_view Motors_Enabled = "MOTORS ENABLED";
inline constexpr std::string_view Motors_Disabled = "MOTORS DISABLED";
inline constexpr std::string_view EStop_Pressed = "EStop Pressed";
inline constexpr std::string_view EStop_Tripped = "E-Stop Tripped";
inline constexpr std::string_view EStop_Cleared = "E-Stop Cleared";
inline constexpr std::string_view Spindle_On = "Spindle On";
inline constexpr std::string_view Spindle_Off = "Spindle Off";
inline constexpr std::string_view Log_Tripped = "Motor Enable Tripped";
inline constexpr std::string_view Log_Cleared = "Motor Enable Cleared";
inline constexpr std::string_view Watch_Tripped =
    "The E-Stop was engaged because a limit switch tripped while in Run mode.";
inline constexpr std::string_view Home_Safety_Off =
    "The home switch safety function is disabled until all switches are off";
inline constexpr std::string_view Home_Safety_Title = "Caution";
inline constexpr std::string_view Home_Safety_Box =
    "During initialization, one or more home switches was found to be ON.\r\n"
    "Home switch control has been turned off.\r\n"
    "Norvik does not know which direction is safe to travel.\r\n"
    "Please jog the appropriate axis until all home switches are OFF!!!\r\n"
    "Norvik will then know which direction to needs to be halted when a Home switch is ON.";
inline constexpr std::string_view Positions_Question =
    "\r\n\r\nAre the positions shown those of the machine?";
inline constexpr std::string_view Positions_Confirmed = "The positions are confirmed.";
inline constexpr std::string_view Positions_In_Doubt =
    "Play is refused until the positions are confirmed or the machine is homed.";
inline constexpr std::string_view Play_Once_More = "The positions are confirmed. Press Play again.";

// --- Home and ReTool ----------------------------------------------------------------------------
inline constexpr std::string_view Moving_To_ReTool = "Axis Move: Moving to ReTool Position...";
inline constexpr std::string_view Moving_To_Home =
    "Axis Move: Moving to Home Position...Press Esc twice to cancel";
inline constexpr std::string_view Homing = "Homing the Axis.";
inline constexpr std::string_view Homing_Done = "Homing Completed.";
inline constexpr std::string_view Homing_Done_Panel = "Homing Completed!";
inline constexpr std::string_view Homing_Aborted_Title = "Homing Aborted";
inline constexpr std::string_view Homing_Aborted =
    "Auto Homing cannot be done with limit switchs disabled!";

// --- Why something ended or did not start -------------------------------------------------------
inline constexpr std::string_view Ended_By_Limit =
    "Stopped: a limit switch ended the move. Jog away from the switch, then start again.";
// Behind it the free sides, "X+, Z-", and the rest of the sentence.
inline constexpr std::string_view Limit_Ended = "Stopped: a limit switch ended the move. Free: ";
inline constexpr std::string_view Jog_The_Free_Way = ". Jog that way, then start again.";
// Behind "The X".
inline constexpr std::string_view Switch_Not_Met =
    " switch was not met: the search ran to its end. Look at the wiring of the switch and at the "
    "home path.";
inline constexpr std::string_view No_Position_Set = " No position was set; home again.";
inline constexpr std::string_view Ended_By_EStop_Input =
    "Stopped: the E-stop input is on. Release the E-stop, then start again.";
inline constexpr std::string_view Ended_By_EStop = "Stopped by the E-stop.";
inline constexpr std::string_view Ended_By_Esc = "Stopped by ESC.";
inline constexpr std::string_view Move_Ends_First =
    "The running move is finished first. The E-stop or ESC ends it at once.";
inline constexpr std::string_view No_Run_To_Pause =
    "Pause acts on a run, and none is on. Stop ends this behind the running move; "
    "the E-stop or ESC ends it at once.";
inline constexpr std::string_view Ended_By_Operator = "Stopped by the operator.";
inline constexpr std::string_view Ended_By_Failure =
    "Stopped: the move could not be made. The error log says why.";
inline constexpr std::string_view Run_Without_Port =
    "Access to the port failed during the run, so motors missed steps. The error log says why. Put "
    "it right and home the axes before the next run. Failed accesses: ";
inline constexpr std::string_view Run_Of_A_Cut_Program =
    "the program is too long for the machine's table, and what was cut off has not run. Split it.";
inline constexpr std::string_view EStop_Stays_Set =
    "The E-stop stays set until the machine stands still. Press again to enable the motors.";
using operation_text::Motors_Are_Disabled;
inline constexpr std::string_view Outputs_Stay_Off =
    "No output is switched on while motors are disabled by the E-stop. Press MOTORS DISABLED to "
    "enable them, then try again.";
using operation_text::Compile_Runs;
inline constexpr std::string_view Outputs_Wait_For_Input =
    "No output is switched on while the E-stop input is on. Release the E-stop, then try again.";
inline constexpr std::string_view Still_Moving =
    "The machine is still moving. Wait until it stands, then jog.";
inline constexpr std::string_view A_Is_Slaved =
    "A does not jog by itself while it follows another axis. Jog that axis, or set Slave_A_Axis_to "
    "to None.";
inline constexpr std::string_view Not_While_Moving =
    "This can be changed while the machine stands still.";
inline constexpr std::string_view No_Program =
    "There is no program to run: open one, or type it and compile it, then start.";
inline constexpr std::string_view Program_Not_Compiled =
    "The program's text is newer than what was compiled: compile it (Ctrl+B), then start.";
inline constexpr std::string_view Source_Has_Changed =
    " is not what it was when the program was compiled: compile it (Ctrl+B), then start.";
inline constexpr std::string_view Text_Changed_In_Run =
    "The program's text was changed since this run began. The run goes on with the program as it "
    "was compiled; what was changed is not in it.\n\nGo on?";
inline constexpr std::string_view Run_Not_Continued =
    "The run stays paused. Press Stop, compile the text, then start it anew.";
inline constexpr std::string_view Run_Not_Begun = "The run was not started.";
inline constexpr std::string_view Program_Cut_Short =
    "The program was not compiled to its end: compile it again, then start.";
inline constexpr std::string_view Motion_File_Cut_Short =
    "Lines of the motion file are missing: load a whole one, then start.";
inline constexpr std::string_view Program_Behind_Goto =
    "A Goto has taken the place of the program: compile it again, then start.";
inline constexpr std::string_view Nothing_To_Estimate =
    "What was compiled is not the program as it is now: compile it (Ctrl+B), then try again.";
inline constexpr std::string_view Estimate_Cut_Short =
    "The program was not compiled to its end: compile it again, then estimate.";
using operation_text::Goto_Needs_Stop;
inline constexpr std::string_view Goto_Not_Compiled =
    "Goto: the line could not be compiled. The message list says why.";
inline constexpr std::string_view Goto_Is_Empty =
    "Goto: this line gives nothing to execute. Type a move with a blank between its words, such as "
    "G01 X1 Y2.";
inline constexpr std::string_view Goto_Has_No_Run =
    "Goto: the line asks for a pause; there is no run to pause. The line was executed to its end.";
inline constexpr std::string_view Goto_Not_Done = "Goto: nothing was moved.";
inline constexpr std::string_view Goto_Needs_Reset =
    "Goto executes nothing: the step pointer of the G-Code window does not stand at 0. Compile the "
    "program, then try again.";
inline constexpr std::string_view Has_No_Step_Pin =
    " has no step pin, so it does not move: choose it under Machine, Port and pins.";
inline constexpr std::string_view No_Serial_Board =
    "The serial controller boards cannot be driven by this version. Choose the LPT parallel port "
    "in the port setup (Parallel_Port_Type 1).";
inline constexpr std::string_view Unknown_Drive =
    "No drive is chosen. Choose the LPT parallel port in the port setup (Parallel_Port_Type 1).";
inline constexpr std::string_view Trace_Failed =
    "The move trace cannot be written; moves go on without it: ";

}  // namespace norvik::control_text
