// The unit of a file, and where its drawing is put on the table.
#include "import/dxf/import.h"
#include "import/excellon/import.h"
#include "import/gerber/import.h"
#include "import/hpgl/import.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/units.h"
#include "import_fixture.h"

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string DXF_Of(const std::string& header, const std::string& entities) {
  return "0\nSECTION\n2\nHEADER\n" + header + "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities +
         "0\nENDSEC\n0\nEOF\n";
}

// The same drawing in millimetres and in inches.
struct Unit_Row {
  const char* Name;
  bool (*Import)(const std::string& path);
  std::string Millimetres, Inches;
};

const Unit_Row Unit_Rows[] = {
    {"part.dxf", Import_DXF_File,
     DXF_Of("9\n$INSUNITS\n70\n4\n",
            "0\nLINE\n8\nA\n10\n25.4\n20\n0\n30\n-2.54\n11\n50.8\n21\n12.7\n31\n-5.08\n"
            "0\nARC\n8\nA\n10\n50.8\n20\n25.4\n40\n12.7\n50\n0\n51\n90\n"),
     DXF_Of("9\n$INSUNITS\n70\n1\n",
            "0\nLINE\n8\nA\n10\n1\n20\n0\n30\n-.1\n11\n2\n21\n.5\n31\n-.2\n"
            "0\nARC\n8\nA\n10\n2\n20\n1\n40\n.5\n50\n0\n51\n90\n")},
    // The unit may stand behind the sizes.
    {"part.nc", Import_Excellon_File, "T1C2.54\nMETRIC\n%\nT1\nX25.4Y12.7\nX50.8\n",
     "T1C.1\nINCH\n%\nT1\nX1.Y.5\nX2.\n"},
    {"part.gbr", Import_Gerber_File,
     "%FSLAX33Y33*%%MOMM*%%ADD10C,2.54*%D10*X0Y0D02*X25400Y12700D01*X50800Y0D03*M02*",
     "%FSLAX33Y33*%%MOIN*%%ADD10C,0.1*%D10*X0Y0D02*X1000Y500D01*X2000Y0D03*M02*"},
};

using Units_Test = Import_Test;

TEST_F(Units_Test, Converted_Drawings_Give_The_Program_Of_The_Same_Drawing_In_Inches) {
  for (const Unit_Row& row : Unit_Rows) {
    SCOPED_TRACE(row.Name);
    MachineSetup.Import_Convert_Units = true;
    ASSERT_TRUE(row.Import(Store(row.Name, row.Inches)));
    const std::string inches = Program;
    EXPECT_THAT(Import_Report.Notes, Not(Contains(HasSubstr("multiplied"))));
    ASSERT_TRUE(row.Import(Store(row.Name, row.Millimetres)));
    EXPECT_EQ(Program, inches);
    EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("were multiplied by 0.0393701")));
    // As stated the numbers count as inches, and the report says what that does.
    MachineSetup.Import_Convert_Units = false;
    ASSERT_TRUE(row.Import(Store(row.Name, row.Millimetres)));
    EXPECT_NE(Program, inches);
    EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("must be multiplied by 0.0393701")));
    EXPECT_THAT(Import_Report.Answers, ElementsAre("Import_Convert_Units"));
  }
}

TEST_F(Units_Test, Plotter_Files_Are_In_Inches) {
  MachineSetup.UnitsofMeasurement = 1;
  const std::string path = Store("path.plt", "PU1016,0;PD2032,1016;");
  for (const bool full : {false, true}) {
    MachineSetup.HPGL_All_Pairs = full;
    for (const bool converted : {false, true}) {
      MachineSetup.Import_Convert_Units = converted;
      ASSERT_TRUE(Import_HPGL_File(path));
      EXPECT_THAT(Statements(), Contains(converted ? "G01 X50.8 Y25.4" : "G01 X2 Y1"));
      EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("multiplied by 25.4")));
    }
  }
}

