// What a compile says it has left out.
#include "compiler/state/compile_losses.h"

#include "compiler/check/program_check.h"
#include "compiler/compile/compile.h"
#include "compiler/text/loss_text.h"
#include "line_fixture.h"

namespace norvik {
namespace {

class Compile_Losses_Test : public Line_Pass_Test {
 protected:
  Compile_Losses_Test() { Restore_Factory_Setup(); }
  static std::vector<std::string> Losses_Of(const std::string& program) {
    GCode_Program.Text = std::make_shared<const GCode_Text>(program);
    EXPECT_TRUE(CompileProgram());
    std::vector<std::string> texts;
    for (const Compile_Loss& loss : Compile_Losses.List) texts.push_back(Text_Of(loss));
    return texts;
  }
};

TEST_F(Compile_Losses_Test, Lines_and_macros_are_named_where_they_stand) {
  using ::testing::HasSubstr;
  using ::testing::StartsWith;
  MachineSetup.MacroFile[1] = Write_File("1.gc", "G1 X1\nG4\nM98 3\n");
  MachineSetup.MacroFile[2] = (Folder / "gone.gc").string();
  MachineSetup.MacroFile[4] = Write_File("4.gc", "M98 4\n");
  const auto losses = Losses_Of(
      "G1 X1\nG0Z0.25\nREPEAT 2\nM98 1\nENDREPEAT\nM98 2\nM98\nM98 999\nM98 4\nG1 X2\nG500 X1\n");
  ASSERT_EQ(losses.size(), 8U);
  EXPECT_THAT(losses[0], StartsWith("line 2: lost: "));
  EXPECT_THAT(losses[0], HasSubstr("(G0Z0.25)"));
  EXPECT_THAT(losses[1],
              StartsWith("Macro 1, line 2: lost: G4 needs a P word"));  // once, run 4 times
  EXPECT_THAT(losses[2], StartsWith("Macro 1, line 3: macro missing: Macro 3 has no file"));
  EXPECT_THAT(losses[3], StartsWith("line 6: macro missing: the file of Macro 2 is missing: "));
  EXPECT_THAT(losses[4], StartsWith("line 7: macro missing: the call has no number"));
  EXPECT_THAT(losses[5], StartsWith("line 8: macro missing: macro 999"));
  EXPECT_THAT(losses[6], StartsWith("Macro 4, line 1: macro missing: Macro 4 calls itself"));
  EXPECT_THAT(losses[7], StartsWith("line 11: lost: "));
  EXPECT_EQ(Summary_Of(Compile_Losses), "3 lines lost, 5 macros missing");

  const auto before = Compile_Losses.List;
  Check_Program(std::make_shared<const GCode_Text>("G4\nM98\n"));
  EXPECT_EQ(Compile_Losses.List, before);
  EXPECT_TRUE(Losses_Of("G1 X1\n").empty());
  EXPECT_FALSE(Compile_Losses.Any());
  EXPECT_EQ(Summary_Of(Compile_Losses), "");
}

// An editor counts empty lines, the steps of a program do not.
TEST_F(Compile_Losses_Test, Lines_are_told_as_an_editor_counts_them) {
  using ::testing::HasSubstr;
  using ::testing::StartsWith;
  const auto losses = Losses_Of("\n\nG1 X1 F10\r\n\r\nG0Z0.25\nX2\n\nREPEAT 2\nX3\nENDREPEAT\n");
  ASSERT_EQ(losses.size(), 1U);
  EXPECT_THAT(losses[0], StartsWith("line 5: lost: "));
  bool order = false, loss = false;
  for (const Check_Finding& finding : Check_Program(GCode_Program.Text)) {
    if (finding.Kind == Check_Kind::Code_Runs_Together) {
      loss = true;
      EXPECT_EQ(finding.Line, 2);
      EXPECT_EQ(finding.Text_Line(), 5);
    }
    if (finding.Kind == Check_Kind::Repeat_Order) {
      order = true;
      EXPECT_EQ(finding.Text_Line(), 8);
      EXPECT_THAT(finding.What, HasSubstr("lines 9 to 9"));
    }
  }
  EXPECT_TRUE(order && loss);
}

TEST_F(Compile_Losses_Test, A_table_that_is_full_names_the_line_where_it_ends) {
  MachineSetup.Arc_Resolution = 30'000;
  MachineSetup.Arc_Max_Segments = 30'000;
  std::string program = "G0 X0 Y0 F1\n";
  for (int n = 0; n < 31; ++n) program += "G2 X0 Y0 I3 J0\n";
  const auto losses = Losses_Of(program);
  ASSERT_EQ(losses.size(), 1U);
  EXPECT_THAT(losses[0], ::testing::MatchesRegex("line 3[123]: cut here: .*900001 wires.*"));
  EXPECT_EQ(Summary_Of(Compile_Losses), "wires cut");
}

}  // namespace
}  // namespace norvik
