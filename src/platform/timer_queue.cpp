#include "platform/timer_queue.h"

#include <algorithm>
#include <utility>

namespace norvik {

Timer_Id Timer_Queue::Start(int interval_ms, std::int64_t now, std::function<void()> handler) {
  constexpr std::int64_t millisecond = 1'000'000;
  const std::int64_t interval = std::max(interval_ms, 1) * millisecond;
  Timers.push_back({++Last_Id, interval, now + interval, std::move(handler)});
  Note_Earliest();
  return Last_Id;
}

void Timer_Queue::Stop(Timer_Id id) {
  std::erase_if(Timers, [id](const Timer& timer) { return timer.Id == id; });
  Note_Earliest();
}

void Timer_Queue::Run_Due(std::int64_t now) {
  if (now < Earliest) return;
  while (Timer* timer = First_Due(now)) {
    const Timer_Id id = timer->Id;
    const auto handler = timer->Handler;  // which may stop its timer
    timer->Due += ((now - timer->Due) / timer->Interval + 1) * timer->Interval;
    timer->Running = true;
    Note_Earliest();
    handler();
    if (Timer* served = Find(id)) served->Running = false;
  }
  Note_Earliest();
}

Timer_Queue::Timer* Timer_Queue::Find(Timer_Id id) {
  const auto place =
      std::find_if(Timers.begin(), Timers.end(), [id](const Timer& t) { return t.Id == id; });
  return place == Timers.end() ? nullptr : &*place;
}

Timer_Queue::Timer* Timer_Queue::First_Due(std::int64_t now) {
  Timer* first = nullptr;
  for (Timer& timer : Timers) {
    if (timer.Running || timer.Due > now) continue;
    if (first == nullptr || timer.Due < first->Due) first = &timer;
  }
  return first;
}

void Timer_Queue::Note_Earliest() {
  Earliest = Never;
  for (const Timer& timer : Timers) {
    if (!timer.Running) Earliest = std::min(Earliest, timer.Due);
  }
}

}  // namespace norvik
