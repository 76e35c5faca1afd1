// Programs that are empty, huge or no programs at all, and ESC in the middle.
#include "transform_fixture.h"

namespace norvik {
namespace {

TEST_F(Transform_Test, EmptyProgramGivesAnEmptyText) {
  for (const Transform transform : All_Transforms) {
    for (const char* text : {"", "\r\n\r\n"}) {
      const Transformed result = Result(text, transform);
      EXPECT_EQ(result.State, Transform_State::Done);
      EXPECT_EQ(result.Text, "");
      EXPECT_FALSE(result.Losses.Any());
    }
  }
  EXPECT_EQ(Messages.Panel[1], "");
}

TEST_F(Transform_Test, ALineOfTenMegabytes) {
  std::string line = "G1";
  while (line.size() < 10'000'000) line += " X1.5 Q2";
  line += "(x)";
  for (const Transform transform : {Transform::Scale, Transform::Decimal_Format}) {
    const Transformed result = Result(line, transform, Axes(2, 2));
    EXPECT_EQ(result.State, Transform_State::Done) << Row_Of(transform).Name;
    EXPECT_TRUE(result.Text.ends_with("(x)\r\n")) << Row_Of(transform).Name;
  }
}

TEST_F(Transform_Test, PatternsWithTextAroundTheNumber) {
  MachineSetup.Axis_Format = "0.0 and a long word behind";
  EXPECT_EQ(Text("X1 Y2", Transform::Scale, Axes(1, 1)),
            "X1.0 and a long word behind Y2.0 and a long word behind \n");
}

TEST_F(Transform_Test, EscEndsAnyTransform) {
  std::string program;
  for (int i = 0; i < 10'000; ++i) program += "G1 X1\n";
  for (const Transform transform : All_Transforms) {
    Application.EscFlag = true;
    EXPECT_EQ(Result(program, transform).State, Transform_State::Escaped) << Row_Of(transform).Name;
    EXPECT_FALSE(Application.EscFlag);
  }
}

TEST_F(Transform_Test, ProgressIsShownAndYields) {
  std::string program;
  for (int i = 0; i < 10'000; ++i) program += "G1 X1\n";
  std::vector<std::string> shown;
  Scripted.On_Yield = [&] { shown.push_back(Messages.Panel[1]); };
  Result(program, Transform::Remove_Sequence);
  ASSERT_EQ(shown.size(), 5U);
  EXPECT_EQ(shown[1],
            "GCode Step Display: Removing Sequence Numbers 40% completed, press ESC to cancel");
  shown.clear();
  Result(program, Transform::Sort);
  EXPECT_EQ(shown[0], "Sorting GCode: Loading File  20 %Completed, press ESC to cancel");
}

}  // namespace
}  // namespace norvik
