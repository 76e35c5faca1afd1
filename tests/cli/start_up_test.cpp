// Desktop and companion make one and the same of a program: each sample, compiled behind both
// start-ups.
#include "app/connect.h"
#include "app/folders.h"
#include "app/main_form.h"
#include "app/shutdown.h"
#include "app/startup.h"
#include "cli/companion.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace norvik {
namespace {

struct Sample {
  const char *Program, *Machine;
};

struct Start_Up_Test : testing::TestWithParam<Sample> {
  // The sample setups name their files beside themselves, wherever the program was started.
  Start_Up_Test() {
    std::filesystem::copy(NORVIK_SAMPLES_FOLDER, Samples, std::filesystem::copy_options::recursive);
    std::filesystem::current_path(Folder.Path);
  }
  ~Start_Up_Test() override {
    std::filesystem::current_path(Before);
    Forget();
  }
  static void Forget() { Reset_App(); }

  std::string Tables() { return Read_Whole_File(Compile_Tables.LineArc_Path) + Wires(); }
  std::string Wires() { return Read_Whole_File(Compile_Tables.Wire_Path); }

  std::filesystem::path Before = std::filesystem::current_path();
  Temporary_Folder Folder;
  Scripted_Platform scripted;
  std::string Samples = Folder.File("samples"), Program = Samples + "/" + GetParam().Program,
              Machine_File = Samples + "/" + GetParam().Machine;
};

TEST_P(Start_Up_Test, Both_Start_Ups_Make_The_Same_Tables) {
  Forget();
  Use_Folders({Folder.File("desktop"), Folder.File("desktop")});
  WritePointer("Machine", "Name", Machine_File);
  Load_Main();
  SaveChanges(Read_Whole_File(Program));
  ASSERT_TRUE(CompileProgram());
  const std::string by_desktop = Tables();
  EXPECT_GT(Tools.Diameter[2], 0) << "the sample setups name a tool file";

  Forget();
  std::vector<std::string> words{"norvik-cli", "--home",     Folder.File("companion"),
                                 "--machine",  Machine_File, "compile",
                                 Program};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  testing::internal::CaptureStdout();
  EXPECT_EQ(Run_Companion(static_cast<int>(arguments.size()), arguments.data(), {}), Done);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(Tables() == by_desktop);
}

INSTANTIATE_TEST_SUITE_P(Samples, Start_Up_Test,
                         testing::Values(Sample{"contour.gc", "inch.ini"},
                                         Sample{"pocket.gc", "inch.ini"},
                                         Sample{"engraving.gc", "metric.ini"}),
                         [](const auto& sample) { return FileNameStem(sample.param.Program); });

}  // namespace
}  // namespace norvik
