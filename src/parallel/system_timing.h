// system_timing.h: the window System_Timing, which finds the time constant at a feed of its own.
#pragma once

#include <cstdint>
#include <string>

namespace norvik {

struct System_Timing_Form_State {
  std::string Text_FeedRate;  // test feed in IPM, "00.00"
  std::string Command_Start = "Start", Command_Cancel = "Cancel";
  std::string Text_TimeConstant, Label_Actual_FeedRate, Label_FeedRate_Error;
  std::string Label_Result;            // how the last run ended, in words
  bool Visible = true;                 // false: the window closes
  std::int32_t Old_Time_Constant = 0;  // put back by a cancelled run
};
extern System_Timing_Form_State System_Timing;

// Fills the fields from the setup.
void System_Timing_Form_Load();
// Command_Start: runs Find_Time_Constant at the test feed (held to 0.1..100000); a second press
// while it runs does nothing. A cancelled run puts the old time constant back.
void System_Timing_Start_Click();
// Command_Cancel: cancels a running calibration, otherwise closes the window; "OK" after a finished
// run keeps and stores the constant.
void System_Timing_Cancel_Click();
// Shows constant, measured feed and error. From a timer of the window: a calibration yields.
void System_Timing_Timer1();
// Writes the key.
void Save_Timing();

}  // namespace norvik