// A drawing without a unit counts as the setup's unless the operator says otherwise.
TEST_F(Units_Test, A_File_Without_A_Unit_Takes_What_The_Operator_Says) {
  MachineSetup.Import_Convert_Units = true;
  const std::string path =
      Store("part.dxf", DXF_Of("", "0\nLINE\n8\nA\n10\n0\n20\n0\n11\n50.8\n21\n25.4\n"));
  ASSERT_TRUE(Import_DXF_File(path));
  EXPECT_THAT(Statements(), Contains("G01 X50.8 Y25.4"));
  EXPECT_TRUE(Import_Report.Unit_Unknown);
  EXPECT_THAT(
      Import_Report.Notes,
      Contains(HasSubstr("50.8 by 25.4 inches large; taken as millimetres, 2 by 1 inches")));
  Import_Placing.Unit = Unit_Millimetres;
  ASSERT_TRUE(Import_DXF_File(path));
  EXPECT_THAT(Statements(), Contains("G01 X2 Y1"));
  EXPECT_FALSE(Import_Report.Unit_Unknown);
  MachineSetup.Import_Convert_Units = false;  // as stated nothing converts
  ASSERT_TRUE(Import_DXF_File(path));
  EXPECT_THAT(Statements(), Contains("G01 X50.8 Y25.4"));
}

// --- Placing -------------------------------------------------------------------------------------

// What each drawing reaches: X 2 to 4, Y 3 to 7.
const Unit_Row Placed_Rows[] = {
    {"part.dxf", Import_DXF_File, "",
     DXF_Of("",
            "0\nLINE\n8\nA\n10\n2\n20\n3\n11\n4\n21\n3\n0\nLINE\n8\nA\n10\n4\n20\n3\n"
            "11\n4\n21\n7\n")},
    {"part.plt", Import_HPGL_File, "", "PU2032,3048;PD4064,3048;PD4064,7112;"},
    {"part.nc", Import_Excellon_File, "", "%\nT1\nX2.Y3.\nX4.Y3.\nX4.Y7.\n"},
};

struct Placing_Row {
  Import_Placing_State Placing;
  double Left, Right, Lower, Upper;
};

using Placing_Test = Import_Test;

TEST_F(Placing_Test, Drawings_Of_Every_Kind_Lie_Where_They_Were_Put) {
  using enum Placed_Origin;
  const Placing_Row rows[] = {{{As_Is}, 2, 4, 3, 7},
                              {{Lower_Left}, 0, 2, 0, 4},
                              {{Centre}, -1, 1, -2, 2},
                              {{As_Is, 2}, 4, 8, 6, 14},
                              {{As_Is, 1, 90}, -7, -3, 2, 4},
                              {{Lower_Left, 0.5, 270}, 0, 2, 0, 1},
                              {{As_Is, 1, 0, true}, -4, -2, 3, 7},
                              {{As_Is, 1, 90, true}, -7, -3, -4, -2}};
  for (const Unit_Row& drawing : Placed_Rows) {
    for (const Placing_Row& row : rows) {
      Import_Placing = row.Placing;
      SCOPED_TRACE(std::string(drawing.Name) + " " + std::to_string(row.Left));
      ASSERT_TRUE(drawing.Import(Store(drawing.Name, drawing.Inches)));
      Axis_Range reach[2] = {Import_Report.Motion.Cut[0], Import_Report.Motion.Cut[1]};
      EXPECT_NEAR(reach[0].From.value_or(99), row.Left, 1e-6);
      EXPECT_NEAR(reach[0].To.value_or(99), row.Right, 1e-6);
      EXPECT_NEAR(reach[1].From.value_or(99), row.Lower, 1e-6);
      EXPECT_NEAR(reach[1].To.value_or(99), row.Upper, 1e-6);
      EXPECT_EQ(Is_Placed(),
                ::testing::Value(Import_Report.Notes, Contains(HasSubstr("The drawing was "))));
    }
  }
}

