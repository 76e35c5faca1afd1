// Artwork files into tables: numbers, words, apertures, operations, layers and the report.
#include "core/fault.h"
#include "core/format.h"
#include "import/gerber/apertures.h"
#include "import/gerber/gcode.h"
#include "import/gerber/import.h"
#include "import/gerber/layers.h"
#include "import/gerber/reader.h"
#include "import/gerber/table.h"
#include "import_fixture.h"

namespace norvik {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr Gerber_Number_Format Leading{true, false}, Trailing{false, true}, Neither{};

struct Gerber_Test : Import_Test {
  Gerber_Test() { MachineSetup.Gerber_Isolation_Minimum_Poly_Width = 0.009F; }
  // Both scans, without what comes behind.
  void Read(const std::string& text) {
    const std::string path = Store("board.gbr", text);
    Start_Import_Report(Import_Kind::Gerber, path);
    Gerber_Read_Apertures(path);
    Choose_Gerber_Layers();
    Gerber_Read_Data(path);
  }
  static std::vector<std::string> Strokes() {
    std::vector<std::string> texts;
    for (const Gerber_Line& line : Gerber_Table.Lines) {
      texts.push_back(Shortest_Text(line.X1) + "," + Shortest_Text(line.Y1) + " " +
                      Shortest_Text(line.X2) + "," + Shortest_Text(line.Y2) + " w" +
                      Shortest_Text(line.Width));
    }
    return texts;
  }
  static std::vector<std::string> Flashes() {
    std::vector<std::string> texts;
    for (const Gerber_Pad& pad : Gerber_Table.Pads) {
      texts.push_back(Shortest_Text(pad.X) + "," + Shortest_Text(pad.Y) + " " +
                      (pad.Shape == 0 ? std::string("-") : std::string{pad.Shape}) + " " +
                      Shortest_Text(pad.Size_X) + " by " + Shortest_Text(pad.Size_Y));
    }
    return texts;
  }
};

constexpr std::string_view Head =
    "%FSLAX23Y23*%\n%MOIN*%\n%ADD10C,0.01*%\n%ADD11R,0.05X0.02*%\nD10*\n";

std::string With_Head(std::string_view text) {
  return std::string(Head) + std::string(text);
}

struct Coordinate_Row {
  const char *Text, *Format;
  Gerber_Number_Format Zeros;
  double Value;
};

TEST_F(Gerber_Test, CoordinatesByTheNumberFormat) {
  const Coordinate_Row rows[] = {
      {"12345", "23", Leading, 12.345},
      {"5", "23", Leading, 0.005},
      {"-1250", "23", Leading, -1.25},
      {"+1250", "23", Leading, 1.25},
      {"0", "24", Leading, 0},
      {"5", "24", Leading, 0.005},  // two zeros in front do not make four decimals
      {"1234567", "24", Leading, 123.4567},
      {"12", "30", Leading, 12},
      {"01", "23", Trailing, 1},
      {"1", "23", Trailing, 10},
      {"-012345", "24", Trailing, -1.2345},
      {"012345", "24", Neither, 1.2345},
      {"12345", "23", Neither, 12.345},
      {"1234", "", Leading, 1.234},
      {"-1.25", "23", Leading, -1.25},
      {"12345", "3", Neither, 123.345},
  };
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    for (const Coordinate_Row& row : rows) {
      EXPECT_EQ(Gerber_XY_Format(row.Text, row.Format, row.Zeros), row.Value)
          << row.Text << " by " << row.Format << " with " << sign;
    }
  }
  EXPECT_THROW(Gerber_XY_Format(std::string(400, '9'), "23", Leading), Fault);
  EXPECT_THROW(Gerber_XY_Format("1.2.3", "23", Leading), Fault);
}

TEST_F(Gerber_Test, NumbersInWords) {
  EXPECT_EQ(Gerber_Find_Val('X', "R,0.024X0.080"), 0.08);
  EXPECT_EQ(Gerber_Find_Val('D', "G54D12"), 12);
  EXPECT_EQ(Gerber_Find_Val('Y', "X1Y-D01"), std::nullopt);
  EXPECT_EQ(Gerber_Find_Val('Z', "X1"), std::nullopt);
  EXPECT_EQ(Gerber_Find_Val('X', "XNaN"), std::nullopt);
  EXPECT_EQ(Gerber_Find_Val('X', "X1E5"), 1);
  EXPECT_EQ(Gerber_Find_CSV_Val(5, "5,1,8,0,0,1.08239X$1,22.5"), 1.08239);
  EXPECT_EQ(Gerber_Find_CSV_Val(6, "5,1,8"), std::nullopt);
  EXPECT_EQ(Gerber_Find_CSV_Val(1, "C,$1"), std::nullopt);
  EXPECT_THROW(Gerber_Find_Val('X', "X1.2.3"), Fault);
}

