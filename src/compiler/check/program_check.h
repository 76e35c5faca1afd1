// program_check.h: what a compile loses or reads otherwise than it was written.
//
// The compiler refuses no program: it leaves out what it cannot read and ignores what it does not
// know. The check runs the same line pass over the program, in memory and without a word to the
// operator, and lists by line where the result is not what the text says to its programmer:
//
//   a line as its programmer reads it      "G1 X1 Y2"      from left to right
//   the same line as the reader cuts it     G1 X1 Y2
//   the two differ                          a finding, with what to write instead
//
// Further findings come from the state before and after each block (words without motion, centres
// and ends taken over by accident), from the records (arcs) and from the wires (travel, number).
// Nothing of a compile is changed by a check: not the tables, not the state, not the files.
#pragma once

#include "compiler/check/findings.h"
#include "compiler/text/program_text.h"

#include <memory>
#include <string>
#include <vector>

namespace norvik {

// All findings: first the lines whose G or M words run together, then by line and column; lines of
// macros behind those of the program. Each line and kind is told once, however often a repeat or a
// macro runs it. Empty while another compile runs. ESC ends the check early; `whole`, where it is
// given, tells whether every line was looked at. `program` is `GCode_Program.Text`, by which texts
// name lines.
std::vector<Check_Finding> Check_Program(std::shared_ptr<const GCode_Text> program,
                                         bool* whole = nullptr);

}  // namespace norvik
