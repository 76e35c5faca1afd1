// What an import leaves out or may have misread is named in its report.
#include "import/dxf/import.h"
#include "import/excellon/import.h"
#include "import/hpgl/import.h"
#include "import_fixture.h"

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::int64_t Skipped(const std::string& kind) {
  const auto found = Import_Report.Kinds.find(kind);
  return found == Import_Report.Kinds.end() ? 0 : found->second.Skipped;
}

TEST_F(Import_Test, Report_names_what_a_drawing_loses) {
  const std::string text =
      "9\n$INSUNITS\n70\n4\n0\nSECTION\n2\nENTITIES\n0\nSPLINE\n10\n1\n0\nINSERT\n2\nB\n"
      "0\nLWPOLYLINE\n38\n2\n10\n0\n20\n0\n42\n0."
      "5\n10\n1\n20\n0\n0\nLINE\n10\n1\n20\n1\n0\nENDSEC\n"
      "0\nOBJECT\n";
  ASSERT_TRUE(Import_DXF_File(Store("part.dxf", text)));
  EXPECT_EQ(Skipped("SPLINE"), 1);
  EXPECT_EQ(Skipped("INSERT"), 1);
  EXPECT_EQ(Skipped("polyline bulge"), 1);
  EXPECT_EQ(Skipped("elevation"), 1);
  EXPECT_EQ(Skipped("LINE without a coordinate"), 1);
  EXPECT_EQ(Skipped("OBJECT"), 0) << "behind the section";
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("in millimetres, the setup in inches")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("before its EOF mark")));
  EXPECT_THAT(Import_Report_Lines(), Contains("Cutting extents: X 0 to 1, Y 0 to 0"));
}

TEST_F(Import_Test, Report_names_what_a_plot_loses) {
  ASSERT_TRUE(Import_HPGL_File(Store("part.plt", "PU0,0;PD100,0,100,100,0,100;CI50;\n")));
  EXPECT_EQ(Skipped("pairs behind the first"), 2);
  EXPECT_EQ(Skipped("CI"), 1);
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("no plunge stand before its first cut")));

  ASSERT_TRUE(Import_HPGL_File(Store("part.plt", "PAPU10,10PRPD5,5PUPA0,0;PD12\n3,4;")));
  EXPECT_EQ(Skipped("PU run together with PA"), 1);
  EXPECT_EQ(Skipped("PD run together with PR"), 1);
  EXPECT_EQ(Skipped("PA run together with PU"), 0) << "says nothing new";
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("only the first is read")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("read as one, 1 times")));

  ASSERT_TRUE(Import_HPGL_File(Store("part.plt", "LBA 1,2 B\x03;PE<=ab cd;PD100,0;")));
  EXPECT_EQ(Skipped("words of text"), 1);
  EXPECT_EQ(Skipped("PE"), 1);
  EXPECT_EQ(Skipped("words of encoded strokes"), 2);
  EXPECT_EQ(Import_Report.Kinds["PD"].Read, 1);
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("encoded strokes (PE)")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("inside texts")));
}

TEST_F(Import_Test, Plotter_settings_cut_nothing_and_lost_numbers_count) {
  MachineSetup.UnitsofMeasurement = 1;
  ASSERT_TRUE(Import_HPGL_File(Store(
      "part.plt", "SP1;PU0,0;PD100,0;LT2,4;SC0,9000,0,9000;IP0,0,7,7;SI.2,.3;PD1-2,7;PD5;PU;")));
  EXPECT_THAT(Import_Report_Lines(), Contains(HasSubstr("Cutting extents: X 0 to 0.098")));
  EXPECT_EQ(Skipped("LT"), 1);
  EXPECT_EQ(Skipped("commands with a number that cannot be read"), 1);
  EXPECT_EQ(Skipped("numbers without a second one"), 1);
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("in inches, the setup in millimetres")));
}

TEST_F(Import_Test, A_full_circle_survives_the_sort) {
  MachineSetup.HPGL_Sort_Lines = true;
  ASSERT_TRUE(Import_HPGL_File(Store("part.plt", "PU1000,0;PD;AA0,0,360;PU;PU9,9;PD9,9;PU;")));
  EXPECT_EQ(Import_Report.Motion.Arcs, 1);
  EXPECT_EQ(Skipped("stroke of no length"), 1);
}

