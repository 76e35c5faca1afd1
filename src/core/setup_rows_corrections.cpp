// The rows of section Corrections: each says what the machine does as long as it is off, and what
// it does instead when it is on. All are off until an operator switches them on.
#include "core/setup_rows.h"

namespace norvik {

namespace {

using M = Machine_Setup;
constexpr std::string_view Section = "Corrections";

template <auto Member>
Row_Builder Correction(std::string_view key, std::string_view label) {
  return Key<Member>(Section, key).Called(page::Corrections, label).Saved(Save_Place::Corrections);
}

// How programs run, how the machine moves by hand and by boards.
Setup_Row_List Running_Rows() {
  return {
      Correction<&M::Run_In_Table_Order>("Run_In_Table_Order", "Run in the order of the table")
          .Recommends("True")
          .For("Everybody whose programs use REPEAT.")
          .Named("Program check: repeated lines run in another order")
          .Says("Off: a step runs all rows of its line number at once, so the passes of a repeated "
                "line follow each other. On: the run takes the rows in the order of the table, as "
                "the plot draws them."),
      Correction<&M::Limit_Filter_Steps>("Limit_Filter_Steps", "Filter for limit switches")
          .Plain("0")
          .In("half steps")
          .Between(0, 100'000)
          .For("Machines whose limit switches bounce; docs/hardware.md says how many half steps.")
          .Says("0: a limit switch counts as left as soon as it reads off once, so that a switch "
                "that bounces turns the free side round. Above 0: it counts as left when it has "
                "read off for so many half steps."),
      Correction<&M::Home_Needs_Switch>("Home_Needs_Switch", "Homing needs the switch")
          .Recommends("True")
          .For("Every machine that homes with its switches.")
          .Named("Machine check: homing that does not meet a switch")
          .Says("Off: homing that never meets its switch still sets the position at the end of "
                "the way. On: homing ends there with a message and sets no position."),
      Correction<&M::Port_Shadow>("Port_Shadow", "Port that can't be read back")
          .Changed(After_Change::Reopen_Drive)
          .For("Whoever is told at the start that a port does not read back what is written.")
          .Named("Status panel 1: a port does not read back")
          .Says("Off: each write to the parallel port starts from what the port reads back. On: it "
                "starts from the byte written last, for ports that can't be read back."),
      Correction<&M::Serial_Jog_Pieces>("Serial_Jog_Pieces", "Held jogs of a board in pieces")
          .For("Whoever jogs a machine with a serial board and doubts its cable.")
          .Says("Off: a held jog goes to a serial board as one long move, which only its release "
                "ends. On: it goes in pieces of 150 ms, so that it ends by itself when the link is "
                "lost; behind its release it runs on for up to 0.3 s."),
      Correction<&M::Serial_Path_Feed>("Serial_Path_Feed", "Feed along the path on a board")
          .For("Everybody whose machine is driven by a serial board.")
          .Named("Machine check: the board counts a feed on the axis with the most steps")
          .Says("Off: a serial board counts the feed on the axis with the most steps, by the "
                "smaller scale of X and Y, so that slanting moves are faster than the program "
                "says. On: the speeds sent to it are those of the tool along its path."),
      Correction<&M::Outputs_Before_Dwell>("Outputs_Before_Dwell", "Outputs before a dwell")
          .Changed(After_Change::Recompile)
          .Recommends("True")
          .For("Everybody who writes a dwell to let the spindle come up to speed.")
          .Named("Program check: dwell comes before the outputs switch")
          .Says("Off: a dwell in the same block as M or S words comes before them. On: outputs and "
                "spindle speed come before the dwell."),
      Correction<&M::Slow_Before_Stops>("Slow_Before_Stops", "Slow down before stops")
          .Changed(After_Change::Recompile)
          .Recommends("True")
          .For("Everybody: a machine that stands still out of full feed loses steps.")
          .Named("Program check: move before a stop ends at full feed")
          .Says(
              "Off: a move in front of a dwell, a pause or a wait for an input ends at full feed. "
              "On: it ramps down to the ramp's start speed."),
      Correction<&M::Goto_From_Position>("Goto_From_Position", "Goto from the position")
          .Recommends("True")
          .For("Everybody who writes G91 in a Goto line.")
          .Named("The question before a Goto with G91")
          .Says("Off: a Goto line with G91 counts from zero. On: it counts from where the machine "
                "is."),
  };
}

// What is written to and read from files of programs.
Setup_Row_List Program_File_Rows() {
  return {
      Correction<&M::Export_All_Records>("Export_All_Records", "Export the whole table")
          .Recommends("True")
          .For("Everybody who exports programs that switch outputs or pause.")
          .Named("The message behind an export")
          .Says("Off: an export stops after as many records of the table as the program has moves, "
                "so records of spindle, coolant and pauses cost as many moves at the end. On: it "
                "takes all records."),
      Correction<&M::HPGL_Export_Raw_Z>("HPGL_Export_Raw_Z", "HPGL pen by the Z of the program")
          .Recommends("True")
          .For("Everybody who exports to HPGL.")
          .Named("The message behind an HPGL export")
          .Says(
              "Off: the HPGL export lifts the pen where Z times 1.016 is the normal cut depth, so "
              "hardly ever. On: where Z itself is the normal cut depth."),
      Correction<&M::Motion_File_Any_Length>("Motion_File_Any_Length", "Motion files of any length")
          .Recommends("True")
          .For("Everybody who keeps motion files.")
          .Named("The refusal to save a motion file")
          .Says("Off: a program whose wire table does not come out even in lines of 29 values "
                "cannot be saved as a motion file, so that 28 of 29 programs cannot. On: the last "
                "line is filled up with empty values, which a load takes off again."),
      Correction<&M::Adapt_Always>("Adapt_Always", "Always adapt foreign programs")
          .For("Everybody who mostly opens programs of other machines.")
          .Says("Off: a program is opened as it stands, and a bar offers to adapt it where lines "
                "would "
                "be lost or misread. On: it is adapted when it is opened, where it needs it; the "
                "file "
                "stays as it is."),
  };
}

// How steps, ramps and homing come out.
Setup_Row_List Engine_Rows() {
  return {
      Correction<&M::Backlash_Even>("Backlash_Even", "Backlash by whole steps")
          .Recommends("True")
          .For("Every machine on a parallel port that takes up backlash.")
          .Named("Machine check: backlash take-up makes an odd number of half steps")
          .Says("Off: a take-up of n steps makes 2n + 1 half steps, so that the step pin ends at "
                "its other level and the axis wanders. On: it makes 2n, n to the nearest whole "
                "step."),
      Correction<&M::Home_Tap_Target>("Home_Tap_Target", "Tap of homing behind the switch")
          .Recommends("True")
          .For("Every machine that homes with its switches.")
          .Named("Machine check: homing taps the switch with a move that does not reach it")
          .Says("Off: the tap of homing goes to 0.1 times the steps per unit, on the seek side of "
                "0, wherever the switch is. On: it goes to the home path, which the seek before it "
                "has found to lie behind the switch."),
      Correction<&M::One_Acceleration>("One_Acceleration", "Ramps as they are planned")
          .Recommends("True")
          .For("Every machine on a parallel port. Where the steps per unit are far from 3000 the "
               "ramps change: try Axis_Ramp_Rate anew, from a low value on.")
          .Named("Machine check: the step engine speeds up otherwise than the planner reckons")
          .Says("Off: each half step changes the speed by a hundredth of the ramp rate in units "
                "per minute, whatever the scale, while the planner reckons in hertz a step. On: "
                "the step engine ramps as the planner reckons."),
      Correction<&M::Axis_Scale_Delay>("Axis_Scale_Delay", "Delays by the axis that leads")
          .Recommends("True")
          .For("Machines on a parallel port whose axes differ in their steps per unit. Look at the "
               "highest speeds of the axes first: moves of an axis with more steps per unit than X "
               "become faster, as the program says.")
          .Named("Machine check: every delay is timed by the scale of X")
          .Says("Off: every half step is timed by the steps per unit of X, whichever axis moves. "
                "On: by those of the axis with the most steps in the move."),
      Correction<&M::Drop_Rounding_Of_Loads>("Drop_Rounding_Of_Loads", "End speeds unrounded")
          .Recommends("True")
          .Changed(After_Change::Recompile)
          .For("Everybody with feeds of a few units per minute, where a half is much.")
          .Says("Off: when the wire table is loaded for a run, the end speed of each move is "
                "rounded to a whole number, so that the next move begins at another speed. On: it "
                "stays as planned."),
  };
}

// How drawings are read.
Setup_Row_List Drawing_Reader_Rows() {
  return {
      Correction<&M::Import_Convert_Units>("Import_Convert_Units", "Convert the units of drawings")
          .Recommends("True")
          .For("Everybody who imports drawings of other people.")
          .Named("Import report: the file is in one unit, the setup in another")
          .Says(
              "Off: the numbers of a drawing count as units of the setup, whatever the file says, "
              "and sizes of drills in a metric setup are multiplied by 2.54. On: lengths are "
              "converted from the unit that the file names; where it names none, the import "
              "asks."),
      Correction<&M::Excellon_Header>("Excellon_Header", "Drill files as they say themselves")
          .Recommends("True")
          .For("Everybody who imports drill files.")
          .Named("Import report: digits, tools, slots and repeats of a drill file")
          .Says("Off: digits and zeros of a drill file are those of the setup, a tool that is "
                "selected again loses its earlier holes, tools must be numbered without gaps, and "
                "slots, routes and repeats are not made. On: digits, zeros, tools, slots, routes "
                "and repeats are read as the file says."),
      Correction<&M::HPGL_All_Pairs>("HPGL_All_Pairs", "Plotter files as a plotter reads them")
          .Recommends("True")
          .For("Everybody who imports plotter files.")
          .Named("Import report: pairs behind the first, commands that are not read")
          .Says("Off: of a command with a semicolon the first pair of numbers is read, numbers of "
                "set-up commands may count as places of the pen, and scales, circles, rectangles, "
                "wedges, polygons and encoded strokes are not read. On: all of these are read, "
                "and a pen that goes down and up again drills."),
  };
}

}  // namespace

Setup_Row_List Correction_Rows() {
  return Joined({Running_Rows(), Program_File_Rows(), Engine_Rows(), Drawing_Reader_Rows()});
}

}  // namespace norvik
