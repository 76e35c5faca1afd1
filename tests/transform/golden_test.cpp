// Each transform on small texts, the results worked out by hand.
#include "transform_fixture.h"

namespace norvik {
namespace {

struct Golden_Row {
  const char* Name;
  Transform What;
  float X, Y, Z;
  const char* Before;
  const char* After;
  const char* Why;
};

std::ostream& operator<<(std::ostream& out, const Golden_Row& row) {
  return out << row.Name;
}

constexpr Golden_Row Rows[] = {
    {"ScaleOrder", Transform::Scale, 2, 3, 0,
     "N10 G03 M8 F12.5 K4 J3 I2 R1 Z5 Y2 X1 T7 P0.5 [In mm]",
     "N10 T7 P0.5 F12.5 M8 G03 X002.000 Y006.000 Z005.000 R002.000 I004.000 J009.000 K004.000 "
     "[In mm]\n",
     "R and I take the factor of X, J that of Y; Z and K are printed anew, not scaled"},
    {"ScaleZeroFactor", Transform::Scale, 0, 2, 0, "X1.5 Y1.5", "X001.500 Y003.000 \n",
     "a factor of 0 counts as 1, and a line without comment ends in a blank"},
    {"ScaleKeepsEmptiedLine", Transform::Scale, 1, 1, 0, "Q5\nX1", "\nX001.000 \n",
     "Q is in no order, so nothing of the first line stays but the line"},
    {"ScaleLetterWithoutNumber", Transform::Scale, 2, 2, 0, "G X Y1", "G X000.000 Y002.000 \n",
     "a value of no digits counts as 0; a code stays as it is"},
    {"ScaleLastGStays", Transform::Scale, 2, 2, 0, "G90 G01 X1", "G01 X002.000 \n",
     "there is one slot a letter"},
    {"ScaleCommentInFront", Transform::Scale, 2, 2, 0, "(move) X1", "(move) X1\n",
     "everything from the bracket on is the comment"},
    {"Metric", Transform::Metric, 0, 0, 0, "G20 G01 X1 Y2 Z-.5 I.1 J.2 K.3 R1 F10",
     "F10 G01 X025.400 Y050.800 Z-012.700 I002.540 J005.080 K007.620 R025.400 \n",
     "the feed keeps its text, G20 loses its slot to G01, and R comes last"},
    {"Imperial", Transform::Imperial, 0, 0, 0, "X25.4 Y-50.8 Z12.7",
     "X001.000 Y-002.000 Z000.500 \n", "25.4 times 0.039370078 is 0.99999998"},
    {"Offset", Transform::Offset, 10, 20, -1, "N5 T1 P2 F3 M4 G02 X1 Y2 Z3 I4 J5 K6 R7",
     "N5 P2 F3 M4 G02 X011.000 Y022.000 Z002.000 I014.000 J025.000 K005.000 \n",
     "T and R have no place; centres are points, so they move, and K moves with Z"},
    {"OffsetOnlyWhatIsThere", Transform::Offset, 10, 20, 30, "G1 Y1", "G1 Y021.000 \n",
     "a word that is not there gets none"},
    {"Absolute", Transform::Absolute, 0, 0, 0, "G91\nG01 X1 Y1 F5\nG02 X1 Y0 I.5 J0\nT1\nG1 Z-1",
     "G90 \nF5 G01 X001.000 Y001.000 \nG02 X002.000 Y001.000 I001.500 J001.000 \nG1 Z-001.000 \n",
     "X sums up to 2, the centre counts from (1, 1), and the line that loses its T vanishes"},
    {"AbsoluteRoundsSums", Transform::Absolute, 0, 0, 0, "X.0004\nX.0004\nX.0004",
     "X000.000 \nX000.001 \nX000.001 \n", "0.0004, 0.0008 and 0.0012: sums have six decimals"},
    {"Incremental", Transform::Incremental, 0, 0, 0,
     "G90.0\nG01 X1 Y1\nG02 X2 Y1 I1.5 J1\nX2\nG1 Z-1",
     "G91 \nG01 X001.000 Y001.000 \nG02 X001.000 Y000.000 I000.500 J000.000 \nX000.000 \nG1 "
     "Z-001.000 \n",
     "each value less the one before; the centre less the point before its line"},
    {"AddNumbers", Transform::Add_Sequence, 0, 0, 0, "G00 X1\nN7 G1 [n]\n  n 20M2",
     "N001 G00 X1\nN002 G1 [n]\nN003 M2\n", "numbers that stand go first, so none is double"},
    {"RemoveNumbers", Transform::Remove_Sequence, 0, 0, 0, "N001 G00 X1\nG1 N5\nN9",
     "G00 X1\nG1 N5\n\n", "only a number in front goes"},
    {"DecimalFormat", Transform::Decimal_Format, 0, 0, 0, "g01 x1,5 y2 f3.25 a9 [x1,5]",
     "G01 X001.500 Y002.000 F3.25 A009.000 [x1.5]\n",
     "lengths and angles are printed anew, a feed is not"},
    {"Sort", Transform::Sort, 0, 0, 0, "G1 X2\nG1 X1\n", "G1 X2\nG1 X1\n", "it orders nothing"},
};

class Golden : public Transform_Test, public ::testing::WithParamInterface<Golden_Row> {};

TEST_P(Golden, IsAsWorkedOutByHand) {
  const Golden_Row& row = GetParam();
  EXPECT_EQ(Text(row.Before, row.What, Axes(row.X, row.Y, row.Z)), row.After) << row.Why;
}
INSTANTIATE_TEST_SUITE_P(Transforms, Golden, ::testing::ValuesIn(Rows),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Transform_Test, CommentsInSquareBracketsSurviveWhole) {
  const std::string line = "G01 X001.000 Y001.000 [Depth 1.5, Tool \"2\"; (Ja) x9]\n";
  for (const Transform transform : All_Transforms) {
    const std::string text = Text(line, transform, Axes(1, 1));
    const std::string comment = transform == Transform::Decimal_Format
                                    ? "[Depth 1.5. Tool \"2\"; (Ja) x9]\n"
                                    : "[Depth 1.5, Tool \"2\"; (Ja) x9]\n";
    EXPECT_TRUE(text.ends_with(comment)) << Row_Of(transform).Name << ": " << text;
  }
}

TEST_F(Transform_Test, OffsetWithACopyDoublesTheLines) {
  Transform_Values values = Axes(10, 0);
  values.Duplicate = true;
  EXPECT_EQ(Text("G1 X1 R2\nX2", Transform::Offset, values),
            "G1 X1 R2\nX2\nG1 X011.000 \nX012.000 \n")
      << "the lines that were there keep their text";
}

TEST_F(Transform_Test, OffsetLeavesCentresThatCountFromTheStart) {
  MachineSetup.GC_IJ_Incremental = true;
  EXPECT_EQ(Text("G2 X1 I.5 J-.5 K1", Transform::Offset, Axes(10, 10, 10)),
            "G2 X011.000 I000.500 J-000.500 K011.000 \n");
}

TEST_F(Transform_Test, OffsetRefusesIncrementalPrograms) {
  for (const char* text : {"G1 X1\nG91", "G091 X1", "g91.0", "G 91"}) {
    const Transformed result = Result(text, Transform::Offset, Axes(1, 1));
    EXPECT_EQ(result.State, Transform_State::Refused) << text;
    EXPECT_EQ(result.Refusal, "This file is in incremental mode.  Add offset line in gcode");
  }
  EXPECT_EQ(Result("G91 G1 X1", Transform::Offset).State, Transform_State::Done)
      << "the last G of a line counts";
}

TEST_F(Transform_Test, RegionWithAComma) {
  Application.DecimalSeparator = ',';
  EXPECT_EQ(Text("X1.5 Y1,5", Transform::Scale, Axes(2, 2)), "X003,000 Y003,000 \n");
  EXPECT_EQ(Text("x1.5 F2.5", Transform::Decimal_Format), "X001,500 F2,5\n");
}

}  // namespace
}  // namespace norvik
