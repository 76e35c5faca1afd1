// Wrong artwork and wrong pictures: what exists is written with header and footer, or nothing is
// and the operator reads why.
#include "import/gerber/apertures.h"
#include "import/gerber/import.h"
#include "import/gerber/layers.h"
#include "import/gerber/reader.h"
#include "import/gerber/table.h"
#include "import/picture/import.h"
#include "import/picture/scan.h"
#include "import_fixture.h"

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

struct Wrong_Art : Import_Test {
  Wrong_Art() {
    MachineSetup.Gerber_Isolation_Minimum_Poly_Width = 0.009F;
    MachineSetup.Gerber_Isolation_SmallLines_Function = true;
    MachineSetup.BMAP_Material_Size_X = MachineSetup.BMAP_Material_Size_Y = 7;
    MachineSetup.BMAP_Material_Size_Z = 1;
    MachineSetup.BMAP_Travel_Height = 1.5F;
    MachineSetup.BMAP_Increment_X = MachineSetup.BMAP_Increment_Y = 0.125F;
    MachineSetup.BMAP_Passes_to_Depth = 1;
  }
  // Imports `text` and expects a whole program, however empty.
  void Expect_Program(std::string_view text, const std::string& what) {
    Opened = 0;
    Program.clear();
    EXPECT_TRUE(Import_Gerber_File(Store("board.gbr", text))) << what;
    Expect_Whole(what);
  }
  void Expect_Whole(const std::string& what) {
    EXPECT_EQ(Opened, 1) << what;
    const std::vector<std::string> lines = Statements();
    ASSERT_GE(lines.size(), 9U) << what;
    EXPECT_EQ(lines[0], "[Norvik Conversion]") << what;
    EXPECT_EQ(lines.back(), "M30") << what;
    EXPECT_TRUE(Scratch_Is_Gone()) << what;
    EXPECT_FALSE(Application.EscFlag) << what;
  }
  void Expect_No_Program(const std::string& path, const std::string& reason) {
    Opened = 0;
    std::filesystem::remove(Application.ErrorFile);
    EXPECT_TRUE(Import_Bitmap_File(path));
    EXPECT_EQ(Opened, 0) << reason;
    EXPECT_THAT(Import_Report_Lines(), Contains(HasSubstr(reason)));
    EXPECT_THAT(Log(), HasSubstr("Bitmap Line File to GCode Error # "));
    EXPECT_FALSE(FileExists(Application.Temporary_GCode));
    EXPECT_TRUE(Scratch_Is_Gone());
  }
  std::string Add_Picture(std::int32_t width, std::int32_t height) {
    const std::string path = Store("relief.bmp", "");
    Picture picture{width, height, {}};
    for (std::int32_t n = 0; n < width * height * 3; ++n) {
      picture.Rgb.push_back(static_cast<std::uint8_t>(n * 37));
    }
    Scripted.Pictures[path] = picture;
    return path;
  }
};

constexpr std::string_view Board =
    "G04 a small board*\n%FSLAX24Y24*%\n%MOIN*%\n%AMOCT*5,1,8,0,0,0.06,22.5*%\n"
    "%ADD10C,0.0050*%\n%ADD11C,0.0120*%\n%ADD12R,0.05X0.07*%\n%ADD13OCT*%\n%LNTOP*%\n"
    "G01*\nD10*\nX1000Y1000D02*\nX20000Y1000D01*\nX20000Y20000*\nD11*\nX30000Y10000D01*\n"
    "G03X31000Y11000I1000J0D01*\nD12*\nX5000Y5000D03*\nD13*\nX7000D03*\n%LNBOTTOM*%\nD10*\n"
    "X1000Y1000D02*\nX20000Y1000D01*\nG36*\nX5Y5D02*\nX900D01*\nY900D01*\nX5Y5D01*\nG37*\nM02*\n";

TEST_F(Wrong_Art, MissingAndEmptyFiles) {
  EXPECT_FALSE(Import_Gerber_File((Folder / "missing.gbr").string()));
  EXPECT_FALSE(Import_Bitmap_File((Folder / "missing.bmp").string()));
  EXPECT_EQ(Scripted.Beeps, 2);
  EXPECT_EQ(Opened, 0);
  for (const char* text :
       {"", "*", "%", "***%%%", "\r\n", "%LN", "%AM*", "%ADD10*%", "D", "M02*"}) {
    Expect_Program(text, text);
  }
}

