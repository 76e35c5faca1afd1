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

}  // namespace

Setup_Row_List General_Rows() {
  return {
      Key<&M::INI_Save_Test>("General", "INI_Save_Test")
          .Star("999")
          .Saved(Save_Place::Self_Test)
          .Says("Self test: 123 after a good save."),
      Key<&M::KeyJog_Device>("General", "KeyJog_Device")
          .Plain("0")
          .Between(0, 1)
          .Says("Device that jogs in the key jog window: 0 keyboard, 1 joystick."),
      Key<&M::Recent_Folder>("General", "Recent_Folder")
          .Says("Folder of the last file; only read."),
      Key<&M::Motion_Analyzer_Enable>("General", "Motion_Analyzer_Enable")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Motion_Analyzer)
          .Says("1 shows the motion analyzer and checks the speeds after each compile."),
      Key<&M::Tool_Directory>("Tools", "Tool_Directory")
          .Computed([](const M&, int) { return Join_Path(Application.AppDirectory, "Tools"); })
          .Says("Folder of the tool files."),
      Key<&M::Tool_File_Name>("Tools", "Tool_File_Name")
          .Computed(
              [](const M& setup, int) { return Join_Path(setup.Tool_Directory, "Default.tol"); })
          .Says("Tool file that is read at start: diameter and offset of 200 tools."),
      Family<&M::MacroFile>("Macros", "MacroFile<n>")
          .Saved(Save_Place::Macros)
          .Says("G-code file of the macro that M98 calls by this number; empty: not assigned."),
      Key<&M::Goto_Command_Index>("General", "Goto_Command_Index")
          .Plain("0")
          .Between(0, 9)
          .Saved(Save_Place::Goto_Index)
          .Says("Goto line that was used last."),
      Family<&M::Goto_Command>("General", "Goto_Command<n>")
          .Plain("G01 X.25 Y.25 Z.25 [Default]")
          .Saved(Save_Place::Goto)
          .Says("Remembered Goto lines; the text in brackets names them."),
      Key<&M::GC_ScaleX>("G_CODE", "GC_ScaleX")
          .Star("1")
          .Saved(Save_Place::GCode_Scales)
          .Says("Factor that the scale function offers for X, R and I."),
      Key<&M::GC_ScaleY>("G_CODE", "GC_ScaleY")
          .Star("1")
          .Saved(Save_Place::GCode_Scales)
          .Says("Factor that the scale function offers for Y and J."),
      Key<&M::ErrorFile_AutoClear>("General", "ErrorFile_AutoClear")
          .Saved(Save_Place::Log_Clearing)
          .Says("Clears the error log at each start."),
  };
}

namespace {

Setup_Row_List Axis_Geometry_Rows() {
  return {
      Key<&M::UnitsofMeasurement>("Axis", "UnitsofMeasurement")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Axis)
          .Says("Unit of all lengths: 0 inch, 1 millimetre."),
      Key<&M::Axis_Format>("Axis", "Axis_Format")
          .Plain("000.000")
          .By(Read_Rule::Numeral_Format)
          .Saved(Save_Place::Axis)
          .Says("Numeral format of axis words; its decimals are the precision of the compiler."),
      Family<&M::Axis_SPI>("Axis", "Axis_SPI_<n>")
          .Star("4000")
          .In("steps per unit")
          .Between(0.001, 1e7)
          .Saved(Save_Place::Axis)
          .Says("Steps that move the axis by one unit of length."),
      Family<&M::Axis_Depth>("Axis", "Axis_Depth_<n>")
          .Star("10")
          .In("units")
          .Between(0.001, 1e6)
          .Saved(Save_Place::Axis)
          .Says("Length of travel of the axis; the size of the drawn table."),
      Family<&M::Axis_Polarity>("Axis", "Axis_Polarity_<n>")
          .Saved(Save_Place::Axis)
          .Says("Inverts the direction signal of the axis."),
      Family<&M::Axis_Backlash>("Axis", "Axis_Backlash_<n>")
          .Plain("0")
          .In("units")
          .Between(0, 1000)
          .Saved(Save_Place::Axis)
          .Says("Play that is taken up when the axis reverses."),
      Family<&M::Axis_HomePos>("Axis", "Axis_HomePos_<n>")
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Where Home moves the axis; empty: the axis takes no part."),
      Family<&M::Axis_ReToolPos>("Axis", "Axis_ReToolPos_<n>")
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Where ReTool moves the axis; empty: the axis stays."),
      Family<&M::Axis_HomePath>("Axis", "Axis_HomePath_<n>")
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Point beyond the home switch towards which validated homing seeks it."),
      Family<&M::Axis_HomeTarget>("Axis", "Axis_HomeTarget_<n>")
          .In("units")
          .Saved(Save_Place::Axis)
          .Says("Position that the axis has at its home switch."),
      Family<&M::Axis_Max_Feed_Rate>("Axis", "Axis_Max_Feed_Rate_<n>")
          .Star("15")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Fastest that the axis may move."),
      Family<&M::Axis_HomeIPM>("Axis", "Axis_HomeIPM_<n>")
          .Star("5|0.5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of validated homing: 0 the seek, 1 the slow tap."),
  };
}

