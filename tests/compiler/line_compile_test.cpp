// The compile as a whole: files, passes, refusals, and what the operator is told.
#include "compiler/check/program_check.h"
#include "compiler/compile/compile.h"
#include "compiler/compile/table_pair.h"
#include "compiler/interpreter/compile_section.h"
#include "compiler/state/compile_host.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/wires/feed_pass.h"
#include "core/operation.h"
#include "line_fixture.h"

#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

namespace fs = std::filesystem;

class Compile_Test : public Line_Pass_Test {
 protected:
  Compile_Test() {
    Restore_Factory_Setup();
    MachineSetup.Arc_Resolution = 32;
    MachineSetup.GC_IJ_Incremental = true;
  }
  static void Take(const std::string& program) {
    GCode_Program.Text = std::make_shared<const GCode_Text>(program);
  }
  std::string File(std::string_view name) const {
    return Read_Whole_File((Folder / name).string());
  }
};

constexpr const char* Small_Program =
    "G0 X0 Y0 Z.1\nG1 X1 F30\nG2 X2 Y1 I1 J0\nM3\nG1 Y2.125\nM2\n";

TEST_F(Compile_Test, Writes_both_tables_the_same_each_time_and_in_each_region) {
  Take(Small_Program);
  ASSERT_TRUE(CompileProgram());
  const std::string records = File(LineArc_Table_Name), wires = File(Wire_Table_Name);
  EXPECT_EQ(Parse_LineArc_Table(records, "records").Rows.size(), 6U);
  EXPECT_EQ(Parse_Wire_Table(wires, "wires").Rows.size(), 5U + 32U);
  Application.DecimalSeparator = ',';
  ASSERT_TRUE(CompileProgram());
  EXPECT_EQ(File(LineArc_Table_Name), records);
  EXPECT_EQ(File(Wire_Table_Name), wires);
  EXPECT_EQ(Program_Wire.Count(), 37U);
  EXPECT_THAT(Logged(), ::testing::IsEmpty());
}

TEST_F(Compile_Test, Tells_its_beginning_and_end) {
  std::vector<std::string> events;
  Compile_Host.Show_Progress = [&](const std::string& caption) { events.push_back(caption); };
  Compile_Host.Play_Sound_Slot = [&](int slot) { events.push_back(std::to_string(slot)); };
  Program_Wire_Host.Installed = [&] {
    EXPECT_FALSE(Compile_Busy());  // the plot yields, and a run may begin in that
    events.emplace_back(Program_Wire.Origin().Whole ? "plot" : "part");
  };
  Scripted.On_Yield = [&] {
    if (Scripted.Yields == 1) {
      EXPECT_EQ(Messages.Panel[1], "GCode Compile: Compiling Data...");
      EXPECT_TRUE(Program_Is_Held());
    }
  };
  // The analyzer reads the wire file, so that it comes when the file is in its place.
  MachineSetup.Motion_Analyzer_Enable = 1;
  Compile_Host.Show_Motion_Analyzer = [&] {
    const std::string wires = Join_Path(Application.Table_Folder, Wire_Table_Name);
    events.emplace_back(FileExists(wires) ? "analyzer" : "analyzer without a file");
  };
  Take("G1 X1");
  Machine.StartingStep = 7;
  Compile_Status.CurrentStep = 5;
  EXPECT_TRUE(GCode_Compile_All());
  EXPECT_EQ(events, (std::vector<std::string>{"GCode Compile Progress", "GCode Optimize Feed Rates",
                                              "6", "plot", "analyzer"}));
  EXPECT_FALSE(Program_Is_Held());
  EXPECT_TRUE(Compile_Status.CompileDone);
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(Machine.StartingStep, 0);
  EXPECT_EQ(Compile_Status.CurrentStep, 0);
  EXPECT_EQ(Messages.LastMessage, "Compiling GCode");
  EXPECT_THAT(Scripted.Pointers,
              ::testing::ElementsAre(Mouse_Pointer::Busy, Mouse_Pointer::Normal));
}

TEST_F(Compile_Test, An_empty_program_gives_empty_tables) {
  Take("");
  EXPECT_TRUE(CompileProgram());
  EXPECT_EQ(File(LineArc_Table_Name), "");
  EXPECT_EQ(File(Wire_Table_Name), "");
}