TEST_F(Wrong_Art, BrokenBoards) {
  for (std::size_t length = 0; length < Board.size(); length += 97) {
    Expect_Program(Board.substr(0, length), "first " + std::to_string(length) + " bytes");
  }
  std::mt19937 random(5);
  for (int round = 0; round < 30; ++round) {
    std::string bytes(3000, ' ');
    for (char& c : bytes) c = static_cast<char>(random());
    Expect_Program(bytes, "garbage " + std::to_string(round));
    std::string board(Board);
    for (int n = 0; n < 12; ++n) board[random() % board.size()] = static_cast<char>(random());
    Expect_Program(board, "board with wrong bytes " + std::to_string(round));
  }
}

TEST_F(Wrong_Art, NumbersThatAreNone) {
  const std::string digits(400, '9'), zeros(400, '0');
  Expect_Program("%FSLAX24Y24*%%ADD10C," + digits + "*%%ADD11C,1.2.3*%%ADD12R,0.1X" + digits +
                     "*%%ADD" + digits + "C,1*%%ADD-5C,1*%D10*X" + digits + "Y1D01*X" + zeros +
                     "1D01*XNaNYInfD01*X1E400D01*D" + digits + "*G" + digits +
                     "*X-D01*X.D01*X1.2.3D01*X--5D01*X10000Y10000D02*X20000D01*",
                 "numbers");
  for (const char* name : {"Get_Gerber_AperatureFile_Error # ", "Gerber_Find_CSV_Val_Error # ",
                           "Gerber_Find_Val_Error # ", "Gerber_XY_Format_Error # "}) {
    EXPECT_THAT(Log(), HasSubstr(name));
  }
  EXPECT_THAT(Statements(), Contains("G01 X2 Y1"));  // the good stroke is there
  EXPECT_THAT(Import_Report_Lines(),
              Contains(HasSubstr("words hold a number that cannot be read")));
}

// The data scan stops at a word of more than 1000 characters; what came before is cut.
TEST_F(Wrong_Art, LongWords) {
  const std::string head = "%FSLAX23Y23*%%ADD10C,0.005*%D10*X500D02*X1000D01*";
  const std::string fits(996, ' ');
  Expect_Program(head + "X2000" + fits.substr(0, 992) + "D01*", "1000 characters");
  EXPECT_THAT(Statements(), Contains("G01 X2 Y0"));
  Expect_Program(head + "X2000" + fits.substr(0, 993) + "D01*X3000D01*", "1001 characters");
  EXPECT_THAT(Statements(), Contains("G01 X1 Y0"));
  EXPECT_THAT(Program, Not(HasSubstr("X2")));
  EXPECT_THAT(Import_Report_Lines(), Contains("Note: Word 6 has more than 1000 characters; the "
                                              "reading stopped there."));
  for (const char* start : {"X", "%AM", "%LN", "%ADD10", "G04 "}) {
    Expect_Program(head + start + std::string(10'000'000, '7') + "*X2000D01*", start);
  }
}

TEST_F(Wrong_Art, MoreThanTheTablesHold) {
  std::string board = "%FSLAX23Y23*%";
  for (int n = 0; n < 1200; ++n) {
    board += "%LNL" + std::to_string(n) + "*%X" + std::to_string(n + 1) + "000D01*";
    board += "%AMM" + std::to_string(n) + "*5,1,8,0,0,0.5,0*%";
  }
  board += "%ADD10M1000*%%ADD11M1001*%%ADD1000C,1*%D10*X5D03*";
  std::size_t listed = 0;
  Import_Host.Select_Gerber_Layers = [&] {
    listed = GerberLayerSelection.List_Layers.size();
    EXPECT_EQ(Gerber_Apertures.Aperture[10].Size_X, 0.5F);
    EXPECT_EQ(Gerber_Apertures.Aperture[11].Size_X, 0);
    EXPECT_EQ(Gerber_Apertures.Aperture[1000].Size_X, 1);
    GerberLayerSelection_Command_OK_Click();
  };
  Expect_Program(board, "1200 layers and macros");
  EXPECT_EQ(listed, 1001U);
  EXPECT_THAT(Statements(), Contains("G01 X1001 Y0"));
  EXPECT_THAT(Program, Not(HasSubstr("X1002 ")));
  EXPECT_THAT(Import_Report_Lines(), Contains(HasSubstr("more than 1001 layers")));
  EXPECT_THAT(Log(), HasSubstr("more of this kind"));  // not 400 lines
}

