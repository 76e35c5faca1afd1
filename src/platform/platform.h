// platform.h: what the operator's environment gives, as one record of operations.
//
// Everything that the logic needs from the operating system, the window toolkit or the hardware
// goes through `Platform`. The programs fill it at start with their back ends, the tests with
// scripted ones. A record's default-constructed operation does nothing and answers as an
// environment without that thing would (no key is down, no port answers, a dialog is cancelled), so
// that a room runs alone.
//
// All reading of time goes through here, so that a virtual clock can run a two-hour job in seconds
// with the same results.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Answer of a message box; Ok also stands for a box with one button.
enum class Box_Answer { Ok, Yes, No, Cancel };
// What Enter means is the first one, but Cancel or No where going on can do harm: with `Ok_Cancel`,
// `Continue_Cancel`, `Yes_No` and the careful form of three. Continue answers Ok.
enum class Box_Buttons {
  Ok,
  Yes_No,
  Yes_No_Cancel,
  Yes_No_Cancel_Careful,
  Ok_Cancel,
  Continue_Cancel
};

// Local date and time of day.
struct Calendar_Time {
  int Year = 2000, Month = 1, Day = 1, Hour = 0, Minute = 0, Second = 0;
};

// Widths and positions of the screen in pixels.
struct Screen_Area {
  int Left = 0, Top = 0, Width = 1024, Height = 768;
};

// One reading of a joystick: axes 0..65535 with 32767 as the middle, as the game port gave them.
struct Joystick_State {
  std::int32_t Axis_X = 32767, Axis_Y = 32767, Axis_Z = 32767, Axis_R = 32767, Axis_U = 32767,
               Axis_V = 32767;
  std::uint32_t Buttons = 0;                   // bit 0 is button 1
  std::optional<std::int32_t> Pov_Hundredths;  // 0..35900, absent when the hat is centred
};

// A decoded picture: rows from the top, three bytes (red, green, blue) a pixel.
struct Picture {
  std::int32_t Width = 0, Height = 0;
  std::vector<std::uint8_t> Rgb;
};

// What a file dialog is asked. `Filter` is pairs of text and pattern joined by "|"; the entry
// `Filter_Index`, counted from 1, is selected when the dialog opens.
struct File_Dialog {
  std::string Title, Filter, Directory, File_Name, Default_Extension;
  int Filter_Index = 1;
  // A further button of an open dialog, "Options...", ends the dialog without a file and runs this.
  std::function<void()> On_Options = {};
};

// Virtual key codes that the logic asks for; printable keys use their upper-case ASCII code.
namespace key {
inline constexpr int Escape = 27, F4 = 115, F5 = 116, F6 = 117;
}

enum class Mouse_Pointer { Normal, Busy };

// A serial port that this computer has.
struct Serial_Port_Info {
  std::string Device;       // what `Serial_Open` takes: a path, or a name that a back end gives
  std::string Description;  // words of the system, empty when it has none
  std::string
      Problem;  // why it cannot be opened and what to do; empty: nothing is known against it
};

// What an attempt to open a serial port came to.
struct Serial_Opened {
  int Handle = 0;       // from 1; 0: not open
  std::string Problem;  // words for the operator when it is not open
};

using Timer_Id = int;

struct Platform_Operations {
  // --- The event queue -------------------------------------------------------------------------
  // Handles what waits in the event queue, timers included, and returns.
  std::function<void()> Do_Events = [] {};
  // True when mouse or keyboard input waits in the queue.
  std::function<bool()> Input_Pending = [] { return false; };
  // Calls `handler` every `interval_ms` from within Do_Events until stopped; 0 is never an id.
  std::function<Timer_Id(int interval_ms, std::function<void()> handler)> Start_Timer =
      [](int, std::function<void()>) { return 1; };
  std::function<void(Timer_Id)> Stop_Timer = [](Timer_Id) {};
  // Ends the process once the running handler has returned.
  std::function<void()> End_Process = [] {};
  // True when another instance of the program runs for this user.
  std::function<bool()> Other_Instance_Runs = [] { return false; };

