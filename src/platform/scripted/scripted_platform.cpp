#include "platform/scripted/scripted_platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr double Nanoseconds = 1e9;
constexpr double Day_Seconds = 86'400;

template <class Answer>
Answer Take(std::deque<Answer>& answers, Answer otherwise) {
  if (answers.empty()) return otherwise;
  Answer answer = answers.front();
  answers.pop_front();
  return answer;
}

}  // namespace

Scripted_Platform::Scripted_Platform() : Before(Platform) {
  Platform = {};
  Install_Time();
  Install_Dialogs();
  Install_Devices();
}

Scripted_Platform::~Scripted_Platform() {
  Platform = Before;
}

void Scripted_Platform::Advance(double seconds) {
  Now += static_cast<std::int64_t>(std::llround(seconds * Nanoseconds));
}

void Scripted_Platform::Run_For(double seconds) {
  const std::int64_t end = Now + static_cast<std::int64_t>(std::llround(seconds * Nanoseconds));
  while (Now < end) {
    const std::int64_t before = Now;
    DoEvents();
    if (Now != before) continue;
    // Yields cost nothing: go on to the next timer or to the end.
    Now = std::clamp(Timers.Next_Due(), Now, end);
  }
  DoEvents();
}

int Scripted_Platform::Running_Timers() const {
  return static_cast<int>(Timers.Size());
}

void Scripted_Platform::Install_Time() {
  Platform.Do_Events = [this] { Yield(); };
  Platform.Start_Timer = [this](int interval_ms, std::function<void()> handler) {
    return Timers.Start(interval_ms, Now, std::move(handler));
  };
  Platform.Stop_Timer = [this](Timer_Id id) { Timers.Stop(id); };
  Platform.Monotonic_Clock = [this] { return Now; };
  Platform.Day_Clock = [this] {
    return std::fmod(Day_Start + static_cast<double>(Now) / Nanoseconds, Day_Seconds);
  };
  Platform.Local_Time = [this] { return Calendar; };
  Platform.Delay_Microseconds = [this](std::int32_t microseconds) {
    if (Record_Delays) Delays.push_back(microseconds);
    if (microseconds > 0) Now += std::int64_t{microseconds} * 1'000;
  };
  Platform.Input_Pending = [this] { return Input_Waits; };
  Platform.Other_Instance_Runs = [this] { return Other_Instance; };
  Platform.End_Process = [this] { Process_Ended = true; };
}

void Scripted_Platform::Install_Dialogs() {
  Platform.Message_Box = [this](const std::string& title, const std::string& text,
                                Box_Buttons buttons) {
    Boxes.push_back({title, text, buttons});
    return Take(Box_Answers, buttons == Box_Buttons::Ok ? Box_Answer::Ok : Box_Answer::Cancel);
  };
  Platform.Input_Box = [this](const std::string& title, const std::string& prompt,
                              const std::string& initial) {
    Inputs.push_back({title, prompt, initial});
    return Take(Input_Answers, std::optional<std::string>());
  };
  Platform.Open_File_Dialog = [this](const File_Dialog& dialog) {
    Open_Dialogs.push_back(dialog);
    return Take(Open_Answers, std::optional<std::string>());
  };
  Platform.Save_File_Dialog = [this](const File_Dialog& dialog) {
    Save_Dialogs.push_back(dialog);
    return Take(Save_Answers, std::optional<std::string>());
  };
}

void Scripted_Platform::Install_Devices() {
  Platform.Beep = [this] { ++Beeps; };
  Platform.Set_Mouse_Pointer = [this](Mouse_Pointer pointer) { Pointers.push_back(pointer); };
  Platform.Play_Sound = [this](const std::string& path) { Sounds.push_back(path); };
  Platform.Print_Lines = [this](const std::vector<std::string>& lines) {
    if (Printer_Present) Prints.push_back(lines);
    return Printer_Present;
  };
  Platform.Screen = [this] { return Screen_Size; };
  Platform.Key_Down = [this](int code) {
    return Keys_Pressed.erase(code) > 0 || Keys_Held.contains(code);
  };
  Platform.Read_Joystick = [this](int device) {
    const auto found = Joysticks.find(device);
    return found == Joysticks.end() ? std::nullopt : std::optional(found->second);
  };
  Platform.Port_Read = [this](std::uint16_t address) {
    if (On_Port_Read) return On_Port_Read(address);
    const auto found = Ports.find(address);
    return found == Ports.end() ? std::uint8_t{255} : found->second;
  };
  Platform.Port_Write = [this](std::uint16_t address, std::uint8_t value) {
    if (On_Port_Write) return On_Port_Write(address, value);
    Ports[address] = value;
  };
  Platform.Set_Priority = [this](int level) {
    Priorities.push_back(level);
    return Priority_Refusal;
  };
  Platform.Load_Picture = [this](const std::string& path) {
    const auto found = Pictures.find(path);
    return found == Pictures.end() ? std::nullopt : std::optional(found->second);
  };
}

void Scripted_Platform::Yield() {
  ++Yields;
  Now += Yield_Nanoseconds;
  Timers.Run_Due(Now);
  if (On_Yield) On_Yield();
}

}  // namespace norvik
