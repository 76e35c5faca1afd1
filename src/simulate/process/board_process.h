// board_process.h: a simulated board as a process: bytes over a pseudo-terminal, line commands over
// a local socket, logs in files.
//
// One loop, no threads. Time is one of three:
//
//   real      the monotonic clock times `Scale`
//   stepped   passes by `advance` on the control socket only
//   frame     each frame that is received lets a fixed time pass
//
// The control socket takes a line at a time and answers each with one line of JSON, an object whose
// "ok" is true, or false with "error" in words.
#pragma once

#include "simulate/board/board_line.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

enum class Board_Time { Real, Stepped, Frame };

struct Board_Process_Options {
  Board_Generation Generation = Board_Generation::Dravon_V4;
  std::string Link;                              // symbolic link to the terminal; empty: none
  std::string Control_Socket;                    // path; empty: none
  std::string Frame_Log, Motion_Log, Event_Log;  // files; empty: none
  std::string Preset = "bench";
  std::vector<std::string> Options, Faults;  // as board_options.h and board_fault.h tell
  Board_Time Time = Board_Time::Real;
  double Scale = 1;                     // of real time, 0.1 to 1000
  std::int64_t Frame_Time = 1'000'000;  // ns a frame
  bool Strict_Speed = false;            // wrong settings of the port give garbage
  bool Panel = false;                   // a page of text on the terminal, with keys
  double Steps_Per_Unit = 0;            // for its speeds; 0: in Hz only
};

struct Board_Process_Host {
  std::function<bool()> Asked_To_Stop = [] { return false; };
  // A line for the person who started it: where the port is, each finding at the end.
  std::function<void(const std::string& line)> Tell = [](const std::string&) {};
};

// Runs until it is asked to stop or told to quit. Raises a fault with words that say what to do
// when an option is wrong or terminal, socket or a log cannot be opened.
void Run_Board_Process(const Board_Process_Options& options, const Board_Process_Host& host);

}  // namespace norvik
