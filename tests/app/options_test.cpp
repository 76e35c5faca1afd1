// The window Options as a record: what a field takes, what Apply stores, refuses and points out.
#include "app/app_fixture.h"
#include "app/options/option_pages.h"
#include "app/options/option_search.h"
#include "app/options/options_form.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/profile_file.h"
#include "core/setup_keys.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Options_Test : App_Test {
  Options_Test() {
    Application.MachineFile = Folder.File("work/mill.ini");
    Restore_Factory_Setup();
    SaveMachineSetup();
    Options_Form_Load();
  }
  static Option_Field& Field(const std::string& key) {
    Option_Field* field = Find_Option(key);
    if (field == nullptr) throw std::runtime_error("No setting " + key);
    return *field;
  }
  static void Type(const std::string& key, const std::string& text) {
    Option_Change(Field(key), text);
  }
  static std::string In_File(const std::string& key) {
    return ReadSetup(Field(key).Row->Section, key);
  }
};

TEST_F(Options_Test, Every_Key_Stands_On_A_Page_Under_A_Name_Of_Its_Own) {
  std::set<std::string> names;
  for (const Option_Field& field : Options_Form.Fields) {
    EXPECT_TRUE(names.insert(Option_Control_Name(field)).second) << Option_Key(field);
    const Option_Page& page = Page_Of_Group(field.Row->Group);
    const bool named = std::ranges::find(page.Groups, field.Row->Group) != page.Groups.end();
    EXPECT_TRUE(named) << Option_Key(field) << " belongs to the group " << field.Row->Group;
  }
  for (const Setup_Key& key : Setup_Keys()) {
    if (key.Row->Key == "INI_Save_Test") continue;  // the save's own mark
    EXPECT_NE(Find_Option(Setup_Full_Name(key)), nullptr) << Setup_Full_Name(key);
  }
  // What stands on the pages is the same set.
  std::size_t laid_out = 0;
  for (const Option_Page& page : Option_Pages()) {
    for (const std::string_view group : page.Groups) {
      for (const Option_Block& block : Blocks_Of_Group(group)) {
        const auto entries = block.Entries.Last - block.Entries.First + 1;
        laid_out += block.Rows.size() * static_cast<std::size_t>(entries);
      }
    }
  }
  EXPECT_EQ(laid_out, Options_Form.Fields.size());
}

TEST_F(Options_Test, Axes_Layers_And_Pens_Are_Tables) {
  const auto shape = [](std::string_view group, std::string_view key) {
    for (const Option_Block& block : Blocks_Of_Group(group)) {
      for (const Setting_Row* row : block.Rows) {
        if (row->Key == key) return std::pair(block.Shape, block.Rows.size());
      }
    }
    return std::pair(Block_Shape::Line, std::size_t{0});
  };
  EXPECT_EQ(shape("Axes", "Axis_SPI_<n>"), std::pair(Block_Shape::Columns, std::size_t{5}));
  EXPECT_EQ(shape("DXF import", "DXF_MultiDepth_Layer_<n>"),
            std::pair(Block_Shape::Entries, std::size_t{4}));
  EXPECT_EQ(shape("HPGL import", "HPGL_Multiple_Pen_Plunge_IPM_<n>"),
            std::pair(Block_Shape::Entries, std::size_t{3}));
  EXPECT_EQ(shape("Axes", "Axis_Backlash_Enable").first, Block_Shape::Line);
}

// --- What is typed -----------------------------------------------------------------------------

