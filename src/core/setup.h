// setup.h: all parameters of one machine and one working style.
//
// `MachineSetup` is filled from the machine file by `LoadMachineSetup` and written by
// `SaveMachineSetup`; both walk the one table of setup_table.cpp, and so does the factory reset.
// Between loads the record is the truth: windows edit it and save. A field's name is its key; key
// families are tables with the key's index.
//
// Units: lengths in inches or millimetres as `UnitsofMeasurement` says, speeds in units per minute
// (IPM), times in seconds, scales in steps per unit of length, colours with the bytes blue, green,
// red from the highest to the lowest.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Machine_Setup {
  // --- General ---------------------------------------------------------------------------------
  std::int16_t INI_Save_Test = 0;  // 123 after a good save
  std::int16_t KeyJog_Device = 0;  // 0 keyboard, 1 joystick
  std::string Recent_Folder;
  std::int16_t Motion_Analyzer_Enable = 0;
  std::int16_t Goto_Command_Index = 0;
  Indexed<std::string, 0, 9> Goto_Command;
  bool ErrorFile_AutoClear = false;
  std::int16_t Application_Priority = 0;  // 0 normal, 1 high, 2 real time
  // Travel, cut, deep cut, background, grid, cursor, cursor blinking. The first three differ in hue
  // and can be told from a light and from a dark ground, also by people who do not see red and
  // green.
  Indexed<std::int32_t, 0, 6> Plot_Color{
      {0xFF0000, 0x005ED5, 0x6B8F00, 0xFAFAFA, 0xA0A0A0, 0x1414DC, 0x0096FF}};
  std::int16_t Arc_Resolution = 32;  // segments per unit of radius
  std::int16_t Arc_Max_Segments = 0;
  std::int16_t Arc_Radius_Ignore = 0;
  std::int16_t Plot_Bit_Radius_Enable = 0;
  std::int16_t Plot_FastDraw = 0;
  std::int16_t Plot_Auto_Loading = 0;  // 1: compile and draw on open
  float Plot_Bit_Radious = 0;          // radius of the drawn bit
  std::int16_t Plot_Show_Grid = 0;
  bool Plot_Centered = false;
  std::int32_t Parallel_Time_Constant = 0;  // microseconds taken off every half-step delay
  Indexed<float, 1, 3> Default_Offset;
  bool Offset_Duplicate = false;
  bool Auto_Dwell_Insertion = false;
  float Gcode_DwellTime_Default = 0;
  bool Auto_Spindle_OnOff_Insertion = false;
  bool Auto_Flood_OnOff_Insertion = false;
  bool Auto_Mist_OnOff_Insertion = false;
  bool Plot_Dwell_Enable = false;
  bool Gcode_LineNodes = false;
  float Scale_Cnvrt_Metric_X = 0, Scale_Cnvrt_Metric_Y = 0, Scale_Cnvrt_Metric_Z = 0;
  double Scale_Cnvrt_Imperial_X = 0, Scale_Cnvrt_Imperial_Y = 0, Scale_Cnvrt_Imperial_Z = 0;

  // --- Tools, Macros, G_CODE -------------------------------------------------------------------
  std::string Tool_Directory;
  std::string Tool_File_Name;
  Indexed<std::string, 0, 150> MacroFile;
  float GC_ScaleX = 1, GC_ScaleY = 1;
  bool GC_IJ_Incremental = false;

  // --- Axis ------------------------------------------------------------------------------------
  std::int16_t UnitsofMeasurement = 0;  // 0 inch, 1 millimetre
  std::string Axis_Format = "00.0000";
  Indexed<float, 1, 4> Axis_SPI;      // steps per unit of length
  Indexed<float, 1, 4> Axis_Depth;    // length of travel
  Indexed<bool, 1, 4> Axis_Polarity;  // inverted direction
  Indexed<float, 1, 4> Axis_Backlash;
  Indexed<std::string, 1, 4> Axis_HomePos, Axis_ReToolPos, Axis_HomePath,
      Axis_HomeTarget;  // empty: unset
  Indexed<float, 1, 4> Axis_Max_Feed_Rate;
  Indexed<float, 0, 1> Axis_HomeIPM;  // 0 fast, 1 slow
  bool Axis_Ramping = false;
  float Axis_Ramp_Start = 0;        // IPM
  std::int16_t Axis_Ramp_Rate = 0;  // hertz a step, 1..15
  float Axis_CV_MotionAngle = 45;   // degrees
  std::int16_t Axis_Limit_Secondary_Velocity = 0;
  bool Axis_Backlash_Enable = false;
  float Axis_Feed_Rate_Travel = 0, Axis_Feed_Rate_Cut = 0, Axis_Feed_Rate_Jogging = 0;
  bool Display_Z_Coordinate_Invert = false;
  bool Hide_Axis_Cursor = false;
  bool Axis_Position_Update_Disable = false;
  std::int16_t LimitSwitchDisable = 0, LimitDisableinRunMode = 0;
  bool Axis_Z_Jog_Step_Enable = false;
  bool Hide_CNC_A_Axis = false;
  bool Validate_Home_Position = false;
  float Axis_Table_Grid_Size = 0;
  bool E_Stop_Output_Disable = false;
  float ThrottleMaxLim = 0, ThrottleMinLim = 0;  // percent
  std::string DRO_Format;
  std::string Slave_A_Axis_to;  // "None", "X Axis", "Y Axis" or "Z Axis"

  // --- Tool, Jog, Keyboard, Joystick -----------------------------------------------------------
  Indexed<float, 0, 2> Axis_Tool_Height;  // Z levels: travel, normal cut, deep cut
  float CNC_Jog_Increment = 0;
  Indexed<std::int16_t, 0, 14> KeyJog_KeyValue;
  Indexed<std::string, 0, 8> JoyJog_KeyValue;

  // --- Parallel Setup, Parallel Display --------------------------------------------------------
  Indexed<std::string, 0, 5> Output_Names;  // 1..5 are shown; 0 is only written
  std::int32_t Parallel_LPT_Pin_Port = 0;
  std::int16_t Parallel_Port_Type = 1;  // 1 parallel port, 2 first serial board, above 2 second
  std::int16_t Parallel_Setup_Type = 0;
  std::int16_t Parallel_IODLL = 0;  // port access library
  Indexed<std::int32_t, 1, 17> Output_Port;
  Indexed<std::string, 1, 17> Parallel_Output_Bit;  // "99": unused
  Indexed<bool, 1, 17> Parallel_Output_Bit_Invert;
  Indexed<std::int32_t, 0, 5> Input_Port;
  Indexed<std::string, 0, 5> Parallel_Input_Bit;  // "99": unused
  Indexed<bool, 0, 5> Parallel_Input_Bit_Invert;
  Indexed<std::string, 0, 3> Parallel_MCode_High, Parallel_MCode_Low;  // only entry 0 is stored
  std::int16_t Parallel_MotorEnable_Option = 0;  // 0 on with step, 1 always on, 2 timed
  float Parallel_MotorEnable_Time = 0;           // seconds
  std::int16_t Dravon_CommPort = 0;
  std::int16_t Dravon_SASF = 0;
  std::int32_t Parallel_Display_IO_Address = 0;

  // --- Dravon Setup ----------------------------------------------------------------------------
  Indexed<std::string, 0, 3> Dravon_MCode_High, Dravon_MCode_Low;  // only entry 0 is stored
  Indexed<std::int16_t, 1, 4> Dravon_CByte;
  std::int32_t Dravon_Spindle_RPM = 0;
  bool Dravon_PWM_Inv = false;
  float DravonArcMinimumLength = 0;
  Indexed<std::int16_t, 1, 4> Dravon_Enc_Enable, Dravon_Enc_StopOnFault, Dravon_Enc_Mode,
      Dravon_Enc_MaxError;
  Indexed<float, 1, 4> Dravon_Enc_CFactor;

  // --- DXF_Info --------------------------------------------------------------------------------
  std::string DXF_Cut_2_Layer;
  bool DXF_Sort_Layers = false, DXF_Sort_Lines = false, DXF_Ingore_Depth = false;
  float DXF_Line_Tolerance = 0;
  std::int16_t DXF_Passes_to_Depth = 0;
  bool DXF_Passes_to_Depth_Deep_Cut_Only = false;
  std::int16_t DXF_Pass_Type = 0;
  Indexed<float, 1, 3> DXF_Import_Offset;
  Indexed<std::string, 0, 19> DXF_MultiDepth_Layer;
  Indexed<std::int16_t, 0, 19> DXF_MultiDepth_Passes;
  Indexed<float, 0, 19> DXF_MultiDepth_StartingDepth, DXF_MultiDepth_EndingDepth;

  // --- HPGL_Info -------------------------------------------------------------------------------
  bool HPGL_Sort_Lines = false;
  float HPGL_PenSize = 0;
  bool HPGL_Ingore_Depth = false;
  std::int16_t HPGL_Passes_to_Depth = 0;
  bool HPGL_Multiple_Pen_Enable = false, HPGL_Multiple_Retool_Pause = false;
  Indexed<std::string, 1, 8> HPGL_Multiple_Pen_Cutting_IPM, HPGL_Multiple_Pen_Plunge_Depth,
      HPGL_Multiple_Pen_Plunge_IPM;

  // --- Gerber_Info -----------------------------------------------------------------------------
  bool Gerber_Clean_Data = false, Gerber_Isolation = false;
  float Gerber_Isolation_Width = 0, Gerber_Isolation_Minimum_Poly_Width = 0;
  bool Gerber_Isolation_Sort_Lines = false, Gerber_Isolation_Cleanup_Lines = false;
  bool Gerber_Isolation_SmallLines_Function = false, Gerber_Isolation_Multi_Cut_Lines = false;
  std::int16_t Gerber_Isolation_Multi_Cut_Count = 0;
  float Gerber_Isolation_Multi_Cut_Gap = 0;

  // --- Excellon --------------------------------------------------------------------------------
  bool Excellon_Sort_Size = false, Excellon_Sort_Location = false;
  float Excellon_Default_Drill_Size = 0;
  std::int16_t Excellon_Integer_Format = 0, Excellon_Decimal_Format = 0, Excellon_Zero_Format = 0;

  // --- Bitmap ----------------------------------------------------------------------------------
  float BMAP_Material_Size_X = 0, BMAP_Material_Size_Y = 0, BMAP_Material_Size_Z = 0;
  float BMAP_Travel_Height = 0;
  float BMAP_Increment_X = 0, BMAP_Increment_Y = 0;
  std::int16_t BMAP_Rotate90 = 0, BMAP_Invert_Z = 0, BMAP_Sway_XY = 0;
  float BMAP_Import_Offset_X = 0, BMAP_Import_Offset_Y = 0, BMAP_Import_Offset_Z = 0;
  std::int16_t BMAP_Passes_to_Depth = 0;

  // --- Sounds ----------------------------------------------------------------------------------
  Indexed<std::string, 0, 10> Sound_Files;

  // --- Corrections -----------------------------------------------------------------------------
  // Each changes one behaviour that can hurt; a fresh machine file has all of them off. What each
  // changes says its row of the settings table.
  bool Run_In_Table_Order = false;
  std::int32_t Limit_Filter_Steps = 0;  // half steps; 0: off
  bool Home_Needs_Switch = false;
  bool Port_Shadow = false;
  bool Serial_Jog_Pieces = false;
  bool Serial_Path_Feed = false;
  bool Outputs_Before_Dwell = false;
  bool Slow_Before_Stops = false;
  bool Goto_From_Position = false;
  bool Export_All_Records = false;
  bool HPGL_Export_Raw_Z = false;
  bool Motion_File_Any_Length = false;
  bool Adapt_Always = false;
  bool Backlash_Even = false;
  bool Home_Tap_Target = false;
  bool One_Acceleration = false;
  bool Axis_Scale_Delay = false;
  bool Drop_Rounding_Of_Loads = false;
  bool Import_Convert_Units = false;
  bool Excellon_Header = false;
  bool HPGL_All_Pairs = false;
};
extern Machine_Setup MachineSetup;

