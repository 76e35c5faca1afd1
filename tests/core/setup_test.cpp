// The settings table, load, save and factory reset.
#include "core/setup.h"

#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/setup_table.h"
#include "core/setup_tail.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::HasSubstr;

class Setup_Test : public testing::Test {
 protected:
  Setup_Test() {
    Reset_Core();
    Application.AppDirectory = Folder.Path;
    Application.Pointer_Folder = Folder.Path;
    Application.MachineFile = Folder.File("Machine One.ini");
    Application.ErrorFile = Folder.File("NorvikErr.txt");
  }
  ~Setup_Test() override { Reset_Core(); }

  // A machine file with these lines behind the mark of a good save.
  void Write_Machine_File(const std::string& lines) {
    Replace_File(Application.MachineFile, "[General]\nINI_Save_Test=123\n" + lines);
  }
  std::string Stored(const std::string& section, const std::string& key) {
    return ReadSetup(section, key);
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

// No two keys share a name or a label, and each is described.
TEST_F(Setup_Test, Table_Has_Each_Key_Once_And_Describes_It) {
  std::set<std::string> names, labels;
  for (const Setup_Row& row : Setup_Rows()) {
    EXPECT_FALSE(row.Help.empty()) << row.Key;
    EXPECT_FALSE(row.Group.empty()) << row.Key;
    EXPECT_EQ(row.Is_Family, row.Key.find("<n>") != std::string_view::npos) << row.Key;
    EXPECT_TRUE(row.Entries.empty() ||
                Setting_Entry(row, row.Loaded.Last) != std::to_string(row.Loaded.Last) ||
                row.Entries.ends_with(std::to_string(row.Loaded.Last)))
        << row.Key << " has fewer names than entries";
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
      const std::string name = Upper(std::string(row.Section) + "/" + Setting_Key(row, index));
      EXPECT_TRUE(names.insert(name).second) << name;
      const std::string label = Setting_Label(row, index);
      EXPECT_TRUE(labels.insert(std::string(row.Group) + "/" + label).second) << label;
      EXPECT_EQ(label.find('_'), std::string::npos) << label << " is no label but a key";
      EXPECT_EQ(label.find("<n>"), std::string::npos) << label;
      EXPECT_FALSE(label.empty()) << row.Key;
    }
  }
}

TEST_F(Setup_Test, Missing_File_Gives_Defaults_And_Is_Repaired) {
  LoadMachineSetup();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 1);
  EXPECT_EQ(MachineSetup.Arc_Max_Segments, 360);
  EXPECT_EQ(MachineSetup.Axis_Format, "000.000");
  EXPECT_EQ(MachineSetup.Axis_SPI[4], 4000);
  EXPECT_EQ(MachineSetup.Axis_HomeIPM[0], 5);
  EXPECT_EQ(MachineSetup.Axis_HomeIPM[1], 0.5F);
  EXPECT_TRUE(MachineSetup.Axis_Ramping);
  EXPECT_EQ(MachineSetup.Axis_Tool_Height[1], 0.5F);
  EXPECT_EQ(MachineSetup.KeyJog_KeyValue[14], 191);
  EXPECT_EQ(MachineSetup.JoyJog_KeyValue[8], "Right Stick");
  EXPECT_EQ(MachineSetup.Output_Names[5], "Auxillary");
  EXPECT_EQ(MachineSetup.Output_Names[0], "");
  EXPECT_EQ(MachineSetup.Plot_Color[0], 16711680);
  EXPECT_NE(MachineSetup.Plot_Color[1], 16711680);
  EXPECT_EQ(MachineSetup.DXF_MultiDepth_StartingDepth[19], 1);
  EXPECT_EQ(MachineSetup.DXF_MultiDepth_EndingDepth[19], 0.5F);
  EXPECT_EQ(MachineSetup.Tool_File_Name, Folder.File("Tools/Default.tol"));
  EXPECT_EQ(MachineSetup.Scale_Cnvrt_Imperial_Z, 0.039370078);

  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Title, "Warning");
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("Your machine parameters are not valid.  Please"));
  EXPECT_EQ(Application.SelfTestValue, 123);
  EXPECT_EQ(Stored("General", "INI_Save_Test"), "123");
  EXPECT_EQ(Stored("Axis", "Axis_SPI_4"), "4000");
  EXPECT_EQ(ReadPointer("Machine", "Name"), Application.MachineFile);
  EXPECT_EQ(ReadPointer("General", "INI_File_Source_Directory"), Folder.Path + "/");
  EXPECT_EQ(Messages.Panel[4], "Machine One");
  LoadMachineSetup();
  EXPECT_EQ(scripted.Boxes.size(), 1U);  // once
}

