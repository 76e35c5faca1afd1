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

}  // namespace

Setup_Row_List Correction_Rows() {
  return {
      Correction<&M::Run_In_Table_Order>("Run_In_Table_Order", "Run in the order of the table")
          .Says("Off: a step runs all rows of its line number at once, so the passes of a repeated "
                "line follow each other. On: the run takes the rows in the order of the table, as "
                "the plot draws them."),
      Correction<&M::Limit_Filter_Steps>("Limit_Filter_Steps", "Filter for limit switches")
          .Plain("0")
          .In("half steps")
          .Between(0, 100'000)
          .Says("0: a limit switch counts as left as soon as it reads off once, so that a switch "
                "that bounces turns the free side round. Above 0: it counts as left when it has "
                "read off for so many half steps."),
      Correction<&M::Home_Needs_Switch>("Home_Needs_Switch", "Homing needs the switch")
          .Says("Off: homing that never meets its switch still sets the position at the end of "
                "the way. On: homing ends there with a message and sets no position."),
      Correction<&M::Port_Shadow>("Port_Shadow", "Port that can't be read back")
          .Changed(After_Change::Reopen_Drive)
          .Says("Off: each write to the parallel port starts from what the port reads back. On: it "
                "starts from the byte written last, for ports that can't be read back."),
      Correction<&M::Serial_Jog_Pieces>("Serial_Jog_Pieces", "Held jogs of a board in pieces")
          .Says("Off: a held jog goes to a serial board as one long move, which only its release "
                "ends. On: it goes in pieces of 150 ms, so that it ends by itself when the link is "
                "lost; behind its release it runs on for up to 0.3 s."),
      Correction<&M::Serial_Path_Feed>("Serial_Path_Feed", "Feed along the path on a board")
          .Says("Off: a serial board counts the feed on the axis with the most steps, by the "
                "smaller scale of X and Y, so that slanting moves are faster than the program "
                "says. On: the speeds sent to it are those of the tool along its path."),
      Correction<&M::Outputs_Before_Dwell>("Outputs_Before_Dwell", "Outputs before a dwell")
          .Changed(After_Change::Recompile)
          .Says("Off: a dwell in the same block as M or S words comes before them. On: outputs and "
                "spindle speed come before the dwell."),
      Correction<&M::Slow_Before_Stops>("Slow_Before_Stops", "Slow down before stops")
          .Changed(After_Change::Recompile)
          .Says(
              "Off: a move in front of a dwell, a pause or a wait for an input ends at full feed. "
              "On: it ramps down to the ramp's start speed."),
      Correction<&M::Goto_From_Position>("Goto_From_Position", "Goto from the position")
          .Says("Off: a Goto line with G91 counts from zero. On: it counts from where the machine "
                "is."),
      Correction<&M::Export_All_Records>("Export_All_Records", "Export the whole table")
          .Says("Off: an export stops after as many records of the table as the program has moves, "
                "so records of spindle, coolant and pauses cost as many moves at the end. On: it "
                "takes all records."),
      Correction<&M::HPGL_Export_Raw_Z>("HPGL_Export_Raw_Z", "HPGL pen by the Z of the program")
          .Says(
              "Off: the HPGL export lifts the pen where Z times 1.016 is the normal cut depth, so "
              "hardly ever. On: where Z itself is the normal cut depth."),
      Correction<&M::Motion_File_Any_Length>("Motion_File_Any_Length", "Motion files of any length")
          .Says("Off: a program whose wire table does not come out even in lines of 29 values "
                "cannot be saved as a motion file, so that 28 of 29 programs cannot. On: the last "
                "line is filled up with empty values, which a load takes off again."),
      Correction<&M::Adapt_Always>("Adapt_Always", "Always adapt foreign programs")
          .Says("Off: a program is opened as it stands, and a bar offers to adapt it where lines "
                "would "
                "be lost or misread. On: it is adapted when it is opened, where it needs it; the "
                "file "
                "stays as it is."),
  };
}

}  // namespace norvik
