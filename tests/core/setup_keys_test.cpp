// The settings one by one.
#include "core/setup_keys.h"

#include "core/application.h"
#include "core/fault.h"
#include "support/document.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;

TEST(Setup_Keys, Are_Found_By_Either_Name) {
  ASSERT_TRUE(Find_Setup_Key("axis.AXIS_spi_3"));
  EXPECT_EQ(Setup_Full_Name(*Find_Setup_Key("axis_spi_3")), "Axis.Axis_SPI_3");
  EXPECT_EQ(Setup_Full_Name(*Find_Setup_Key("Tool.Axis_Tool_Height(2)")),
            "Tool.Axis_Tool_Height(2)");
  EXPECT_TRUE(Find_Setup_Key("Parallel Setup", "Output_Names_0"));  // saved though not loaded
  EXPECT_FALSE(Find_Setup_Key("Axis_SPI_5"));
  EXPECT_FALSE(Find_Setup_Key("Tool.Axis_SPI_3"));
}

TEST(Setup_Keys, Refuse_What_Does_Not_Fit_And_Say_Why) {
  Restore_Factory_Setup();
  struct Row {
    const char *Key, *Text, *Answer;
  };
  for (const Row& row : {
           Row{"Axis_SPI_1", "abc",
               "Axis.Axis_SPI_1 takes a number, 0.001 to 10000000 steps per unit, not \"abc\""},
           Row{"Axis_SPI_1", "-1", "0.001 to 10000000"},
           Row{"Parallel_Port_Type", "4",
               "takes one of 1 parallel port, 2 first serial board, 3 second serial board, not "
               "\"4\""},
           Row{"Slave_A_Axis_to", "X", "takes one of None A moves by itself, X Axis, Y Axis"},
           Row{"Parallel_Output_Bit_3", "8", "7, 99 not used, not \"8\""},
           Row{"Axis_Ramp_Rate", "16", "takes a whole number, 1 to 15 hertz per step, not \"16\""},
           Row{"Arc_Resolution", "99999", "3 to 32767"},
           Row{"Plot_Centered", "maybe", "takes a yes or no"},
           Row{"Axis_Format", "0.0.0", "takes a numeral format, not \"0.0.0\""},
           Row{"Axis_Format", "###x", "numeral format"},
       }) {
    const std::string before =
        Setup_Text(*Find_Setup_Key(row.Key)->Row, Find_Setup_Key(row.Key)->Index);
    try {
      Change_Setup_Key(*Find_Setup_Key(row.Key), row.Text);
      ADD_FAILURE() << row.Key << " took " << row.Text;
    } catch (const Fault& fault) {
      EXPECT_THAT(fault.Description, HasSubstr(row.Answer));
    }
    EXPECT_EQ(Setup_Text(*Find_Setup_Key(row.Key)->Row, Find_Setup_Key(row.Key)->Index), before);
  }
  Change_Setup_Key(*Find_Setup_Key("Axis_SPI_1"), "2000,5");
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 2000.5F);
  Change_Setup_Key(*Find_Setup_Key("Axis_HomePos_3"), "");
  Change_Setup_Key(*Find_Setup_Key("Plot_Centered"), "true");
  EXPECT_TRUE(MachineSetup.Plot_Centered);
  Reset_Setup_Key(*Find_Setup_Key("Axis_SPI_1"));
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 4000);
  MachineSetup.Axis_HomeIPM[1] = 9;
  Reset_Setup_Key(*Find_Setup_Key("Axis_HomeIPM_1"));
  EXPECT_EQ(MachineSetup.Axis_HomeIPM[1], 0.5F);
}

// Every factory value is one that the key itself would take.
TEST(Setup_Keys, Factory_Values_Lie_Within_Their_Bounds) {
  Restore_Factory_Setup();
  for (const Setup_Key& key : Setup_Keys()) {
    if (key.Row->Key == "INI_Save_Test") continue;
    EXPECT_NO_THROW(Change_Setup_Key(key, Setup_Text(*key.Row, key.Index))) << Setup_Full_Name(key);
  }
}

TEST(Setup_Keys, Entries_Have_The_Names_That_An_Operator_Knows) {
  const auto label = [](const char* key) {
    const auto found = Find_Setup_Key(key);
    return Setting_Label(*found->Row, found->Index);
  };
  EXPECT_EQ(label("Axis_SPI_3"), "Steps per unit, Z");
  EXPECT_EQ(label("Axis_HomeIPM_1"), "Speed of homing, slow approach");
  EXPECT_EQ(label("Parallel_Output_Bit_17"), "Bit of output 5");
  EXPECT_EQ(label("Input_Port_0"), "Port of E-stop input");
  EXPECT_EQ(label("Output_Names_0"), "Name of output 0");  // saved though not loaded
  EXPECT_EQ(label("MacroFile150"), "Macro 150");
}

TEST(Setup_Keys, Document_Of_Settings_Is_Current) {
  Expect_In_Document("settings.md", Setup_Reference_Page());
}

}  // namespace
}  // namespace norvik
