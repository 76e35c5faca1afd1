// The parallel pages of the port dialog.
#include "parallel/port_setup.h"

#include "core/paths.h"
#include "parallel/drive_test.h"
#include "parallel/parallel_drive.h"
#include "parallel/port_ranges.h"
#include "support/temporary_folder.h"

namespace norvik {
namespace {

using testing::HasSubstr;

class Port_Setup_Test : public Drive_Test {
 protected:
  Port_Setup_Test() {
    Application.ErrorFile = Folder.File("log.txt");
    Application.MachineFile = Folder.File("machine.ini");
    Port_Setup_Form_Load();
  }
  Temporary_Folder Folder;
};

struct Pin_Row {
  const char *Base, *Pin, *Port, *Bit;
};

TEST_F(Port_Setup_Test, A_Chosen_Pin_Fills_Port_And_Bit_And_Back) {
  for (const Pin_Row& row : {Pin_Row{"&H378", "2", "&H378", "0"},
                             {"&H378", "9", "&H378", "7"},
                             {"&H278", "1", "&H27A", "0"},
                             {"&H3BC", "17", "&H3BE", "3"},
                             {"&HD000", "14", "&HD002", "1"}}) {
    Port_Setup.Combo_LPT_Pin_Port = row.Base;
    Port_Setup.Output[4].Pin = row.Pin;
    Check_Output_Pin(4);
    EXPECT_EQ(Port_Setup.Output[4].Port, row.Port) << row.Pin;
    EXPECT_EQ(Port_Setup.Output[4].Bit, row.Bit) << row.Pin;
    Port_Setup.Output[4].Pin.clear();
    Check_Output_Bit(4);
    EXPECT_EQ(Port_Setup.Output[4].Pin, row.Pin);
  }
  for (const Pin_Row& row : {Pin_Row{"&H378", "10", "&H379", "6"},
                             {"&H378", "11", "&H379", "7"},
                             {"&H278", "15", "&H279", "3"}}) {
    Port_Setup.Combo_LPT_Pin_Port = row.Base;
    Port_Setup.Input[1].Pin = row.Pin;
    Check_Input_Pin(1);
    EXPECT_EQ(Port_Setup.Input[1].Port, row.Port) << row.Pin;
    EXPECT_EQ(Port_Setup.Input[1].Bit, row.Bit) << row.Pin;
  }
  Port_Setup.Output[4].Pin = "NU";
  Check_Output_Pin(4);
  EXPECT_EQ(Port_Setup.Output[4].Bit, "NU");
  Port_Setup.Output[4].Port = "&H379";  // an output has no pin in the status register
  Port_Setup.Output[4].Bit = "6";
  Check_Output_Bit(4);
  EXPECT_EQ(Port_Setup.Output[4].Pin, "");
}

TEST_F(Port_Setup_Test, Another_Base_Moves_The_Connector_And_A_Bad_One_Is_Refused) {
  EXPECT_EQ(Port_Setup.Output[1].Pin, "2");
  EXPECT_EQ(Port_Setup.Output[13].Pin, "") << "on another card";
  Port_Setup.Combo_LPT_Pin_Port = "&H278";
  Check_Pin_Port();
  EXPECT_EQ(Port_Setup.Output[1].Port, "&H278");
  EXPECT_EQ(Port_Setup.Input[0].Port, "&H279");
  EXPECT_EQ(Port_Setup.Output[13].Pin, "2") << "now this is the connector";
  Port_Setup.Combo_LPT_Pin_Port = "LPT1";
  Check_Pin_Port();
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile),
              HasSubstr("Check_Pin_Port_Error Bad Address"));
  EXPECT_EQ(Port_Setup.Combo_LPT_Pin_Port, "&H378");
  EXPECT_THAT(Port_Setup.Label_Hint, HasSubstr("\"LPT1\" is no port address"));
  Port_Setup.Input[2].Port = "somewhere";
  Check_Input_Bit_Port(2);
  EXPECT_EQ(Port_Setup.Input[2].Port, "&H379");
}