Setup_Row_List Axis_Motion_Rows() {
  return {
      Key<&M::Axis_Ramping>("Axis", "Axis_Ramping")
          .Plain("1")
          .By(Read_Rule::Whole_Number)
          .Saved(Save_Place::Axis)
          .Says("Ramps moves up and down; off: every move runs at its speed at once."),
      Key<&M::Axis_Ramp_Start>("Axis", "Axis_Ramp_Start")
          .Star("2")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed from which a ramp starts and that any axis may take up at once."),
      Key<&M::Axis_Ramp_Rate>("Axis", "Axis_Ramp_Rate")
          .Star("1")
          .Held_To(15)
          .In("hertz per step")
          .Between(1, 15)
          .Saved(Save_Place::Axis)
          .Says("Acceleration: the step rate changes by so much on every step."),
      Key<&M::Axis_CV_MotionAngle>("Axis", "Axis_CV_MotionAngle")
          .Star("15")
          .By(Read_Rule::Whole_Number)
          .In("degrees")
          .Between(1, 180)
          .Saved(Save_Place::Axis)
          .Says("Corner at and above which a joint is taken at the ramp's start speed; whole "
                "degrees."),
      Key<&M::Axis_Limit_Secondary_Velocity>("Axis", "Axis_Limit_Secondary_Velocity")
          .Plain("1")
          .Between(0, 1)
          .Saved(Save_Place::Axis)
          .Says("1 slows joints at which a lesser axis would have to change its speed at once."),
      Key<&M::Axis_Backlash_Enable>("Axis", "Axis_Backlash_Enable")
          .Saved(Save_Place::Axis)
          .Says("Takes up the backlash of each axis."),
      Key<&M::Axis_Feed_Rate_Travel>("Axis", "Axis_Feed_Rate_Travel")
          .Star("5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of travel moves (G00)."),
      Key<&M::Axis_Feed_Rate_Cut>("Axis", "Axis_Feed_Rate_Cut")
          .Star("5")
          .In("IPM")
          .Between(0.001, Highest_Feed)
          .Saved(Save_Place::Axis)
          .Says("Speed of cutting moves until the program gives an F word."),
      Key<&M::Axis_Feed_Rate_Jogging>("Axis", "Axis_Feed_Rate_Jogging")
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
          .Saved(Save_Place::Axis)
          .Says("Shows Z upside down and turns the Z jog buttons round."),
      Key<&M::Hide_Axis_Cursor>("Axis", "Hide_Axis_Cursor")
          .Saved(Save_Place::Axis)
          .Says("Draws no position cursor in the plot."),
      Key<&M::Axis_Position_Update_Disable>("Axis", "Axis_Position_Update_Disable")
          .Saved(Save_Place::Axis)
          .Says("Lets the displays stand still during a move, for a smoother pulse train."),
      Key<&M::LimitSwitchDisable>("Axis", "LimitSwitchDisable")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Axis)
          .Says("1 switches the limit guard off."),
      Key<&M::LimitDisableinRunMode>("Axis", "LimitDisableinRunMode")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Axis)
          .Says("1 trips the E-stop when a limit switch of X, Y or Z closes during a run."),
      Key<&M::Axis_Z_Jog_Step_Enable>("Axis", "Axis_Z_Jog_Step_Enable")
          .Saved(Save_Place::Axis)
          .Says("Lets Z take single jog steps; off: Z moves as long as its button is held."),
      Key<&M::Hide_CNC_A_Axis>("Axis", "Hide_CNC_A_Axis")
          .Saved(Save_Place::Axis)
          .Says("Hides the controls of the A axis."),
      Key<&M::Validate_Home_Position>("Axis", "Validate_Home_Position")
          .Saved(Save_Place::Axis)
          .Says("Home seeks the switches and sets the positions from them."),
      Key<&M::Axis_Table_Grid_Size>("Axis", "Axis_Table_Grid_Size")
          .Star("1")
          .In("units")
          .Between(0.001, 1e6)
          .Saved(Save_Place::Axis)
          .Says("Spacing of the table grid in the plot."),
      Key<&M::E_Stop_Output_Disable>("Axis", "E_Stop_Output_Disable")
          .Saved(Save_Place::Axis)
          .Says("The E-stop switches all outputs off too, the spindle included."),
      Family<&M::Axis_Tool_Height>("Tool", "Axis_Tool_Height(<n>)")
          .Plain("1|0.5|0")
          .By(Read_Rule::Axis_Number)
          .In("units")
          .Saved(Save_Place::Tool)
          .Says("Z levels: 0 travel, 1 normal cut, 2 deep cut; rounded to the numeral format."),
      Key<&M::ThrottleMaxLim>("Axis", "ThrottleMaxLim")
          .Plain("200")
          .By(Read_Rule::Whole_Number)
          .In("percent")
          .Between(1, 1000)
          .Saved(Save_Place::Displays)
          .Says("Feed override with the knob at its upper end; whole percent."),
      Key<&M::ThrottleMinLim>("Axis", "ThrottleMinLim")
          .Plain("50")
          .By(Read_Rule::Whole_Number)
          .In("percent")
          .Between(1, 1000)
          .Saved(Save_Place::Displays)
          .Says("Feed override with the knob at its lower end; whole percent."),
      Key<&M::DRO_Format>("Axis", "DRO_Format")
          .Plain("00.0000000")
          .By(Read_Rule::Numeral_Format)
          .Saved(Save_Place::Displays)
          .Says("Numeral format of the position displays."),
      Key<&M::Slave_A_Axis_to>("Axis", "Slave_A_Axis_to")
          .Plain("None")
          .Saved(Save_Place::Displays)
          .Says("Axis that A follows: None, X Axis, Y Axis or Z Axis."),
  };
}

}  // namespace