TEST_F(Gerber_Test, ApertureDefinitions) {
  Read(
      "%AMOCT*5,1,8,0,0,0.06,22.5*%%AMBOX*21,1,0.1,0.2,0,0,0*%\n"
      "%ADD10C,0.012*%%ADD11C,0.03X0.01*%%ADD12R,0.05*%%ADD13R,0.05X0.02*%%ADD014O,0.03X0.07*%\n"
      "%ADD15P,0.06X8*%%ADD16OCT*%%ADD17BOX*%%ADD18OC8,0.05*%%ADD19WIDE,0.1X0.3*%%ADD20NONE*%\n"
      "%ADD13R,0.06X0.03*%%ADD21R,0.03260.326*%%ADD1001C,0.5*%%ADC,1*%%ADD1E3C,0.5*%D15*D03*");
  const auto text_of = [](int code) {
    const Gerber_Aperture& a = Gerber_Apertures.Aperture[code];
    return (a.Shape == 0 ? std::string("-") : std::string{a.Shape}) + " " +
           Shortest_Text(a.Size_X) + " " + Shortest_Text(a.Size_Y) + " " + Shortest_Text(a.Sides);
  };
  std::vector<std::string> got;
  for (int code = 10; code <= 20; ++code) got.push_back(text_of(code));
  EXPECT_THAT(got, ElementsAre("C 0.012 0.012 4", "C 0.03 0.03 0.01", "R 0.05 0.05 4",
                               "R 0.06 0.03 4", "O 0.03 0.07 4", "P 0.06 8 4", "- 0.06 0.06 8",
                               "- 0 0 4", "O 0.05 0.05 4", "W 0.1 0.3 4", "- 0 0 4"));
  EXPECT_THAT(Log(), HasSubstr("Get_Gerber_AperatureFile_Error # 9 Aperture D1001"));
  const std::vector<std::string> report = Import_Report_Lines();
  EXPECT_THAT(
      report,
      Contains(AllOf(
          HasSubstr("aperture macro BOX (no size) 1"), HasSubstr("aperture macro NONE (no size) 1"),
          HasSubstr("aperture macro WIDE (first values taken as sizes) 1"),
          HasSubstr("aperture definition beyond D1000 1"),
          HasSubstr("aperture size that is no number 1"), HasSubstr("hole in an aperture 1"))));
  EXPECT_THAT(report, Contains(HasSubstr("Apertures without use: D1, D10 to D14, D16 to D21")));
  EXPECT_THAT(report, Contains(HasSubstr("Polygon apertures (P)")));
}

// The limit keeps a pad and thins a line.
TEST_F(Gerber_Test, WidthsAtTheLimit) {
  const std::string board = With_Head(
      "%ADD12C,0.009*%%ADD13R,0.0089X0.5*%%ADD14C,0.0091*%"
      "D12*X0Y0D02*X1000D01*X0Y500D03*D13*X2000D03*D14*X0Y0D02*X1000D01*");
  Read(board);
  EXPECT_THAT(Strokes(), ElementsAre("1,0 0,0 w0.0091"));
  EXPECT_THAT(Flashes(), ElementsAre("0,0.5 C 0.009 by 0.009"));
  EXPECT_TRUE(Gerber_Table.Thin_Lines.empty());
  EXPECT_THAT(Import_Report_Lines(),
              Contains(AllOf(HasSubstr("small flash 1"), HasSubstr("thin draw 1"))));
  MachineSetup.Gerber_Isolation_SmallLines_Function = true;
  Gerber_Table = {};
  Read(board);
  ASSERT_EQ(Gerber_Table.Thin_Lines.size(), 1U);
  EXPECT_EQ(Gerber_Table.Thin_Lines[0].X2, 1);
}

