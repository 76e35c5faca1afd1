// scripted_platform.h: an environment that a test writes and reads.
//
//   Scripted_Platform scripted;                       // in a fixture: installs, and restores at
//   its end scripted.Answer_Box(Box_Answer::Yes);             // queued answers
//   scripted.Open_Answers.push_back("/tmp/part.gc");
//   scripted.On_Yield = [&] { if (++n == 3) scripted.Press(key::Escape); };
//   ...
//   EXPECT_EQ(scripted.Boxes.back().Text, "...");     // what happened
//
// Time is virtual. Delays move the clock by what they were asked for, a yield moves it by
// `Yield_Nanoseconds` and then runs the timers that are due, so that a loop that waits by yielding
// comes to its end and a two-hour job takes as long as its instructions do. Timers run from within
// Do_Events, in the order in which they fall due, and never inside their own handler.
#pragma once

#include "platform/platform.h"
#include "platform/timer_queue.h"

#include <array>
#include <deque>
#include <map>
#include <set>

namespace norvik {

struct Scripted_Platform {
  Scripted_Platform();
  ~Scripted_Platform();
  Scripted_Platform(const Scripted_Platform&) = delete;
  Scripted_Platform& operator=(const Scripted_Platform&) = delete;

  // --- Time --------------------------------------------------------------------------------------
  std::int64_t Now = 0;                    // nanoseconds; the monotonic clock
  std::int64_t Yield_Nanoseconds = 1'000;  // 0: only delays and Advance move the clock
  double Day_Start = 36'000;               // day clock at Now = 0: ten o'clock
  Calendar_Time Calendar{2024, 5, 6, 10, 20, 30};
  // Moves the clock without running timers.
  void Advance(double seconds);
  // Yields until so many seconds have passed, whatever `Yield_Nanoseconds` is: timers run when due.
  void Run_For(double seconds);

  // --- The event queue ---------------------------------------------------------------------------
  std::int64_t Yields = 0;         // calls of Do_Events so far
  std::function<void()> On_Yield;  // called in each, after the timers
  bool Input_Waits = false;
  bool Other_Instance = false;
  bool Process_Ended = false;
  int Running_Timers() const;

  // --- Answers, taken from the front; none left: as a default-constructed Platform ---------------
  std::deque<Box_Answer> Box_Answers;
  std::deque<std::optional<std::string>> Input_Answers, Open_Answers, Save_Answers;
  void Answer_Box(Box_Answer answer) { Box_Answers.push_back(answer); }

  // --- What was shown, asked and played ----------------------------------------------------------
  struct Shown_Box {
    std::string Title, Text;
    Box_Buttons Buttons = Box_Buttons::Ok;
  };
  struct Shown_Input {
    std::string Title, Prompt, Initial;
  };
  std::vector<Shown_Box> Boxes;
  std::vector<Shown_Input> Inputs;
  std::vector<File_Dialog> Open_Dialogs, Save_Dialogs;
  std::vector<std::string> Sounds;
  std::vector<std::vector<std::string>> Prints;
  std::vector<Mouse_Pointer> Pointers;
  std::vector<int> Priorities;
  std::vector<std::int32_t> Delays;  // microseconds asked for; recorded when Record_Delays is set
  int Beeps = 0;
  bool Record_Delays = false;
  bool Printer_Present = true;
  std::string Priority_Refusal;  // what Set_Priority answers
  Screen_Area Screen_Size;
  std::map<std::string, Picture> Pictures;  // by path

  // --- Keys and joystick -------------------------------------------------------------------------
  std::set<int> Keys_Held;
  // A short press: down at the next look only.
  void Press(int key_code) { Keys_Pressed.insert(key_code); }
  std::map<int, Joystick_State> Joysticks;  // by device

  // --- Ports -------------------------------------------------------------------------------------
  // A write is kept and read back; a port never written reads 255. The functions replace that.
  std::function<std::uint8_t(std::uint16_t)> On_Port_Read;
  std::function<void(std::uint16_t, std::uint8_t)> On_Port_Write;
  std::map<std::uint16_t, std::uint8_t> Ports;

 private:
  void Install_Time();
  void Install_Dialogs();
  void Install_Devices();
  void Yield();

  Platform_Operations Before;
  Timer_Queue Timers;
  std::set<int> Keys_Pressed;
};

}  // namespace norvik
