// Small programs and what they must become, worked out by hand.
#include "adapt_fixture.h"

namespace norvik {
namespace {

struct Adapt_Row {
  const char* Name;
  const char* Before;
  const char* After;
  const char* Why;
};
std::ostream& operator<<(std::ostream& out, const Adapt_Row& row) {
  return out << row.Name;
}

constexpr Adapt_Row Rows[] = {
    // --- Words ---
    {"Run_Together", "g0x1y-2.50z+.5", "G0 X1.000 Y-2.500 Z0.500\n", "words apart, upper case"},
    {"Blanks_Within", "G 1 X 2 Y - 3 f 100", "G1 X2.000 Y-3.000 F100\n",
     "a letter and its number may stand apart"},
    {"Number_Kept", "N0010G00X1", "N0010 G0 X1.000\n",
     "the number stands apart from what it numbers"},
    {"Comments", "(a) G0 X1 (b) ; c", "G0 X1.000 (a; b; c)\n", "one comment a line, at its end"},
    {"Comment_Alone", "; see [1] and (2)\nG0 X1 (it's M98)",
     "(see <1> and <2>)\nG0 X1.000 (it`s M 98)\n",
     "what would open or close a comment, or call a macro, is replaced"},
    {"Comment_Repeat", "G0 X1 (repeat twice)", "(repeat twice)\nG0 X1.000\n",
     "behind words the reader would repeat"},
    {"Bracket_Comment", "G0 X1 [pass 3]", "G0 X1.000 (pass 3)\n", "no value can stand there"},
    {"Modal_Motion", "G1 X1 F10\nY2\n\nX3", "G1 X1.000 F10\nG1 Y2.000\n\nG1 X3.000\n",
     "every move names its code; an empty line stays"},
    {"Tape", "%\nG0 X1\nM30\n%", "G0 X1.000\nM30\n", "tape marks go"},

    // --- Order of execution ---
    {"Order", "G1 X1 M3 S500 G90 G17 F20 M8 T2 (all)",
     "T2 (all)\nM3 M8 S500\nG17 G90\nG1 X1.000 F20\n", "tool, spindle and coolant, modes, motion"},
    {"Change_Stops", "M3\nT1M6\nM2", "M3\nM5\nT1 M6\nM2\n", "controllers stop the spindle first"},
    {"End_Stops", "M4\nM7\nM2\nG0 X1", "M4\nM7\nM5\nM9\nM2\n",
     "M2 here leaves both on; behind it nothing runs"},
    {"Speed_While_Turning", "M3 S100\nG1 X1 F10 S200", "M3 S100\nM3 S200\nG1 X1.000 F10\n",
     "this machine takes a speed with M3 alone"},
    {"Stop_Behind_Move", "M0 G0 X1", "G0 X1.000\nM0\n", "halts come last"},
    {"Dwell_X", "G4 X1.5\nG04 P2", "G4 P1.5\nG4 P2\n", "P and X are seconds"},

    // --- Units, distance ---
    {"Inches", "G20 G1 X1 F10\nG21 X1 F254", "G21\nG1 X25.400 F254\nG1 X1.000 F254\n",
     "converted; the machine's unit stands once"},
    {"Unit_Stated_Later", "G0 X1\nG20", "G0 X25.400\nG21\n",
     "the unit that a program states first holds from its beginning"},
    {"Incremental", "G0 X1 Y1\nG91 X1\nY-.5\nG90 X0",
     "G0 X1.000 Y1.000\nG0 X2.000\nG0 Y0.500\nG90\nG0 X0.000\n", "increments become places"},

    // --- Offsets ---
    {"G92", "G0 X5\nG92 X0\nG0 X1\nG92.1\nG0 X1", "G0 X5.000\nG0 X6.000\nG0 X1.000\n",
     "X 0 of the program lies at 5, until G92.1"},
    {"G52", "G52 X10\nG0 X1 Y1\nG52 X0\nX1", "G0 X11.000 Y1.000\nG0 X1.000\n", "a local zero"},
    {"Systems_By_G10", "G10 L2 P1 X0 Y0\nG10 L2 P2 X100 Y0\nG54 G0 X1 Y1\nG55 X1 Y1",
     "G0 X1.000 Y1.000\nG0 X101.000 Y1.000\n", "the display counts from G54, used first"},
    {"One_System", "G55\nG0 X1", "G0 X1.000\n", "the only work offset is the display's zero"},
    {"Home_Set_By_Program", "G0 X1 Y2 Z3\nG28.1\nG0 X9\nG28 Z5",
     "G0 X1.000 Y2.000 Z3.000\nG0 X9.000\nG0 Z5.000\nG0 Z3.000\n", "by way of Z 5, Z alone"},

    // --- Arcs ---
    {"Arc_Modal", "G17\nG0 X0 Y0\nG2 X1 Y1 I1 J0 F5\nX2 Y0 J-1",
     "G17\nG0 X0.000 Y0.000\nG2 X1.000 Y1.000 I1.000 J0.000 F5\nG2 X2.000 Y0.000 I0.000 J-1.000\n",
     "both ends, both centres, always the code"},
    {"Arc_R_Short", "G0 X0 Y0\nG3 X1 Y1 R1", "G0 X0.000 Y0.000\nG3 X1.000 Y1.000 I0.000 J1.000\n",
     "the centre left of the way"},
    {"Arc_R_Long", "G0 X0 Y0\nG3 X1 Y1 R-1", "G0 X0.000 Y0.000\nG3 X1.000 Y1.000 I1.000 J0.000\n",
     "the other centre: three quarters"},
    {"Arc_R_Clockwise", "G0 X0 Y0\nG2 X1 Y1 R1",
     "G0 X0.000 Y0.000\nG2 X1.000 Y1.000 I1.000 J0.000\n", "to the right of the way"},
    {"Full_Circle", "G0 X1 Y0 Z0\nG2 I-1 Z-1",
     "G0 X1.000 Y0.000 Z0.000\nG2 X1.000 Y0.000 Z-1.000 I-1.000 J0.000\n", "a full turn down"},
    {"Helix_Of_Turns", "G0 X1 Y0 Z0\nG3 X-1 Y0 Z5 I-1 P3",
     "G0 X1.000 Y0.000 Z0.000\nG3 X1.000 Y0.000 Z2.000 I-1.000 J0.000\n"
     "G3 X1.000 Y0.000 Z4.000 I-1.000 J0.000\nG3 X-1.000 Y0.000 Z5.000 I-1.000 J0.000\n",
     "two and a half turns climb 5"},
    {"Centres_Absolute", "G90.1\nG0 X10 Y0\nG3 X0 Y10 I0 J0",
     "G0 X10.000 Y0.000\nG3 X0.000 Y10.000 I-10.000 J0.000\n", "written as the machine counts"},
    {"Tiny_Arc", "G0 X10 Y0\nG3 X10.0001 Y0.0001 I-10 J0", "G0 X10.000 Y0.000\nG1 X10.000 Y0.000\n",
     "rounded it would be a whole circle"},

    // --- Cycles ---
    {"G81_G98", "G0 X0 Y0 Z10\nG98 G81 X1 Y1 Z-5 R2 F50\nX2",
     "G0 X0.000 Y0.000 Z10.000\nF50\nG0 X1.000 Y1.000\nG0 Z2.000\nG1 Z-5.000\nG0 Z10.000\n"
     "G0 X2.000 Y1.000\nG0 Z2.000\nG1 Z-5.000\nG0 Z10.000\n",
     "back to the height before the cycles"},
    {"G82_G99", "G0 X0 Y0 Z10\nG99 G82 X1 Y1 Z-5 R2 P.5",
     "G0 X0.000 Y0.000 Z10.000\nG0 X1.000 Y1.000\nG0 Z2.000\nG1 Z-5.000\nG4 P0.5\nG0 Z2.000\n",
     "dwell, back to R"},
    {"G83", "G0 X0 Y0 Z2\nG83 X0 Y0 Z-5 R2 Q3",
     "G0 X0.000 Y0.000 Z2.000\nG0 X0.000 Y0.000\nG1 Z-1.000\nG0 Z2.000\nG0 Z-0.750\nG1 Z-4.000\n"
     "G0 Z2.000\nG0 Z-3.750\nG1 Z-5.000\nG0 Z2.000\n",
     "pecks of 3 from R, back down to 0.25 above, the last one shorter"},
    {"G73", "G0 X0 Y0 Z1\nG73 X0 Y0 Z-3 R1 Q2",
     "G0 X0.000 Y0.000 Z1.000\nG0 X0.000 Y0.000\nG1 Z-1.000\nG0 Z-0.750\nG1 Z-3.000\nG0 Z1.000\n",
     "only the chip is broken"},
    {"G85_G89", "G0 X0 Y0 Z1\nG99 G85 X0 Y0 Z-1 R1\nG89 X5 Z-1 R1 P1\nG80",
     "G0 X0.000 Y0.000 Z1.000\nG0 X0.000 Y0.000\nG1 Z-1.000\nG1 Z1.000\nG0 X5.000 Y0.000\n"
     "G1 Z-1.000\nG4 P1\nG1 Z1.000\n",
     "out at the feed"},
    {"Repeats", "G0 X0 Y0 Z1\nG91 G81 X2 Z-1 R0 L2\nG80 G90",
     "G0 X0.000 Y0.000 Z1.000\nG0 X2.000 Y0.000\nG1 Z0.000\nG0 Z1.000\nG0 X4.000 Y0.000\n"
     "G1 Z0.000\nG0 Z1.000\nG90\n",
     "each hole lies 2 further"},

    // --- Feeds ---
    {"Inverse_Time", "G0 X0\nG93 G1 X10 F2\nG94", "G0 X0.000\nG1 X10.000 F20\n",
     "10 long, twice a minute"},
    {"Per_Turn", "M3 S100\nG95 G1 X1 F.5\nG94", "M3 S100\nG1 X1.000 F50\n",
     "half a unit a turn, 100 turns"},

    // --- Expressions and flow ---
    {"Assignment_In_Parallel", "#1=3\nG0 X#1 #1=5\nX#1", "(#1=3)\nG0 X3.000\nG0 X5.000\n",
     "a line reads the values of before"},
    {"Assignment_With_Comment", "#1=3 (depth)\nG0 Z#1", "(depth; #1=3)\nG0 Z3.000\n",
     "the statement stays beside its comment"},
    {"Empty_Comment", "G0 X1 (a) ()", "G0 X1.000 (a)\n", "what says nothing goes"},
    {"Loop", "#1=0\no1 while [#1 lt 2]\nG0 X#1\n#1=[#1+1]\no1 endwhile\nG0 X9",
     "(#1=0)\n(o1 while <#1 lt 2>)\nG0 X0.000\n(#1=<#1+1>)\n(o1 endwhile)\n(o1 while <#1 lt 2>)\n"
     "G0 X1.000\n(#1=<#1+1>)\n(o1 endwhile)\n(o1 while <#1 lt 2>)\nG0 X9.000\n",
     "written out as it runs"},
    {"Sub_By_Number", "M98 P100 L2\nM30\nO100\nG91 G0 X1\nM99", "G0 X1.000\nG0 X2.000\nM30\n",
     "twice the lines behind O100"},
    {"Own_Repeat", "REPEAT 2\nG0 X1\nENDREPEAT",
     "(REPEAT 2)\nG0 X1.000\n(ENDREPEAT)\nG0 X1.000\nG0 X1.000\n",
     "this machine's own loop runs once more than its count"},
    {"Own_Macro", "M98 12", "M98 12\n", "a macro of this machine is called as it stands"},
};

class Adapt_Golden : public Adapt_Test, public ::testing::WithParamInterface<Adapt_Row> {};

TEST_P(Adapt_Golden, IsAsWorkedOutByHand) {
  EXPECT_EQ(Text(GetParam().Before), GetParam().After) << GetParam().Why;
}
TEST_P(Adapt_Golden, StaysAsItIsTheSecondTime) {
  const std::string once = Result(GetParam().Before).Text;
  EXPECT_EQ(Result(once).Text, once);
}
INSTANTIATE_TEST_SUITE_P(Adapt, Adapt_Golden, ::testing::ValuesIn(Rows),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Adapt_Test, Numbers_Have_The_Form_And_The_Rounding_Of_The_Axis_Format) {
  MachineSetup.Axis_Format = "000.00##";
  Options = Adapt_Options_Of_Setup();
  EXPECT_EQ(Text("G0 X1.00005 Y-.00005 Z12\nF1.5"), "G0 X001.0001 Y-000.0001 Z012.00\nF1.5\n")
      << "ties away from zero, zeros where the format asks for them; feeds short";
  EXPECT_THAT(Told("G0 X1.00005", Adapt_Grade::Note),
              ::testing::HasSubstr("1 numbers are rounded"));
}

TEST_F(Adapt_Test, The_Map_Names_The_Old_Line_Of_Each_New_One) {
  const Adapted result = Result("G0 X1\nT1 M6 G0 X2\n(c)\nG80\nG0 X3");
  EXPECT_THAT(result.Old_Lines, ::testing::ElementsAre(1, 2, 2, 3, 5));
}

TEST_F(Adapt_Test, Arcs_In_Other_Planes_Become_Chords_That_End_Where_The_Arc_Does) {
  // In the plane of Z and X a counter-clockwise arc goes from Z to X: from (X 0, Z 1) to (X 1, Z
  // 0).
  const std::string text = Text("G0 X0 Y0 Z1\nG18 G3 X1 Z0 I0 K-1 F9");
  EXPECT_THAT(text, ::testing::HasSubstr("\nG1 X0."));
  EXPECT_THAT(text, ::testing::EndsWith("X1.000 Z0.000\n"));
  EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("X-")));
  EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("G18")));
}