TEST_F(Options_Test, A_Number_Takes_No_Nonsense_And_Nothing_Is_Stored) {
  const std::string digits(400, '7');
  const std::string before = Read_Whole_File(Application.MachineFile);
  int tried = 0;
  for (Option_Field& field : Options_Form.Fields) {
    const Setting_Row& row = *field.Row;
    const bool number = row.Kind == Setting_Kind::Number || row.Kind == Setting_Kind::Whole_Number;
    const bool free_text = row.Kind == Setting_Kind::Text && row.Choices.empty();
    if (!field.Locked.empty()) continue;
    std::vector<std::string> wrong = {"1\n2", "a\tb", digits};
    if (number || row.Kind == Setting_Kind::Numeral_Format) wrong.insert(wrong.end(), {"", "  "});
    if (!free_text || Takes_Number_Or_Nothing(row)) {
      for (const char* text : {"abc", "NaN", "inf", "1e999", ",", ".", "1,2,3", "-"}) {
        wrong.emplace_back(text);
      }
    }
    if (number) wrong.emplace_back("-0");
    if (number && row.Choices.empty() && std::isfinite(row.Bounds.Low)) {
      wrong.push_back(Shortest_Text(row.Bounds.Low - 1));
      wrong.push_back(Shortest_Text(row.Bounds.High + 1));
    }
    for (const std::string& text : wrong) {
      Option_Change(field, text);
      if (!Is_Edited(field)) continue;  // "" where nothing is stored
      EXPECT_THAT(field.Error, testing::Not(IsEmpty())) << Option_Key(field) << " took " << text;
      ++tried;
    }
    if (tried % 50 == 0) {
      EXPECT_FALSE(Options_Command_Apply_Click());
    }
    Option_Change(field, field.Stored);
    EXPECT_THAT(field.Error, IsEmpty()) << Option_Key(field);
  }
  EXPECT_GT(tried, 3000);
  EXPECT_EQ(Read_Whole_File(Application.MachineFile), before);
}

TEST_F(Options_Test, One_Wrong_Field_Holds_Back_All_And_Is_Gone_To) {
  Type("Arc_Resolution", "90");
  Type("Axis_Ramp_Rate", "99");
  EXPECT_EQ(Field("Axis_Ramp_Rate").Error, "Takes a whole number, 1 to 15 hertz per step.");
  EXPECT_FALSE(Options_Command_Apply_Click());
  EXPECT_EQ(Options_Form.Page, "Speeds and ramps");
  EXPECT_EQ(Options_Form.Shown_Key, "Axis_Ramp_Rate");
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_EQ(Field("Arc_Resolution").Text, "90");  // what was typed is still there
  Type("Axis_Ramp_Rate", "9");
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_EQ(In_File("Arc_Resolution"), "90");
  EXPECT_EQ(MachineSetup.Axis_Ramp_Rate, 9);
}

TEST_F(Options_Test, A_Value_That_The_Rules_Change_Comes_Back_Changed_And_Is_Pointed_Out) {
  Type("Axis_CV_MotionAngle", "12,5");
  Type("Plot_Bit_Radious", "0");
  Type("DXF_MultiDepth_Layer_3", "copper");
  Type("Axis_Backlash_2", "0,10");
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_EQ(Field("Axis_CV_MotionAngle").Text, "12");
  EXPECT_EQ(Field("Axis_CV_MotionAngle").Note, "\"12,5\" became \"12\".");
  EXPECT_EQ(Field("Plot_Bit_Radious").Text, "0.0001");
  EXPECT_EQ(Field("DXF_MultiDepth_Layer_3").Text, "COPPER");
  EXPECT_EQ(Field("Axis_Backlash_2").Text, "0.1");
  EXPECT_THAT(Field("Axis_Backlash_2").Note, IsEmpty());
  EXPECT_THAT(Options_Form.Label_Result, HasSubstr("3 values were changed by the rules"));
}

TEST_F(Options_Test, Keys_That_No_Save_Writes_And_Those_Of_This_Computer_Are_Stored_Too) {
  Type("CNC_Jog_Increment", "0.25");
  Type("Parallel_Display_IO_Address", "632");
  Type("KeyJog_Device", "1");
  Type("Serial_Device_2", "/dev/ttyUSB7");
  Type("Serial_Queue_Seconds", "9");
  EXPECT_THAT(Field("Tool_Directory").Locked, HasSubstr("Each start"));
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_EQ(In_File("CNC_Jog_Increment"), "0.25");
  EXPECT_EQ(MachineSetup.Parallel_Display_IO_Address, 632);
  EXPECT_EQ(MachineSetup.KeyJog_Device, 1);
  EXPECT_EQ(ReadPointer("Platform", "Serial_Device_2"), "/dev/ttyUSB7");
  EXPECT_EQ(Field("Serial_Queue_Seconds").Stored, "9");
}

