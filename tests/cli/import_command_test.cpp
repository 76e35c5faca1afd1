// The command `import`: kinds by name and by option, layers, exit statuses and what is written.
#include "companion_call.h"
#include "core/application.h"
#include "core/setup.h"
#include "import/gerber/layers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Import_Command_Test : Companion_Call_Test {
  // A machine file of its own: drill files write their tool sizes there.
  Import_Command_Test() { Write_File("inch.ini", Read_Whole_File(Samples + "/inch.ini")); }

  int Import(std::vector<std::string> words) {
    words.insert(words.begin(), {"--machine", Folder.File("inch.ini"), "import"});
    words.insert(words.end(), {"-o", Program});
    return Call_Companion(std::move(words));
  }
  // Refused as wrong usage: nothing is written.
  void Expect_Refused(const std::vector<std::string>& words, const std::string& text) {
    EXPECT_EQ(Import(words), Wrong_Usage);
    EXPECT_THAT(Said, HasSubstr(text));
    EXPECT_THAT(Said, Not(HasSubstr("Import report")));
    EXPECT_FALSE(FileExists(Program));
  }

  std::string Program = Folder.File("out.gc");
};

TEST_F(Import_Command_Test, Every_Sample_Becomes_A_Program_With_A_Report) {
  scripted.Pictures[Samples + "/relief.bmp"] = {1, 1, {9, 9, 9}};
  for (const char* name : {"rose.dxf", "rosette.plt", "board.nc", "board.gbr", "relief.bmp"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Import({Samples + "/" + name}), Done);
    EXPECT_THAT(Said, StartsWith("Import report: " + std::string(name)));
    EXPECT_THAT(Read_Whole_File(Program), HasSubstr("N001 ["));
    EXPECT_FALSE(FileExists(Application.Temporary_GCode));
    std::filesystem::remove(Program);
  }
}

TEST_F(Import_Command_Test, An_Unknown_Extension_Wants_The_Kind_Named) {
  const std::string plot = Write_File("plot.hp", "PU1016,1016;PD2032,1016;");
  Expect_Refused({plot}, "Name the kind: --as dxf, hpgl, excellon, gerber or picture");
  Expect_Refused({plot, "--as", "plot"}, "plot");
  EXPECT_EQ(Import({plot, "--as", "hpgl"}), Done);
  EXPECT_THAT(Read_Whole_File(Program), HasSubstr("G01 X2 Y1"));
}

TEST_F(Import_Command_Test, A_Drawing_Lies_Where_The_Options_Put_It) {
  const std::string plot = Write_File("plot.plt", "PU1016,1016;PD3048,1016;");
  EXPECT_EQ(Import({plot, "--origin", "centre", "--rotate", "90", "--scale", "2"}), Done) << Said;
  EXPECT_THAT(Read_Whole_File(Program), HasSubstr("G01 X0 Y2"));
  EXPECT_THAT(Said, HasSubstr("scaled by 2, turned by 90 degrees, its centre moved to X0 Y0"));
  EXPECT_THAT(Said, HasSubstr("Corrections: "));
  EXPECT_EQ(Import({plot}), Done);
  EXPECT_THAT(Read_Whole_File(Program), HasSubstr("G01 X3 Y1"));
  std::filesystem::remove(Program);
  Expect_Refused({plot, "--scale", "-1"}, "scale");
  Expect_Refused({Samples + "/relief.bmp", "--mirror"}, "its own settings");
  Write_File("inch.ini", "[General]\nINI_Save_Test=123\n");
  Expect_Refused({plot, "--units", "mm"}, "corrections set Import_Convert_Units");
}

TEST_F(Import_Command_Test, Where_The_Menu_Would_Only_Beep_Nothing_Is_Written) {
  Expect_Refused({Folder.File("gone.dxf")}, "there is no such file");
  Expect_Refused({Folder.Path, "--as", "gerber"}, "there is no such file");
}

TEST_F(Import_Command_Test, Layers_Are_Answered_By_Name_In_Any_Case) {
  const std::string board = Samples + "/board.gbr";
  EXPECT_EQ(Import({board}), Done);
  EXPECT_THAT(Import_Report.Layers, ElementsAre("COPPER", "MARKS"));
  EXPECT_EQ(Import({board, "--layers", "marks"}), Done);
  EXPECT_THAT(Import_Report.Layers, ElementsAre("MARKS"));
  EXPECT_EQ(Import({board, "--layers", "marks,copper"}), Done);
  EXPECT_THAT(Import_Report.Layers, ElementsAre("COPPER", "MARKS"));
  std::filesystem::remove(Program);
  Expect_Refused({board, "--layers", "copper,SILK"}, "no layer SILK. The file has: COPPER, MARKS");
  // A file of one layer never asks for it.
  const std::string plain = Write_File("plain.gbr", "%ADD10C,0.1*%\nD10*\nM02*\n");
  Expect_Refused({plain, "--layers", "TOP"}, "no layer TOP. The file has: Unnamed");
  Expect_Refused({Samples + "/rose.dxf", "--layers", "RING"}, "Gerber files only");
}

TEST_F(Import_Command_Test, Failed_Work_Is_No_Success) {
  Program = Folder.File("no/such/folder/out.gc");
  EXPECT_EQ(Import({Samples + "/rose.dxf"}), Failed);
  EXPECT_THAT(Said, HasSubstr("Cannot write"));
  Program = Folder.File("out.gc");
  scripted.On_Yield = [] { Application.EscFlag = true; };
  Replace_File(Program, "earlier");
  EXPECT_EQ(Import({Samples + "/rosette.plt"}), Failed);  // cut short: the earlier program stands
  EXPECT_THAT(Said, HasSubstr("Cancelled"));
  EXPECT_EQ(Read_Whole_File(Program), "earlier");
}

}  // namespace
}  // namespace norvik