TEST_F(Adapt_Test, Centres_Are_Read_As_The_Arcs_Of_The_Program_Show) {
  const std::string foreign = "G0 X10 Y0\nG3 X0 Y10 I0 J0\nG0 X10 Y0\nG3 X0 Y10 I0 J0";
  EXPECT_EQ(Text(foreign),
            "G0 X10.000 Y0.000\nG3 X0.000 Y10.000 I-10.000 J0.000\nG0 X10.000 Y0.000\n"
            "G3 X0.000 Y10.000 I-10.000 J0.000\n");
  Options.Centres_From_Start = false;
  EXPECT_EQ(Text(foreign),
            "G0 X10.000 Y0.000\nG3 X0.000 Y10.000 I0.000 J0.000\nG0 X10.000 Y0.000\n"
            "G3 X0.000 Y10.000 I0.000 J0.000\n");
}

TEST_F(Adapt_Test, Block_Delete_And_Milliseconds_Are_Choices) {
  EXPECT_EQ(Text("/G0 X1"), "G0 X1.000\n");
  Options.Leave_Out_Deleted = true;
  Options.Dwell_Factor = 0.001;
  EXPECT_EQ(Text("/G0 X1\nG4 P500"), "(/G0 X1)\nG4 P0.5\n");
}

TEST_F(Adapt_Test, Tool_Lengths_Of_The_List_Are_Added_To_Z) {
  Options.Tool_Lengths[3] = 12.5;
  EXPECT_EQ(Text("G43 H3\nG0 Z1\nG49\nG0 Z1"), "G0 Z13.500\nG0 Z1.000\n");
}

TEST_F(Adapt_Test, Known_Places_Resolve_What_Is_Refused_Without_Them) {
  const std::string_view text = "G0 X1 Z1\nG53 G0 Z0\nG55 G0 X1";
  EXPECT_EQ(Refused(text),
            "2: G53: where the machine's zero lies is not known\n"
            "3: the display's zero is not known to be that of work offset G55\n");
  Options.Machine_Zero = Adapt_Axes{0, 0, 80, 0};
  Options.Work_Offsets[2] = Adapt_Axes{100, 0, 0, 0};
  EXPECT_EQ(Text(text), "G0 X1.000 Z1.000\nG0 Z80.000\nG0 X101.000\n");
}

TEST_F(Adapt_Test, Switched_Outputs_Take_The_Codes_Of_The_Setup) {
  EXPECT_THAT(Refused("M64 P0"), ::testing::HasSubstr("M64"));
  Options.Output_High = std::int16_t{11};
  Options.Output_Low = std::int16_t{12};
  EXPECT_EQ(Text("M64 P0\nM65 P0\nM66 P0 L3 Q9\nM11"), "M11\nM12\nM66\nM11\n");
}

}  // namespace
}  // namespace norvik
