// What cannot be expressed is named, stands at its place, and halts the program there.
#include "adapt_fixture.h"

#include <random>

namespace norvik {
namespace {

struct Refusal_Row {
  const char* Name;
  const char* Text;
  const char* What;
  bool Halts;
};
std::ostream& operator<<(std::ostream& out, const Refusal_Row& row) {
  return out << row.Name;
}
constexpr Refusal_Row Refusals[] = {
    {"Home", "G0 Z1\nG28 Z0", "where G28 goes to is not known", true},
    {"Tapping", "G0 X0 Y0 Z5\nG84 X1 Z-1 R1", "the cycle G84 is not expressed", true},
    {"Thread", "G33 Z-1 K1", "G33 (thread with a synchronised spindle) is not expressed", true},
    {"Spline", "G5 X1 Y1 I0 J1", "G5 (spline) is not expressed", true},
    {"Unknown_M", "M428", "M428 is not known here", false},
    {"Other_Axis", "G1 X1 C90 F5", "C moves", true},
    {"No_Radius", "G0 X0 Y0\nG2 X5 Y0 R1", "the radius is too small", true},
    {"No_Centre", "G0 X0 Y0\nG2 X5 Y0", "an arc without centre and radius", true},
    {"Bare_Behind_G80", "G80\nX1", "axis words without a motion", true},
    {"Two_Motions", "G0 G1 X1", "G0 and G1 exclude each other", true},
    {"Doubled", "G0 X1 X2", "a second X", true},
    {"No_Number", "G0 X", "a number is missing", true},
    {"Division", "G0 X[1/0]", "a division by 0", true},
    {"Name_Unset", "G0 X#<depth>", "#<DEPTH> was never set", true},
    {"Sub_Missing", "o<probe> call [1]", "is not in this file", true},
    {"Other_Radius", "G41 D2", "D2 names the radius of another tool", true},
    {"No_Program", "Hello, world!", "", true},
};

class Adapt_Refusals : public Adapt_Test, public ::testing::WithParamInterface<Refusal_Row> {};

TEST_P(Adapt_Refusals, Are_Numbered_And_Halt_Where_The_Tool_Would_Have_Moved) {
  const Refusal_Row& row = GetParam();
  Options.Tool_Diameters[2] = 6;
  const Adapted result = Result(row.Text);
  ASSERT_GE(result.Refused, 1);
  EXPECT_THAT(Refused(row.Text), ::testing::HasSubstr(row.What));
  const std::string halt = row.Halts ? "M0 (not adapted " : "(not adapted ";
  EXPECT_THAT(result.Text, ::testing::HasSubstr(halt));
  EXPECT_EQ(Result(result.Text).Text, result.Text) << "a second time changes nothing";
  EXPECT_EQ(Lost_Or_Wrong(result.Text), "");
}
INSTANTIATE_TEST_SUITE_P(Adapt, Adapt_Refusals, ::testing::ValuesIn(Refusals),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Adapt_Test, A_Loop_Without_End_Ends_At_The_Bound) {
  Options.Most_Lines = 1000;
  const Adapted result = Result("o1 while [1]\nG91 G0 X1\no1 endwhile");
  EXPECT_LT(result.Old_Lines.size(), 1100U);
  EXPECT_EQ(result.Findings.back().Grade, Adapt_Grade::Refused);
  EXPECT_THAT(result.Findings.back().What, ::testing::HasSubstr("too long"));
}

TEST_F(Adapt_Test, A_Million_Pecks_Are_Refused_And_Not_Written) {
  EXPECT_THAT(Refused("G0 X0 Y0 Z1\nG83 X0 Y0 Z-1000 R1 Q.0001"),
              ::testing::HasSubstr("Q is too small"));
}

TEST_F(Adapt_Test, Findings_Beyond_The_Bound_Are_Counted) {
  std::string text;
  for (int n = 0; n < 12'000; ++n) text += "M428\n";
  const Adapted result = Result(text);
  EXPECT_EQ(result.Findings.size() + static_cast<std::size_t>(result.More_Findings),
            12'001U);  // with the one about the units
  EXPECT_EQ(result.Refused, 12'000);
}

TEST_F(Adapt_Test, Any_Text_Becomes_One_That_Stays_As_It_Is) {
  constexpr std::string_view pieces[] = {"G", "1",   "X", "-",   ".",   "[",      "]",  "(",
                                         ")", "#1",  "=", "o1 ", "sub", "\n",     "\r", " ",
                                         ";", "M98", "%", "/",   "R",   "REPEAT", "'"};
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (int n = 0; n < 60; ++n) text += pieces[random() % std::size(pieces)];
    const std::string once = Result(text).Text;
    EXPECT_EQ(Result(once).Text, once) << text;
  }
}

}  // namespace
}  // namespace norvik
