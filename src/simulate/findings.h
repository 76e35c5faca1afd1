// findings.h: what a real machine would have punished, in plain words.
//
// One entry for each kind and axis, with the count, the first and the last time and the words of
// the first case: a fault that repeats a million times stays one line and costs no memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

enum class Finding_Kind {
  Setup,                    // found in the pin map at load
  Step_While_Disabled,      // the driver ignores it
  Step_Without_Power,       // after the E-stop has cut the power
  Direction_Before_Step,    // direction changed too shortly before a step
  Direction_After_Step,     // ... or after it
  Short_Pulse,              // high or low time below the driver's limit
  Too_Fast,                 // step rate above the motor's limit
  Stall,                    // the motor fell out of step
  Hard_Stop,                // travelled into the end stop
  Two_Functions,            // one write changed the pins of two functions
  Stale_Write,              // put a pin of another function back to what a read answered
  Unmapped_Write,           // neither a pin of the map nor its dummy address
  Both_Spindle_Directions,  // spindle CW and CCW on
  Spindle_Reversed,         // direction changed before it stood still
  Coolant_Without_Spindle,
  Cut_Without_Spindle,  // moved sideways in the material
  Sank,                 // by its weight while its motor was off
  Skew,                 // a slaved axis too far from its master
};

struct Finding {
  Finding_Kind Kind = Finding_Kind::Setup;
  int Axis = 0;                      // 1..4; 0: none
  std::int64_t First = 0, Last = 0;  // ns of the machine's clock
  std::int64_t Count = 0;
  std::string Text;  // "X: direction changed 1.0 us before a step (2.0 needed)"
};

struct Findings_State {
  std::vector<Finding> List;  // in the order of their first case
};
extern Findings_State Findings;

// True for the first case of a kind and axis: the caller then words it with `Word_Finding`. Later
// cases are only counted.
bool Count_Finding(Finding_Kind kind, int axis, std::int64_t time);
// Puts the words to the entry that Count_Finding has just begun; "X: " goes in front for axis 1.
void Word_Finding(const std::string& text);
// A finding of the pin map; each text is its own entry.
void Add_Setup_Finding(const std::string& text);

// One line for each entry, the one that happened last first: "12.345678 s  X: ... (3 times)".
std::vector<std::string> Findings_Text();

}  // namespace norvik
