// The commands `motion`, `tools` and `sounds` as a script calls them.
#include "companion_call.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/json_text.h"
#include "core/setup.h"
#include "tools/motion_analyzer.h"

#include <filesystem>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Motion_Command_Test : Companion_Call_Test {
  Motion_Command_Test() {
    std::string machine = Read_Whole_File(Samples + "/inch.ini");
    const auto replace = [&](const std::string& what, const std::string& by) {
      for (auto at = machine.find(what); at != std::string::npos;
           at = machine.find(what, at + by.size()))
        machine.replace(at, what.size(), by);
    };
    replace("=inch.tol", "=" + Tools_Path);
    replace("=macros/", "=" + Samples + "/macros/");
    replace("Motion_File_Any_Length=True", "Motion_File_Any_Length=False");
    Write_File("inch.ini", machine);
  }

  int Call(std::vector<std::string> words) {
    words.insert(words.begin(), {"--machine", Folder.File("inch.ini")});
    Companion_Environment environment;
    environment.Play_Sound = [this](const std::string& path) {
      Played = path;
      return std::string();
    };
    return Call_Companion(std::move(words), environment);
  }
  int Call_With_Correction(std::vector<std::string> words) {
    words.insert(words.begin(), {"--set", "Corrections.Motion_File_Any_Length=True"});
    return Call(std::move(words));
  }

  std::string Motion = Folder.File("pocket.mcd"), Tables = Folder.File("tables"), Played,
              Tools_Path = Folder.File("Default.tol");
};

TEST_F(Motion_Command_Test, A_Program_Is_Saved_Loaded_And_Verified) {
  EXPECT_EQ(Call({"motion", "save", Samples + "/pocket.gc", "-o", Motion}), Failed);
  EXPECT_THAT(Said, HasSubstr("Motion_File_Any_Length"));
  EXPECT_FALSE(FileExists(Motion));
  EXPECT_EQ(Call_With_Correction({"motion", "save", Samples + "/pocket.gc", "-o", Motion}), Done);
  const std::string table = Read_Whole_File(Join_Path(Application.Table_Folder, Wire_Table_Name));
  const auto compiled = Parse_Wire_Table(table, "table");

  EXPECT_EQ(Call({"motion", "load", Motion, "--tables", Tables}), Done);
  EXPECT_THAT(Printed, HasSubstr("Wires    " + std::to_string(compiled.Rows.size())));
  EXPECT_THAT(Said, HasSubstr("taken as inches"));
  const auto loaded = Read_Wire_Table(Join_Path(Tables, Wire_Table_Name));
  ASSERT_EQ(loaded.Rows.size(), compiled.Rows.size());
  for (std::size_t k = 0; k < loaded.Rows.size(); ++k) ASSERT_EQ(loaded.Rows[k], compiled.Rows[k]);

  EXPECT_EQ(Call_With_Correction({"motion", "save", "--tables", Tables, "-o", "-"}), Done);
  EXPECT_EQ(Printed, Read_Whole_File(Motion));

  EXPECT_EQ(Call({"motion", "verify", Motion}), Call({"motion", "verify", "--tables", Tables}));
  EXPECT_THAT(Printed, StartsWith("P\tG-Code\tDx"));
  EXPECT_EQ(Call({"motion", "verify"}), Wrong_Usage);
  EXPECT_EQ(Call({"motion", "verify", Motion, "--tables", Tables}), Wrong_Usage);
}

TEST_F(Motion_Command_Test, Errors_Give_Status_1_And_Their_Rows) {
  Table<Wire> table;
  for (int k = 0; k < 3; ++k) {
    Wire wire;
    wire.Step = k + 1;
    wire.Motion = 1;
    wire.Start = {{double(k), 0, 0}};
    wire.End = {{k + 1.0, 0, 0}};
    wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = 10;
    table.Rows.push_back(wire);
  }
  std::filesystem::create_directories(Tables);
  Write_Wire_Table(Join_Path(Tables, Wire_Table_Name), table);
  EXPECT_EQ(Call({"motion", "verify", "--tables", Tables}), Done);
  EXPECT_THAT(Printed, HasSubstr("\n0 Errors\n"));
  table.Rows[1].IPM_S = 9;
  table.Rows[1].Block_Text = "say \"hi\"\t";
  Write_Wire_Table(Join_Path(Tables, Wire_Table_Name), table);
  EXPECT_EQ(Call({"--decimal-comma", "motion", "verify", "--tables", Tables, "--json", "--errors"}),
            Failed);
  EXPECT_THAT(Printed, StartsWith("{\"records\": 3, \"errors\": 1, \"rows\": [\n  {\"P\": 2, "
                                  "\"G-Code\": \"say \\\"hi\\\"\\u0009\", \"Dx\": 1, \"Dy\": 0"));
  EXPECT_EQ(Call({"motion", "verify", "--tables", Folder.File("none")}), Failed);
  EXPECT_THAT(Said, HasSubstr(std::string(Wire_Table_Name)));
}