// A value of its own for each field, by type: what one row wrote no other row reads.
std::string Own_Value(const Setup_Field& field, int number) {
  struct Maker {
    int Number;
    std::string operator()(const std::int16_t*) const { return std::to_string(Number + 1); }
    std::string operator()(const std::int32_t*) const { return std::to_string(100'000 + Number); }
    std::string operator()(const float*) const { return std::to_string(Number) + ".125"; }
    std::string operator()(const double*) const { return std::to_string(Number) + ".0625"; }
    std::string operator()(const bool*) const { return Number % 2 == 0 ? "True" : "False"; }
    std::string operator()(const std::string*) const { return "text " + std::to_string(Number); }
  };
  return std::visit(Maker{number}, field);
}

std::vector<std::string> All_Texts(bool saved_only) {
  std::vector<std::string> texts;
  for (const Setup_Row& row : Setup_Rows()) {
    if (saved_only && row.Save == Save_Place::Nowhere) continue;
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
      texts.push_back(Setting_Key(row, index) + "=" + Setup_Text(row, index));
    }
  }
  return texts;
}

TEST_F(Setup_Test, Each_Field_Is_Loaded_From_Its_Key) {
  Profile_Text file{""};
  int number = 1;
  std::map<std::string, std::string> given;
  for (const Setup_Row& row : Setup_Rows()) {
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index, ++number) {
      std::string value = Own_Value(row.Field(MachineSetup, index), number);
      if (row.Key == "INI_Save_Test") value = "123";
      if (row.Key == "Axis_Format") value = "0000.0000";
      if (row.Key == "DRO_Format") value = "00.00";
      if (row.Key == "Axis_Ramp_Rate") value = "7";
      if (row.Key == "Axis_Ramping") value = "0";
      if (row.Rule == Read_Rule::Whole_Number) value = value.substr(0, value.find('.'));
      file.Set(row.Section, Setting_Key(row, index), value);
      given[Setting_Key(row, index)] = value;
    }
  }
  Replace_File(Application.MachineFile, file.Bytes());
  LoadMachineSetup();
  EXPECT_THAT(Setup_Store.Findings, testing::IsEmpty());
  EXPECT_TRUE(scripted.Boxes.empty());
  for (const std::string& text : All_Texts(false)) {
    EXPECT_EQ(text, text.substr(0, text.find('=')) + "=" + given[text.substr(0, text.find('='))]);
  }
  // Spot checks past the table, against rows that point to a wrong field.
  EXPECT_EQ(std::to_string(MachineSetup.Dravon_Enc_MaxError[3]), given["Dravon_Enc_MaxError3"]);
  EXPECT_EQ(MachineSetup.MacroFile[150], given["MacroFile150"]);
  EXPECT_EQ(std::to_string(MachineSetup.Input_Port[5]), given["Input_Port_5"]);
  EXPECT_EQ(MachineSetup.Parallel_MCode_Low[0], given["Parallel_MCode_low_0"]);
}

TEST_F(Setup_Test, Save_Then_Load_Is_Identity_In_Both_Regions) {
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    Restore_Factory_Setup();
    int number = 1;
    for (const Setup_Row& row : Setup_Rows()) {
      for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index, ++number) {
        if (row.Key != "Axis_Format" && row.Key != "Axis_Ramp_Rate") {
          Read_Setup_Text(row, index, Own_Value(row.Field(MachineSetup, index), number));
        }
      }
    }
    MachineSetup.INI_Save_Test = 123;
    MachineSetup.Axis_HomePos[2] = " -0,5 ";
    MachineSetup.Goto_Command[3] = "\"quoted\"";
    const auto before = All_Texts(true);
    ASSERT_TRUE(SaveMachineSetup());
    Application.DecimalSeparator = sign == '.' ? ',' : '.';  // read on the other kind of system
    MachineSetup = {};
    LoadMachineSetup();
    Application.DecimalSeparator = sign;
    EXPECT_EQ(All_Texts(true), before);
  }
}

