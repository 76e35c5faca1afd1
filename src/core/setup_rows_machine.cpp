// The rows that describe the machine and its operation.
#include "core/application.h"
#include "core/paths.h"
#include "core/setup_rows.h"

namespace norvik {

namespace {

using M = Machine_Setup;

// One byte port each; the first three ports of a classic controller lie at 888, 889 and 890.
constexpr double Last_Port = 65535;
constexpr double Highest_Feed = 100'000;

constexpr std::string_view Jog_Key_Names =
    "X -|X +|Y -|Y +|Z down|Z up|X - Y -|X + Y +|X - Y +|X + Y -|Feed - 1|Feed + 1|A -|A +|Divisor";
constexpr std::string_view Joystick_Names =
    "Stick for X and Y|Z up|Z down|A -|A +|Feed - 1|Feed + 1|Divisor|Stick for override";
constexpr std::string_view Output_Functions =
    "X step|X direction|X enable|Y step|Y direction|Y enable|Z step|Z direction|Z enable|A step|A "
    "direction|A enable|output 1|output 2|output 3|output 4|output 5";
constexpr std::string_view Input_Functions =
    "E-stop input|X switch|Y switch|Z switch|A switch|auxiliary input";

// The bits of a port; 99 stands for none.
std::vector<Setting_Choice> Bits() {
  return {{"0", ""}, {"1", ""}, {"2", ""}, {"3", ""},         {"4", ""},
          {"5", ""}, {"6", ""}, {"7", ""}, {"99", "not used"}};
}

}  // namespace

Setup_Row_List General_Rows() {
  return {
      Key<&M::INI_Save_Test>("General", "INI_Save_Test")
          .Called(page::General, "Mark of a good save")
          .Star("999")
          .Saved(Save_Place::Self_Test)
          .Says("123 after a good save. Any other value: the file was never saved whole, and the "
                "next start repairs it."),
      Key<&M::KeyJog_Device>("General", "KeyJog_Device")
          .Called(page::Jog, "Jog with")
          .One_Of({{"0", "keyboard"}, {"1", "joystick"}})
          .Plain("0")
          .Says("What moves the axes in the window for jogging by keys."),
      Key<&M::Recent_Folder>("General", "Recent_Folder")
          .Called(page::General, "Last folder")
          .Says("Folder of the last file. Kept for other programs; Norvik neither uses nor writes "
                "it."),
      Key<&M::Motion_Analyzer_Enable>("General", "Motion_Analyzer_Enable")
          .Called(page::General, "Check speeds after each compile")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("0")
          .Saved(Save_Place::Motion_Analyzer)
          .Says("Shows the motion analyzer and checks the planned speeds after each compile."),
      Key<&M::Tool_Directory>("Tools", "Tool_Directory")
          .Called(page::Tools, "Folder of tool files")
          .Shown_As("`Tools` in the working folder")
          .Computed([](const M&, int) { return Join_Path(Application.AppDirectory, "Tools"); })
          .Says("Where the dialogs for tool files begin. Each start sets it to `Tools` in the "
                "working folder, whatever is stored."),
      Key<&M::Tool_File_Name>("Tools", "Tool_File_Name")
          .Called(page::Tools, "Tool file")
          .Shown_As("`Default.tol` in that folder")
          .Changed(After_Change::Recompile | After_Change::Restart)
          .Computed(
              [](const M& setup, int) { return Join_Path(setup.Tool_Directory, "Default.tol"); })
          .Says("Diameter and offset of 200 tools. It is read when Norvik starts, and a compile "
                "corrects the path by it under G41 and G42. A name without a full path counts from "
                "the "
                "working folder; what is not there is looked for beside the machine file."),
      Family<&M::MacroFile>("Macros", "MacroFile<n>")
          .Called(page::Tools, "Macro <n>")
          .Changed(After_Change::Recompile)
          .Saved(Save_Place::Macros)
          .Says("G-code file of the macro that M98 calls by this number; empty: there is no such "
                "macro. A name without a full path counts from the working folder; what is not "
                "there is looked for beside the machine file."),
      Key<&M::Goto_Command_Index>("General", "Goto_Command_Index")
          .Called(page::Goto, "Line used last")
          .Plain("0")
          .Between(0, 9)
          .Saved(Save_Place::Goto_Index)
          .Says("Goto line that the panel shows at start, counted from 0."),
      Family<&M::Goto_Command>("General", "Goto_Command<n>")
          .Called(page::Goto, "Goto line <n>")
          .Plain("G01 X.25 Y.25 Z.25 [Default]")
          .Saved(Save_Place::Goto)
          .Says("Line of G-code that Goto runs; text in brackets is its name in the list."),
      Key<&M::GC_ScaleX>("G_CODE", "GC_ScaleX")
          .Called(page::Text, "Scale, X")
          .Star("1")
          .Saved(Save_Place::GCode_Scales)
          .Says("Factor that the scale function offers for X, R and I."),
      Key<&M::GC_ScaleY>("G_CODE", "GC_ScaleY")
          .Called(page::Text, "Scale, Y")
          .Star("1")
          .Saved(Save_Place::GCode_Scales)
          .Says("Factor that the scale function offers for Y and J."),
      Key<&M::ErrorFile_AutoClear>("General", "ErrorFile_AutoClear")
          .Called(page::General, "Clear the error log at start")
          .Saved(Save_Place::Log_Clearing)
          .Says("Begins a new error log at each start; off: it goes on up to its size "
                "(docs/files.md)."),
  };
}

namespace {

Setup_Row_List Axis_Scale_Rows() {
  return {
      Key<&M::UnitsofMeasurement>("Axis", "UnitsofMeasurement")
          .Called(page::Units, "Unit of length")
          .One_Of({{"0", "inch"}, {"1", "millimetre"}})
          .Changed(After_Change::Recompile | After_Change::Redraw)
          .Plain("0")
          .Saved(Save_Place::Axis)
          .Says("Unit of all lengths in programs and settings. A change converts nothing: give "
                "steps per unit, lengths and speeds in the new unit too. G20 and G21 in a program "
                "do not switch it."),
      Key<&M::Axis_Format>("Axis", "Axis_Format")
          .Called(page::Units, "Format of axis words")
          .Changed(After_Change::Recompile)
          .Plain("000.000")
          .By(Read_Rule::Numeral_Format)
          .Saved(Save_Place::Axis)
          .Says("How axis words are written; its decimals are the precision of the whole compiler, "
                "which rounds every word of a program to them."),
      Family<&M::Axis_SPI>("Axis", "Axis_SPI_<n>")
          .Called(page::Axes, "Steps per unit, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Recompile | After_Change::Reopen_Drive)
          .Star("4000")
          .In("steps per unit")
          .Between(0.001, 1e7)
          .Saved(Save_Place::Axis)
          .Says("Steps that move the axis by one unit of length. Every half step is timed by the "
                "scale of X."),
      Family<&M::Axis_Depth>("Axis", "Axis_Depth_<n>")
          .Called(page::Axes, "Length of travel, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Redraw)
          .Star("10")
          .In("units")
          .Between(0.001, 1e6)
          .Saved(Save_Place::Axis)
          .Says("How far the axis can go; the size of the table in the plot. No move is held back "
                "by it."),
      Family<&M::Axis_Polarity>("Axis", "Axis_Polarity_<n>")
          .Called(page::Axes, "Reverse direction on serial boards, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Reopen_Drive)
          .Saved(Save_Place::Axis)
          .Says("Turns the direction round that a serial board gets. A parallel port does not look "
                "at it: there the invert flag of the direction output turns the axis round."),
      Family<&M::Axis_Backlash>("Axis", "Axis_Backlash_<n>")
          .Called(page::Axes, "Backlash, <n>")
          .Each(Axis_Names)
          .Plain("0")
          .In("units")
          .Between(0, 1000)
          .Saved(Save_Place::Axis)
          .Says("Play of the axis, taken up when it reverses, if backlash take-up is on."),
  };
}

Setup_Row_List Axis_Place_Rows() {
  return {
      Family<&M::Axis_HomePos>("Axis", "Axis_HomePos_<n>")
          .Called(page::Homing, "Home position, <n>")
          .Each(Axis_Names)
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Where Home moves the axis; empty: it stays."),
      Family<&M::Axis_ReToolPos>("Axis", "Axis_ReToolPos_<n>")
          .Called(page::Homing, "ReTool position, <n>")
          .Each(Axis_Names)
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Where ReTool moves the axis for a change of tool; empty: it stays."),
      Family<&M::Axis_HomePath>("Axis", "Axis_HomePath_<n>")
          .Called(page::Homing, "Seek the home switch towards, <n>")
          .Each(Axis_Names)
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("A place well beyond the home switch; only the side counts. Empty: the axis takes "
                "no part in homing by the switches."),
      Family<&M::Axis_HomeTarget>("Axis", "Axis_HomeTarget_<n>")
          .Called(page::Homing, "Position of the home switch, <n>")
          .Each(Axis_Names)
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Position that the axis gets at its home switch; empty: it takes no part in homing "
                "by the switches."),
      Family<&M::Axis_Max_Feed_Rate>("Axis", "Axis_Max_Feed_Rate_<n>")
          .Called(page::Axes, "Fastest, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Recompile)
          .Star("15")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Fastest that the axis may move; a program, a jog and Home are held to it."),
      Family<&M::Axis_HomeIPM>("Axis", "Axis_HomeIPM_<n>")
          .Called(page::Homing, "Speed of homing, <n>")
          .Each("seek|slow approach")
          .Star("5|0.5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("The seek runs to the switch; the slow approach then finds its edge. Below 0.1 "
                "counts as 0.1."),
  };
}

Setup_Row_List Axis_Motion_Rows() {
  return {
      Key<&M::Axis_Ramping>("Axis", "Axis_Ramping")
          .Called(page::Speeds, "Ramps")
          .Changed(After_Change::Recompile)
          .Plain("1")
          .By(Read_Rule::Whole_Number)
          .Saved(Save_Place::Axis)
          .Says("Moves speed up and slow down; off: every move runs at its speed at once."),
      Key<&M::Axis_Ramp_Start>("Axis", "Axis_Ramp_Start")
          .Called(page::Speeds, "Ramps start at")
          .Changed(After_Change::Recompile)
          .Star("2")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed from which a ramp starts and that any axis may take up or lose at once."),
      Key<&M::Axis_Ramp_Rate>("Axis", "Axis_Ramp_Rate")
          .Called(page::Speeds, "Ramp rate")
          .Changed(After_Change::Recompile | After_Change::Reopen_Drive)
          .Star("1")
          .Held_To(15)
          .In("hertz per step")
          .Between(1, 15)
          .Saved(Save_Place::Axis)
          .Says("Acceleration: the step rate changes by so many hertz on every step."),
      Key<&M::Axis_CV_MotionAngle>("Axis", "Axis_CV_MotionAngle")
          .Called(page::Speeds, "Corner taken at start speed")
          .Changed(After_Change::Recompile)
          .Star("15")
          .By(Read_Rule::Whole_Number)
          .In("degrees")
          .Between(1, 180)
          .Saved(Save_Place::Axis)
          .Says("At a corner this sharp or sharper the machine slows to the ramps' start speed; at "
                "flatter ones less. Whole degrees."),
      Key<&M::Axis_Limit_Secondary_Velocity>("Axis", "Axis_Limit_Secondary_Velocity")
          .Called(page::Speeds, "Spare the slower axes at joints")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Recompile)
          .Plain("1")
          .Saved(Save_Place::Axis)
          .Says("Slows a joint at which an axis that does less of the move would have to change "
                "its speed at once."),
      Key<&M::Axis_Backlash_Enable>("Axis", "Axis_Backlash_Enable")
          .Called(page::Axes, "Take up backlash")
          .Saved(Save_Place::Axis)
          .Says("Takes up the play of each axis when it reverses."),
      Key<&M::Axis_Feed_Rate_Travel>("Axis", "Axis_Feed_Rate_Travel")
          .Called(page::Speeds, "Travel speed")
          .Changed(After_Change::Recompile)
          .Star("5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of travel moves (G00), Home and ReTool."),
      Key<&M::Axis_Feed_Rate_Cut>("Axis", "Axis_Feed_Rate_Cut")
          .Called(page::Speeds, "Cutting speed")
          .Changed(After_Change::Recompile)
          .Star("5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of cutting moves until the program gives an F word."),
      Key<&M::Axis_Feed_Rate_Jogging>("Axis", "Axis_Feed_Rate_Jogging")
          .Called(page::Speeds, "Jog speed")
          .Star("5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of jogs."),
  };
}

Setup_Row_List Axis_Option_Rows() {
  return {
      Key<&M::Display_Z_Coordinate_Invert>("Axis", "Display_Z_Coordinate_Invert")
          .Called(page::Panel, "Z upside down")
          .Changed(After_Change::Redraw)
          .Saved(Save_Place::Axis)
          .Says("Shows Z upside down and turns the Z jog buttons and keys round."),
      Key<&M::Hide_Axis_Cursor>("Axis", "Hide_Axis_Cursor")
          .Called(page::Plot, "Hide the position cursor")
          .Changed(After_Change::Redraw)
          .Saved(Save_Place::Axis)
          .Says("Draws no cursor at the place of the tool."),
      Key<&M::Axis_Position_Update_Disable>("Axis", "Axis_Position_Update_Disable")
          .Called(page::Panel, "Displays stand still in a move")
          .Saved(Save_Place::Axis)
          .Says("Shows positions only between moves, for a smoother train of pulses."),
      Key<&M::LimitSwitchDisable>("Axis", "LimitSwitchDisable")
          .Called(page::Safety, "Ignore the limit switches")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Reopen_Drive)
          .Plain("0")
          .Saved(Save_Place::Axis)
          .Says(
              "Nothing then ends a move into the end of an axis, and validated homing is refused."),
      Key<&M::LimitDisableinRunMode>("Axis", "LimitDisableinRunMode")
          .Called(page::Safety, "E-stop at a limit switch in a run")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("0")
          .Saved(Save_Place::Axis)
          .Says("Engages the E-stop when a limit switch of X, Y or Z closes during a run. Off: the "
                "run ends, motors and outputs stay as they are."),
      Key<&M::Axis_Z_Jog_Step_Enable>("Axis", "Axis_Z_Jog_Step_Enable")
          .Called(page::Panel, "Single jog steps of Z")
          .Saved(Save_Place::Axis)
          .Says("Lets Z take single jog steps; off: Z moves only as long as its button is held, so "
                "that no step is driven into the table."),
      Key<&M::Hide_CNC_A_Axis>("Axis", "Hide_CNC_A_Axis")
          .Called(page::Panel, "Hide the A axis")
          .Changed(After_Change::Restart)
          .Saved(Save_Place::Axis)
          .Says("Shows no controls of the A axis."),
      Key<&M::Validate_Home_Position>("Axis", "Validate_Home_Position")
          .Called(page::Homing, "Home by the switches")
          .Saved(Save_Place::Axis)
          .Says("Home seeks the switches and sets the positions from them; off: Home moves to the "
                "home positions by the positions it has."),
      Key<&M::Axis_Table_Grid_Size>("Axis", "Axis_Table_Grid_Size")
          .Called(page::Plot, "Spacing of the grid")
          .Changed(After_Change::Redraw)
          .Star("1")
          .In("units")
          .Between(0.001, 1e6)
          .Saved(Save_Place::Axis)
          .Says("Distance of two lines of the table grid."),
      Key<&M::E_Stop_Output_Disable>("Axis", "E_Stop_Output_Disable")
          .Called(page::Safety, "E-stop switches the outputs off")
          .Saved(Save_Place::Axis)
          .Says("The E-stop switches spindle, coolant and auxiliary output off too. Off: they stay "
                "as they are, and a spindle keeps turning."),
  };
}

Setup_Row_List Level_And_Display_Rows() {
  return {
      Family<&M::Axis_Tool_Height>("Tool", "Axis_Tool_Height(<n>)")
          .Called(page::Levels, "Z, <n>")
          .Each("travel|normal cut|deep cut")
          .Changed(After_Change::Redraw)
          .Plain("1|0.5|0")
          .By(Read_Rule::Axis_Number)
          .In("units")
          .Saved(Save_Place::Tool)
          .Says("Level that Home, ReTool and the importers use; rounded to the format of axis "
                "words."),
      Key<&M::ThrottleMaxLim>("Axis", "ThrottleMaxLim")
          .Called(page::Panel, "Feed override, highest")
          .Plain("200")
          .By(Read_Rule::Whole_Number)
          .In("percent")
          .Between(1, 1000)
          .Saved(Save_Place::Displays)
          .Says("Override with the knob at its upper end, on a serial board; whole percent."),
      Key<&M::ThrottleMinLim>("Axis", "ThrottleMinLim")
          .Called(page::Panel, "Feed override, lowest")
          .Plain("50")
          .By(Read_Rule::Whole_Number)
          .In("percent")
          .Between(1, 1000)
          .Saved(Save_Place::Displays)
          .Says("Override with the knob at its lower end, on a serial board; whole percent."),
      Key<&M::DRO_Format>("Axis", "DRO_Format")
          .Called(page::Units, "Format of the position displays")
          .Plain("00.0000000")
          .By(Read_Rule::Numeral_Format)
          .Saved(Save_Place::Displays)
          .Says("How positions are shown."),
      Key<&M::Slave_A_Axis_to>("Axis", "Slave_A_Axis_to")
          .Called(page::Axes, "A follows")
          .One_Of({{"None", "A moves by itself"}, {"X Axis", ""}, {"Y Axis", ""}, {"Z Axis", ""}})
          .Plain("None")
          .Saved(Save_Place::Displays)
          .Says("The axis that A copies, for a gantry with two motors."),
  };
}

}  // namespace

Setup_Row_List Axis_Rows() {
  return Joined({Axis_Scale_Rows(), Axis_Place_Rows(), Axis_Motion_Rows(), Axis_Option_Rows(),
                 Level_And_Display_Rows()});
}

Setup_Row_List Input_Rows() {
  return {
      Key<&M::CNC_Jog_Increment>("Jog", "CNC_Jog_Increment")
          .Called(page::Panel, "Jog step")
          .Star("0.001")
          .In("units")
          .Between(0, 1000)
          .Says("Distance of a single jog step."),
      Family<&M::KeyJog_KeyValue>("Keyboard", "KeyJog_KeyValue_<n>")
          .Called(page::Jog, "Key: <n>")
          .Each(Jog_Key_Names)
          .Plain("100|102|98|104|107|109|97|105|103|99|188|190|106|111|191")
          .Between(0, 255)
          .Saved(Save_Place::Keyboard)
          .Says("Code of the key, as the window system counts keys; the set-up window takes it "
                "from a key press."),
      Family<&M::JoyJog_KeyValue>("Joystick", "JoyJog_KeyValue_<n>")
          .Called(page::Jog, "Joystick: <n>")
          .Each(Joystick_Names)
          .Plain("Left Stick|2|1|3|4|9|10|12|Right Stick")
          .Saved(Save_Place::Joystick)
          .Says("`Left Stick` or `Right Stick` for a stick, the number of a button, or `NU`: not "
                "used."),
      Key<&M::Application_Priority>("General", "Application_Priority")
          .Called(page::General, "Priority")
          .One_Of({{"0", "normal"}, {"1", "high"}, {"2", "real time"}})
          .Plain("0")
          .Saved(Save_Place::Priority)
          .Then(After_Load::Apply_Priority)
          .Says("How much this program goes before others. A higher one gives a smoother train of "
                "pulses."),
  };
}

namespace {

Setup_Row_List Port_Choice_Rows() {
  return {
      Family<&M::Output_Names>("Parallel Setup", "Output_Names_<n>")
          .Called(page::Pins, "Name of output <n>")
          .Each("1|2|3|4|5")
          .Plain("Spindle CW|Spindle CCW|Coolant Mist|Coolant Flood|Auxillary")
          .Loads(1, 5)
          .Saved(Save_Place::Output_Names)
          .Says("What the panel writes beside the output; number 0 is kept for other programs."),
      Key<&M::Parallel_LPT_Pin_Port>("Parallel Setup", "Parallel_LPT_Pin_Port")
          .Called(page::Pins, "Base address of the connector")
          .Star("888")
          .Between(600, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Address by which the set-up by pins works out ports and bits; moves nothing by "
                "itself."),
      Key<&M::Parallel_Port_Type>("Parallel Setup", "Parallel_Port_Type")
          .Called(page::Drive, "Drive")
          .One_Of(
              {{"1", "parallel port"}, {"2", "first serial board"}, {"3", "second serial board"}})
          .Changed(After_Change::Recompile | After_Change::Reopen_Drive)
          .Star("1")
          .Saved(Save_Place::Parallel)
          .Says("What moves the axes."),
      Key<&M::Parallel_Setup_Type>("Parallel Setup", "Parallel_Setup_Type")
          .Called(page::Pins, "Set up by")
          .One_Of({{"1", "bits"}, {"2", "pins"}})
          .Star("1")
          .Saved(Save_Place::Parallel)
          .Says("Page of the port set-up that can be edited; the outputs are the same."),
      Key<&M::Parallel_IODLL>("Parallel Setup", "Parallel_IODLL")
          .Called(page::Drive, "Way to the port")
          .One_Of({{"1", "first access library"}, {"2", "second access library"}})
          .Changed(After_Change::Reopen_Drive)
          .Star("2")
          .Saved(Save_Place::Parallel)
          .Says("How the parallel port is reached."),
  };
}

Setup_Row_List Pin_Rows() {
  return {
      Family<&M::Output_Port>("Parallel Setup", "Output_Port_<n>")
          .Called(page::Pins, "Port of <n>")
          .Each(Output_Functions)
          .Changed(After_Change::Reopen_Drive)
          .Star("888")
          .Between(0, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Address of the port on which the output lies."),
      Family<&M::Parallel_Output_Bit>("Parallel Setup", "Parallel_Output_Bit_<n>")
          .Called(page::Pins, "Bit of <n>")
          .Each(Output_Functions)
          .One_Of(Bits())
          .Changed(After_Change::Reopen_Drive)
          .Plain("99")
          .Saved(Save_Place::Parallel)
          .Says("Bit of that port."),
      Family<&M::Parallel_Output_Bit_Invert>("Parallel Setup", "Parallel_Output_Bit_Invert_<n>")
          .Called(page::Pins, "Invert <n>")
          .Each(Output_Functions)
          .Changed(After_Change::Reopen_Drive)
          .Saved(Save_Place::Parallel)
          .Says("On: the line is low when the output is on. For a direction it turns the axis "
                "round."),
      Family<&M::Input_Port>("Parallel Setup", "Input_Port_<n>")
          .Called(page::Pins, "Port of <n>")
          .Each(Input_Functions)
          .Changed(After_Change::Reopen_Drive)
          .Star("889")
          .Between(0, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Address of the port on which the input lies."),
      Family<&M::Parallel_Input_Bit>("Parallel Setup", "Parallel_Input_Bit_<n>")
          .Called(page::Pins, "Bit of <n>")
          .Each(Input_Functions)
          .One_Of(Bits())
          .Changed(After_Change::Reopen_Drive)
          .Plain("99")
          .Saved(Save_Place::Parallel)
          .Says("Bit of that port."),
      Family<&M::Parallel_Input_Bit_Invert>("Parallel Setup", "Parallel_Input_Bit_Invert_<n>")
          .Called(page::Pins, "Invert <n>")
          .Each(Input_Functions)
          .Changed(After_Change::Reopen_Drive)
          .Saved(Save_Place::Parallel)
          .Says("On: the input counts as on when its line is high, so that a contact that opens "
                "trips it, and a broken wire too."),
  };
}

Setup_Row_List Motor_Power_And_Board_Rows() {
  return {
      Family<&M::Parallel_MCode_High>("Parallel Setup", "Parallel_MCode_High_<n>")
          .Called(page::Pins, "M code that switches the auxiliary output on")
          .Changed(After_Change::Recompile)
          .Between(0, 999)
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("Number of the code; empty: none. It acts with the next move."),
      Family<&M::Parallel_MCode_Low>("Parallel Setup", "Parallel_MCode_low_<n>")
          .Called(page::Pins, "M code that switches the auxiliary output off")
          .Changed(After_Change::Recompile)
          .Between(0, 999)
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel, "Parallel_MCode_Low_<n>")
          .Says("Number of the code; empty: none. It acts with the next move."),
      Key<&M::Parallel_MotorEnable_Option>("Parallel Setup", "Parallel_MotorEnable_Option")
          .Called(page::Motors, "Motors have power")
          .One_Of({{"0", "while they step"},
                   {"1", "always"},
                   {"2", "until some time after the last step"}})
          .Changed(After_Change::Reopen_Drive)
          .Star("0")
          .Saved(Save_Place::Parallel)
          .Says("When the enable outputs are on. Without power an axis can be pushed and its "
                "position is lost."),
      Key<&M::Parallel_MotorEnable_Time>("Parallel Setup", "Parallel_MotorEnable_Time")
          .Called(page::Motors, "Power goes off after")
          .Star("5")
          .In("s")
          .Between(0, 86400)
          .Saved(Save_Place::Parallel)
          .Says("Time without a step after which the power goes off, where it does."),
      Key<&M::Dravon_CommPort>("Parallel Setup", "Dravon_CommPort")
          .Called(page::Board, "Serial port")
          .Changed(After_Change::Reopen_Drive)
          .Star("1")
          .Between(1, 15)
          .Saved(Save_Place::Parallel)
          .Says("Number of the serial port that leads to the board."),
      Key<&M::Dravon_SASF>("Parallel Setup", "Dravon_SASF")
          .Called(page::Board, "Smoothing of the lesser axes")
          .Changed(After_Change::Reopen_Drive)
          .Star("1")
          .Between(1, 20)
          .Saved(Save_Place::Parallel)
          .Says("The board counts the longest axis of a move so many times finer, which makes the "
                "others run smoother."),
      Key<&M::Parallel_Display_IO_Address>("Parallel Display", "Parallel_Display_IO_Address")
          .Called(page::Pins, "Address of the port display")
          .Star("888")
          .Between(0, Last_Port)
          .Says("Port whose lines the display window shows."),
  };
}

}  // namespace

Setup_Row_List Parallel_Rows() {
  return Joined({Port_Choice_Rows(), Pin_Rows(), Motor_Power_And_Board_Rows()});
}

Setup_Row_List Board_Rows() {
  constexpr std::string_view section = "Dravon Setup";
  return {
      Family<&M::Dravon_MCode_High>(section, "Dravon_MCode_High_<n>")
          .Called(page::Board, "M code that switches the auxiliary output on, on a board")
          .Changed(After_Change::Recompile)
          .Between(0, 999)
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("Number of the code; empty: none."),
      Family<&M::Dravon_MCode_Low>(section, "Dravon_MCode_Low_<n>")
          .Called(page::Board, "M code that switches the auxiliary output off, on a board")
          .Changed(After_Change::Recompile)
          .Between(0, 999)
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("Number of the code; empty: none."),
      Family<&M::Dravon_CByte>(section, "Dravon_CByte<n>")
          .Called(page::Board, "Control byte <n>")
          .Changed(After_Change::Reopen_Drive)
          .Plain("255")
          .Between(0, 255)
          .Saved(Save_Place::Parallel)
          .Says("Options of the board; 1 and 2 are sent, 3 and 4 only kept."),
      Key<&M::Dravon_Spindle_RPM>(section, "Dravon_Spindle_RPM")
          .Called(page::Board, "Spindle speed at full output")
          .Star("10000")
          .In("turns per minute")
          .Between(1, 1e6)
          .Saved(Save_Place::Parallel)
          .Says("Gives the spindle slider its scale."),
      Key<&M::Dravon_PWM_Inv>(section, "Dravon_PWM_Inv")
          .Called(page::Board, "Invert the spindle speed output")
          .Saved(Save_Place::Parallel)
          .Says("On: the fullest output is the slowest speed."),
      Key<&M::DravonArcMinimumLength>(section, "DravonArcMinimumLength")
          .Called(page::Board, "Shortest arc")
          .Changed(After_Change::Recompile)
          .Plain("0.001")
          .In("units")
          .Between(0, 1000)
          .Saved(Save_Place::Parallel)
          .Says("Arcs shorter than this become one straight line on the first board."),
      Family<&M::Dravon_Enc_Enable>(section, "Dravon_Enc_Enable_<n>")
          .Called(page::Encoders, "Encoder in use, <n>")
          .Each(Axis_Names)
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Reopen_Drive)
          .Plain("0")
          .Saved(Save_Place::Parallel)
          .Says("The axis has an encoder that the board compares with its steps."),
      Family<&M::Dravon_Enc_StopOnFault>(section, "Dravon_Enc_StopOnFault<n>")
          .Called(page::Encoders, "Stop on a fault, <n>")
          .Each(Axis_Names)
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Reopen_Drive)
          .Plain("0")
          .Saved(Save_Place::Parallel)
          .Says("An encoder fault of the axis stops the board."),
      Family<&M::Dravon_Enc_Mode>(section, "Dravon_Enc_Mode_<n>")
          .Called(page::Encoders, "Counting mode, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Reopen_Drive)
          .Plain("1")
          .Between(0, 3)
          .Saved(Save_Place::Parallel)
          .Says("How the board counts the encoder's edges."),
      Family<&M::Dravon_Enc_MaxError>(section, "Dravon_Enc_MaxError<n>")
          .Called(page::Encoders, "Largest deviation, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Reopen_Drive)
          .Plain("255")
          .Between(0, 32767)
          .In("encoder counts")
          .Saved(Save_Place::Parallel)
          .Says("Difference of steps and encoder above which a fault is reported."),
      Family<&M::Dravon_Enc_CFactor>(section, "Dravon_Enc_CFactor<n>")
          .Called(page::Encoders, "Correction factor, <n>")
          .Each(Axis_Names)
          .Changed(After_Change::Reopen_Drive)
          .Plain("1000")
          .Between(0.001, 16777.215)
          .Saved(Save_Place::Parallel)
          .Says("Relation of encoder counts to steps, in thousandths."),
  };
}

}  // namespace norvik
