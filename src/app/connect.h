// connect.h: fills the hooks of the rooms below with each other.
#pragma once

namespace norvik {

// Once at the start of a program with an operator, before anything is loaded: compile, import,
// plot, run loop and drive reach one another, and every kind of file that can be opened has its
// opener.
void Connect_App();

}  // namespace norvik