TEST_F(Setup_Test, Save_Keeps_The_Order_Told_And_Foreign_Lines) {
  Replace_File(Application.MachineFile,
               "; mine\n[Other]\nGauge=7\n[Axis]\nAxis_SPI_1=1\nMy_Key=2\n");
  Restore_Factory_Setup();
  ASSERT_TRUE(SaveMachineSetup());
  const std::string text = Read_Whole_File(Application.MachineFile);
  EXPECT_THAT(text,
              testing::StartsWith("; mine\n[Other]\nGauge=7\n[Axis]\nAxis_SPI_1=4000\nMy_Key=2\n"));
  EXPECT_THAT(text, HasSubstr("\nApplication_Version=Norvik 4 Version 4.0.0\n"));

  std::filesystem::remove(Application.MachineFile);
  ASSERT_TRUE(SaveMachineSetup());
  const std::string fresh = Read_Whole_File(Application.MachineFile);
  std::size_t place = 0;
  for (const char* line :
       {"[AppInfo]",
        "[General]\r\nINI_Save_Test=123\r\nPlot_Color_0=16711680",
        "Plot_Color_6=",
        "Arc_Resolution=180",
        "Default_Offset_3=",
        "ErrorFile_AutoClear=False",
        "Motion_Analyzer_Enable=0\r\nApplication_Priority=0\r\nParallel_Time_Constant=50\r\n"
        "Goto_Command_Index=0\r\nGoto_Command0=",
        "[DXF_Info]\r\nDXF_Cut_2_Layer=\r\nDXF_Sort_Lines=False\r\nDXF_Sort_Layers=False\r\n",
        "[HPGL_Info]\r\nHPGL_PenSize=0.03\r\nHPGL_Sort_Lines=False\r\n",
        "[Gerber_Info]",
        "[G_CODE]\r\nGC_IJ_Incremental=False\r\nGC_ScaleX=1\r\nGC_ScaleY=1",
        "[Excellon]",
        "[Bitmap]",
        "[Parallel Setup]\r\nOutput_Names_0=\r\nOutput_Names_1=Spindle CW\r\n",
        "Parallel_MCode_Low_0=\r\n",
        "[Dravon Setup]",
        "[Axis]",
        "Axis_Ramping=-1\r\n",
        "Slave_A_Axis_to=None",
        "[Tool]\r\nAxis_Tool_Height(0)=1\r\n",
        "[Keyboard]",
        "[Joystick]",
        "[Macros]\r\nMacroFile0=",
        "[Sounds]\r\nSound_Files_0=",
        "[Corrections]\r\nRun_In_Table_Order=False\r\nLimit_Filter_Steps=0\r\n"
        "Home_Needs_Switch=False\r\nPort_Shadow=False\r\nOutputs_Before_Dwell=False\r\n"
        "Slow_Before_Stops=False\r\nGoto_From_Position=False\r\nExport_All_Records=False\r\n"
        "HPGL_Export_Raw_Z=False\r\nMotion_File_Any_Length=False\r\nBacklash_Even=False\r\n"}) {
    const auto found = fresh.find(line, place);
    ASSERT_NE(found, std::string::npos) << line;
    place = found;
  }
  for (const char* elsewhere : {"KeyJog_Device", "CNC_Jog_Increment", "Tool_Directory",
                                "Tool_File_Name", "Parallel_Display_IO_Address", "Recent_Folder"}) {
    EXPECT_EQ(fresh.find(elsewhere), std::string::npos) << elsewhere;
  }
}