TEST_F(Gerber_Test, Operations) {
  struct Row {
    const char* Words;
    std::vector<std::string> Strokes, Flashes;
  };
  const Row rows[] = {
      {"X1000Y0D02*X2000D01*", {"2,0 1,0 w0.01"}, {}},
      {"X1000D02*X2000D01*Y1000*Y1000*", {"2,0 1,0 w0.01", "2,1 2,0 w0.01"}, {}},
      {"X1000D02*X1000D01*", {"1,0 1,0 w0.01"}, {}},   // a dot asked for by its code
      {"X1000D02*D01*X2000*", {"2,0 1,0 w0.01"}, {}},  // the pen alone, then the move
      {"X1000Y0*D02*X2000D01*", {"2,0 1,0 w0.01"}, {}},
      {"D11*X1000D03*D03*X2000*X3000D01*",
       {"3,0 2,0 w0.05"},
       {"1,0 R 0.05 by 0.02", "1,0 R 0.05 by 0.02"}},
      {"G54D11*x1000d3*", {}, {"1,0 R 0.05 by 0.02"}},
      {"N10G01X1000D02*N20X2000D1*M02*", {"2,0 1,0 w0.01"}, {}},
      {"X1000D02*G04 X5000D01 ends*X2000D01*", {"2,0 1,0 w0.01"}, {}},
      {"X1000D02*X2000D05*X3000D01*", {"3,0 1,0 w0.01"}, {}},
      {"D1001*X1000D01*D10*X2000D01*", {"2,0 1,0 w0.01"}, {}},
      {"G36*X1000D02*X2000D01*G37*", {"2,0 1,0 w0.01"}, {}},
  };
  for (const Row& row : rows) {
    Gerber_Table = {};
    Read(With_Head(row.Words));
    EXPECT_EQ(Strokes(), row.Strokes) << row.Words;
    EXPECT_EQ(Flashes(), row.Flashes) << row.Words;
  }
}

// The forms in which parameter blocks come.
TEST_F(Gerber_Test, PercentSigns) {
  for (const char* text : {
           "%FSLAX23Y23*%%ADD10C,0.01*%D10*X1000D02*X2000D01*",
           "%FSLAX23Y23*ADD10C,0.01*%\r\nD10*X1000D02*X2000D01*",
           "%FSLAX23Y23%\n%ADD10C,0.01*%\nD10*X1000D02*X2000D01*",
           "FSLAX23Y23*\nADD10C,0.01*\nD10*X1000D02*X2000D01*",
           "%FSLAX23Y23*\n%ADD10C,0.01*\nD10*X1000D02*X2000D01*",
           "G74*%FSLAX23Y23*% %ADD10C,0.01*% \nD10*\nX1000D02*\nX2000D01*",
           "%FSLAX23Y23*\nADD10C,0.01*\nD10*X1000D02*X2000D01*",  // never closed
       }) {
    Gerber_Table = {};
    Gerber_Apertures = {};
    Read(text);
    EXPECT_THAT(Strokes(), ElementsAre("2,0 1,0 w0.01")) << text;
  }
}

TEST_F(Gerber_Test, LayersSwitchTheData) {
  const std::string board = With_Head(
      "X0Y0D02*X500D01*%LNTOP*%X1000D02*X2000D01*%LNBOTTOM*%X3000D01*X4000*%LNTOP*%X5000D01*");
  int asked = 0;
  Import_Host.Select_Gerber_Layers = [&] {
    ++asked;
    ASSERT_EQ(GerberLayerSelection.List_Layers.size(), 2U);
    EXPECT_TRUE(GerberLayerSelection.List_Layers[1].Selected);
    GerberLayerSelection.List_Layers[1].Selected = false;
    GerberLayerSelection_Command_OK_Click();
  };
  Read(board);
  EXPECT_EQ(asked, 1);
  // The position follows through the layer that is off.
  EXPECT_THAT(Strokes(), ElementsAre("0.5,0 0,0 w0.01", "2,0 1,0 w0.01", "5,0 4,0 w0.01"));
  EXPECT_THAT(Import_Report_Lines(), Contains(HasSubstr("draw of a layer that was not chosen 2")));

  // One layer asks nothing.
  Gerber_Table = {};
  Gerber_Layers = {};
  Read(With_Head("%LNONLY*%X1000D01*"));
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(Strokes().size(), 1U);
}

TEST_F(Gerber_Test, CancelledLayerWindowEndsTheImport) {
  Import_Host.Select_Gerber_Layers = GerberLayerSelection_Command_Cancel_Click;
  EXPECT_TRUE(Import_Gerber_File(Store("a.gbr", With_Head("%LNA*%%LNB*%X1000D01*"))));
  EXPECT_EQ(Opened, 0);
  EXPECT_EQ(Messages.Panel[1], "Gerber Import Canceled");
  EXPECT_FALSE(FileExists(Application.Temporary_GCode));
  EXPECT_TRUE(Scratch_Is_Gone());
}

TEST_F(Gerber_Test, TimeStandsOnTopOfTheMessages) {
  Scripted.Yield_Nanoseconds = 1'234'000'000;
  Application.DecimalSeparator = ',';
  const std::string path = Store("a.gbr", With_Head("X1000D01*"));
  EXPECT_TRUE(Import_Gerber_File(path));
  EXPECT_THAT(Messages.MessageLog[0],
              ::testing::MatchesRegex("Gerber Total Process Time: [0-9]+,[0-9][0-9] Seconds"));
  EXPECT_EQ(Messages.MessageLog[1], "Import report: a.gbr (Gerber)");
  EXPECT_THAT(Messages.MessageLog, Contains("Importing Gerber File " + path));
}