Setup_Row_List Axis_Rows() {
  Setup_Row_List rows;
  for (const auto& part : {Axis_Geometry_Rows(), Axis_Motion_Rows(), Axis_Option_Rows()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  return rows;
}

Setup_Row_List Input_Rows() {
  return {
      Key<&M::CNC_Jog_Increment>("Jog", "CNC_Jog_Increment")
          .Star("0.001")
          .In("units")
          .Between(0, 1000)
          .Says("Distance of a single jog step."),
      Family<&M::KeyJog_KeyValue>("Keyboard", "KeyJog_KeyValue_<n>")
          .Plain("100|102|98|104|107|109|97|105|103|99|188|190|106|111|191")
          .Between(0, 255)
          .Saved(Save_Place::Keyboard)
          .Says("Key codes of the jog keys: X-, X+, Y-, Y+, Z down, Z up, X-Y-, X+Y+, X-Y+, X+Y-, "
                "feed down, feed up, A one way, A the other, speed divisor."),
      Family<&M::JoyJog_KeyValue>("Joystick", "JoyJog_KeyValue_<n>")
          .Plain("Left Stick|2|1|3|4|9|10|12|Right Stick")
          .Saved(Save_Place::Joystick)
          .Says(
              "Joystick: stick for X and Y, buttons for Z up, Z down, A one way, A the other, feed "
              "down, feed up, speed divisor, stick for the override; NU: not used."),
      Key<&M::Application_Priority>("General", "Application_Priority")
          .Plain("0")
          .Between(0, 2)
          .Saved(Save_Place::Priority)
          .Then(After_Load::Apply_Priority)
          .Says("Priority of the process: 0 normal, 1 high, 2 real time."),
  };
}

Setup_Row_List Parallel_Rows() {
  return {
      Family<&M::Output_Names>("Parallel Setup", "Output_Names_<n>")
          .Plain("Spindle CW|Spindle CCW|Coolant Mist|Coolant Flood|Auxillary")
          .Loads(1, 5)
          .Saved(Save_Place::Output_Names)
          .Says("Names of the five outputs; number 0 is only written."),
      Key<&M::Parallel_LPT_Pin_Port>("Parallel Setup", "Parallel_LPT_Pin_Port")
          .Star("888")
          .Between(600, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Base address of the parallel port."),
      Key<&M::Parallel_Port_Type>("Parallel Setup", "Parallel_Port_Type")
          .Star("1")
          .Between(1, 3)
          .Saved(Save_Place::Parallel)
          .Says("Drive: 1 parallel port, 2 first serial board, above 2 second serial board."),
      Key<&M::Parallel_Setup_Type>("Parallel Setup", "Parallel_Setup_Type")
          .Star("1")
          .Between(1, 2)
          .Saved(Save_Place::Parallel)
          .Says("Page of the port setup that is live: by bits or by pins."),
      Key<&M::Parallel_IODLL>("Parallel Setup", "Parallel_IODLL")
          .Star("2")
          .Between(1, 2)
          .Saved(Save_Place::Parallel)
          .Says("Way to reach the port: the first or the second access library."),
      Family<&M::Output_Port>("Parallel Setup", "Output_Port_<n>")
          .Star("888")
          .Between(0, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Port address of the output function."),
      Family<&M::Parallel_Output_Bit>("Parallel Setup", "Parallel_Output_Bit_<n>")
          .Plain("99")
          .Saved(Save_Place::Parallel)
          .Says("Bit of the output function, 0..7; 99: not used."),
      Family<&M::Parallel_Output_Bit_Invert>("Parallel Setup", "Parallel_Output_Bit_Invert_<n>")
          .Saved(Save_Place::Parallel)
          .Says("Inverts the output."),
      Family<&M::Input_Port>("Parallel Setup", "Input_Port_<n>")
          .Star("889")
          .Between(0, Last_Port)
          .Saved(Save_Place::Parallel)
          .Says("Port address of the input function."),
      Family<&M::Parallel_Input_Bit>("Parallel Setup", "Parallel_Input_Bit_<n>")
          .Plain("99")
          .Saved(Save_Place::Parallel)
          .Says("Bit of the input function, 0..7; 99: not used."),
      Family<&M::Parallel_Input_Bit_Invert>("Parallel Setup", "Parallel_Input_Bit_Invert_<n>")
          .Saved(Save_Place::Parallel)
          .Says("Inverts the input."),
      Family<&M::Parallel_MCode_High>("Parallel Setup", "Parallel_MCode_High_<n>")
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("M code that sets the auxiliary output; empty: none."),
      Family<&M::Parallel_MCode_Low>("Parallel Setup", "Parallel_MCode_low_<n>")
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel, "Parallel_MCode_Low_<n>")
          .Says("M code that clears the auxiliary output; empty: none."),
      Key<&M::Parallel_MotorEnable_Option>("Parallel Setup", "Parallel_MotorEnable_Option")
          .Star("0")
          .Between(0, 2)
          .Saved(Save_Place::Parallel)
          .Says("Motor power: 0 on with step, 1 always on, 2 timed."),
      Key<&M::Parallel_MotorEnable_Time>("Parallel Setup", "Parallel_MotorEnable_Time")
          .Star("5")
          .In("s")
          .Between(0, 86400)
          .Saved(Save_Place::Parallel)
          .Says("Time without a step after which timed motor power goes off."),
      Key<&M::Dravon_CommPort>("Parallel Setup", "Dravon_CommPort")
          .Star("1")
          .Between(1, 15)
          .Saved(Save_Place::Parallel)
          .Says("Number of the serial port that leads to the board."),
      Key<&M::Dravon_SASF>("Parallel Setup", "Dravon_SASF")
          .Star("1")
          .Between(1, 20)
          .Saved(Save_Place::Parallel)
          .Says("Smoothing factor of the board's secondary axes."),
      Key<&M::Parallel_Display_IO_Address>("Parallel Display", "Parallel_Display_IO_Address")
          .Star("888")
          .Between(0, Last_Port)
          .Says("Port address that the port display shows."),
  };
}

Setup_Row_List Board_Rows() {
  constexpr std::string_view section = "Dravon Setup";
  return {
      Family<&M::Dravon_MCode_High>(section, "Dravon_MCode_High_<n>")
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("M code that sets the board's auxiliary output; empty: none."),
      Family<&M::Dravon_MCode_Low>(section, "Dravon_MCode_Low_<n>")
          .Loads(0, 0)
          .Saves(0, 0)
          .Saved(Save_Place::Parallel)
          .Says("M code that clears the board's auxiliary output; empty: none."),
      Family<&M::Dravon_CByte>(section, "Dravon_CByte<n>")
          .Plain("255")
          .Between(0, 255)
          .Saved(Save_Place::Parallel)
          .Says("Control bytes of the board; 1 and 2 are sent, 3 and 4 only stored."),
      Key<&M::Dravon_Spindle_RPM>(section, "Dravon_Spindle_RPM")
          .Star("10000")
          .In("turns per minute")
          .Between(1, 1e6)
          .Saved(Save_Place::Parallel)
          .Says("Spindle speed at full output."),
      Key<&M::Dravon_PWM_Inv>(section, "Dravon_PWM_Inv")
          .Saved(Save_Place::Parallel)
          .Says("Inverts the spindle speed output."),
      Key<&M::DravonArcMinimumLength>(section, "DravonArcMinimumLength")
          .Plain("0.001")
          .In("units")
          .Between(0, 1000)
          .Saved(Save_Place::Parallel)
          .Says("Arcs shorter than this become one chord on the first board."),
      Family<&M::Dravon_Enc_Enable>(section, "Dravon_Enc_Enable_<n>")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Parallel)
          .Says("1: the axis has an encoder."),
      Family<&M::Dravon_Enc_StopOnFault>(section, "Dravon_Enc_StopOnFault<n>")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Parallel)
          .Says("1: an encoder fault of the axis stops the board."),
      Family<&M::Dravon_Enc_Mode>(section, "Dravon_Enc_Mode_<n>")
          .Plain("1")
          .Between(0, 3)
          .Saved(Save_Place::Parallel)
          .Says("Counting mode of the encoder."),
      Family<&M::Dravon_Enc_MaxError>(section, "Dravon_Enc_MaxError<n>")
          .Plain("255")
          .Between(0, 32767)
          .In("encoder counts")
          .Saved(Save_Place::Parallel)
          .Says("Deviation above which the encoder reports a fault."),
      Family<&M::Dravon_Enc_CFactor>(section, "Dravon_Enc_CFactor<n>")
          .Plain("1000")
          .Between(0.001, 16777.215)
          .Saved(Save_Place::Parallel)
          .Says("Correction factor between encoder counts and steps."),
  };
}

}  // namespace norvik