TEST_F(Setup_Test, Load_Rules) {
  Write_Machine_File(
      "Arc_Resolution=0\nArc_Radius_Ignore=0\nArc_Max_Segments=12,5\nPlot_Centered=-1\n"
      "Plot_Bit_Radious=,\nApplication_Priority=2\n"
      "[axis]\nAXIS_RAMP_RATE=99\nAxis_CV_MotionAngle=12.5\nAxis_Ramping=True\nThrottleMaxLim=120,"
      "9\n"
      "Axis_SPI_1=2000\nAxis_Format=00.0\n"
      "[Tool]\nAxis_Tool_Height(0)=1,26\nAxis_Tool_Height(1)=\n"
      "[Parallel Setup]\nPARALLEL_MCODE_LOW_0=67\nParallel_Port_Type=2\n");
  std::vector<std::string> calls;
  Setup_Host.Apply_Priority = [&](std::int16_t level) {
    calls.push_back("priority " + std::to_string(level));
  };
  Setup_Host.Copy_Steps_Per_Unit = [&] {
    calls.push_back("steps " + std::to_string(static_cast<int>(MachineSetup.Axis_SPI[1])));
  };
  Setup_Host.Send_To_Controller = [&] {
    calls.push_back("board, bitmap passes " + std::to_string(MachineSetup.BMAP_Passes_to_Depth));
  };
  scripted.On_Yield = [&] { EXPECT_TRUE(Setup_Store.SetupLoading); };
  LoadMachineSetup();
  EXPECT_GE(scripted.Now, 250'000'000);  // a quarter of a second, yielding
  EXPECT_FALSE(Setup_Store.SetupLoading);
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_EQ(MachineSetup.Arc_Radius_Ignore, 0);
  EXPECT_EQ(MachineSetup.Arc_Max_Segments, 12);
  EXPECT_TRUE(MachineSetup.Plot_Centered);
  EXPECT_EQ(MachineSetup.Plot_Bit_Radious, 0.0001F);
  EXPECT_EQ(MachineSetup.Axis_Ramp_Rate, 15);
  EXPECT_EQ(MachineSetup.Axis_CV_MotionAngle, 12);
  EXPECT_TRUE(MachineSetup.Axis_Ramping);
  EXPECT_EQ(MachineSetup.ThrottleMaxLim, 120);
  EXPECT_EQ(MachineSetup.Axis_Tool_Height[0], 1.3F);  // re-formatted by Axis_Format
  EXPECT_EQ(MachineSetup.Axis_Tool_Height[1], 0.5F);
  EXPECT_EQ(MachineSetup.Parallel_MCode_Low[0], "67");
  EXPECT_THAT(calls, testing::ElementsAre("priority 2", "steps 2000", "board, bitmap passes 1"));
}

// Each field once with text that is nothing of its kind.
TEST_F(Setup_Test, Nonsense_Gives_Defaults_And_Is_Named) {
  Restore_Factory_Setup();
  const auto defaults = All_Texts(false);
  Profile_Text file{""};
  std::size_t numeric = 0;
  for (const Setup_Row& row : Setup_Rows()) {
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
      const bool is_text = std::holds_alternative<std::string*>(row.Field(MachineSetup, index));
      if (!is_text) file.Set(row.Section, Setting_Key(row, index), "\x01 no-number \xFF");
      if (!is_text) ++numeric;
    }
  }
  Replace_File(Application.MachineFile, file.Bytes());
  LoadMachineSetup();
  EXPECT_EQ(Setup_Store.Findings.size(), numeric);
  EXPECT_THAT(Setup_Store.Findings[0],
              testing::StartsWith("[General] INI_Save_Test=\x01 no-number"));
  std::size_t row_number = 0;
  for (const Setup_Row& row : Setup_Rows()) {
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index, ++row_number) {
      // Whole numbers that may be 0 become 0, and so does what is read as a whole number.
      const Setup_Field field = row.Field(MachineSetup, index);
      const bool is_whole = std::holds_alternative<std::int16_t*>(field) ||
                            std::holds_alternative<std::int32_t*>(field) ||
                            row.Rule == Read_Rule::Whole_Number;
      if (row.Key == "INI_Save_Test" || (is_whole && row.Takes_Default == Sentinel::Empty))
        continue;
      EXPECT_EQ(Setting_Key(row, index) + "=" + Setup_Text(row, index), defaults[row_number]);
    }
  }
  EXPECT_EQ(MachineSetup.ThrottleMinLim, 0);
  Write_Machine_File("Arc_Resolution=1e30\nParallel_Time_Constant=-9e9\nPlot_Bit_Radious=1e99\n");
  LoadMachineSetup();
  EXPECT_EQ(Setup_Store.Findings.size(), 3U);
  EXPECT_EQ(MachineSetup.Arc_Resolution, 32767);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, -2147483647 - 1);
  EXPECT_EQ(MachineSetup.Plot_Bit_Radious, 0.0001F);
}