TEST_F(Options_Test, A_Factory_Value_Is_One_Press_Away) {
  Option_Field& resolution = Field("Arc_Resolution");
  EXPECT_FALSE(Is_Not_Default(resolution));
  Type("Arc_Resolution", "90");
  Options_Command_Apply_Click();
  EXPECT_TRUE(Is_Not_Default(resolution));
  Option_Reset(resolution);
  EXPECT_EQ(resolution.Text, "180");
  EXPECT_EQ(MachineSetup.Arc_Resolution, 90);  // not before it is applied
  Options_Command_Apply_Click();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  Option_Field& ramping = Field("Axis_Ramping");
  EXPECT_FALSE(Is_Not_Default(ramping));
  Option_Change(ramping, Switch_Text(ramping, false));
  Option_Change(ramping, Switch_Text(ramping, true));
  EXPECT_FALSE(Is_Edited(ramping));
}

TEST_F(Options_Test, Corrections_Are_Chosen_As_Sets_And_Applied_Like_Any_Setting) {
  Type("Limit_Filter_Steps", "40");
  Choose_Corrections(true);
  int on = 0;
  for (const Option_Field& field : Options_Form.Fields) {
    if (field.Machine == nullptr || field.Machine->Recommended.empty()) continue;
    ++on;
    EXPECT_TRUE(Is_Not_Default(field)) << Option_Key(field);
  }
  EXPECT_GT(on, 3);
  EXPECT_EQ(Field("Limit_Filter_Steps").Text, "40");  // depends on the machine
  EXPECT_FALSE(MachineSetup.Home_Needs_Switch);
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_TRUE(MachineSetup.Home_Needs_Switch);
  Choose_Corrections(false);
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_FALSE(MachineSetup.Home_Needs_Switch);
  EXPECT_EQ(MachineSetup.Limit_Filter_Steps, 0);
}

// --- Apply -------------------------------------------------------------------------------------

TEST_F(Options_Test, Nothing_Is_Applied_While_The_Machine_Moves_Or_A_Run_Is_Paused) {
  Type("Arc_Resolution", "90");
  {
    const Operation_Scope moves(Operation::Jog);
    EXPECT_FALSE(Options_Command_Apply_Click());
    EXPECT_THAT(Messages.Panel[1], HasSubstr("Can't change the options"));
  }
  Machine.CNCMode = CNC_Paused;
  EXPECT_FALSE(Options_Command_Apply_Click());
  Machine.CNCMode = CNC_Stopped;
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_TRUE(Options_Form.Result_Is_Trouble);
  // A motion that begins in the yield before it is stored.
  int yields = 0;
  scripted.On_Yield = [&] {
    if (++yields == 1) Operations.Entries.push_back({Operation::Jog, 0, {}});
  };
  EXPECT_FALSE(Options_Command_Apply_Click());
  scripted.On_Yield = [] {};
  Operations.Entries.clear();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_TRUE(Options_Command_Apply_Click());
}

TEST_F(Options_Test, What_A_Change_Asks_For_Is_Said_Before) {
  Type("Axis_Ramp_Start", "3");
  Type("Parallel_Output_Bit_1", "4");
  Type("Hide_CNC_A_Axis", "True");
  const std::string& said = Options_Form.Label_Consequences;
  EXPECT_THAT(said, HasSubstr("compiles the program again: Ramps start at."));
  EXPECT_THAT(said, HasSubstr("opens the drive again, outputs and motors go off: Bit of X step."));
  EXPECT_THAT(said, HasSubstr("when Norvik starts again: Hide the A axis."));
  Type("Axis_Ramp_Start", "2");
  EXPECT_THAT(said, testing::Not(HasSubstr("compiles")));
}

TEST_F(Options_Test, A_Window_That_Is_Closed_During_Apply_Loses_Nothing) {
  Type("Arc_Resolution", "90");
  int yields = 0;
  scripted.On_Yield = [&] {
    if (++yields == 3) Options_Form_Unload();
  };
  EXPECT_TRUE(Options_Command_Apply_Click());
  scripted.On_Yield = [] {};
  EXPECT_TRUE(Options_Form.Fields.empty());
  EXPECT_EQ(ReadSetup("General", "Arc_Resolution"), "90");
}

TEST_F(Options_Test, A_File_That_Cannot_Be_Written_Is_Told_And_Stays_Whole) {
  const std::string before = Read_Whole_File(Application.MachineFile);
  Application.MachineFile = Folder.File("no/such/folder.ini");
  Type("Arc_Resolution", "90");
  EXPECT_FALSE(Options_Command_Apply_Click());
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("not saved"));
  EXPECT_THAT(Options_Form.Label_Result, HasSubstr("Not saved"));
  EXPECT_EQ(Read_Whole_File(Folder.File("work/mill.ini")), before);
}