// A quarter arc around (2, 2) from (3, 2) to (2, 3). Mirrored it runs the other way round; its
// bulge reaches the corner of its own extent. Also where the centre counts from the end.
TEST_F(Placing_Test, Arcs_Keep_Their_Shape) {
  for (const bool incremental : {false, true}) {
    MachineSetup.GC_IJ_Incremental = incremental;
    for (const int sweep : {90, -90}) {
      const std::string path = Store("arc.plt", sweep > 0 ? "PU3048,2032;PD;AA2032,2032,90;"
                                                          : "PU2032,3048;PD;AA2032,2032,-90;");
      Import_Placing = {};
      Import_Placing.Mirror = true;
      Import_Placing.Origin = Placed_Origin::Lower_Left;
      ASSERT_TRUE(Import_HPGL_File(path));
      // Mirrored: from (0, 0) to (1, 1) around (1, 0), or back.
      const bool from_end = incremental && sweep > 0;  // clockwise now
      EXPECT_THAT(Statements(),
                  Contains(sweep > 0 ? (from_end ? "G02 X1 Y1 I0 J1" : "G02 X1 Y1 I1 J0")
                                     : "G03 X0 Y0 I1 J0"));
    }
  }
}

TEST_F(Placing_Test, A_Board_Turns_By_Quarter_Turns) {
  const std::string path =
      Store("part.gbr", "%FSLAX23Y23*%%MOIN*%%ADD10R,1X0.5*%D10*X2000Y3000D03*X4000Y3000D03*M02*");
  MachineSetup.Gerber_Isolation_Minimum_Poly_Width = 0.001F;
  Import_Placing.Origin = Placed_Origin::Lower_Left;
  Import_Placing.Rotate = 90;
  ASSERT_TRUE(Import_Gerber_File(path));
  EXPECT_NEAR(*Import_Report.Motion.Cut[0].From, 0, 1e-3);
  EXPECT_NEAR(*Import_Report.Motion.Cut[0].To, 0.5, 1e-3);
  EXPECT_NEAR(*Import_Report.Motion.Cut[1].To, 3, 1e-3);
  Opened = 0;
  Import_Placing.Rotate = 45;
  ASSERT_TRUE(Import_Gerber_File(path));
  EXPECT_EQ(Opened, 0);
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("90, 180 or 270")));
}

// --- Plotter files in full
// ------------------------------------------------------------------------

// Where a program cannot hold the arc, or the scale makes an ellipse of it, chords stay within the
// tolerance.
TEST_F(Import_Test, Full_Plotter_Circles_Become_Chords_Where_They_Must) {
  MachineSetup.HPGL_All_Pairs = true;
  struct {
    const char* Text;
    bool Incremental;
    double Radius_X, Radius_Y;
  } const rows[] = {{"PU2032,2032;CI1016;", true, 1, 1},
                    {"IP0,0,2032,1016;SC0,2,0,2;PU1,1;CI1;", false, 1, 0.5}};
  for (const auto& row : rows) {
    MachineSetup.GC_IJ_Incremental = row.Incremental;
    ASSERT_TRUE(Import_HPGL_File(Store("circle.plt", row.Text)));
    const auto& cut = Import_Report.Motion.Cut;
    EXPECT_EQ(Import_Report.Motion.Arcs, 0);
    EXPECT_NEAR((*cut[0].To - *cut[0].From) / 2, row.Radius_X, 0.002);
    EXPECT_NEAR((*cut[1].To - *cut[1].From) / 2, row.Radius_Y, 0.002);
  }
}

TEST_F(Import_Test, Full_Plotter_Files_Say_What_They_Leave_Out) {
  MachineSetup.HPGL_All_Pairs = true;
  ASSERT_TRUE(Import_HPGL_File(
      Store("part.plt", "PU1016,0;PD2032,0,5;SC0,1,0,1;LBNo 10,20\x03;PD1-2-,3;BZ1,2;PU;")));
  const auto lines = Import_Report_Lines();
  for (const char* words : {"LB 1", "BZ 1", "numbers without a partner 1",
                            "commands with a number that cannot be read 1"}) {
    EXPECT_THAT(lines, Contains(HasSubstr(words)));
  }
  EXPECT_THAT(Import_Report.Notes, Contains(HasSubstr("SC without IP")));
  EXPECT_THAT(lines.back(), HasSubstr("Corrections: HPGL_All_Pairs"));
  EXPECT_EQ(Body(5).size(), 4U) << "the numbers of the text and of the bad command are no places";
}

}  // namespace
}  // namespace norvik