TEST_F(Setup_Test, File_Out_Of_Reach_Is_Told_And_Left_Alone) {
  Application.MachineFile = Folder.Path;  // a folder
  LoadMachineSetup();
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("this is a folder, please name a file"));
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_FALSE(SaveMachineSetup());
  ASSERT_EQ(scripted.Boxes.size(), 2U);
  EXPECT_THAT(scripted.Boxes[1].Text, HasSubstr("Your parameters are not saved."));
  EXPECT_FALSE(WriteSetup("Jog", "CNC_Jog_Increment", "1"));
  EXPECT_THAT(Messages.LastMessage, HasSubstr("this is a folder"));

  Application.MachineFile = Folder.File("no such folder/Machine.ini");
  LoadMachineSetup();
  EXPECT_EQ(Application.SelfTestValue, 999);  // not repaired
  const auto log_lines = Split_Lines(Read_Whole_File(Application.ErrorFile)).size();
  ReadSetup("Form Position", "Main_Top");
  ReadSetup("Form Position", "Main_Left");
  EXPECT_EQ(Split_Lines(Read_Whole_File(Application.ErrorFile)).size(), log_lines);
}

TEST_F(Setup_Test, Garbage_File_Is_Repaired_Around_The_Garbage) {
  std::string garbage(3'000'000, 'x');  // one endless line, then all bytes
  for (int i = 0; i < 100'000; ++i) garbage += static_cast<char>(i * 31 % 256);
  Replace_File(Application.MachineFile, garbage);
  LoadMachineSetup();
  EXPECT_EQ(scripted.Boxes.size(), 1U);
  LoadMachineSetup();
  EXPECT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(Read_Whole_File(Application.MachineFile), testing::StartsWith(garbage));
}

// Killed at any moment of a save, the file is the old one or the new one, never a part.
TEST_F(Setup_Test, Kill_Leaves_A_Whole_File) {
  Restore_Factory_Setup();
  std::set<std::string> whole;
  for (const std::int16_t turn : {std::int16_t{0}, std::int16_t{1}}) {
    MachineSetup.Goto_Command_Index = turn;
    ASSERT_TRUE(SaveMachineSetup());
    whole.insert(Read_Whole_File(Application.MachineFile));
  }
  for (int round = 0; round < 15; ++round) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (std::int16_t turn = 0;; turn = static_cast<std::int16_t>(1 - turn)) {
        MachineSetup.Goto_Command_Index = turn;
        SaveMachineSetup();
      }
    }
    ::usleep(static_cast<useconds_t>(3000 + 1700 * round));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(whole.contains(Read_Whole_File(Application.MachineFile))) << round;
  }
}

// The mark of a good save stands in front, so that it survives.
TEST_F(Setup_Test, A_Lost_End_Is_Noticed_And_A_Short_File_Is_Not) {
  LoadMachineSetup();
  EXPECT_TRUE(Lost_Tail.Keys.empty());
  const std::string whole = Read_Whole_File(Application.MachineFile);
  std::size_t missing_before = 0;
  for (const int percent : {90, 70, 40, 10}) {
    SCOPED_TRACE(percent);
    std::string part = whole.substr(0, whole.size() * static_cast<std::size_t>(percent) / 100);
    part.resize(part.rfind('\n') + 1);
    Replace_File(Application.MachineFile, part);
    LoadMachineSetup();
    EXPECT_GT(Lost_Tail.Keys.size(), missing_before);
    missing_before = Lost_Tail.Keys.size();
    EXPECT_THAT(Words_About_Lost_Tail(), HasSubstr(std::to_string(missing_before) + " settings"));
  }
  EXPECT_TRUE(SaveMachineSetup());
  EXPECT_TRUE(Lost_Tail.Keys.empty());
  LoadMachineSetup();
  EXPECT_TRUE(Lost_Tail.Keys.empty());
  // What people write by hand, and a file from before the corrections.
  const std::string samples = NORVIK_SAMPLES_FOLDER;
  for (const char* name : {"/inch.ini", "/metric.ini"}) {
    Replace_File(Application.MachineFile, Read_Whole_File(samples + name));
    LoadMachineSetup();
    EXPECT_TRUE(Lost_Tail.Keys.empty()) << name;
  }
  Replace_File(Application.MachineFile, whole.substr(0, whole.find("[Corrections]")));
  LoadMachineSetup();
  EXPECT_TRUE(Lost_Tail.Keys.empty());
}