TEST_F(Wrong_Art, AMillionDraws) {
  std::string board = "%FSLAX23Y23*%%ADD10C,0.02*%D10*";
  for (int n = 0; n < 1'000'000; ++n) board += n % 2 == 0 ? "X1000D01*" : "X0D01*";
  const std::string path = Store("board.gbr", board);
  Gerber_Table = {};
  Gerber_Apertures = {};
  Gerber_Layers = {};
  Gerber_Read_Apertures(path);
  Gerber_Read_Data(path);
  EXPECT_EQ(Gerber_Table.Lines.size(), 1'000'000U);
  EXPECT_GT(Scripted.Yields, 10'000);
  Gerber_Table = {};
}

// ESC at any yield leaves a whole program.
TEST_F(Wrong_Art, EscapeAtAnyTime) {
  std::string board = "%FSLAX23Y23*%%ADD10C,0.005*%D10*";
  for (int n = 0; n < 2000; ++n)
    board += "X" + std::to_string(n % 7) + "000Y" + std::to_string(n % 11) + "00D01*";
  const std::string picture = Add_Picture(40, 40);
  const auto run = [&](bool art, std::int64_t at) {
    Opened = 0;
    std::int64_t yields = 0;
    Scripted.On_Yield = [&] {
      if (++yields == at) Application.EscFlag = true;
    };
    if (art) {
      Expect_Program(board, "artwork, yield " + std::to_string(at));
    } else {
      Import_Bitmap_File(picture);
      Expect_Whole("picture, yield " + std::to_string(at));
    }
    Scripted.On_Yield = {};
    return yields;
  };
  for (const bool art : {true, false}) {
    const std::int64_t all = run(art, -1);
    const std::size_t whole = Program.size();
    ASSERT_GT(all, 20);
    int shorter = 0;
    for (std::int64_t at = 1; at <= all; at += std::max<std::int64_t>(all / 40, 1)) {
      run(art, at);
      if (Program.size() < whole) ++shorter;
    }
    EXPECT_GT(shorter, 10);
  }
}

TEST_F(Wrong_Art, PicturesThatCannotBeCarved) {
  Expect_No_Program(Store("half.jpg", "\xFF\xD8"), "half.jpg is no whole JPG, BMP or GIF picture");
  const std::string picture = Add_Picture(3, 3);
  struct Row {
    float Size, Increment;
    const char* Reason;
  };
  for (const Row& row :
       {Row{7, 0, "must be above 0"}, Row{7, -1, "must be above 0"}, Row{0, 1, "must be above 0"},
        Row{-7, 1, "must be above 0"}, Row{7, 8, "the increment not above the size"},
        Row{7, 0.001F, "more than 25 million points"},
        Row{1e30F, 1e-30F, "more than 25 million points"}}) {
    MachineSetup.BMAP_Material_Size_Y = row.Size;
    MachineSetup.BMAP_Increment_Y = row.Increment;
    MachineSetup.BMAP_Increment_X = 0.001F;
    Expect_No_Program(picture, row.Reason);
  }
}

// Steps are counted in singles: 7 / 0.1 is 70 although the double of 0.1F lies above 0.1.
TEST_F(Wrong_Art, GridInSingles) {
  MachineSetup.BMAP_Increment_X = 0.1F;
  MachineSetup.BMAP_Increment_Y = 0.3F;
  const Bitmap_Grid grid = Bitmap_Grid_Of_Setup();
  EXPECT_EQ(grid.Cols, 70);
  EXPECT_EQ(grid.Rows, 23);
  EXPECT_DOUBLE_EQ(grid.Step_X, 0.1);
  EXPECT_DOUBLE_EQ(grid.Step_Y, 7.0 / 23);
}

}  // namespace
}  // namespace norvik
