// words.h: one line of a foreign program without its comments and blanks.
//
//   /n10 g0x [#1 + 2] (over) y3 ; and on     Code  "N10G0X[#1+2]Y3"    Deleted
//                                            Comments  "over", "and on"
//
// Upper case, no blanks, as controllers read a line. A bracket that stands where no value can stand
// opens a comment, as it does on this machine: "G1 X2 [note]".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvik::adapting {

struct Foreign_Line {
  std::string_view Raw;                    // the line as it stands
  std::string Code;                        // upper case, without blanks and comments
  std::vector<std::string_view> Comments;  // what stands inside
  bool Deleted = false;                    // a slash stands in front
  bool Tape_Mark = false;                  // only "%"
  bool Open_Comment = false;               // a comment has no end
};

// Reuses what `line` holds.
void Take_Apart(std::string_view text, Foreign_Line& line);

}  // namespace norvik::adapting