// Each unit other than the machine's is named.
TEST_F(Import_Test, Units_of_a_drawing) {
  const auto notes = [&](const std::string& header) {
    EXPECT_TRUE(Import_DXF_File(
        Store("part.dxf", header + "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n1\n20\n1\n11\n2\n21\n2\n"
                                   "0\nENDSEC\n0\nEOF\n")));
    return Import_Report.Notes;
  };
  EXPECT_THAT(notes("9\n$INSUNITS\n70\n5\n"), Contains(HasSubstr("in centimetres")));
  EXPECT_THAT(notes("9\n$MEASUREMENT\n70\n1\n"), Contains(HasSubstr("in millimetres")));
  EXPECT_THAT(notes("9\n$MEASUREMENT\n70\n1\n9\n$INSUNITS\n70\n1\n"), IsEmpty());
}

TEST_F(Import_Test, A_drawing_of_which_nothing_arrives_says_so) {
  ASSERT_TRUE(Import_DXF_File(
      Store("part.dxf", "0\nSECTION\n2\nENTITIES\n0\nSPLINE\n10\n1\n0\nENDSEC\n0\nEOF\n")));
  EXPECT_TRUE(Nothing_Arrived());
  const auto report = Import_Report_Lines();
  EXPECT_THAT(report, Contains(HasSubstr("none of what it holds can be read")));
  EXPECT_THAT(report, ::testing::Not(Contains(HasSubstr("Everything lies on the table"))));
}

// Digits that the file states, in both of the ways in which they are written.
TEST_F(Import_Test, Stated_digits_against_the_setup) {
  MachineSetup.Excellon_Integer_Format = 2;
  MachineSetup.Excellon_Decimal_Format = 3;
  struct Row {
    std::int16_t Zeros;
    const char *Header, *Note;
  };
  for (const Row& row : {Row{2, "INCH,TZ,00.0000",
                             "states 2:4 digits, the setup reads 2:3: the "
                             "coordinates come out ten times too large"},
                         Row{1, "INCH,LZ\n;FILE_FORMAT=4:2", "a hundred times too small"},
                         Row{2, "INCH,TZ,00.000", ""}, Row{1, "INCH,LZ,00.0000", ""}}) {
    MachineSetup.Excellon_Zero_Format = row.Zeros;
    ASSERT_TRUE(Import_Excellon_File(
        Store("part.nc", std::string(row.Header) + "\nT1C0.5\n%\nT1\nX015000Y015000\n")));
    if (*row.Note == 0) {
      EXPECT_THAT(Import_Report.Notes, ::testing::Not(Contains(HasSubstr("states")))) << row.Header;
    } else {
      EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr(row.Note))) << row.Header;
    }
  }
}

TEST_F(Import_Test, Report_names_what_a_drill_file_loses) {
  ASSERT_TRUE(Import_Excellon_File(
      Store("part.nc", "METRIC,LZ\nT1C0.5\n%\nT2C0.7\nT2\nX015Y015\nR5X100\nX1Y1G85X2Y1\n")));
  EXPECT_EQ(Skipped("R repeat"), 1);
  EXPECT_EQ(Skipped("tool size behind the header"), 1);
  EXPECT_EQ(Skipped("G85 slot (drilled at its start only)"), 1);
  for (const char* note :
       {"in millimetres, the setup in inches", "keeps leading zeros (LZ)", "repeats holes (R)",
        "Tool sizes behind the first line", "stops for tools without holes: 1, the first is T1"}) {
    EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr(note)));
  }

  ASSERT_TRUE(Import_Excellon_File(Store("part.nc", "%\nT1\nX000015Y000015\nT7\nX1500Y15")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("Not drilled: T7 with 1 holes")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("Check the zero format")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("may be cut short")));

  ASSERT_TRUE(Import_Excellon_File(Store("part.nc", "M48\nLZ\nT1C.5\nM95\nT1\nX1.5Y1.5\n")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("Put a line \"%\"")));
}

}  // namespace
}  // namespace norvik
