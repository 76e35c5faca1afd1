// serial_session.h: bringing a board to the settings of the machine file, and keeping the link.
#pragma once

#include <functional>
#include <string>

namespace norvik {

struct Serial_Session_Host_Operations {
  // Which device to open: `named` by the operator for the port, `listed` by the system under its
  // number; both may be empty. Takes the named one first by default.
  std::function<std::string(int generation, const std::string& named, const std::string& listed)>
      Choose_Device = [](int, const std::string& named, const std::string& listed) {
        return named.empty() ? listed : named;
      };
};
extern Serial_Session_Host_Operations Serial_Session_Host;

// Section `Platform` of the pointer file: `Serial_Device_1` to `_15` and `Serial_Queue_Seconds`.
inline constexpr int Serial_Port_Count = 15;
std::string Serial_Device_Key(int number);
// The device of port 1..15; empty: there is none.
std::string Device_Of_Port(int number);
double Queue_Seconds_Of_Settings();

// Opens the port of the setup, looks whether the right board answers, and configures it. A board
// met for the first time gets the program's positions; from one met again they are read back.
// False: `Serial_Missing` says why.
bool Serial_Connect();
void Serial_Begin_Session();
void Serial_End_Session();
// About ten times a second: connects again, watches over the far end.
void Serial_Tick();
// Why nothing can be moved, in the operator's words; empty: it can.
std::string_view Serial_Missing();
// What is wrong at this moment: stops can't be delivered, the configuration differs, an encoder is
// in fault; empty: nothing.
std::string_view Serial_Alarm();

// Sends the setup to the board that answers.
bool DravonConfigure();
// A machine file has been loaded: the board in session gets it, unless it moves; without a session
// the next one begins with it. What the board does not take is told.
void Serial_Setup_Loaded();
// Restarts the board and brings it back to the setup.
bool DravonReset();

}  // namespace norvik
