// cnc_controls_form.h: the panel `CNC_Controls` as a record.
//
// The panel is where the operator runs and stops the machine, so its record is the one place that
// says what the operator sees. The handlers of the panel stand with what they do:
//
//   run loop      Command_CNC_*             cnc_controller.h
//   safety        Command_EStop, outputs    safety.h, knob.h
//   sequences     Command_Home, *ReTool     home.h
//   jog           Jog_*                     panel_jog.h
//   Goto          Combo_Goto, Text_Goto     goto.h
//   edits         positions, feeds, levels  panel_edits.h
//   timing        time constant, autotune   timing_edits.h
//   displays      the labels, Timer1        displays.h
//
// Axis tables are indexed 1..4: X, Y, Z, A. Arrays of two are indexed 0 and 1.
//
// Jog buttons: index 0 of `Jog_X`, `Jog_Y`, `Jog_Z`, `Jog_A` is the negative direction, 1 the
// positive one. `Jog_XY` are the corners of the button block as one looks at it:
//
//     0 (X-, Y+)   1 (X+, Y+)
//     2 (X-, Y-)   3 (X+, Y-)
#pragma once

#include "control/state/form_controls.h"
#include "core/indexed.h"

#include <functional>
#include <string>

namespace norvik {

struct CNC_Controls_Form {
  // --- Run loop ---------------------------------------------------------------------------------
  Button_Control Command_CNC_Play{"Play"}, Command_CNC_Pause{"Pause"}, Command_CNC_Step{"Step"},
      Command_CNC_Stop{"Stop"};
  Label_Control Label_CNC_Status{"CNC Stopped"};
  Label_Control Label_CNC_Activity;  // "homing Z: seek"; empty while the state says it all
  Text_Control Text_StartingStep, Text_EndingStep;
  Text_Control Text_Program_Messages;  // the block being executed
  Label_Control Label_CNC_Step;        // "Step 3 of 120"
  Label_Control Label_Tool;            // number of the tool in use
  Label_Control Label_Run_Timer;       // "Timer: 00:01:12"
  Label_Control Label_MaterialProcess_Time;
  Button_Control Command_Estimate_Process_Time{"Estimate"};

  // --- Safety -----------------------------------------------------------------------------------
  Button_Control Command_EStop{"MOTORS ENABLED"};
  Label_Control Label_EStop_State;    // "E-Stop Tripped", "E-Stop Cleared"
  Label_Control Label_Spindle_State;  // "Spindle On", "Spindle Off"
  Label_Control Label_Home_Safety;    // says that no switch blocks motion
  // Red while the switch of the axis is on; the second one stays red until it is clicked.
  Indexed<Button_Control, 1, 4> Command_Limit1, Command_Lim_Latch;
  Indexed<Check_Control, 0, 4> Check_Outputs;  // spindle CW, CCW, mist, flood, auxiliary

  // --- Knob -------------------------------------------------------------------------------------
  // The pointer of `Pic_Knob` in a picture whose corners are (-1, -1) and (1, 1), Y upward.
  struct {
    double X = 0, Y = 1;
  } Pic_Knob_Pointer;
  Label_Control Label_Feed_Overide{"100%"};
  // Spindle speed, for drives with a speed output; the label says what it stands for.
  Slider_Control Slider_RPM{0, 1023, false};
  Label_Control Label_RPM;

  // --- Positions --------------------------------------------------------------------------------
  Indexed<Label_Control, 1, 4> Label_Axis_Pos;
  Indexed<Label_Control, 1, 4> Label_Axis_DTG;     // distance to go of the running move
  Indexed<Label_Control, 0, 2> Label_Tool_Height;  // travel, normal cut, deep cut

  // --- Feeds ------------------------------------------------------------------------------------
  Label_Control Label_FeedRate_Cut, Label_FeedRate_Travel, Label_FeedRate_Jogging;
  Label_Control Label_Actual_IPM;  // measured speed

  // --- Timing -----------------------------------------------------------------------------------
  Label_Control Label_Time_Constant;  // microseconds
  Indexed<Button_Control, 0, 1> Command_TC_Adjust;
  Check_Control Check_FeedRate_Autotune;
  Button_Control Command_Get_Time_Constant;  // "Cancel" while a calibration runs

  // --- Home and ReTool --------------------------------------------------------------------------
  Button_Control Command_Home{"Home"}, Command_ReTool{"ReTool"};
  Indexed<Button_Control, 0, 1> Command_AutoRetool{
      {Button_Control{"AutoRetool"}, Button_Control{"Return", false}}};

  // --- Jog and Goto -----------------------------------------------------------------------------
  Check_Control Check_SingleStep;
  Combo_Control Combo_SStep_Distance;
  Text_Control Text_Jog_IPM;
  Combo_Control Combo_Goto;
  Text_Control Text_Goto;
  Button_Control Command_Goto{"Goto"};
};
extern CNC_Controls_Form CNC_Controls;

// What the logic asks of the window. Each does nothing by default.
struct CNC_Controls_Host_Operations {
  // The record has changed; the window copies it to its widgets.
  std::function<void()> Form_Changed = [] {};
  // The interval of the panel's `Timer1` in milliseconds; 0 stops it.
  std::function<void(int milliseconds)> Set_Timer_Interval = [](int) {};
  // True while a mouse button is down anywhere, so that a lost release is noticed. The default
  // says "down", which leaves a held jog to its own release.
  std::function<bool()> Mouse_Button_Down = [] { return true; };
};
extern CNC_Controls_Host_Operations CNC_Controls_Host;

}  // namespace norvik
