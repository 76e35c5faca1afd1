// The sample programs, compiled with the sample machines, from every preset.
#include "comparison.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/tool_file.h"
#include "platform/scripted/scripted_platform.h"
#include "plot/plot_picture.h"
#include "plot/view.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <utility>

namespace norvik {
namespace {

struct Sample {
  const char *Name, *Machine, *Tools;
};
const Sample samples[] = {{"pocket", "inch.ini", "inch.tol"},
                          {"contour", "inch.ini", "inch.tol"},
                          {"engraving", "metric.ini", "metric.tol"}};

class Sample_Pictures : public testing::TestWithParam<Sample> {
 protected:
  static std::string Sample_File(const std::string& name) {
    return Join_Path(NORVIK_SAMPLES_FOLDER, name);
  }

  Scripted_Platform Scripted;
  Temporary_Folder Folder;
};

TEST_P(Sample_Pictures, Every_Preset_Looks_As_Stored) {
  const Sample& sample = GetParam();
  Reset_Plot();
  Application.Table_Folder = Application.Pointer_Folder = Folder.Path;
  Application.ErrorFile = Folder.File("errors.txt");
  Application.MachineFile = Sample_File(sample.Machine);
  LoadMachineSetup();
  MachineSetup.MacroFile[1] = Sample_File("macros/hole_row.gc");
  MachineSetup.MacroFile[2] = Sample_File("macros/pocket_pass.gc");
  Read_Tool_File(Sample_File(sample.Tools));
  SaveChanges(Read_Whole_File(Sample_File(std::string(sample.Name) + ".gc")));
  ASSERT_TRUE(CompileProgram());
  ASSERT_GT(Program_Wire.Count(), 10U);
  for (std::size_t view = 0; view < Preset_Views.size(); ++view) {
    const std::string name = std::string(sample.Name) + "-" + std::string(Preset_Views[view].Name);
    Compare_With_Stored(Make_Program_Picture({view, Stored_Size, false}), name);
  }
}

INSTANTIATE_TEST_SUITE_P(, Sample_Pictures, testing::ValuesIn(samples),
                         [](const testing::TestParamInfo<Sample>& row) {
                           return std::string(row.param.Name);
                         });

}  // namespace
}  // namespace norvik
