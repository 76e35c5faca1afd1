// reader.h: a plotter file into the thirteen-field line file.
//
// The file is a stream of commands: two letters and numbers, ended by ";" or by the letter of the
// next command. Only pen moves, arcs and the pen selection act:
//
// | command | effect                                                              |
// |---------|---------------------------------------------------------------------|
// | PU, PD  | pen up, down; back to absolute coordinates                          |
// | PA, PR  | absolute, relative coordinates                                      |
// | AA, AR  | arc about an absolute, relative centre; the third number is degrees |
// | SP      | selects a pen, when several pens are set up                         |
//
// Any other command leaves the mode as it is, and its numbers are read like those of a move. A
// command ended by ";" gives one pair only (one arc). Each stroke with the pen down is a record in
// file units over 1016, which makes inches of plotter units.
#pragma once

#include <string>

namespace norvik {

// Writes the strokes of `path` to `line_file`. Yields every 1000 characters; ESC ends the reading.
void HPGL_Load(const std::string& path, const std::string& line_file);

}  // namespace norvik
