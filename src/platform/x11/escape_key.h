// escape_key.h: the ESC key as the X server knows it, whichever program has the focus.
//
// A toolkit hears of keys only while one of its windows has the focus, and a program that makes
// step pulses looks into its event queue every quarter second. The X server knows at any moment
// which keys are down. It is asked over a connection of its own, without waiting for the answer:
//
//   look   look   look   look          every 0.5 ms: is ESC down?
//    |      |      |      |            at most every 50 us: is the answer here?
//    ask ---------> answer ---> ESC down for the looks that follow
//
// A look costs the reading of a clock, at most a microsecond or two where something is sent or
// looked for. An answer older than `Fresh_ns` says nothing: what the key was when the last move
// ended must not end the next.
#pragma once

#include <cstdint>
#include <string>

namespace norvik {

struct Escape_Key_Limits {
  static constexpr std::int64_t Ask_ns = 500'000, Look_ns = 50'000, Fresh_ns = 20'000'000;
};

// Opens the connection. `display` names the X server; empty: that of the environment. What is
// wrong, in words; empty: the key is heard.
std::string Install_Escape_Key(const std::string& display = "");
// The key is down. False while nothing is installed.
bool Escape_Key_Held();
// Closes the connection; the key is no longer heard.
void Remove_Escape_Key();

}  // namespace norvik
