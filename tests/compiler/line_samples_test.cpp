// The programs that come with the system: they compile without a word in the log, under the setup
// that belongs to them, and the check finds nothing that would be lost, ignored or cut otherwise.
#include "compiler/check/program_check.h"
#include "compiler/compile/compile.h"
#include "compiler/tables/program_wire.h"
#include "core/tool_file.h"
#include "line_fixture.h"

namespace norvik {
namespace {

struct Sample_Row {
  const char* Program;
  const char* Setup;
  const char* Tools;
};

class Samples : public Line_Pass_Test, public ::testing::WithParamInterface<Sample_Row> {};

TEST_P(Samples, Compile_cleanly) {
  const std::string folder = std::string(NORVIK_SAMPLES_FOLDER) + "/";
  Application.MachineFile = (Folder / "machine.ini").string();
  std::filesystem::copy_file(folder + GetParam().Setup, Application.MachineFile);
  LoadMachineSetup();
  // The setups name their files beside themselves.
  ASSERT_TRUE(Read_Tool_File(folder + GetParam().Tools));
  for (std::string& path : MachineSetup.MacroFile) {
    if (!path.empty()) path = folder + path;
  }

  GCode_Program.Text =
      std::make_shared<const GCode_Text>(Read_Whole_File(folder + GetParam().Program));
  EXPECT_TRUE(CompileProgram());
  EXPECT_GT(Program_Wire.Count(), 20U);
  EXPECT_THAT(Logged(), ::testing::IsEmpty());
  EXPECT_TRUE(Scripted.Boxes.empty());
  for (const Check_Finding& finding : Check_Program(GCode_Program.Text)) {
    EXPECT_EQ(Info_Of(finding.Kind).Grade, Check_Grade::Note)
        << finding.Line << ": " << finding.What << ": " << finding.Instead;
  }
  GCode_Program = {};
}

INSTANTIATE_TEST_SUITE_P(All, Samples,
                         ::testing::Values(Sample_Row{"pocket.gc", "inch.ini", "inch.tol"},
                                           Sample_Row{"contour.gc", "inch.ini", "inch.tol"},
                                           Sample_Row{"engraving.gc", "metric.ini", "metric.tol"}));

}  // namespace
}  // namespace norvik