// What the artwork asks for and the program lacks is named.
TEST_F(Gerber_Test, ReportNamesWhatHasNoEffect) {
  Read(
      "%FSLIX24Y24*%%MOMM*%%ADD10C,0.1*%%ADD11C,0.2*%%ADD13C,0.2*%%ADD14C,0.2*%%IPNEG*%%LPC*%%LPD*%"
      "%SRX2Y3I1J1*%%SR*%"
      "%SRX1Y1I0J0*%%SFA1B1*%%ASAXBY*%%OFA1.5B0*%%TF.Part,Single*%%IR90*%\n"
      "D10*G75*X10000Y0D02*G03X20000Y0I5000J0D01*X30000*G01*X40000D01*G36*X0D01*G37*G55*D12*X1D01*"
      "\n"
      "G91*X5Y77D02*X20000");
  const std::vector<std::string> report = Import_Report_Lines();
  EXPECT_THAT(report,
              Contains("Units: inches of the setup, file in millimetres, format 2.4, leading "
                       "zeros omitted"));
  EXPECT_THAT(
      report,
      Contains(AllOf(HasSubstr("arc (drawn straight to its end) 2"),
                     HasSubstr("G36 region (its outline drawn with the aperture, not filled) 1"),
                     HasSubstr("LPC clear polarity (drawn like the rest) 1"),
                     HasSubstr("SR step and repeat (drawn once) 1"), HasSubstr("IR 1"),
                     HasSubstr("TF 1"), HasSubstr("offset of the image (OF, IO) 1"),
                     HasSubstr("G55 1"), Not(HasSubstr("SF")), Not(HasSubstr("AS")))));
  for (const char* note :
       {"The file is in millimetres, the setup in inches", "incremental coordinates (FS I)",
        "incremental coordinates (G91)", "The image is negative",
        "Apertures without use: D11, D13, D14", "Apertures used but not defined (no size): D12 x 1",
        "2 coordinates have so few digits", "The file ends in the middle of a word"}) {
    EXPECT_THAT(report, Contains(AllOf(StartsWith("Note: "), HasSubstr(note))));
  }
  EXPECT_THAT(report, Contains("Tools: 1 (D10 C 0.1 x 4)"));

  Start_Import_Report(Import_Kind::Gerber, "");
  Gerber_Format = {};
  Read("X1D02*");
  EXPECT_THAT(Import_Report_Lines(),
              Contains("Units: inches of the setup, the file names no unit, format 2.3, no zeros "
                       "omitted"));
}

// The second G of a word, and circles that name a centre alone.
TEST_F(Gerber_Test, ReportCountsAllArcs) {
  Read(With_Head("G75G03X20000Y0I5000J0D01*I5000J0D01*J1000*X5Y5D02*G01X1D01*"));
  EXPECT_THAT(Import_Report_Lines(),
              Contains(AllOf(HasSubstr("arc (drawn straight to its end) 1"),
                             HasSubstr("full circle without X and Y (not drawn) 2"))));
}

// A line file of the passes: cuts join within 0.00001, numbers are rounded to 12 decimals.
TEST_F(Gerber_Test, WriterJoinsCuts) {
  MachineSetup.DXF_Cut_2_Layer = "DEEP";
  Start_Import_Report(Import_Kind::Gerber, "board.gbr");
  Replace_File(Application.Gerber_Scratch,
               "-0.001,-0.001,-0.001,0.699\r\n-0.001,0.6990000000004,0.749,0.699\r\n"
               "0.749009,0.699,1,1\r\n1.00002,1,2,0.1234567890126\r\nnonsense,1,1,1\r\n");
  ASSERT_TRUE(Gerber_Write_GCode(Application.Gerber_Scratch));
  Program = Read_Whole_File(Application.Temporary_GCode);
  EXPECT_THAT(Body(4),
              ElementsAre("G00 Z000.250", "G00 X-0.001 Y-0.001", "G00 Z000.125",
                          "G01 X-0.001 Y0.699", "G01 X0.749 Y0.699", "G01 X1 Y1", "G00 Z000.250",
                          "G00 X1.00002 Y1", "G00 Z000.125", "G01 X2 Y0.123456789013"));
  EXPECT_THAT(Log(), HasSubstr("nonsense"));

  Application.DecimalSeparator = ',';
  ASSERT_TRUE(Gerber_Write_GCode(Folder / "missing.txt"));
  Program = Read_Whole_File(Application.Temporary_GCode);
  EXPECT_EQ(Statements().back(), "M30");
  EXPECT_THAT(Program, HasSubstr("G00 Z000,250"));
}

}  // namespace
}  // namespace norvik
