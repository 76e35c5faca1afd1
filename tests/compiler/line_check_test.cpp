// The findings of the check: each kind by a line that has it, and by neighbours that do not.
#include "compiler/check/program_check.h"
#include "compiler/check/words.h"
#include "compiler/interpreter/interpreter.h"
#include "line_fixture.h"

namespace norvik {
namespace {

using enum Check_Kind;

struct Told {
  int Line;
  Check_Kind Kind;
  int Column = 0;
  bool operator==(const Told&) const = default;
};

void PrintTo(const Told& told, std::ostream* out) {
  *out << told.Line << ":" << told.Column << " " << Info_Of(told.Kind).Title;
}

class Check_Test : public Line_Pass_Test {
 protected:
  Check_Test() {
    MachineSetup.GC_IJ_Incremental = true;
    MachineSetup.Axis_Depth.Fill(100);
    MachineSetup.Arc_Resolution = 32;
    MachineSetup.Arc_Max_Segments = 360;
  }
  std::vector<Check_Finding> Check(const std::string& program) {
    GCode_Program.Text = std::make_shared<const GCode_Text>(program);
    return Check_Program(GCode_Program.Text);
  }
  std::vector<Told> Told_About(const std::string& program) {
    std::vector<Told> told;
    for (const Check_Finding& finding : Check(program)) {
      told.push_back({finding.Line + (finding.Macro ? 1000 * *finding.Macro : 0), finding.Kind,
                      finding.Column});
      EXPECT_FALSE(finding.What.empty());
      EXPECT_FALSE(finding.Instead.empty());
    }
    return told;
  }
};

struct Check_Row {
  const char* Lines;  // behind a first line that takes the tool to zero and sets a feed
  std::vector<Told> Findings;
};

class Check_Rows : public Check_Test, public ::testing::WithParamInterface<Check_Row> {};

TEST_P(Check_Rows, Are_told) {
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    Compiler_Memory = {};
    EXPECT_EQ(Told_About(std::string("G0 X0 Y0 Z0 F10\n") + GetParam().Lines), GetParam().Findings)
        << GetParam().Lines;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Words, Check_Rows,
    ::testing::Values(
        Check_Row{"N20 G1 X1 Y2 (all is well)\nx2 y3\n%\n(M3)\nM5", {}},
        Check_Row{"G1 X1 O5\nG1X1", {{3, Code_Runs_Together, 1}, {2, Letter_Not_Read, 7}}},
        Check_Row{"M3S500", {{2, Code_Runs_Together, 1}}},
        Check_Row{"G1 X", {{2, Cut_Wrongly, 4}}},  // one character left: the X is not looked for
        Check_Row{"G1 X Y1", {{2, Block_Fails, 4}}}, Check_Row{"G1 X  1.5", {{2, Block_Fails, 4}}},
        Check_Row{"G1 X--4", {{2, Block_Fails}}}, Check_Row{"G200", {{2, Block_Fails}}},
        Check_Row{"T201", {{2, Block_Fails}}}, Check_Row{"'a note", {{2, Block_Fails}}},
        Check_Row{"X1Y2Z3", {}}, Check_Row{"Y1X2F5", {{2, Block_Fails}}},
        Check_Row{"EX12Y2", {{2, Letter_Not_Read, 1}, {2, Cut_Wrongly, 2}}},
        Check_Row{"G1 X1 (a) (b 5)", {{2, Second_Comment, 11}}},
        Check_Row{"G1 X1 (a) (q7 )", {{2, Second_Comment, 11}}},
        Check_Row{"G1 X1 ; go", {{2, Second_Comment, 7}}}, Check_Row{"G1 X1 ; ...", {}},
        Check_Row{"G1 X1 (rough", {{2, Comment_Not_Closed, 7}}},
        Check_Row{"N10G1 X1", {{2, Sequence_Swallows, 1}}},
        Check_Row{"G1 X#1 Y[2]", {{2, Block_Fails, 4}, {2, Text_Not_Read, 5}}},
        Check_Row{"G1 E5 U1 X1", {{2, Letter_Not_Read, 4}, {2, Axis_Not_Moved, 7}}},
        Check_Row{"G1 X1 X2", {{2, Doubled_Word, 7}}},
        Check_Row{"G1 X1.23456", {{2, Word_Rounded, 4}}}, Check_Row{"G1 X1.2500 Y0.12300", {}},
        Check_Row{"D1 G1 X1", {{2, Word_Not_Used, 1}}},
        Check_Row{"D5 G1 X1", {{2, Comp_Other_Tool, 1}}},
        Check_Row{"G1 X1 B5 C2", {{2, Axis_Not_Moved, 7}, {2, Axis_Not_Moved, 10}}},
        Check_Row{"/G1 X1\n/\nN5 /G1 X2", {{2, Block_Delete, 1}, {4, Block_Delete, 4}}}));

// The comma as thousands sign; in a region of decimal commas it is the decimal sign.
TEST_F(Check_Test, Commas_in_numbers) {
  EXPECT_EQ(Told_About("M3 S10,000"), (std::vector<Told>{{1, Comma_In_Number, 4}}));
  EXPECT_EQ(Told_About("M3 S10,5"), (std::vector<Told>{}));
  Application.DecimalSeparator = ',';
  EXPECT_EQ(Told_About("M3 S10,000"), (std::vector<Told>{}));
}

// Of an endless line so much is compared as the check can hold.
TEST_F(Check_Test, Long_lines_are_bounded) {
  std::string line = "G1 X1 F1";
  for (int n = 0; n < 200'000; ++n) line += " X1";
  const auto findings = Check(line);
  EXPECT_LT(findings.size(), Most_Meant_Words + 5);
  EXPECT_TRUE(std::ranges::any_of(findings, [](const Check_Finding& finding) {
    return finding.Kind == Line_Too_Long && finding.What.find("600008") != std::string::npos;
  }));
}

INSTANTIATE_TEST_SUITE_P(
    Codes, Check_Rows,
    ::testing::Values(
        Check_Row{"G21", {{2, Other_Units, 1}}}, Check_Row{"G20", {{2, Code_Not_Needed, 1}}},
        Check_Row{"G28 Z1", {{2, Code_Missing, 1}}},
        Check_Row{"G43 H1 Z5",
                  {{2, Words_Without_Motion}, {2, Code_Missing, 1}, {2, Word_Not_Used, 5}}},
        Check_Row{"G54\nG17 G94 G49",
                  {{2, Code_Not_Needed, 1}, {3, Code_Not_Needed, 5}, {3, Code_Not_Needed, 9}}},
        Check_Row{"G55", {{2, Code_Missing, 1}}}, Check_Row{"G74", {{2, Code_Missing, 1}}},
        Check_Row{"G59.1", {{2, Code_Rounded, 1}, {2, Code_Missing, 1}}},
        // Incremental from here on: told with the code, and with each line that it moves elsewhere.
        Check_Row{"G1 X1\nG91.1\nG1 X2\nX3",
                  {{3, Code_Read_As_Other, 1}, {4, Runs_Otherwise}, {5, Runs_Otherwise}}},
        Check_Row{"G90 G91 G1 X1\nG90", {{2, Codes_Exclude_Each_Other}}},
        Check_Row{"M8 M7\nM9", {}}, Check_Row{"M3 M5", {{2, Codes_Exclude_Each_Other}}},
        Check_Row{"M13", {{2, Code_Missing, 1}}}, Check_Row{"M3 S500\nM30", {}}));

INSTANTIATE_TEST_SUITE_P(
    Motion, Check_Rows,
    ::testing::Values(
        Check_Row{"G1 X1\nG17 X2", {{3, Words_Without_Motion}}},
        Check_Row{"G1 X1\nA5", {{3, Words_Without_Motion}}}, Check_Row{"G1 A5", {}},
        Check_Row{"X1 I1", {{2, Words_Without_Motion}}},
        Check_Row{"G1 G0 X1", {{2, Several_Motions}}},
        Check_Row{"G80\nX1\nG1 X2\nX3", {{3, Bare_After_Cycle}}},
        Check_Row{"F0\nG1 X1\nX2", {{3, No_Feed}, {4, No_Feed}}},
        Check_Row{"M6 G1 X1\nM6\nG1 Y2", {{2, Tool_Change_Beside_Move}}},
        Check_Row{"M3 S100\nM6\nM5\nM6", {{3, Change_With_Spindle_On}}},
        Check_Row{"M3 S100 G4 P2\nM5 G4 P2", {{2, Dwell_Before_Outputs}}},
        // A straight joint runs at full feed, whatever stands in it.
        Check_Row{"G1 X1\nG4 P1\nG1 X2\nM0\nG1 Y2\nM66\nG1 Y3",
                  {{3, Stop_At_Full_Feed}, {7, Stop_At_Full_Feed}}},
        // A lost code takes the lines behind it along; so does a lost feed.
        Check_Row{"G1X1\nX2\nG1 X3\nX4", {{2, Code_Runs_Together, 1}, {3, Runs_Otherwise}}},
        Check_Row{"G1Z1F5\nG1 X3\nG1 X4 F6", {{2, Code_Runs_Together, 1}, {3, Runs_Otherwise}}},
        Check_Row{"G93\nG1 X1 F5\nG94\nG1 X2",
                  {{2, Code_Missing, 1}, {3, Feed_Per_Turn}, {4, Code_Not_Needed, 1}}},
        Check_Row{"M4\nM2", {{3, Spindle_Left_On}}}, Check_Row{"M4\nM5\nM2", {}},
        Check_Row{"G4 P500", {{2, Long_Dwell}}}, Check_Row{"G4 P50", {{2, Long_Dwell}}},
        Check_Row{"G4 P5", {}}, Check_Row{"G4", {{2, Block_Fails}}},
        Check_Row{"G1 X60\nX-60\nX70", {{3, Travel_Too_Long}}}));

INSTANTIATE_TEST_SUITE_P(
    Arcs, Check_Rows,
    ::testing::Values(
        Check_Row{"G2 X1 Y1 I1 J0\nG3 X0 Y0 I-1", {}},
        Check_Row{"G2 X1 Y1 I1\nG2 X2 Y0 I0 J-1\nG2 X3 Y1",
                  {{4, Arc_Sticky_Centre}, {4, Arc_Radii_Differ}}},
        Check_Row{"G2 X1 Y1 I1 J0\nG1 X3\nG17 X1\nG2 Y1 I-1 J0",
                  {{4, Words_Without_Motion}, {5, Arc_Sticky_End}}},
        Check_Row{"G2 X1 Y1 I1 J0\nX2 Y0 J-1 I0\nX3 Y1\nX4",
                  {{4, Arc_Becomes_Line}, {5, Arc_Becomes_Line}}},
        Check_Row{"G2 X1 Y1 R1\nX2 Y0 R1", {{3, Arc_Becomes_Line}}},
        Check_Row{"G2 X1 Y0 I.4 J0", {{2, Arc_Radii_Differ}}},
        Check_Row{"G2 X1 Y1 R1 I1", {{2, Arc_Radius_Not_Used}}},
        Check_Row{"G2 X1 Y1 R-1",
                  {{2, Arc_Sticky_Centre}, {2, Arc_Radius_Not_Used}, {2, Arc_Radii_Differ}}},
        Check_Row{"G2 X1 Y1 R1", {}}, Check_Row{"G3 X1 Y1 R1", {{2, Arc_Long_Way_Round}}},
        Check_Row{"G3 X1 Y0 R.5", {}},  // half a circle
        Check_Row{"G0 X1 Y0\nG2 X2 Y1 R1", {{3, Arc_Walked_Elsewhere}}},
        Check_Row{"G91 G2 X1 Y1 I1 J0 Z1\nG90", {}},
        Check_Row{"G1 Z1\nG91 G2 X1 Y1 I1 J0 Z1\nG90", {{3, Arc_Absolute_Height}}},
        Check_Row{"G2 X1 Y1 I1 J0\nG91", {{2, Arc_Walked_Elsewhere}}},
        Check_Row{"G2 X1 Y1 I1 J0\nG18", {{2, Arc_Walked_Elsewhere}}},
        Check_Row{"G18 G2 X1 Z1 I1 K0", {{2, Arc_Other_Side}}},
        Check_Row{"G2 X4 Y0 R1", {{2, Block_Fails}}}));

// A corner of 0.02 that becomes nearly a full circle of 2.83, and agrees with its end all the same.
TEST_F(Check_Test, Centres_by_the_other_reading) {
  MachineSetup.GC_IJ_Incremental = false;
  const std::string corner = "G0 X2 Y2.02 Z0 F10\nG3 X2.02 Y2 I.02 J0";
  const auto findings = Check(corner);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].Kind, Arc_Other_Centre);
  EXPECT_NE(findings[0].What.find("with GC_IJ_Incremental on, this arc has radius 0.02"),
            std::string::npos)
      << findings[0].What;
  // A full circle agrees with both; the company that it keeps decides.
  EXPECT_EQ(Told_About(corner + "\nG2 X2.02 Y2 I-1 J0"),
            (std::vector<Told>{{2, Arc_Other_Centre}, {3, Arc_Other_Centre}}));
  EXPECT_EQ(Told_About("G0 X2.02 Y2 Z0 F10\nG2 X2.02 Y2 I-1 J0"), (std::vector<Told>{}));
  // The same corner as an all but straight piece of a circle of 7.
  EXPECT_EQ(Told_About("G0 X5 Y5 Z0 F10\nG2 X5.02 Y4.98 I0 J-.02"),
            (std::vector<Told>{{2, Arc_Other_Centre}}));
  // A piece of a circle of 8.5 or of 1.5.
  const std::string open = "\nG0 X5 Y5 Z0 F10\nG2 X5.5 Y4.5 I-.75 J-1.25";
  EXPECT_EQ(Told_About(open), (std::vector<Told>{}));
  EXPECT_EQ(Told_About(corner + open),
            (std::vector<Told>{{2, Arc_Other_Centre}, {4, Arc_Other_Centre}}));
  MachineSetup.GC_IJ_Incremental = true;
  EXPECT_EQ(Told_About(corner), (std::vector<Told>{}));
}

INSTANTIATE_TEST_SUITE_P(
    Cycles, Check_Rows,
    ::testing::Values(
        Check_Row{"G81 X1 Y1 Z-1 R1\nX2", {}},
        Check_Row{"G81 X1 Z-1\nX2 R1", {{2, Cycle_Lacks_Words}}},
        Check_Row{"G82 X1 Y1 Z-1 R1", {{2, Block_Fails}}}, Check_Row{"G83 X1 Y1 Z-1 R1 Q.5", {}},
        Check_Row{"G83 X1 Y1 Z-1 R1 Q.6", {{2, Peck_Misses_Bottom}}},
        Check_Row{"G1 Z5\nG91 G83 X1 Y1 Z-7 R0 Q1\nG90", {{3, Peck_From_Raw_R}}},
        Check_Row{"G81 X1 Y1 Z-1 R1 L3\nX2", {{3, Cycle_Keeps_L}}},
        Check_Row{"G0 Z5\nG81 X1 Y1 Z-1 R1\nX2", {{3, Cycle_Returns_To_R}}},
        Check_Row{"G0 Z5\nG98\nG81 X1 Y1 Z-1 R1",
                  {{3, Code_Without_Effect, 1}, {4, Cycle_Returns_Low}}},
        Check_Row{"G73 X1 Y1 Z-1 R1 Q.5\nX2",
                  {{2, Hole_Not_Drilled}, {2, Code_Missing, 1}, {3, Hole_Not_Drilled}}},
        Check_Row{"G81 X1 Y1 Z-1 R1\nG80\nG81 X2", {{4, Cycle_Takes_Old_Word}}},
        // The memory of X wins over where the tool is.
        Check_Row{"G81 X1 Y1 Z-1 R1\nG80\nG0 X5\nG81 Y2 Z-1 R1", {{5, Runs_Otherwise}}},
        Check_Row{"G98 G81 X1 Y1 Z-1 R1", {{2, Code_Without_Effect, 1}}}));

INSTANTIATE_TEST_SUITE_P(
    Repeats, Check_Rows,
    ::testing::Values(
        Check_Row{"REPEAT 2\nX1\nENDREPEAT", {{2, Repeat_Runs_Once_More}, {2, Repeat_Order}}},
        Check_Row{"REPEAT\nX1\nENDREPEAT", {{2, Repeat_Without_Count}, {2, Repeat_Order}}},
        Check_Row{"REPEAT  2\nX1\nENDREPEAT", {{2, Repeat_Count_Not_Read}, {2, Repeat_Order}}},
        Check_Row{"REPEAT 40000\nX1\nENDREPEAT", {{2, Repeat_Count_Not_Read}, {2, Repeat_Order}}},
        Check_Row{"REPEAT 2\nX1", {{2, Repeat_Runs_Once_More}, {2, Repeat_Not_Ended}}},
        Check_Row{"X1\nENDREPEAT", {{3, Repeat_Not_Begun}}},
        Check_Row{"REPEAT 2\nREPEAT 3\nX1\nENDREPEAT",
                  {{2, Repeat_Runs_Once_More},
                   {3, Repeat_Nested},
                   {3, Repeat_Runs_Once_More},
                   {3, Repeat_Order}}},
        // A repeated line is told once.
        Check_Row{"REPEAT 9\nX1.23456\nENDREPEAT",
                  {{2, Repeat_Runs_Once_More}, {2, Repeat_Order}, {3, Word_Rounded, 1}}}));

// Each names its key, and is silent with it.
TEST_F(Check_Test, Corrections_answer_findings) {
  const std::string program =
      "G0 X0 Y0 Z0 F10\nREPEAT 1\nG1 X1\nENDREPEAT\nG4 P1\nG1 X2\nM3 G4 P1\nM5";
  const auto findings = Check(program);
  const auto names = [&](Check_Kind kind, std::string_view key) {
    return std::ranges::any_of(findings, [&](const Check_Finding& finding) {
      return finding.Kind == kind && finding.Instead.find(key) != std::string::npos;
    });
  };
  EXPECT_TRUE(names(Repeat_Order, "Run_In_Table_Order"));
  EXPECT_TRUE(names(Stop_At_Full_Feed, "Slow_Before_Stops"));
  EXPECT_TRUE(names(Dwell_Before_Outputs, "Outputs_Before_Dwell"));
  MachineSetup.Run_In_Table_Order = MachineSetup.Slow_Before_Stops = true;
  MachineSetup.Outputs_Before_Dwell = true;
  EXPECT_EQ(Told_About(program), (std::vector<Told>{{2, Repeat_Runs_Once_More}}));
}

// --- Radius compensation -------------------------------------------------------------------------

class Check_Compensation : public Check_Test {
 protected:
  Check_Compensation() { Tools.Diameter[1] = 0.2; }
  ~Check_Compensation() override { Tools = {}; }
};

TEST_F(Check_Compensation, A_contour_with_ways_along_it_is_clean) {
  EXPECT_EQ(Told_About("G0 X0 Y-.5 Z1 F10\nG1 Z-1\nG41 G1 Y0\nY2\nX2\nY0\nX0\nX-.5\nG40\nG0 Z1"),
            (std::vector<Told>{}));
}

TEST_F(Check_Compensation, Leads_at_depth_cut_into_the_contour) {
  EXPECT_EQ(Told_About("G0 X0 Y0 Z1 F10\nG1 Z-1\nG41 G1 Y2\nX2\nY0\nX0\nG40\nG0 Z1"),
            (std::vector<Told>{{3, Comp_Lead_Cuts}, {6, Comp_Lead_Cuts}}));
  // Raised before G40, the tool may move back over the contour.
  EXPECT_EQ(Told_About("G0 X0 Y-.5 Z1 F10\nG1 Z-1\nG41 G1 Y0\nY2\nX2\nY0\nX0\nG0 Z1\nG40"),
            (std::vector<Told>{}));
}

TEST_F(Check_Compensation, Square_leads_leave_material) {
  EXPECT_EQ(Told_About("G0 X-.5 Y0 Z1 F10\nG1 Z-1\nG41 G1 X0\nY2\nX2\nY0\nX0\nY-.5\nG40\nG0 Z1"),
            (std::vector<Told>{{4, Comp_Leaves_Material}, {7, Comp_Leaves_Material}}));
}

TEST_F(Check_Compensation, What_a_compile_would_tell_or_pass_over) {
  const auto has = [&](const std::string& program, Told wanted) {
    const auto told = Told_About(program);
    return std::ranges::find(told, wanted) != told.end();
  };
  EXPECT_TRUE(
      has("G0 X0 Y0 Z1 F10\nT2\nG1 Z-1\nG41 G1 Y2\nX2\nG40\nG0 Z1", {4, Comp_Without_Diameter}));
  EXPECT_TRUE(
      has("G0 X0 Y0 Z1 F10\nG1 Z-1\nG41 G1 Y2\nG42 G1 X2\nG40\nG0 Z1", {4, Comp_Changes_Side}));
  EXPECT_TRUE(has("G0 X0 Y0 Z1 F10\nG1 Z-1\nG41 G1 X1\nG3 X1 Y.1 I0 J.05\nG1 X0\nG40\nG0 Z1",
                  {4, Comp_Does_Not_Fit}));
  EXPECT_TRUE(has("G0 X0 Y0 Z1 F10\nG41 G1 X1\nG40\nG18", {2, Comp_Wrong_Plane}));
  EXPECT_TRUE(Logged().empty());
  EXPECT_TRUE(Scripted.Beeps == 0);
}

TEST_F(Check_Test, First_lines_without_code_and_feed) {
  EXPECT_EQ(Told_About("X1\nG1 X2"), (std::vector<Told>{{1, Bare_Start}, {2, Feed_Of_Setup}}));
  EXPECT_EQ(Told_About("G81 X1 Z-1 R1 F5"), (std::vector<Told>{{1, Cycle_Counts_Zero}}));
  EXPECT_EQ(Told_About("G2 X1 Y1 I1 J0 F1"), (std::vector<Told>{{1, Block_Fails}}));
}

TEST_F(Check_Test, Macros) {
  MachineSetup.MacroFile[3] = Write_File("three.gc", "G1 X1,5\nG1X2\nM98 3\nM98 150\nREPEAT\n");
  MachineSetup.MacroFile[4] = (Folder / "gone.gc").string();
  // Lines of macro 3 stand as 3000 and more. The comma makes a second line of its first, "5".
  EXPECT_EQ(Told_About("G0 X0 F1\nM98 P3\nG1 X9 M98 3\nM98 4\nM98 5\nM98 151\nM98\n(see M98 P3)"),
            (std::vector<Told>{{3003, Code_Runs_Together, 1},
                               {3, Macro_Line_Lost, 1},
                               {3, Macro_Line_Lost, 4},
                               {4, Macro_Missing},
                               {5, Macro_Missing},
                               {6, Macro_Missing},
                               {7, Macro_Without_Number},
                               {8, Macro_Line_Lost},
                               {3001, Macro_Comma, 6},
                               {3002, Text_Not_Read, 1},
                               {3004, Macro_Calls_Itself},
                               {3005, Macro_Missing},
                               {3006, Repeat_Without_Count},
                               {3006, Repeat_Not_Ended}}));
  EXPECT_TRUE(Scripted.Boxes.empty());
}

TEST_F(Check_Test, Findings_say_what_happens_and_what_to_write) {
  const auto findings = Check("G1 F5 X1\nG3X4\nG55");
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].What, "G\"3X4\" is no number: the block is lost");
  EXPECT_EQ(findings[0].Instead, "put a blank behind each G and M word");
  EXPECT_EQ(findings[1].What, "G55 (work offset 2) has no effect");
}

TEST_F(Check_Test, Changes_nothing) {
  Compile("G1 X1 I5\nG91\nM4");
  const Record_List<LineArc> records = Compile_Tables.Program_LineArc.Rows;
  const Word_Values last = Compiler.Last;
  Check("G2 X1 Y1 I1 J1\nG0 X5\nG1X1\nM98 9");
  EXPECT_TRUE(Compile_Tables.Program_LineArc.Rows == records);
  EXPECT_TRUE(Compiler.Last == last);
  EXPECT_EQ(Compiler.ModalGroups[modal_group::Distance], 91);
  EXPECT_EQ(Compiler_Memory.LastI, Nullable(5));
  EXPECT_TRUE(Logged().empty());
}

}  // namespace
}  // namespace norvik
