// block_reader.h: a line of text to a block.
//
// The grammar is that of RS274/NGC in its words, but a line is not read from left to right. Each
// letter is looked for in turn and its word cut out of what is left of the line:
//
//   comment -> ENDREPEAT, REPEAT -> N -> all M -> all G -> A B C X Y Z I J K D F H -> L -> P Q R S
//   T
//
//   "X1 G1 Y2"   G: cut "G1 "  ->  "X1 Y2"   X: cut "X1 "  ->  "Y2"   Y: cut  ->  ""
//
// So the order of the words means nothing, what stays in the line is ignored without a word, and
// reading ends once fewer than two characters are left. Words that run together are cut by a
// position that is right only at the front of the line (line_cutter.h); other results are odd, and
// wanted: programs that compile today must not change.
//
// Two ways lead to the same block. A line whose words stand apart, each a letter and a plain
// number, is read in one scan (line_scan.h). All others are cut as told.
//
// Sticky values: each word read is also kept as the last value of its letter, even where the block
// fails later on.
#pragma once

#include "compiler/text/block.h"

#include <string>
#include <string_view>

namespace norvik {

// Reads the line into `block` and stores the sticky values. Raises a type, overflow or out-of-range
// fault for a word that cannot be converted; words read before it are stored.
void Read_Words(std::string_view text, Block& block);
// The same by cutting alone. `left`, where given, takes what no word of the reader used up, in
// upper case.
void Read_Words_By_Cutting(std::string_view text, Block& block, std::string* left = nullptr);

}  // namespace norvik
