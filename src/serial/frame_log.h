// frame_log.h: every exchange with a board as a line of a file.
//
//   12 1B 0C 27 00 / 1B 0C 27 00
//
// Number of the exchange, the bytes that were sent, and behind the stroke what came back; "-":
// nothing did.
#pragma once

#include <string>

namespace norvik {

// Begins a log; raises a fault when the file cannot be written.
void Record_Frames_To_File(const std::string& path);
// Ends it. False when something could not be written.
bool Stop_Frame_Recorder();

}  // namespace norvik