TEST_F(Motion_Command_Test, A_File_That_Lacks_Lines_Is_A_Failure) {
  ASSERT_EQ(Call_With_Correction({"motion", "save", Samples + "/pocket.gc", "-o", Motion}), Done);
  const std::string whole = Read_Whole_File(Motion);
  Replace_File(Motion, "9" + whole);
  EXPECT_EQ(Call({"motion", "load", Motion, "--tables", Tables}), Failed);
  EXPECT_THAT(Said, HasSubstr("The rest is missing"));
  EXPECT_EQ(Call({"plot", Motion, "-o", Folder.File("a.ppm")}), Failed);
  Replace_File(Motion, whole.substr(0, whole.size() - 10));
  std::filesystem::remove_all(Tables);
  EXPECT_EQ(Call({"motion", "load", Motion, "--tables", Tables}), Failed);
  EXPECT_FALSE(FileExists(Join_Path(Tables, Wire_Table_Name)));
}

TEST_F(Motion_Command_Test, Tools_Are_Set_Listed_And_Imported) {
  EXPECT_EQ(Call({"tools", "set", "3", "--diameter", "0,125", "--offset", "-0.5"}), Done);
  EXPECT_EQ(Call({"tools", "list", "--json"}), Done);
  EXPECT_EQ(Printed, "[\n  {\"tool\": 3, \"diameter\": 0.125, \"offset\": -0.5}\n]\n");
  EXPECT_EQ(Call({"tools", "set", "201", "--diameter", "1"}), Wrong_Usage);
  EXPECT_EQ(Call({"tools", "set", "3", "--diameter", "-1"}), Wrong_Usage);
  EXPECT_EQ(Call({"tools", "set", "3"}), Wrong_Usage);
  const std::string other = Folder.File("other.tol");
  Replace_File(other, "1,0\nwrong\n");
  EXPECT_EQ(Call({"tools", "import", other}), Failed);
  EXPECT_THAT(Said, HasSubstr("line 2: \"wrong\""));
  EXPECT_EQ(Call({"tools", "list"}), Done);
  EXPECT_EQ(Printed, "Tool#  Diameter            Offset\n003    0.125  -0.5\n");
  EXPECT_EQ(Call({"tools", "import", other, "--accept-losses"}), Done);
  EXPECT_EQ(Split_Lines(Read_Whole_File(Tools_Path)).size(), 200U);
}

TEST_F(Motion_Command_Test, Sounds_Are_Listed_And_Played_Or_It_Is_Said_Why_Not) {
  EXPECT_EQ(Call({"sounds", "play", "9"}), Wrong_Usage);
  EXPECT_EQ(Call({"sounds", "play", "5"}), Failed);
  EXPECT_THAT(Said, HasSubstr("disabled"));
  const std::string wave = Folder.File("a.wav");
  const std::string setting = "Sounds.Sound_Files_5=" + wave;
  EXPECT_EQ(Call({"--set", setting, "sounds", "play", "5"}), Failed);
  EXPECT_THAT(Said, HasSubstr("a.wav: missing"));
  Replace_File(wave, "RIFFxxxxWAVE");
  EXPECT_EQ(Call({"--set", setting, "sounds", "play", "5"}), Done);
  EXPECT_EQ(Played, wave);
  EXPECT_EQ(Call({"--set", setting, "sounds", "list"}), Done);
  EXPECT_THAT(Printed, HasSubstr("5  E-Stop Pressed     = " + wave + "\n"));
}

TEST(Json_Text_Test, Every_Text_And_Number_Becomes_What_A_Reader_Takes) {
  EXPECT_EQ(Json_Text("a\"\\\n\xC3\xA4\xE4"), "\"a\\\"\\\\\\u000a\xC3\xA4\xEF\xBF\xBD\"");
  EXPECT_EQ(Json_Number(".5"), "0.5");
  EXPECT_EQ(Json_Number("-.25"), "-0.25");
  EXPECT_EQ(Json_Number(""), "null");
}

}  // namespace
}  // namespace norvik