  // --- Talking to the operator -----------------------------------------------------------------
  std::function<Box_Answer(const std::string& title, const std::string& text, Box_Buttons buttons)>
      Message_Box = [](const std::string&, const std::string&, Box_Buttons buttons) {
        return buttons == Box_Buttons::Ok ? Box_Answer::Ok : Box_Answer::Cancel;
      };
  // Absent when cancelled.
  std::function<std::optional<std::string>(const std::string& title, const std::string& prompt,
                                           const std::string& initial)>
      Input_Box = [](const std::string&, const std::string&, const std::string&) {
        return std::optional<std::string>();
      };
  std::function<std::optional<std::string>(const File_Dialog&)> Open_File_Dialog =
      [](const File_Dialog&) { return std::optional<std::string>(); };
  std::function<std::optional<std::string>(const File_Dialog&)> Save_File_Dialog =
      [](const File_Dialog&) { return std::optional<std::string>(); };
  std::function<void()> Beep = [] {};
  std::function<void(Mouse_Pointer)> Set_Mouse_Pointer = [](Mouse_Pointer) {};
  // Plays a sound file without waiting for its end.
  std::function<void(const std::string& path)> Play_Sound = [](const std::string&) {};
  // Prints one page stream of text lines; false when there is no printer or it was cancelled.
  std::function<bool(const std::vector<std::string>& lines)> Print_Lines =
      [](const std::vector<std::string>&) { return false; };
  std::function<Screen_Area()> Screen = [] { return Screen_Area(); };

  // --- Keys and joystick -----------------------------------------------------------------------
  // True while the key is down, whichever window has the focus, or when it went down since the last
  // call for this key, so that a short press between two polls is not missed.
  std::function<bool(int key_code)> Key_Down = [](int) { return false; };
  // Absent when no joystick answers.
  std::function<std::optional<Joystick_State>(int device)> Read_Joystick = [](int) {
    return std::optional<Joystick_State>();
  };

  // --- Time ------------------------------------------------------------------------------------
  // Seconds since midnight, local time; goes back at midnight and when the clock is set.
  std::function<double()> Day_Clock = [] { return 0.0; };
  // Nanoseconds from an arbitrary start; never goes back.
  std::function<std::int64_t()> Monotonic_Clock = [] { return std::int64_t{0}; };
  std::function<Calendar_Time()> Local_Time = [] { return Calendar_Time(); };
  // Busy wait of at least so many microseconds, accurate to about one.
  std::function<void(std::int32_t microseconds)> Delay_Microseconds = [](std::int32_t) {};
  // The same wait for loops with a period: `period_ns` is the time from the end of the wait before
  // to the end of this one that the loop is meant to have, its own work included. The wait may
  // differ from `microseconds` by one or two to keep that period (platform/period.h). Empty: the
  // loop uses Delay_Microseconds.
  std::function<void(std::int32_t microseconds, std::int64_t period_ns)> Delay_In_Period;

  // --- Ports and process -----------------------------------------------------------------------
  // Byte access to an I/O port. An access that fails raises a std::runtime_error with words for the
  // operator, every time.
  std::function<std::uint8_t(std::uint16_t address)> Port_Read = [](std::uint16_t) {
    return std::uint8_t{255};
  };
  std::function<void(std::uint16_t address, std::uint8_t value)> Port_Write = [](std::uint16_t,
                                                                                 std::uint8_t) {};
  // The serial ports that exist, in the order of the system.
  std::function<std::vector<Serial_Port_Info>()> Serial_Ports = [] {
    return std::vector<Serial_Port_Info>();
  };
  // Opens a port of `Serial_Ports`, or another device by its path, for this program alone: 8 data
  // bits, no parity, 1 stop bit, no handshake, every byte value unchanged, `baud` bits a second.
  std::function<Serial_Opened(const std::string& device, std::int32_t baud)> Serial_Open =
      [](const std::string& device, std::int32_t) {
        return Serial_Opened{0, "There is no serial port " + device + "."};
      };
  // Hands all bytes over to the port without waiting until they are on the line. False: the port is
  // gone or takes nothing more.
  std::function<bool(int handle, const std::vector<std::uint8_t>& bytes)> Serial_Write =
      [](int, const std::vector<std::uint8_t>&) { return false; };
  // Bytes that have arrived and were not read; -1: the port is gone.
  std::function<std::int32_t(int handle)> Serial_Available = [](int) { return std::int32_t{-1}; };
  // Appends what has arrived to `bytes`, without waiting. False: the port is gone.
  std::function<bool(int handle, std::vector<std::uint8_t>& bytes)> Serial_Read =
      [](int, std::vector<std::uint8_t>&) { return false; };
  std::function<void(int handle)> Serial_Close = [](int) {};
  // 0 normal, 1 high, 2 real time. Answers the words for the operator when a right was refused,
  // the empty text otherwise.
  std::function<std::string(int level)> Set_Priority = [](int) { return std::string(); };

  // --- Pictures --------------------------------------------------------------------------------
  // Decodes a JPG, BMP or GIF file; absent when it cannot be read.
  std::function<std::optional<Picture>(const std::string& path)> Load_Picture =
      [](const std::string&) { return std::optional<Picture>(); };
};

extern Platform_Operations Platform;

// The one yield. Long work calls it only where the behaviour names a yield; handlers that run in it
// set flags, which the caller reads afterwards.
inline void DoEvents() {
  Platform.Do_Events();
}

}  // namespace norvik
