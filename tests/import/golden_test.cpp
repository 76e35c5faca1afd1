// Drawings and the programs that they must give, worked out by hand. A case is a folder under
// golden/<importer>/:
//
//   input.<ext>   the foreign file
//   setup.txt     one sentence behind "#": what the case holds; then KEY=VALUE over the fixture's
//                 setup
//   expected.gc   the program
#include "core/setup_keys.h"
#include "import/dxf/import.h"
#include "import/excellon/import.h"
#include "import/hpgl/import.h"
#include "import_fixture.h"

namespace norvik {
namespace {

namespace fs = std::filesystem;

struct Importer {
  std::string Folder, Input;
  bool (*Import)(const std::string& path);
};
const Importer Importers[] = {{"dxf", "input.dxf", Import_DXF_File},
                              {"hpgl", "input.plt", Import_HPGL_File},
                              {"excellon", "input.nc", Import_Excellon_File}};

struct Golden_Case {
  const Importer* By;
  fs::path Folder;
};

std::vector<Golden_Case> Cases() {
  std::vector<Golden_Case> cases;
  for (const Importer& importer : Importers) {
    for (const auto& entry :
         fs::directory_iterator(fs::path(NORVIK_TEST_FOLDER) / "golden" / importer.Folder)) {
      cases.push_back({&importer, entry.path()});
    }
  }
  return cases;
}

class Golden_Cases : public Import_Test, public ::testing::WithParamInterface<Golden_Case> {
 protected:
  // Gives the sentence that tells what the case holds.
  static std::string Apply_Setup(const fs::path& folder) {
    std::string why;
    for (const std::string& line : Split_Lines(Read_Whole_File((folder / "setup.txt").string()))) {
      const auto equals = line.find('=');
      if (line.starts_with("#")) why = line;
      if (line.starts_with("#") || equals == std::string::npos) continue;
      const auto key = Find_Setup_Key(std::string_view(line).substr(0, equals));
      if (!key) {
        ADD_FAILURE() << "no such key: " << line;
        continue;
      }
      EXPECT_TRUE(Read_Setup_Text(*key->Row, key->Index, std::string_view(line).substr(equals + 1)))
          << line;
    }
    return why;
  }
};

TEST_P(Golden_Cases, Give_the_expected_program) {
  const auto& [importer, folder] = GetParam();
  const std::string why = Apply_Setup(folder);
  EXPECT_TRUE(importer->Import((folder / importer->Input).string())) << why;
  EXPECT_EQ(Split_Lines(Program), Split_Lines(Read_Whole_File((folder / "expected.gc").string())))
      << why;
  EXPECT_EQ(Log(), "") << why;
  EXPECT_TRUE(Scratch_Is_Gone());
}

INSTANTIATE_TEST_SUITE_P(Importers, Golden_Cases, ::testing::ValuesIn(Cases()),
                         [](const auto& row) {
                           return row.param.By->Folder + "_" + row.param.Folder.filename().string();
                         });

// The lines of drill files show the region's decimal sign; line files keep the point.
TEST_F(Import_Test, A_comma_region_shows_commas_where_decimals_are_fixed) {
  Application.DecimalSeparator = ',';
  ASSERT_TRUE(Import_Excellon_File(Store("holes.nc", "%\nT01\nX1500Y2250\n")));
  EXPECT_THAT(Statements(), ::testing::Contains("G00 X001,500 Y002,250"));
  ASSERT_TRUE(Import_HPGL_File(Store("path.plt", "PU1016,0;PD1524,0;")));
  EXPECT_THAT(Statements(), ::testing::Contains("G01 X1.5 Y0"));
}

}  // namespace
}  // namespace norvik
