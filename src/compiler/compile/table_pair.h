// table_pair.h: the two tables of one compile on their way to the place where others read them.
//
// nanosecond: a pair that a crash, a power cut or a full disk left half replaced is recognised by
// its different times. No byte of the tables is spent on it.
#pragma once

#include <string>

namespace norvik {

// Puts two files, which lie on the disk of the folder, into the folder under their own names, in
// place of those of before, as a pair. The paths then name the new places. Raises a file fault.
void Place_Table_Pair(const std::string& folder, std::string& records, std::string& wires);

enum class Pair_Standing {
  Nothing,  // one of the tables is missing
  Whole,    // of one compile
  Mixed,    // of different compiles, or touched by another program since
};
// How the tables of a folder stand to each other. The record table may belong to a Goto line, whose
// wires have a file of their own.
Pair_Standing Standing_Of_Pair(const std::string& folder);

// What to tell about a mixed pair, with what to do.
std::string Words_About_Mixed_Pair(const std::string& folder);

}  // namespace norvik
