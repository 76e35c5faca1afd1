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
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("says millimetres, the setup is inch")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("before its EOF mark")));
  EXPECT_THAT(Import_Report_Lines(), Contains("Cutting extents: X 0 to 1, Y 0 to 0"));
}

TEST_F(Import_Test, Report_names_what_a_plot_loses) {
  ASSERT_TRUE(Import_HPGL_File(Store("part.plt", "PU0,0;PD100,0,100,100,0,100;CI50;\n")));
  EXPECT_EQ(Skipped("pairs behind the first"), 2);
  EXPECT_EQ(Skipped("CI"), 1);
  EXPECT_THAT(Import_Report.Notes, IsEmpty());

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

TEST_F(Import_Test, Report_names_what_a_drill_file_loses) {
  ASSERT_TRUE(Import_Excellon_File(
      Store("part.nc", "METRIC,LZ\nT1C0.5\n%\nT2C0.7\nT2\nX015Y015\nR5X100\nX1Y1G85X2Y1\n")));
  EXPECT_EQ(Skipped("R repeat"), 1);
  EXPECT_EQ(Skipped("tool size behind the header"), 1);
  EXPECT_EQ(Skipped("G85 slot (drilled at its start only)"), 1);
  for (const char* note :
       {"says millimetres, the setup is inch", "keeps leading zeros (LZ)", "repeats holes (R)",
        "Tool sizes behind the first line", "stops for tools without holes: 1, the first is T1"}) {
    EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr(note)));
  }

  ASSERT_TRUE(Import_Excellon_File(Store("part.nc", "%\nT1\nX000015Y000015\nT7\nX1500Y15")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("Not drilled: T7 with 1 holes")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("Check the zero format")));
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("may be cut short")));

  ASSERT_TRUE(Import_Excellon_File(Store("part.nc", "M48\nLZ\nT1C.5\nM95\nT1\nX1.5Y1.5\n")));
  EXPECT_THAT(Import_Report.Notes, ::testing::ElementsAre(HasSubstr("Put a line \"%\"")));
}

}  // namespace
}  // namespace norvik
