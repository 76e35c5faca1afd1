// The command `transform`: values of the call and of the machine file, what is told, what is
// written.
#include "companion_call.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/setup.h"
#include "support/full_disk.h"

#include <filesystem>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Transform_Command_Test : Companion_Call_Test {
  int Call(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"--set", "G_CODE.GC_ScaleY=3", "--set", "General.Default_Offset_1=10", "--set",
                  "Axis.Axis_Format=000.000", "transform"});
    return Call_Companion(std::move(words));
  }
  std::string Program(const std::string& text) { return Write_File("part.gc", text); }

  const std::string Result = Folder.File("result.gc");
};

TEST_F(Transform_Command_Test, ValuesOfTheCallComeBeforeThoseOfTheMachineFile) {
  const std::string part = Program("X1 Y1\n");
  ASSERT_EQ(Call({"scale", part, "-o", "-"}), Done) << Said;
  EXPECT_EQ(Printed, "X001.000 Y003.000 \r\n");
  ASSERT_EQ(Call({"scale", "-2,5", part, "-o", Result}), Done) << Said;
  EXPECT_EQ(Read_Whole_File(Result), "X-002.500 Y003.000 \r\n");
  ASSERT_EQ(Call({"offset", "-.5", "-,25", part, "-o", "-"}), Done) << Said;
  EXPECT_EQ(Printed, "X000.500 Y000.750 \r\n");
  EXPECT_THAT(Said, IsEmpty());
  ASSERT_EQ(Call({"offset", part, "--duplicate", "-o", part}), Done) << Said;
  EXPECT_EQ(Read_Whole_File(part), "X1 Y1\r\nX011.000 Y001.000 \r\n");
}

TEST_F(Transform_Command_Test, LossesAreToldAndTheWorkGoesOn) {
  ASSERT_EQ(Call({"metric", Program("G21 X1 Q2\n"), "-o", Result}), Done);
  EXPECT_THAT(Said, HasSubstr("norvik-cli: This drops 1 word of 1 line: Q (1), first at line 1."));
  EXPECT_THAT(Said, HasSubstr("it holds G21"));
  EXPECT_EQ(Read_Whole_File(Result), "G21 X025.400 \r\n");
}

TEST_F(Transform_Command_Test, WhatCannotBeDoneLeavesTheResultOfBefore) {
  Replace_File(Result, "old");
  EXPECT_EQ(Call({"offset", "1", "2", Program("G91\nX1\n"), "-o", Result}), Failed);
  EXPECT_THAT(Said, HasSubstr("This file is in incremental mode.  Add offset line in gcode"));
  EXPECT_EQ(Call({"scale", "two", Program("X1\n"), "-o", Result}), Wrong_Usage);
  EXPECT_THAT(Said, HasSubstr("\"two\" is no number that scale can take."));
  EXPECT_EQ(Call({"scale", Folder.File("none.gc"), "-o", Result}), Failed);
  EXPECT_EQ(Call({"absolute", "1", Program("X1\n"), "-o", Result}), Wrong_Usage);
  EXPECT_EQ(Call({"scale", Program("X1\n"), "-o", Folder.File("none/x.gc")}), Failed);
  {
    const std::string long_part = Write_File("part.gc", std::string(20'000, ' ') + "X1\n");
    const Full_Disk disk;
    EXPECT_EQ(Call({"decimal-format", long_part, "-o", Result}), Failed);
    EXPECT_THAT(Said, HasSubstr("the disk is full"));
  }
  EXPECT_EQ(Read_Whole_File(Result), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder.Path), {}), 3)
      << "program, result and home: no temporary neighbours";
}

}  // namespace
}  // namespace norvik