TEST_F(Compile_Test, Compensation_runs_only_where_it_was_asked_for) {
  Tools.Diameter[1] = 0.5;
  Take("G0 X0 Y0\nG1 X5\nG1 Y5\n");
  CompileProgram();
  EXPECT_NE(File(LineArc_Table_Name).find(",5,0,"), std::string::npos);
  Take("G0 X0 Y0\nG42\nG1 X5\nG1 Y5\nG40\nG0 X0");
  CompileProgram();
  EXPECT_NE(File(LineArc_Table_Name).find("-0.25"), std::string::npos);
}

TEST_F(Compile_Test, Outputs_come_before_the_dwell_of_their_block_only_as_corrected) {
  const auto rows = [](bool corrected) {
    MachineSetup.Outputs_Before_Dwell = corrected;
    Take("G0 X0\nM3 S1000 G4 P2\nG4 P1\n");
    EXPECT_TRUE(CompileProgram());
    std::vector<std::pair<std::int16_t, float>> found;  // spindle and dwell
    for (const Wire& wire : Program_Wire.Rows()) found.emplace_back(wire.Out[0], wire.Dwell);
    return found;
  };
  using ::testing::ElementsAre;
  using ::testing::Pair;
  EXPECT_THAT(rows(false), ElementsAre(Pair(1, 0), Pair(2, 2), Pair(1, 0), Pair(1, 1)));
  EXPECT_THAT(rows(true), ElementsAre(Pair(1, 0), Pair(2, 0), Pair(1, 2), Pair(1, 0), Pair(1, 1)));
}

TEST_F(Compile_Test, Moves_in_front_of_a_stop_end_slowly_only_as_corrected) {
  MachineSetup.Axis_Ramp_Start = 5;
  MachineSetup.Axis_Ramp_Rate = 15;
  MachineSetup.Axis_Max_Feed_Rate.Fill(100);
  const auto ends = [](bool corrected) {
    MachineSetup.Slow_Before_Stops = corrected;
    Take("F30\nG1 X5\nG4 P1\nG1 X10\nG1 X15\nM0\nG1 X20\nM66\nG1 X25\nG1 X30\nG1 X35\n");
    EXPECT_TRUE(CompileProgram());
    std::vector<float> found;
    for (const Wire& wire : Program_Wire.Rows())
      if (wire.Motion == 1) found.push_back(wire.IPM_E);
    return found;
  };
  const std::vector<float> off = ends(false), on = ends(true);
  ASSERT_EQ(off.size(), 7U);
  ASSERT_EQ(on.size(), 7U);
  for (const std::size_t stop : {0U, 2U, 3U}) {
    EXPECT_EQ(off[stop], 30) << stop;
    EXPECT_EQ(on[stop], 5) << stop;
  }
  for (const std::size_t other : {1U, 4U, 5U, 6U}) EXPECT_EQ(on[other], off[other]) << other;
}

TEST_F(Compile_Test, A_block_has_its_own_wires_on_step_zero) {
  Take("G1 X1\nX2\n");
  CompileProgram();
  const std::string wires = File(Wire_Table_Name);
  ASSERT_TRUE(CompileBlock("G0 X3 Y4"));
  EXPECT_EQ(File(Wire_Table_Name), wires);
  const auto block = Read_Wire_Table((Folder / Block_Wire_Table_Name).string());
  ASSERT_EQ(block.Rows.size(), 1U);
  EXPECT_EQ(block.Rows[0].Step, 0);
  EXPECT_FALSE(block.Rows[0].Start[1]);
  EXPECT_EQ(block.Rows[0].End[2], Nullable(4));
  EXPECT_EQ(Program_Wire.Count(), 1U);
}

