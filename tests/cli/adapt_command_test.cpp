// The commands `adapt` and `path`, and --adapt of others.
#include "companion_call.h"

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Adapt_Command_Test : Companion_Call_Test {
  int Call(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"--set", "Axis.Axis_Format=0.000", "--set", "Axis.UnitsofMeasurement=1", "--set",
                  "G_CODE.GC_IJ_Incremental=-1"});
    return Call_Companion(std::move(words));
  }
  const std::string Foreign = Write_File("part.ngc", "g21\ng0x1y2\ng1x3f100\nm30\n");
  const std::string Probing = Write_File("probe.ngc", "G21\nG0 X1\nG38.2 Z-1 F10\nM30\n");
  const std::string Result = Folder.File("result.gc");
};

TEST_F(Adapt_Command_Test, Writes_The_Program_And_What_It_Says_Of_It) {
  ASSERT_EQ(Call({"adapt", Foreign, "-o", Result}), Done) << Said;
  EXPECT_EQ(Read_Whole_File(Result), "G21\r\nG0 X1.000 Y2.000\r\nG1 X3.000 F100\r\nM30\r\n");
  EXPECT_THAT(Printed, HasSubstr("Lines    4 -> 4"));
  EXPECT_THAT(Said, IsEmpty());
  ASSERT_EQ(Call({"adapt", Foreign, "-o", "-", "--json"}), Done);
  EXPECT_THAT(Said, HasSubstr("\"old_lines\": [1,2,3,4]"));
}

TEST_F(Adapt_Command_Test, What_Is_Left_To_The_Operator_Fails_Unless_Accepted) {
  EXPECT_EQ(Call({"adapt", Probing, "-o", Result, "--report"}), Failed);
  EXPECT_THAT(Read_Whole_File(Result), HasSubstr("M0 (not adapted 1: G38.2 Z-1 F10)"));
  EXPECT_THAT(Printed, HasSubstr("probe.ngc:3: 1: refused: G38.2"));
  EXPECT_EQ(Call({"adapt", Probing, "-o", Result, "--accept-losses"}), Done);
  EXPECT_EQ(Call({"run", Probing, "--adapt", "--clock", "virtual"}), Failed);
  EXPECT_THAT(Said, HasSubstr("adapting leaves 1 findings to you"));
}

TEST_F(Adapt_Command_Test, Options_Say_What_The_Program_Does_Not) {
  const std::string part = Write_File("two.ngc", "G0 X1 Y1\nG55 G0 X1\nG4 P500\n/G53 G0 Z1\n");
  ASSERT_EQ(Call({"adapt", part, "-o", "-", "--units", "inch", "--offset", "G55=100,0,0",
                  "--dwell-ms", "--machine-zero", "0,0,50"}),
            Done)
      << Said;
  EXPECT_THAT(Printed, HasSubstr("G0 X25.400 Y25.400\r\nG0 X125.400\r\nG4 P0.5\r\nG0 Z75.400\r\n"));
  EXPECT_EQ(Call({"adapt", part, "-o", "-", "--offset", "G54.1=1,2,3"}), Wrong_Usage);
  EXPECT_EQ(Call({"adapt", part, "-o", "-", "--home", "1,2"}), Wrong_Usage);
}

TEST_F(Adapt_Command_Test, Path_Lists_The_Ends_Of_All_Motions) {
  const std::string part = Write_File("arc.ngc", "g21\ng0x0y0\ng1x3f100\ng2x5y-2j-2i0\nm30\n");
  ASSERT_EQ(Call({"--set", "Axis.Axis_Feed_Rate_Travel=60", "path", part, "--adapt"}), Done)
      << Said;
  EXPECT_EQ(Printed, "2 travel X0 Y0 F60\n3 cut X3 Y0 F100\n4 cw X5 Y-2 I0 J-2 F100\n");
}

TEST_F(Adapt_Command_Test, Check_And_Compile_Take_The_Adapted_Program) {
  EXPECT_EQ(Call({"check", Foreign}), Failed);
  EXPECT_EQ(Call({"check", Foreign, "--adapt"}), Done) << Printed;
  EXPECT_EQ(Call({"compile", Foreign, "--adapt", "--tables", Folder.File("tables")}), Done) << Said;
}

}  // namespace
}  // namespace norvik
