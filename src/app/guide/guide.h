// guide.h: from a bare machine to its first cut, page by page.
//
// The guide makes a machine file of its own at its first page and works on it: what a page has
// taken is in the setup and in the file, so that a page can be left and come back to, and closing
// the guide loses nothing. A page is tried on the machine at once, the simulated one included.
//
//   Name -> Drive -> Wiring -> Motors -> Speeds -> Switches -> EStop -> Time_Constant ->
//   Corrections
//        -> Program -> Finish
//
// Every handler refuses in words (`Label_Hint`) what can't be done, and keeps what was typed.
#pragma once

#include "app/guide/speed_trial.h"
#include "core/indexed.h"
#include "drive/finding.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvik {

enum class Guide_Page {
  Name,
  Drive,
  Wiring,
  Motors,
  Speeds,
  Switches,
  EStop,
  Time_Constant,
  Corrections,
  Program,
  Finish
};
inline constexpr int Guide_Pages = 11;

struct Guide_Page_Row {
  std::string_view Title, About;
};
const Guide_Page_Row& Guide_Row(Guide_Page page);
// Pages that mean something for the drive of the setup, in their order: a board has no pins and no
// time constant.
std::vector<Guide_Page> Guide_Pages_Of_Setup();

// What the operator types about one axis.
struct Guide_Axis_Fields {
  std::string Text_Motor_Steps = "200", Text_Microsteps = "1", Text_Gear = "1", Text_Turn_Travel;
  std::string Text_Asked, Text_Measured;  // of a move that was tried
  std::string Text_Travel;                // length of the axis
  // Where its home switch is: 0 nowhere, 1 at the negative end, 2 at the positive end.
  int Combo_Home_End = 0;
};

// A finding of the machine check and what the operator says to it.
struct Guide_Finding {
  Machine_Finding Finding;
  bool Accepted = false;  // read, and meant so
};

struct Guide_Form_State {
  Guide_Page Page = Guide_Page::Name;
  std::string Label_Hint;  // what was refused last, and what to do
  bool Has_Machine =
      false;  // the first page has made a machine file, or an old one is gone through

  std::string Text_Name;
  int Combo_Starting_Point = 0;
  int Combo_Axis = 1;  // of the pages Motors and Speeds, 1..4
  Indexed<Guide_Axis_Fields, 1, 4> Axes;
  std::string Text_First_Speed, Text_Trial_Distance;  // of the page Speeds
  Speed_Trial Trial;
  bool Trial_Runs = false;
  // Of the page EStop: the input was seen on, and seen off again after it.
  bool EStop_Seen_On = false, EStop_Seen_Off = false;
  std::vector<Guide_Finding> List_Findings;
};
extern Guide_Form_State Guide_Form;

struct Guide_Host_Operations {
  std::function<void()> Form_Changed = [] {};
  std::function<void()> Bring_To_Front = [] {};
  // Opens one of the set-up windows by its name ("Port_Setup", "System_Timing").
  std::function<void(const std::string& name)> Open_Window = [](const std::string&) {};
  // What this process lacks to reach the parallel port, with the command that gives it; empty:
  // nothing.
  std::function<std::string()> Port_Right = [] { return std::string(); };
};
extern Guide_Host_Operations Guide_Host;

// --- Pages ---------------------------------------------------------------------------------------

// From the beginning, for a new machine.
void Open_Guide();
// One page, for the machine that is loaded.
void Open_Guide_At(Guide_Page page);
// Takes what the page holds and goes on; stays with a hint when something is refused.
void Guide_Next();
// Back, without taking anything.
void Guide_Back();
// To a page of the list. The first page must be done before any other.
void Guide_Go(Guide_Page page);

// --- Name and drive ------------------------------------------------------------------------------

// Makes the machine file of `Text_Name` in the working folder from the starting point and takes it
// over as another machine setup is. False, with a hint, when it can't be.
bool Guide_Make_Machine();
// `Parallel_Port_Type`; the drive's session ends and begins anew.
void Guide_Choose_Drive(int type);
// What this computer has for it, and what is missing with the command that gives it; a sentence.
std::string Guide_Drive_Words();

// --- Pins ----------------------------------------------------------------------------------------

// Takes the layout of the list, counted from 0, and applies it.
void Guide_Take_Layout(int index);
// Output 1..5 on and off, three times. Says when it is not wired.
void Guide_Wiggle_Output(int output);
// State of input 0..5 in words, for the lamps: "on", "off", or "not wired".
std::string Guide_Input_Words(int input);

// --- Motors --------------------------------------------------------------------------------------

// The fields of all axes from the setup.
void Show_Guide_Axes();
// Steps per unit of the axis from its parts.
void Guide_Take_Steps();
// The axis moved against its sign: its direction turns around.
void Guide_Wrong_Way();
// Moves the axis by `Text_Asked` units, there or back, at the jog feed.
void Guide_Try_Move(bool negative);
// Puts the scale right by what was measured.
void Guide_Take_Measured();
void Guide_Take_Travel();

// --- Speeds --------------------------------------------------------------------------------------

void Guide_Begin_Trial();  // the first move, at `Text_First_Speed`
void Guide_Trial_Good();   // it went well: the next one, faster
// It lost steps, or that is enough: two thirds of the last good one become the axis's limit, and
// travel and jog feed are held to it.
void Guide_Trial_Bad();

// --- Switches and E-stop -------------------------------------------------------------------------

// Home path, target and position of each axis by the end where its switch is.
void Guide_Take_Homing();
void Guide_Rehearse_Homing();
// From a timer of the window while the page is shown.
void Guide_Watch_EStop();

// --- Timing, corrections, first program, finish --------------------------------------------------

void Guide_Find_Time_Constant();
// All corrections as the system was, or those that are recommended on.
void Guide_Take_Corrections(bool recommended);
// A square over half of the table, in the air, spindle off, into the editor.
void Guide_Open_First_Program();
// Looks at the setup again; what was accepted stays accepted.
void Guide_Check();
void Guide_Accept_Finding(std::size_t index, bool accepted);
// True when no finding is without an answer; otherwise a hint.
bool Guide_Finish();

}  // namespace norvik
