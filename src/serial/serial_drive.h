// serial_drive.h: a controller board on a serial port as a drive.
#pragma once

#include "drive/drive.h"

namespace norvik {

// The board takes moves over and works at them by itself: positions are read back from it, and a
// stop is a command. Both generations; the setup says which.
extern const Drive_Operations Serial_Drive;

// Time of a move on the board of the setup, in seconds; steps of each axis, not negative, speeds in
// IPM.
double Serial_Move_Seconds(const Step_Request& request);

}  // namespace norvik
