// The command `export`: a program that is compiled first, tables that exist, exit statuses.
#include "companion_call.h"
#include "compiler/state/compile_losses.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/setup.h"

namespace norvik {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct Export_Command_Test : Companion_Call_Test {
  std::string Program(const std::string& text) { return Write_File("part.gc", text); }

  const std::string Drawing = Folder.File("part.dxf");
};

TEST_F(Export_Command_Test, CompilesFirstOrTakesTables) {
  const std::string part = Program("G0 X0 Y0 Z0\nG1 X1 Y2 F10\n");
  ASSERT_EQ(Call_Companion({"export", "dxf", part, "-o", Drawing}), Done) << Said;
  const std::string bytes = Read_Whole_File(Drawing);
  EXPECT_THAT(bytes, HasSubstr(" 11 \r\n1\r\n 21 \r\n2\r\n"));
  ASSERT_EQ(Call_Companion({"compile", part, "--tables", Folder.File("tables")}), Done) << Said;
  ASSERT_EQ(Call_Companion({"export", "dxf", "--tables", Folder.File("tables"), "-o", "-"}), Done)
      << Said;
  EXPECT_EQ(Printed, bytes);
  ASSERT_EQ(Call_Companion({"export", "hpgl", part, "-o", "-"}), Done) << Said;
  EXPECT_THAT(Printed, StartsWith("IN;PU;\r\n"));
  EXPECT_THAT(Printed, EndsWith("PSP\r\n"));
}

TEST_F(Export_Command_Test, WhatIsMissingIsToldAndGivesStatusOne) {
  const std::string part = Program("G0 X0 Y0 Z0\nM3\nG1 X1 F10\n");
  EXPECT_EQ(Call_Companion({"export", "dxf", part, "-o", Drawing}), Failed);
  EXPECT_THAT(Said, HasSubstr("The drawing lacks 1 move that cut, from line 3 on"));
  EXPECT_TRUE(FileExists(Drawing)) << "it is written as far as it goes";
  EXPECT_EQ(Call_Companion({"export", "dxf", part, "-o", Drawing, "--accept-losses"}), Done);
  EXPECT_EQ(Call_Companion({"--set", "Corrections.Export_All_Records=1", "export", "dxf", part,
                            "-o", Drawing}),
            Done)
      << Said;
}

TEST_F(Export_Command_Test, WrongUsageAndMissingTables) {
  EXPECT_EQ(Call_Companion({"export", "dxf", "-o", Drawing}), Wrong_Usage);
  EXPECT_EQ(
      Call_Companion({"export", "dxf", Program("X1"), "--tables", Folder.Path, "-o", Drawing}),
      Wrong_Usage);
  EXPECT_EQ(Call_Companion({"export", "hpgl", "--tables", Folder.File("none"), "-o", Drawing}),
            Failed);
  EXPECT_THAT(Said, HasSubstr("none"));
  EXPECT_FALSE(FileExists(Drawing));
}

}  // namespace
}  // namespace norvik
