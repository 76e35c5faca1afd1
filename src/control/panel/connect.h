// connect.h: fills the hooks of the drive with the run loop.
#pragma once

namespace norvik {

// Once at start, before anything moves: the drive's calls reach the run loop and the panel, and
// dialogs end a held jog.
void Connect_Control();

}  // namespace norvik
