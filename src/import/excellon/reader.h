// reader.h: a drill file into the tool tables.
//
// The header runs up to a line "%" and names tool sizes ("T01C0.028"). The body selects tools
// ("T01") and gives holes ("X1000Y2500"); a missing coordinate repeats the one before. A comma ends
// a line like a line end does.
//
// A coordinate with a point is taken as it stands. Without one the format of the setup places it:
//
//   1, leading zeros kept   the first `Excellon_Integer_Format` characters, the point, the next
//                           `Excellon_Decimal_Format`
//   2, trailing zeros kept  the point stands in front of the last `Excellon_Decimal_Format`
//   any other               the number divided by 1000
//
// Short texts are not padded, and a sign counts as a character: under format 1 with 2:3, "+03851"
// is 0.385. Since a wrong format gives a board that is a power of ten too large, the report
// compares the readings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// What follows the first `letter` (a capital) of a line in capitals: blanks are passed over, then
// digits, "+", "-" and "." are taken. Absent when the letter or its digits are missing.
std::optional<std::string_view> Find_Coordinate(char letter, std::string_view line);

// True for a line in capitals that moves Z, as programs do and drill files never do.
bool Is_Line_Of_Program(std::string_view line);
// The note on a file of such lines.
void Report_Program_Instead();

// Fills `Excellon_Table` and the tool list. Yields at every line; ESC ends the load, and so do a
// header tool above 200, a tool above 500 and more than 10,000 holes on one tool. Failures are
// logged as "NC File Load Error".
void Excellon_Load(const std::string& path);

}  // namespace norvik