TEST_F(Port_Setup_Test, A_Time_That_Is_No_Number_Is_Told_And_An_Unwritable_File_Too) {
  const float before = MachineSetup.Parallel_MotorEnable_Time;
  Port_Setup.Combo_MotorEnable_Time = "soon";
  EXPECT_TRUE(Save_Parallel_Info());
  EXPECT_EQ(MachineSetup.Parallel_MotorEnable_Time, before);
  EXPECT_THAT(Port_Setup.Label_Hint, HasSubstr("\"soon\" is no number of seconds"));
  Application.MachineFile = Folder.File("no/such/machine.ini");
  EXPECT_FALSE(Save_Parallel_Info());
}

TEST_F(Port_Setup_Test, One_Page_Is_Live) {
  EXPECT_TRUE(Port_Setup.Bits_Enabled);
  EXPECT_FALSE(Port_Setup.Pins_Enabled);
  Option_LPT_Setup_Type_Click(Pin_Setup_Page);
  EXPECT_FALSE(Port_Setup.Bits_Enabled);
  EXPECT_TRUE(Port_Setup.Pins_Enabled);
  Option_Port_Type_Click(2);
  EXPECT_FALSE(Port_Setup.LPT_Page_Enabled);
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 1) << "nothing acts before it is saved";
}

// Saved and loaded again it is the same; the pins go to the idle levels of the new map.
TEST_F(Port_Setup_Test, Save_Keeps_What_Was_Set) {
  Port_Setup.Output[1].Invert = true;
  Port_Setup.Output[5].Bit = "NU";
  Port_Setup.Output[17].Port = "nowhere";
  Port_Setup.Input[5].Port = "&HD000";
  Port_Setup.Text_Output_Name[3] = "Laser";
  Port_Setup.Combo_MotorEnable_Time = "120";
  Port_Setup.Text_MCode_High = " 62 ";
  Option_LPT_Setup_Type_Click(Pin_Setup_Page);
  scripted.Ports[888] = 0;
  Drive_Choice.Of_Setup = []() -> const Drive_Operations& { return Parallel_Drive; };
  Save_Parallel_Info();
  EXPECT_EQ(scripted.Ports[888], 1);
  EXPECT_EQ(MachineSetup.Parallel_Output_Bit[5], "99");
  MachineSetup = {};
  LoadMachineSetup();
  EXPECT_EQ(MachineSetup.Output_Port[17], 632) << "the text was no address";
  EXPECT_EQ(MachineSetup.Input_Port[5], 53248);
  EXPECT_EQ(MachineSetup.Output_Names[3], "Laser");
  EXPECT_EQ(MachineSetup.Parallel_MotorEnable_Time, 120);
  EXPECT_EQ(MachineSetup.Parallel_MCode_High[0], "62");
  EXPECT_EQ(MachineSetup.Parallel_Setup_Type, Pin_Setup_Page);
  EXPECT_TRUE(MachineSetup.Parallel_Output_Bit_Invert[1]);
}

// --- Which addresses a machine may be wired to ---------------------------------------------------

TEST(Port_Ranges_Test, Only_Parallel_Ports_And_Cards_Are_Taken) {
  for (const std::int32_t port : {0x378, 0x37A, 0x278, 0x3BE, 0x378 + 12, 0x3BE + 12}) {
    EXPECT_TRUE(Is_Machine_Port(port)) << port;
  }
  for (const std::int32_t port : {0xCF9, 0x377, 0x37B, 0x3F8, 0xD000, 0, -1, 70'000}) {
    EXPECT_FALSE(Is_Machine_Port(port)) << port;
  }
  Port_Ranges.Cards = Ranges_In("0xD000-0xD007, &HE000 768,nonsense,9-2,0x10,");
  ASSERT_EQ(Port_Ranges.Cards.size(), 3U);
  for (const std::int32_t port : {0xD000, 0xD007, 0xD007 + 12, 0xE000, 768}) {
    EXPECT_TRUE(Is_Machine_Port(port)) << port;
  }
  for (const std::int32_t port : {0xD008, 0xE001, 0xCF9}) EXPECT_FALSE(Is_Machine_Port(port));
  Port_Ranges = {};
  EXPECT_THAT(Words_About_Refused_Port(0xCF9), HasSubstr("0xCF9"));
}

}  // namespace
}  // namespace norvik
