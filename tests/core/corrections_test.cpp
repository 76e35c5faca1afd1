// The corrections as a list: what each row must say, and the two sets of them.
#include "core/corrections.h"

#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "platform/scripted/scripted_platform.h"
#include "support/document.h"
#include "support/reset.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Corrections_Test : testing::Test {
  Corrections_Test() {
    Reset_Core();
    Restore_Factory_Setup();
  }
  ~Corrections_Test() override { Reset_Core(); }

  Scripted_Platform scripted;
};

TEST_F(Corrections_Test, Each_Is_Off_And_Says_What_Both_States_Are_And_For_Whom) {
  EXPECT_EQ(Corrections_On(), 0);
  for (const Setup_Row* row : Correction_List()) {
    SCOPED_TRACE(row->Key);
    const std::string off = row->Kind == Setting_Kind::Yes_No ? "Off: " : "0: ";
    const std::string on = row->Kind == Setting_Kind::Yes_No ? " On: " : " Above 0: ";
    EXPECT_THAT(std::string(row->Help), StartsWith(off));
    EXPECT_THAT(std::string(row->Help), HasSubstr(on));
    EXPECT_FALSE(row->Label.empty() || row->For_Whom.empty());
    EXPECT_FALSE(Correction_Is_On(*row));
    if (row->Recommended.empty()) continue;
    Change_Setup_Key({row, 0}, row->Recommended);
    EXPECT_TRUE(Correction_Is_On(*row));
  }
}

TEST_F(Corrections_Test, Sets_Change_What_They_Are_For) {
  MachineSetup.Limit_Filter_Steps = 12;  // depends on the machine: no set of all machines has it
  EXPECT_EQ(Words_About_Corrections(), "Limit_Filter_Steps 12");
  const auto on = Take_Corrections(Correction_Set::Recommended);
  EXPECT_TRUE(MachineSetup.Slow_Before_Stops && MachineSetup.Backlash_Even);
  EXPECT_FALSE(MachineSetup.Port_Shadow);
  EXPECT_EQ(MachineSetup.Limit_Filter_Steps, 12);
  EXPECT_EQ(Corrections_On(), static_cast<int>(on.size()) + 1);
  EXPECT_TRUE(Take_Corrections(Correction_Set::Recommended).empty()) << "changes nothing again";
  EXPECT_THAT(Corrections_Line(), StartsWith("Corrections: Run_In_Table_Order, Limit_Filter_"));
  MachineSetup.Port_Shadow = true;
  Take_Corrections(Correction_Set::As_The_System_Was);
  EXPECT_EQ(Corrections_Line(), "");
}

// The machines that ship have what suits every machine, and nothing else.
TEST_F(Corrections_Test, Samples_Have_The_Recommended_Ones_On) {
  Take_Corrections(Correction_Set::Recommended);
  const std::string recommended = Words_About_Corrections();
  Setup_Store.Leaves_Files = true;
  for (const char* name : {"inch.ini", "metric.ini"}) {
    Application.MachineFile = Join_Path(NORVIK_SAMPLES_FOLDER, name);
    LoadMachineSetup();
    EXPECT_EQ(Words_About_Corrections(), recommended) << name;
  }
}

TEST_F(Corrections_Test, Names_Are_Found_In_Any_Case) {
  ASSERT_NE(Find_Correction("backlash_EVEN"), nullptr);
  EXPECT_EQ(Find_Correction("backlash_EVEN")->Key, "Backlash_Even");
  EXPECT_EQ(Find_Correction("Axis_SPI_1"), nullptr) << "a key of another section";
}

TEST_F(Corrections_Test, Document_Of_Corrections_Is_Current) {
  Expect_In_Document("corrections.md", Corrections_Page());
}

}  // namespace
}  // namespace norvik
