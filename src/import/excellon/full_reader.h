// full_reader.h: a drill file as its own header and comments say (correction `Excellon_Header`).
//
// | text                              | meaning                                                |
// |-----------------------------------|--------------------------------------------------------|
// | M48 ... % or M95                  | the header                                             |
// | METRIC, INCH, M71, M72            | unit; behind a comma LZ, TZ and digits ("000.00")      |
// | ;FORMAT={2:4/ .. / suppress ..},  | digits and zeros in comments                           |
// | ;FILE_FORMAT=2:4                  |                                                        |
// | T1C0.8 ...                        | size of a tool, behind the header also its selection   |
// | X..Y..                            | a hole, or a cut while a route is under way            |
// | X..Y..G85X..Y..                   | a slot                                                 |
// | G00, M15, G01 G02 G03, M16 M17    | a route: to its start, down, along, up; G05 ends it    |
// | R5X..Y..                          | the last hole five times more, each a step further     |
// | M25 .. M01, M02X..Y.., M08        | a pattern, repeated a step further                     |
// | G90, G91, ICI,ON, ICI,OFF         | absolute and incremental coordinates                   |
//
// LZ means that leading zeros are kept: short texts are filled with zeros behind. TZ means that
// trailing ones are kept: they are filled in front. A sign is no digit, a text with a point stands
// as it is. What the file does not say is taken from the setup; a file with a unit word and zeros
// but no digits counts 3:3 in millimetres and 2:4 in inches.
#pragma once

#include <string>

namespace norvik {

// Fills `Excellon_Table` and the tool list and reports; every tool with holes is to be drilled.
// Raises a file fault. ESC ends the load, and so does a tool above 500.
void Excellon_Load_Full(const std::string& path);

}  // namespace norvik
