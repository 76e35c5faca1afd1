// block_reader.h: a line of text to a block.
//
// A word is a letter and a number, as in "X1.5". A line is not read from left to right: the reader
// goes through the letters in a fixed order, looks for each in the line, and cuts its word out, so
// that the line becomes shorter and shorter:
//
//   comment -> ENDREPEAT, REPEAT -> N -> all M -> all G -> A B C X Y Z I J K D F H -> L -> P Q R S
//   T
//
//   "X1 G1 Y2"   G: cut "G1 "  ->  "X1 Y2"   X: cut "X1 "  ->  "Y2"   Y: cut  ->  ""
//
// Three things follow:
//   - The order of the words in the line means nothing.
//   - What is left in the line after the last letter is ignored, without a message; the program
//     check (compiler/check) is there to name it. Reading ends once fewer than two characters are
//     left.
//   - The end of a word is found by a rule that is exact only for the first word of the line
//     (line_cutter.h). Words without blanks between them, as in "G1X1Y2", can therefore be cut in
//     the wrong place. That is kept: a program that compiles today must give the same moves.
//
// Cutting is slow. A line whose words have blanks between them and plain numbers gives the same
// block in one scan from left to right (line_scan.h), so that way is taken where the line allows
// it.
//
// Each word read is also remembered as the last value of its letter, for words that a later line
// leaves out. It is remembered even if the rest of the line then fails.
#pragma once

#include "compiler/text/block.h"

#include <string>
#include <string_view>

namespace norvik {

// Reads the line into `block` and remembers the last values of its letters. Raises a type, overflow
// or out-of-range fault for a word that cannot be converted; words read before it are stored.
void Read_Words(std::string_view text, Block& block);
// The same by cutting alone. `left`, where given, receives the part of the line, in upper case,
// that no word used.
void Read_Words_By_Cutting(std::string_view text, Block& block, std::string* left = nullptr);

}  // namespace norvik
