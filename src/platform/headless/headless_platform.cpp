#include "platform/headless/headless_platform.h"

#include "platform/platform.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

namespace norvik {

Headless_State Headless;

namespace {

// Written by the signal handler and read between yields.
volatile std::sig_atomic_t Interrupts = 0;
volatile std::sig_atomic_t Guarded = 0;  // a machine is driven

struct Timer {
  Timer_Id Id = 0;
  std::int64_t Interval = 0, Due = 0;  // nanoseconds
  std::function<void()> Handler;
  bool Running = false;
};

struct Queue_State {
  std::vector<Timer> Timers;
  Timer_Id Last_Timer = 0;
  std::int64_t Next_Due = 0;  // no timer is due before
  int Interrupts_Taken = 0;   // of `Interrupts`, those already seen as ESC
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

void Note_Next_Due() {
  Queue.Next_Due = INT64_MAX;
  for (const Timer& timer : Queue.Timers) {
    if (!timer.Running) Queue.Next_Due = std::min(Queue.Next_Due, timer.Due);
  }
}

Timer* Due_Timer(std::int64_t now) {
  Timer* next = nullptr;
  for (Timer& timer : Queue.Timers) {
    if (timer.Running || timer.Due > now) continue;
    if (next == nullptr || timer.Due < next->Due) next = &timer;
  }
  return next;
}

// Each due timer once. A handler may start and stop timers and may yield; it never runs inside
// itself.
void Run_Due_Timers(std::int64_t now) {
  while (Timer* timer = Due_Timer(now)) {
    const Timer_Id id = timer->Id;
    const auto handler = timer->Handler;
    timer->Due = std::max(timer->Due + timer->Interval, now + 1);
    timer->Running = true;
    handler();
    const auto place = std::find_if(Queue.Timers.begin(), Queue.Timers.end(),
                                    [id](const Timer& other) { return other.Id == id; });
    if (place != Queue.Timers.end()) place->Running = false;
  }
  Note_Next_Due();
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
  if (Queue.Timers.empty()) return;
  const std::int64_t now = Real_Monotonic();
  if (now >= Queue.Next_Due) Run_Due_Timers(now);
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
    const std::int64_t interval = std::int64_t{interval_ms} * 1'000'000;
    Queue.Timers.push_back(
        {++Queue.Last_Timer, interval, Real_Monotonic() + interval, std::move(handler)});
    Note_Next_Due();
    return Queue.Last_Timer;
  };
  Platform.Stop_Timer = [](Timer_Id id) {
    std::erase_if(Queue.Timers, [id](const Timer& timer) { return timer.Id == id; });
    Note_Next_Due();
  };
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