// A whole save keeps the order of a file that a person began.
TEST_F(Setup_Test, A_Cut_Line_Tells_A_Lost_End_In_Any_Order_Of_Sections) {
  const std::string begun = Read_Whole_File(std::string(NORVIK_SAMPLES_FOLDER) + "/inch.ini");
  Replace_File(Application.MachineFile, begun.substr(0, begun.find_last_not_of("\r\n") + 1));
  LoadMachineSetup();
  EXPECT_TRUE(Lost_Tail.Keys.empty()) << "a short file without a last line end";
  EXPECT_TRUE(SaveMachineSetup());
  const std::string whole = Read_Whole_File(Application.MachineFile);
  std::string part = whole.substr(0, whole.find("Output_Names_2=") + 4);
  Replace_File(Application.MachineFile, part);
  LoadMachineSetup();
  EXPECT_FALSE(Lost_Tail.Keys.empty());
}

TEST_F(Setup_Test, Factory_Reset_Reads_No_Key) {
  Write_Machine_File(
      "Arc_Resolution=99\n[Axis]\nAxis_Format=0.0\n[Parallel Setup]\nParallel_Port_Type=3\n");
  LoadMachineSetup();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 99);
  Setup_Store.RestoringDefaults = true;
  LoadMachineSetup();
  Setup_Store.RestoringDefaults = false;
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_EQ(MachineSetup.Axis_Format, "000.000");
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 1);
  EXPECT_TRUE(scripted.Boxes.empty());  // empty keys are no damage
  ASSERT_TRUE(SaveMachineSetup());
  EXPECT_EQ(Stored("General", "Arc_Resolution"), "180");
}

// A machine file from before the corrections, a fresh one and a factory reset have none on.
TEST_F(Setup_Test, Corrections_Are_Off_Until_Switched_On) {
  const auto on = [] {
    std::string keys;
    for (const Setup_Row& row : Setup_Rows()) {
      if (row.Section != "Corrections") continue;
      const std::string text = Setup_Text(row, 0);
      if (text != "False" && text != "0") keys += row.Key;
    }
    return keys;
  };
  Write_Machine_File("[Corrections]\nRun_In_Table_Order=True\nLimit_Filter_Steps=40\n");
  LoadMachineSetup();
  EXPECT_TRUE(MachineSetup.Run_In_Table_Order);
  EXPECT_EQ(MachineSetup.Limit_Filter_Steps, 40);
  Write_Machine_File("[Axis]\nAxis_SPI_1=100\n");
  LoadMachineSetup();
  EXPECT_EQ(on(), "");
  MachineSetup.Home_Needs_Switch = true;
  Restore_Factory_Setup();
  EXPECT_EQ(on(), "");
}

TEST_F(Setup_Test, Machine_Name_Goes_Through_The_Pointer_File) {
  SetMachineName("/machines/router.ini");
  EXPECT_EQ(Application.MachineFile, "/machines/router.ini");
  EXPECT_EQ(Read_Whole_File(Folder.File("Norvik.Ini")),
            "[Machine]\r\nName=/machines/router.ini\r\n");
  SetMachineName("");
  EXPECT_EQ(Application.MachineFile, Folder.File("Default_Machine.ini"));
}

