// messages.h: status panels and the rolling message list.
//
// Fed by every room, shown by the main window (panels) and the panel `CNC_Controls` (list).
#pragma once

#include "core/indexed.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

struct Message_State {
  Indexed<std::string, 1, 4> Panel;                          // texts of the status bar
  Indexed<std::int16_t, 1, 3> Status_Timeout{{-1, -1, -1}};  // seconds left; -1 idle
  std::array<std::string, 51> MessageLog;                    // slot 0 is the newest
  std::string Status_Box;  // the log joined, each slot followed by CR LF
  std::string LastMessage;
};
extern Message_State Messages;

// What the windows want to know. Each does nothing by default.
struct Messages_Host_Operations {
  std::function<void(int panel)> Panel_Changed = [](int) {};
  std::function<void()> List_Changed = [] {};
};
extern Messages_Host_Operations Messages_Host;

// Seconds by convention: 5 for a text, 10 for an error, -1 for a text that stays.
void SetStatus(int panel, std::string_view text, int seconds);
// Panel 4 (and any other) without a time limit's change.
void Set_Panel(int panel, std::string_view text);
// Says why something ended or was refused: in status panel 1 for `seconds`, and in the message
// list, where it can still be read when the panel says something else. A line that repeats itself
// stands once in the list.
void Tell(std::string_view text, int seconds);
// Takes a text without a near end out of panel 1. It tells of something that is over when the next
// thing begins.
void Clear_Standing_Status();

// Work that tells its progress in panel 1 by texts that begin with `beginning`: at the end of the
// scope, however it is left, such a text goes. Any other text stays.
class Progress_Status {
 public:
  explicit Progress_Status(std::string_view beginning) : Beginning(beginning) {}
  ~Progress_Status();
  Progress_Status(const Progress_Status&) = delete;
  Progress_Status& operator=(const Progress_Status&) = delete;

 private:
  std::string Beginning;
};

// Pushes a line to the front of the list.
void AddMessage(std::string_view text);
// The same, unless the text equals one of the five newest.
void Add_New_Message(std::string_view text);

// One second has passed: counts the timeouts down and clears panel 1 or 3 when its reaches 0.
void Age_Status_Panels();

}  // namespace norvik