// What goes on with the machine file.
struct Setup_Store_State {
  bool SetupLoading = false;       // a load runs; windows leave their controls alone
  bool RestoringDefaults = false;  // every key reads as empty
  // A call that was not asked to change the setup, as of the companion or of a simulation: writes
  // to machine file and pointer file succeed and reach nothing, and a machine file of another
  // system or in part is read with defaults for what it lacks, without being repaired.
  bool Leaves_Files = false;
  bool Without_Windows = false;  // there is no event queue that a load would serve first
  // Values of the last load that were no value of their key's type: "[Axis] Axis_SPI_1=abc ...".
  std::vector<std::string> Findings;
};
extern Setup_Store_State Setup_Store;

// What the drives do when a load brings their values. Each does nothing by default.
struct Setup_Host_Operations {
  // `Application_Priority` has been read.
  std::function<void(std::int16_t level)> Apply_Priority = [](std::int16_t) {};
  // `Axis_SPI` has been read: the drives copy it to their working slots.
  std::function<void()> Copy_Steps_Per_Unit = [] {};
  // All keys that a serial board needs have been read: they go to the board that is connected.
  std::function<void()> Send_To_Controller = [] {};
};
extern Setup_Host_Operations Setup_Host;

// Reads every key from `Application.MachineFile` in the order of the load. A missing file gives
// every key its default; one that cannot be read does so too, with a message. A file without the
// mark of a good save is repaired: the operator is warned and the whole setup is written. False
// when a file that is there could not be read.
bool LoadMachineSetup();
// Writes every key in the order of the save, the file whole or not at all. A key that another
// program has changed since the load, and this one not, keeps what the other wrote. True when it
// was written; otherwise the operator has been told why.
bool SaveMachineSetup();
// Whether the file of the last load carried the mark of a good save, or was saved since.
bool Saved_Whole();
// Every field to its default, as the factory reset and a missing file give it; touches no file.
void Restore_Factory_Setup();
// The machine file in the working folder where the pointer file names none.
inline constexpr std::string_view Default_Machine_Name = "Default_Machine.ini";
// Makes `path` the active machine file and remembers it in the pointer file. What the pointer file
// then says counts; if it says nothing, "Default_Machine.ini" of the working folder.
void SetMachineName(const std::string& path);

// One key of `Application.MachineFile`: empty when missing, cut at 255 characters. A file that
// cannot be read is logged once and reads as empty.
std::string ReadSetup(std::string_view section, std::string_view key);
// Writes one key; a file that cannot be written is logged and shown in the message list, and false.
// Does nothing before the start has named the file.
bool WriteSetup(std::string_view section, std::string_view key, std::string_view value);
// The same for the pointer file Norvik.Ini of `Application.Pointer_Folder`.
std::string ReadPointer(std::string_view section, std::string_view key);
bool WritePointer(std::string_view section, std::string_view key, std::string_view value);
// Collects the writes that `body` makes to the machine file, or to the pointer file, and brings
// them to the disk together. False when that failed; it has been told then.
bool Write_Setup_Together(const std::function<void()>& body);
bool Write_Pointer_Together(const std::function<void()>& body);
// Path of the pointer file; empty before the start.
std::string Pointer_File();

}  // namespace norvik