// What a second program has changed meanwhile stays, unless it was changed here too.
TEST_F(Setup_Test, A_Save_Leaves_What_Another_Program_Changed) {
  Write_Machine_File("Arc_Resolution=99\n[Axis]\nAxis_SPI_1=2000\nAxis_SPI_2=500\n");
  LoadMachineSetup();
  const std::string& path = Application.MachineFile;
  Write_Profile(path, "Axis", "Axis_SPI_1", "3000");  // the other program
  Write_Profile(path, "Axis", "Axis_SPI_2", "600");
  MachineSetup.Axis_SPI[2] = 700;
  MachineSetup.Arc_Resolution = 50;
  for (int save = 0; save < 2; ++save) {
    ASSERT_TRUE(SaveMachineSetup());
    EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "3000");
    EXPECT_EQ(Stored("Axis", "Axis_SPI_2"), "700");
    EXPECT_EQ(Stored("General", "Arc_Resolution"), "50");
  }
  Write_Profile(path, "Axis", "Axis_SPI_2", "800");  // changed here before, not since
  ASSERT_TRUE(SaveMachineSetup());
  EXPECT_EQ(Stored("Axis", "Axis_SPI_2"), "800");

  Restore_Factory_Setup();  // every key, whoever wrote it
  ASSERT_TRUE(SaveMachineSetup());
  EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "4000");
  LoadMachineSetup();
  std::filesystem::remove(path);  // nothing is theirs in a file that is gone
  ASSERT_TRUE(SaveMachineSetup());
  EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "4000");
}

TEST_F(Setup_Test, Who_Saves_Over_Foreign_Changes_Is_Asked_Whose_Hold) {
  const auto change_and_save = [&](std::optional<Box_Answer> answer) {
    Write_Machine_File("Arc_Resolution=99\n[Axis]\nAxis_SPI_1=2000\nAxis_SPI_2=500\n");
    LoadMachineSetup();
    Write_Profile(Application.MachineFile, "Axis", "Axis_SPI_1", "3000");  // the other program
    MachineSetup.Axis_SPI[2] = 700;
    scripted.Boxes.clear();
    if (answer) scripted.Box_Answers.push_back(*answer);
    EXPECT_TRUE(SaveMachineSetup());
    EXPECT_EQ(Stored("Axis", "Axis_SPI_2"), "700");
  };
  change_and_save(Box_Answer::Yes);
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("changed 1 settings"));
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("Axis_SPI_1"));
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 3000);
  EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "3000");
  EXPECT_TRUE(SaveMachineSetup());
  EXPECT_EQ(scripted.Boxes.size(), 1U) << "asked once";
  change_and_save(Box_Answer::No);
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 2000);
  EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "2000");
  Setup_Store.Without_Windows = true;
  change_and_save(std::nullopt);
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_EQ(Stored("Axis", "Axis_SPI_1"), "3000");
}

TEST_F(Setup_Test, A_Call_That_Was_Not_Asked_Leaves_The_Files) {
  Setup_Store.Leaves_Files = Setup_Store.Without_Windows = true;
  const std::string foreign = "[Axis]\nAxis_SPI_1=2000\nAxis_SPI_2=many\n";
  Replace_File(Application.MachineFile, foreign);
  EXPECT_TRUE(LoadMachineSetup());
  EXPECT_EQ(scripted.Yields, 0);  // nobody waits for a queue that is not there
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_FALSE(Saved_Whole());
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 2000);
  EXPECT_EQ(MachineSetup.Axis_SPI[4], 4000);
  EXPECT_THAT(Setup_Store.Findings, testing::ElementsAre(HasSubstr("Axis_SPI_2=many")));
  EXPECT_TRUE(SaveMachineSetup());
  EXPECT_TRUE(WriteSetup("Axis", "Axis_SPI_3", "1"));
  EXPECT_TRUE(WritePointer("Machine", "Name", "x"));
  EXPECT_TRUE(Write_Setup_Together([] { WriteSetup("Axis", "Axis_SPI_3", "1"); }));
  EXPECT_EQ(Read_Whole_File(Application.MachineFile), foreign);
  EXPECT_FALSE(FileExists(Pointer_File()));
  Application.MachineFile = Folder.Path;
  EXPECT_FALSE(LoadMachineSetup());
}

}  // namespace
}  // namespace norvik
