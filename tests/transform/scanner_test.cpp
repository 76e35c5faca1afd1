// The scanner: one line into letter slots and a comment.
#include "transform/scanner.h"

#include "transform/line_text.h"

#include <gtest/gtest.h>

namespace norvik {
namespace {

// "G=01 X=1.5 | [deep]"; words that a later one replaced stand in round brackets in front.
std::string Scanned(std::string_view line) {
  GCode_Scanner scanner;
  const GCode_Words& words = scanner.Parse_GCode_Line(line);
  std::string text;
  for (const GCode_Word& word : words.Taken_Over) {
    text += "(" + std::string(1, word.Letter) + "=" + std::string(word.Text) + ") ";
  }
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (words.Has(letter)) {
      text += std::string(1, letter) + "=" + std::string(words.Text(letter)) + " ";
    }
  }
  if (words.Lost_Digits) text += "digits ";
  if (words.Passed_Over) text += "passed ";
  return text + "| " + std::string(words.Comment);
}

TEST(Scanner_Test, WordsOfEitherCaseWithAndWithoutBlanks) {
  EXPECT_EQ(Scanned("N10 g01X1.5 y-2,25"), "G=01 N=10 X=1.5 Y=-2,25 | ");
  EXPECT_EQ(Scanned("X 1.5  Y   -2"), "X=1.5 Y=-2 | ") << "a blank behind a letter waits";
  EXPECT_EQ(Scanned("X1/2+3"), "X=1/2+3 | ") << "every character from + to 9 belongs to a number";
  EXPECT_EQ(Scanned("X Y2"), "X= Y=2 | ");
  EXPECT_EQ(Scanned(""), "| ");
}

TEST(Scanner_Test, WhatGoesIsNoted) {
  EXPECT_EQ(Scanned("G90 G01 X1"), "(G=90) G=01 X=1 | ");
  EXPECT_EQ(Scanned("12 X1 5"), "X=1 digits | ") << "the blank behind the 1 ended the word";
  EXPECT_EQ(Scanned("X;1:2 Y3"), "X=12 Y=3 passed | ");
  EXPECT_EQ(Scanned("G1 ;up"), "G=1 P= U= passed | ") << "a semicolon begins no comment here";
}

TEST(Scanner_Test, AllFourCommentsAndOtherSignsEndTheWords) {
  for (const char* comment :
       {"[Deep, 1.5]", "{a}", "(b) Y2", "'c", "\tY2", "% x", "#1=5", "\xC3\xA4"}) {
    EXPECT_EQ(Scanned("G1 x1 " + std::string(comment)), "G=1 X=1 | " + std::string(comment));
  }
  EXPECT_EQ(Scanned("X;1 (a;b)"), "X=1 passed | (a;b)") << "a comment keeps all its characters";
}

TEST(Scanner_Test, NumbersOfEitherRegionAndTextsThatAreNone) {
  bool is_number = true;
  EXPECT_EQ(Clean_Number("-12.5", is_number), -12.5);
  EXPECT_EQ(Clean_Number("+12,5", is_number), 12.5);
  EXPECT_EQ(Clean_Number(".5", is_number), 0.5);
  EXPECT_EQ(Clean_Number("0.1234567890123456789", is_number), 0.1234567890123456789);
  EXPECT_TRUE(is_number);
  for (const std::string& text :
       {std::string(), std::string("--4"), std::string("1/2"), std::string("1.2.3"),
        std::string("4-"), std::string("-"), std::string(400, '7')}) {
    is_number = true;
    EXPECT_EQ(Clean_Number(text, is_number), 0) << text;
    EXPECT_FALSE(is_number) << text;
  }
}

TEST(Scanner_Test, WordsThatTheCompilerReadsBehindAComment) {
  for (const char* text : {"(a) X1", "[a]{b} y 2", "(a] g1", "\tX1", "% G1"}) {
    EXPECT_TRUE(Has_Words_Behind_Comment(text)) << text;
  }
  for (const char* text : {"(X1 Y2)", "(a) (X1)", "'X1", "[X1", "(a) end", "(a) "}) {
    EXPECT_FALSE(Has_Words_Behind_Comment(text)) << text;
  }
}

TEST(Strip_Number_Test, OnlyANumberInFrontGoes) {
  EXPECT_EQ(Strip_Number("N001 G00 X1"), "G00 X1");
  EXPECT_EQ(Strip_Number("  n 10G1"), "G1");
  EXPECT_EQ(Strip_Number("N10"), "");
  for (const char* line : {"G1 N10", "N X1", "", "   ", "(N10) G1", "NORVIK"}) {
    EXPECT_EQ(Strip_Number(line), line);
  }
}

TEST(Word_Format_Test, FirstWordOfEachLetterOutsideComments) {
  const auto formatted = [](std::string_view line, char sign = '.') {
    Word_Format format("000.000", sign);
    std::string out;
    format.Append_Line(out, line);
    return out;
  };
  EXPECT_EQ(formatted("g01 x1,5 Y2 F3.50"), "G01 X001.500 Y002.000 F3.50");
  EXPECT_EQ(formatted("X1 X2"), "X001.000 X2");
  EXPECT_EQ(formatted("X 1 Y--4 Z" + std::string(400, '9')), "X 1 Y--4 Z" + std::string(400, '9'))
      << "no number directly behind the letter";
  EXPECT_EQ(formatted("[x1,5 a] Z-.5 (y2) K1.5"), "[x1.5 a] Z-000.500 (y2) K1.5");
  EXPECT_EQ(formatted("{x1] i2 'j3"), "{x1] I002.000 'j3") << "any sign closes any comment";
  EXPECT_EQ(formatted("X1.5 [1.5]", ','), "X001,500 [1,5]");
  EXPECT_EQ(formatted("[open x1"), "[open x1");
}

}  // namespace
}  // namespace norvik
