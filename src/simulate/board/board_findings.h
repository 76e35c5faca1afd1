// board_findings.h: what a board and the machine behind it would have suffered from, in plain
// words.
//
// One entry for each kind and axis, with the count, the times of the first and the last case and
// the words of the first one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

enum class Board_Finding_Kind {
  Ran_Empty,          // the queue, while a stream was on
  Doubled_Move,       // equal to the one before in all bytes after a lost reply
  Too_Fast,           // above the machine's limit
  Rate_Jump,          // from one entry to the next, or from rest
  Rate_Too_Low,       // a start rate below the slowest
  Move_After_Stop,    // without an enable in between
  Unprepared_Axis,    // steps without AxisPrepare
  Divider_Too_Small,  // an axis that would step more often than the entry counts
  Ramps_Too_Long,     // longer than the entry
  Dwell_Output,       // a dwell that changes an output
  Both_Spindle_Directions,
  Counter_Wrap,   // beyond 24 bits
  Limit,          // a switch was reached
  Hard_Stop,      // the carriage stood still while the motor went on
  Encoder_Error,  // too far from the steps
  Refused_Move,   // full, disabled, in fault, towards a switch
  Load_While_Moving,
  Bad_Frame,    // checksum, unknown code, or cut by a gap
  Bad_Value,    // that the command does not allow
  Wrong_Speed,  // the port was set to another speed or form
  Restart,
};

struct Board_Finding {
  Board_Finding_Kind Kind = Board_Finding_Kind::Ran_Empty;
  int Axis = 0;                      // 1..4; 0: none
  std::int64_t First = 0, Last = 0;  // ns of the board's clock
  std::int64_t Count = 0;
  std::string Text;
};

struct Board_Findings {
  std::vector<Board_Finding> List;  // in the order of their first case
};

// The entry of this kind and axis with one case more. Its text is empty when it is the first: the
// caller then words it.
Board_Finding& Count_Board_Finding(Board_Findings& findings, Board_Finding_Kind kind, int axis,
                                   std::int64_t time);
// Cases of a kind so far, for one axis or, with 0, for all.
std::int64_t Board_Finding_Count(const Board_Findings& findings, Board_Finding_Kind kind,
                                 int axis = 0);
// One line for each entry, the one that happened last first: "1.234567 s  X: ... (3 times)".
std::vector<std::string> Board_Findings_Text(const Board_Findings& findings);

}  // namespace norvik
