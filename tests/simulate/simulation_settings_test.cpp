// The settings of the simulated machine: pointer file, changes by the operator, manual.
#include "simulate/simulation_settings.h"

#include "core/paths.h"
#include "machine_fixture.h"
#include "support/document.h"
#include "support/temporary_folder.h"

namespace norvik {
namespace {

using testing::HasSubstr;

class Simulation_Settings_Test : public Simulated_Machine_Test {
 protected:
  Simulation_Settings_Test() {
    Application.Pointer_Folder = Folder.Path;
    Application.ErrorFile = Folder.File("log.txt");
  }
  static void Give(const char* key, const char* value) {
    WritePointer("Simulated Machine", key, value);
  }
  static std::string Stored(const char* key) { return ReadPointer("Simulated Machine", key); }
  static std::string Change(std::string_view name, int axis, const char* text) {
    const std::string key = std::string(name) + (axis == 0 ? "" : "_" + std::to_string(axis));
    for (const Simulation_Setting& setting : Simulation_Settings()) {
      if (Setting_Key(setting, axis) == key) return Change_Setting(setting, axis, text);
    }
    return "no such setting";
  }
  Temporary_Folder Folder;
};

TEST_F(Simulation_Settings_Test, Come_From_The_Pointer_File) {
  Give("Backlash_2", "0.25");
  Give("Switch_Low_To_1", "0.5");
  Give("Travel_High_3", "far");
  Give("Direction_Setup_ns_1", "1e300");
  Give("Access_Time_ns", "250");
  Give("Material_Top", "-0.1");
  Load_Simulated_Machine();
  EXPECT_EQ(Simulated_Machine.Axes[2].Settings.Backlash, 0.25);
  EXPECT_EQ(Simulated_Machine.Axes[3].Settings.Travel_High, 5);
  EXPECT_EQ(Settings().Direction_Setup, 2000);
  EXPECT_EQ(Simulated_Machine.Access_Time, 250);
  EXPECT_EQ(Simulated_Machine.Material_Top, -0.1);
  EXPECT_TRUE(Simulated_Machine.Inputs[1].Pressed) << "the carriage stands on its switch";
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Travel_High_3: "));
}

// What was not changed goes on following the setup.
TEST_F(Simulation_Settings_Test, Only_What_Was_Changed_Is_Saved) {
  Load_Simulated_Machine();
  EXPECT_EQ(Change("Top_Rate", 1, "1234,5"), "");
  EXPECT_EQ(Change("Material_Top", 0, "0.25"), "");
  EXPECT_EQ(Change("EStop_Cuts_Power", 0, "1"), "");
  EXPECT_TRUE(Save_Simulation_Settings());
  MachineSetup.Axis_Depth[1] = 40;
  Load_Simulated_Machine();
  EXPECT_EQ(Settings().Top_Rate, 1234.5);
  EXPECT_EQ(Simulated_Machine.Material_Top, 0.25);
  EXPECT_TRUE(Simulated_Machine.EStop_Cuts_Power);
  EXPECT_EQ(Settings().Travel_High, 40);
  Restore_Simulation_Defaults();
  EXPECT_FALSE(Simulated_Machine.EStop_Cuts_Power);
  EXPECT_EQ(Simulated_Machine.Material_Top, std::nullopt);
  EXPECT_EQ(Stored("Top_Rate_1"), "1234.5") << "until they are saved";
  EXPECT_TRUE(Save_Simulation_Settings());
  EXPECT_EQ(Stored("Top_Rate_1"), "");
  EXPECT_EQ(Stored("EStop_Cuts_Power"), "");
  Load_Simulated_Machine();
  EXPECT_NE(Settings().Top_Rate, 1234.5);
}

struct Change_Row {
  const char* Name;
  int Axis;
  const char *Text, *Wrong;
};

TEST_F(Simulation_Settings_Test, Wrong_Texts_Are_Refused_With_What_To_Write) {
  for (const Change_Row& row :
       {Change_Row{"Backlash", 1, "-1", "Backlash, units: write a number from 0 to 1000000000."},
        {"Backlash", 1, "much", "\"much\" is no number"},
        {"Backlash", 1, "", "is no number"},
        {"Backlash", 1, "nan", "is no number"},
        {"Travel_High", 1, "-5", "its low end must lie below its high end"},
        {"Switch_Low_From", 1, "7", "\"from\" must lie below \"to\""},
        {"Output_Read_Back", 0, "3", "from 0 to 2"},
        {"Access_Time_ns", 0, "1e300", "from 0 to 1000000"}}) {
    const double high = Settings().Travel_High;
    EXPECT_THAT(Change(row.Name, row.Axis, row.Text), HasSubstr(row.Wrong)) << row.Name;
    EXPECT_EQ(Settings().Backlash, 0);
    EXPECT_EQ(Settings().Travel_High, high);
  }
}

// A change counts at once: the carriage stands on the switch that was moved under it, and a stop
// that was moved is met where it is now.
TEST_F(Simulation_Settings_Test, Changes_Apply_At_Once) {
  EXPECT_EQ(Change("Switch_Low_To", 1, "0.5"), "");
  EXPECT_EQ(Read(Status) & 8, 0);
  EXPECT_EQ(Change("Overtravel", 1, "0"), "");
  EXPECT_EQ(Change("Travel_High", 1, "0.3"), "");
  Step(50);
  EXPECT_NEAR(True_Position(1), 0.3, 1e-9);
  EXPECT_EQ(Change("Output_Read_Back", 0, "1"), "");
  EXPECT_EQ(Read(Data), 0);
}

TEST_F(Simulation_Settings_Test, A_File_That_Cannot_Be_Written_Is_Told) {
  Application.Pointer_Folder = Folder.File("missing");
  Change("Backlash", 1, "0.1");
  EXPECT_FALSE(Save_Simulation_Settings());
}

TEST_F(Simulation_Settings_Test, Document_Of_The_Simulated_Machine_Is_Current) {
  Expect_In_Document("simulated_machine.md", Simulation_Settings_Table());
}

}  // namespace
}  // namespace norvik