TEST_F(Compile_Test, Tables_that_cannot_be_written_leave_those_of_before) {
  Take("G1 X1\n");
  CompileProgram();
  const std::string records = File(LineArc_Table_Name);
  // A folder in the way of the temporary file's target: no user, root included, can write there.
  fs::rename(Folder / LineArc_Table_Name, Folder / "kept.csv");
  fs::create_directory(Folder / LineArc_Table_Name);
  Take("G1 X2\n");
  EXPECT_FALSE(CompileProgram());
  fs::remove(Folder / LineArc_Table_Name);
  Application.Table_Folder = (Folder / "gone").string();
  EXPECT_FALSE(CompileProgram());
  EXPECT_FALSE(CompileBlock("G0 X1"));
  EXPECT_EQ(File("kept.csv"), records);
  EXPECT_THAT(Messages.Status_Box, ::testing::HasSubstr("could not write its tables"));
  EXPECT_FALSE(Logged().empty());
  EXPECT_FALSE(Program_Is_Held());
}

TEST_F(Compile_Test, Both_tables_are_of_one_compile_or_it_is_told) {
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Nothing);
  Take("G1 X1\n");
  ASSERT_TRUE(CompileProgram());
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Whole);
  const std::string older = File(Wire_Table_Name);
  ASSERT_TRUE(CompileBlock("G0 X2"));
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Whole);
  // As a crash between the two leaves them.
  Take("G1 X3\n");
  ASSERT_TRUE(CompileProgram());
  Replace_File((Folder / Wire_Table_Name).string(), older);
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Mixed);
  ASSERT_TRUE(CompileProgram());
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Whole);
  for (const auto& entry : fs::directory_iterator(Folder)) {
    EXPECT_FALSE(entry.is_directory()) << entry.path();
  }
}

TEST_F(Compile_Test, Programs_that_compile_into_one_folder_never_mix_their_tables) {
  constexpr int programs = 3, rounds = 15;
  std::vector<pid_t> children;
  for (int n = 0; n < programs; ++n) {
    children.push_back(::fork());
    if (children.back() != 0) continue;
    Take("G1 X" + std::to_string(n + 1) + "\n");
    bool all = true;
    for (int round = 0; round < rounds; ++round) all = CompileProgram() && all;
    ::_exit(all ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Standing_Of_Pair(Folder.string()), Pair_Standing::Whole);
  const Table<LineArc> records = Parse_LineArc_Table(File(LineArc_Table_Name), "records");
  const Table<Wire> wires = Parse_Wire_Table(File(Wire_Table_Name), "wires");
  ASSERT_EQ(records.Rows.size(), 1U);
  ASSERT_EQ(wires.Rows.size(), 1U);
  EXPECT_EQ(records.Rows[0].SourceText, wires.Rows[0].Block_Text);
}

TEST_F(Compile_Test, A_second_compile_waits_for_the_first) {
  Take(Small_Program);
  int tried = 0;
  Scripted.On_Yield = [&] {
    ++tried;
    EXPECT_FALSE(CompileProgram());
    EXPECT_FALSE(CompileBlock("G0 X9"));
    EXPECT_TRUE(Check_Program(GCode_Program.Text).empty());
  };
  EXPECT_TRUE(CompileProgram());
  EXPECT_GT(tried, 0);
  EXPECT_EQ(Scripted.Beeps, 2 * tried);
}

TEST_F(Compile_Test, Check_counts_wires_and_travel) {
  MachineSetup.Axis_Depth.Fill(5);
  MachineSetup.Arc_Resolution = 30'000;
  MachineSetup.Arc_Max_Segments = 30'000;
  std::string program = "G0 X0 Y0 F1\n";
  for (int n = 0; n < 31; ++n) program += "G2 X0 Y0 I3 J0\n";
  GCode_Program.Text = std::make_shared<const GCode_Text>(program);
  const auto findings = Check_Program(GCode_Program.Text);
  ASSERT_EQ(findings.size(), 3U);
  EXPECT_EQ(findings[0].Kind, Check_Kind::Travel_Too_Long);  // 6 wide and high
  EXPECT_EQ(findings[0].Line, 2);
  EXPECT_EQ(findings[1].Kind, Check_Kind::Travel_Too_Long);
  EXPECT_EQ(findings[2].Kind, Check_Kind::Too_Many_Wires);
  EXPECT_NEAR(findings[2].Line, 32, 1);  // thirty circles of 30,000 chords fill it
}

}  // namespace
}  // namespace norvik