TEST_F(Options_Test, What_Another_Program_Wrote_Meanwhile_Is_Asked_About_And_Foreign_Keys_Stay) {
  const auto write = [](const char* key, const char* value) {
    Write_Profile(Application.MachineFile, "General", key, value);
  };
  const auto boxes = scripted.Boxes.size();
  write("Arc_Resolution", "45");
  write("Of_A_Newer_Version", "7");
  Type("Arc_Resolution", "90");
  EXPECT_FALSE(Options_Command_Apply_Click());  // no answer: nothing happens
  EXPECT_EQ(scripted.Boxes.size(), boxes + 1);
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("Arc_Resolution"));
  EXPECT_EQ(In_File("Arc_Resolution"), "45");
  scripted.Answer_Box(Box_Answer::No);
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_EQ(In_File("Arc_Resolution"), "90");
  write("Arc_Resolution", "33");
  Type("Arc_Resolution", "91");
  scripted.Answer_Box(Box_Answer::Yes);
  EXPECT_TRUE(Options_Command_Apply_Click());
  EXPECT_EQ(MachineSetup.Arc_Resolution, 33);
  EXPECT_EQ(Field("Arc_Resolution").Text, "33");
  EXPECT_EQ(ReadSetup("General", "Of_A_Newer_Version"), "7");
}

TEST_F(Options_Test, The_Priority_Is_Tried_At_Once_And_Given_Back_By_Cancel) {
  Type("Application_Priority", "1");
  ASSERT_FALSE(scripted.Priorities.empty());
  EXPECT_EQ(scripted.Priorities.back(), 1);
  Options_Form_Unload();
  EXPECT_EQ(scripted.Priorities.back(), 0);
  EXPECT_EQ(MachineSetup.Application_Priority, 0);
}

// --- Finding, examples ---------------------------------------------------------------------------

TEST_F(Options_Test, A_Setting_Is_Found_By_Any_Of_Its_Words) {
  const auto found = [](std::string_view words) {
    std::vector<std::string> keys;
    for (const Option_Found& one : Find_Options(words)) keys.push_back(one.Key);
    return keys;
  };
  EXPECT_THAT(found("backlash"),
              testing::IsSupersetOf({"Axis_Backlash_1", "Axis_Backlash_Enable"}));
  EXPECT_THAT(found("motor enable"), testing::Contains("Parallel_MotorEnable_Option"));
  EXPECT_THAT(found("axis_spi_3"), testing::ElementsAre("Axis_SPI_3"));
  EXPECT_THAT(found("hertz"), testing::Contains("Axis_Ramp_Rate"));
  EXPECT_THAT(found("ttyUSB"), IsEmpty());
  EXPECT_THAT(found("serial queue"), testing::Contains("Serial_Queue_Seconds"));
  EXPECT_THAT(found("  "), IsEmpty());
  EXPECT_EQ(found("macro 150"), std::vector<std::string>{"MacroFile150"});
}

TEST_F(Options_Test, Formats_Increments_And_Colours_Show_What_They_Mean) {
  EXPECT_EQ(Display_Excellon_Format(), "##.###   12345 is 12.345");
  Type("Excellon_Integer_Format", "1");
  EXPECT_EQ(Display_Excellon_Format(), "#.###   1234 is 1.234");
  Command_Increment_Click(0, 0);
  EXPECT_EQ(Field("BMAP_Increment_X").Text, "0.25");
  Command_Increment_Click(1, 1);
  EXPECT_EQ(Field("BMAP_Increment_Y").Text, "0.0625");
  EXPECT_EQ(Option_Example(Field("DRO_Format")),
            "12.3456 is shown as 12.3456000, -0.5 as -00.5000000");
  Type("Plot_Color_0", "#1E90FF");
  EXPECT_EQ(Field("Plot_Color_0").Text, "16748574");
  EXPECT_EQ(Color_Words("16748574"), "#1E90FF");
  Type("Plot_Color_0", "blue-ish");
  EXPECT_THAT(Field("Plot_Color_0").Error, HasSubstr("#1E90FF"));
}

}  // namespace
}  // namespace norvik
