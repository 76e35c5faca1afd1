// What the operator is told before a text is replaced.
#include "transform_fixture.h"

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Transform_Test, DroppedWordsAreCountedByLetterAndPlaced) {
  EXPECT_THAT(Told("G1 X1\n\nG83 Q1 L2\nG1 Q3 S4\n", Transform::Scale, Axes(2, 2)),
              ElementsAre("This drops 4 words of 2 lines: L (1), Q (2), S (1), first at line 3."))
      << "lines count as the editor counts them, empty ones included";
  EXPECT_THAT(Told("T1", Transform::Scale, Axes(2, 2)), IsEmpty());
  EXPECT_THAT(Told("T1", Transform::Offset),
              ElementsAre("This drops 1 word of 1 line: T (1), first at line 1."));
  EXPECT_THAT(Told("G1 K1 R1\nG91", Transform::Incremental).front(),
              "This drops 2 words of 1 line: K (1), R (1), first at line 1.");
}

TEST_F(Transform_Test, OneSlotALetterIsTold) {
  EXPECT_THAT(Told("G90 G01 X1", Transform::Scale),
              ElementsAre("This drops 1 word of 1 line: G (1), first at line 1.",
                          "1 of them stands with a later word of the same letter, which stays, "
                          "first at line 1."));
}

TEST_F(Transform_Test, WhatIsReadOtherwiseThanItLooksIsTold) {
  EXPECT_THAT(Told("REPEAT5\nX1\nENDREPEAT", Transform::Scale)[2],
              "2 lines with REPEAT or ENDREPEAT do not survive, first at line 1.");
  EXPECT_THAT(Told("X1\n7 X2", Transform::Scale),
              ElementsAre("1 line has digits without a letter, which go, first at line 2."));
  EXPECT_THAT(Told("(a) X1\nG1\tX2\n(X1)", Transform::Scale),
              ElementsAre("2 lines have words behind a comment or a tab, which stay as they are, "
                          "not converted, first at line 1."));
  EXPECT_THAT(Told("X1 ;", Transform::Scale),
              ElementsAre("1 line has a semicolon or one of : < = > ? @; the text behind it is "
                          "taken as words, first at line 1."));
  EXPECT_THAT(Told("X--4 Y1/2\nZ" + std::string(400, '1'), Transform::Scale),
              ElementsAre("3 values are no numbers and count as 0, first at line 1."));
}

TEST_F(Transform_Test, ConvertedTwiceAndBothUnits) {
  const auto already = [](const char* text, Transform transform) {
    return Result(text, transform).Losses.Already_There;
  };
  EXPECT_TRUE(already("G21\nX1", Transform::Metric));
  EXPECT_FALSE(already("G20\nX1", Transform::Metric));
  EXPECT_TRUE(already("G1 G20\nX1", Transform::Imperial)) << "not only the last G of a line counts";
  EXPECT_TRUE(already("X1", Transform::Absolute)) << "a program without either is absolute";
  EXPECT_FALSE(already("G91\nX1", Transform::Absolute));
  EXPECT_TRUE(already("G91\nX1", Transform::Incremental));
  EXPECT_FALSE(already("X1", Transform::Incremental));
  EXPECT_TRUE(Result("G20\nX1\nG21", Transform::Metric).Losses.Both_Units);
  EXPECT_TRUE(Result("G90\nX1\nG91", Transform::Absolute).Losses.Both_Modes);
  EXPECT_THAT(Told("G21", Transform::Metric),
              ElementsAre("The program looks as if it were converted already: it holds G21. "
                          "Converting twice spoils it."));
}

TEST_F(Transform_Test, IncrementalMovesWithoutG91AreTold) {
  const auto no_mode = [](const char* text, Transform transform) {
    return Result(text, transform).Losses.No_Mode;
  };
  EXPECT_TRUE(no_mode("X1", Transform::Incremental)) << "no G90 that could become G91";
  EXPECT_TRUE(no_mode("G90 G1 X1", Transform::Incremental)) << "the G90 loses its slot";
  EXPECT_FALSE(no_mode("G90\nG1 X1", Transform::Incremental));
  EXPECT_FALSE(no_mode("X1", Transform::Absolute)) << "a program without either is absolute";
  EXPECT_THAT(Told("X1", Transform::Incremental),
              ElementsAre(::testing::StartsWith("The new text holds no G91")));
}

}  // namespace
}  // namespace norvik
