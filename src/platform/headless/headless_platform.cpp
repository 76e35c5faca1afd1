#include "platform/headless/headless_platform.h"

#include "platform/platform.h"
#include "platform/timer_queue.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <utility>

#include <unistd.h>

namespace norvik {

Headless_State Headless;

namespace {

// Written by the signal handler and read between yields.
volatile std::sig_atomic_t Interrupts = 0;
volatile std::sig_atomic_t Guarded = 0;  // a machine is driven

struct Queue_State {
  Timer_Queue Timers;
  int Interrupts_Taken = 0;  // of `Interrupts`, those already seen as ESC
};
Queue_State Queue;

void On_Signal(int signal) {
  Interrupts = Interrupts + 1;
  if (Interrupts >= 2 && Guarded == 0) std::signal(signal, SIG_DFL);
}

void Take_Signals() {
  std::signal(SIGINT, On_Signal);
  std::signal(SIGTERM, On_Signal);
  // Who started the process with nohup wants it to outlive its terminal.
  if (std::signal(SIGHUP, On_Signal) == SIG_IGN) std::signal(SIGHUP, SIG_IGN);
}

std::int64_t Real_Monotonic() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

std::tm Local_Parts(std::time_t moment) {
  std::tm parts{};
  ::localtime_r(&moment, &parts);
  return parts;
}

double Real_Day_Clock() {
  std::timespec now{};
  std::timespec_get(&now, TIME_UTC);
  const std::tm parts = Local_Parts(now.tv_sec);
  return parts.tm_hour * 3600.0 + parts.tm_min * 60.0 + parts.tm_sec +
         static_cast<double>(now.tv_nsec) / 1e9;
}

Calendar_Time Real_Local_Time() {
  const std::tm parts = Local_Parts(std::time(nullptr));
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
          parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

void Busy_Delay(std::int32_t microseconds) {
  const std::int64_t end = Real_Monotonic() + std::int64_t{microseconds} * 1'000;
  while (Real_Monotonic() < end) {
  }
}

void End_Now() {
  std::fflush(nullptr);
  std::_Exit(130);
}

void Handle_Events() {
  if (Interrupts >= 2) {
    const auto end = Headless.On_End ? Headless.On_End : std::function<void()>(End_Now);
    Interrupts = 0;  // The orderly end yields as well.
    Queue.Interrupts_Taken = 0;
    end();
  }
  if (Queue.Timers.Size() > 0) Queue.Timers.Run_Due(Real_Monotonic());
}

bool Escape_Seen() {
  const int seen = Interrupts;
  if (seen <= Queue.Interrupts_Taken) return false;
  Queue.Interrupts_Taken = seen;
  return true;
}

Box_Answer Box_On_Standard_Error(const std::string& title, const std::string& text,
                                 Box_Buttons buttons) {
  if (title.empty()) {
    std::fprintf(stderr, "%s\n", text.c_str());
  } else {
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
  }
  return buttons == Box_Buttons::Ok ? Box_Answer::Ok : Box_Answer::Cancel;
}

void Beep_On_Terminal() {
  if (::isatty(STDERR_FILENO) != 0) std::fputc('\a', stderr);
}

void Install_Timers() {
  Platform.Start_Timer = [](int interval_ms, std::function<void()> handler) {
    return Queue.Timers.Start(interval_ms, Real_Monotonic(), std::move(handler));
  };
  Platform.Stop_Timer = [](Timer_Id id) { Queue.Timers.Stop(id); };
}

}  // namespace

int Interrupts_Seen() {
  return Interrupts;
}

void Install_Headless_Platform() {
  Platform = {};
  Headless = {};
  Queue = {};
  Interrupts = 0;
  Guarded = 0;
  Platform.Do_Events = Handle_Events;
  Install_Timers();
  Platform.End_Process = [] { Headless.End_Requested = true; };
  Platform.Message_Box = Box_On_Standard_Error;
  Platform.Beep = Beep_On_Terminal;
  Platform.Key_Down = [](int code) { return code == key::Escape && Escape_Seen(); };
  Platform.Day_Clock = Real_Day_Clock;
  Platform.Monotonic_Clock = Real_Monotonic;
  Platform.Local_Time = Real_Local_Time;
  Platform.Delay_Microseconds = Busy_Delay;
  Take_Signals();
}

void Guard_Driven_Machine() {
  Guarded = 1;
  Take_Signals();
  for (const int signal : {SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU}) std::signal(signal, SIG_IGN);
}

}  // namespace norvik
