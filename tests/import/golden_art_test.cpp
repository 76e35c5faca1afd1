// Artwork and pictures against programs that were worked out by hand.
//
// A case is a folder golden/<importer>/<name> with
//   why.txt        the behaviour, in one sentence
//   input.<ext>    the foreign file; pictures as text (PPM, P3), since no toolkit decodes them here
//   setup.txt      KEY=VALUE lines, keys as in the setup table
//   expected.gc    the program
#include "core/setup_keys.h"
#include "import/gerber/import.h"
#include "import/picture/import.h"
#include "import_fixture.h"

#include <sstream>

namespace norvik {
namespace {

namespace fs = std::filesystem;

const fs::path Golden = fs::path(NORVIK_TEST_FOLDER) / "golden";

Picture Picture_Of_Text(const std::string& text) {
  std::istringstream in(text);
  std::string kind;
  Picture picture;
  int white = 0, value = 0;
  in >> kind >> picture.Width >> picture.Height >> white;
  while (in >> value) picture.Rgb.push_back(static_cast<std::uint8_t>(value));
  EXPECT_EQ(picture.Rgb.size(), static_cast<std::size_t>(picture.Width * picture.Height * 3));
  return picture;
}

struct Golden_Art : Import_Test {
  // "" when the case holds, otherwise what differs.
  std::string Run(const fs::path& folder, bool (*importer)(const std::string&)) {
    MachineSetup = Fresh;
    fs::remove(Application.ErrorFile);
    for (const std::string& line : Split_Lines(Read_Whole_File((folder / "setup.txt").string()))) {
      const auto sign = line.find('=');
      const auto key = Find_Setup_Key(line.substr(0, sign));
      if (!key) return "no such key: " + line;
      Change_Setup_Key(*key, line.substr(sign + 1));
    }
    std::string input;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.path().stem() == "input") input = entry.path().string();
    }
    if (fs::path(input).extension() == ".ppm") {
      Scripted.Pictures[input] = Picture_Of_Text(Read_Whole_File(input));
    }
    Program.clear();
    importer(input);
    const std::vector<std::string> wanted =
        Split_Lines(Read_Whole_File((folder / "expected.gc").string()));
    const std::vector<std::string> got = Split_Lines(Program);
    for (std::size_t n = 0; n < std::max(wanted.size(), got.size()); ++n) {
      const std::string w = n < wanted.size() ? wanted[n] : "(end)";
      const std::string g = n < got.size() ? got[n] : "(end)";
      if (w != g) return "line " + std::to_string(n + 1) + ": " + g + " instead of " + w;
    }
    return Log();
  }

  void Run_All(const std::string& kind, bool (*importer)(const std::string&)) {
    int cases = 0;
    for (const auto& entry : fs::directory_iterator(Golden / kind)) {
      EXPECT_EQ(Run(entry.path(), importer), "")
          << entry.path().filename() << ": "
          << Read_Whole_File((entry.path() / "why.txt").string());
      EXPECT_TRUE(Scratch_Is_Gone()) << entry.path();
      ++cases;
    }
    EXPECT_GT(cases, 5);
  }

  const Machine_Setup Fresh = MachineSetup;
};

TEST_F(Golden_Art, Artwork) {
  Run_All("gerber", Import_Gerber_File);
}

TEST_F(Golden_Art, Pictures) {
  Run_All("bitmap", Import_Bitmap_File);
}

// The comparison sees a difference.
TEST_F(Golden_Art, WrongExpectationIsSeen) {
  const fs::path copy = Folder / "case";
  fs::copy(Golden / "bitmap" / "white", copy);
  const std::string path = (copy / "expected.gc").string();
  Replace_File(path, Read_Whole_File(path) + "N027 M00\r\n");
  EXPECT_EQ(Run(copy, Import_Bitmap_File).substr(0, 4), "line");
}

}  // namespace
}  // namespace norvik
