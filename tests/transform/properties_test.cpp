// What must hold for any program: there and back, numbers that stay, and paths that are the same.
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compiler_state.h"
#include "transform/line_text.h"
#include "transform_fixture.h"

#include <cmath>
#include <random>

namespace norvik {
namespace {

struct Random_Program {
  explicit Random_Program(unsigned seed) : Random(seed) {}

  // A length that three decimals hold.
  std::string Length() {
    return Format_Number_Point(std::uniform_int_distribution(-99'999, 99'999)(Random) / 1000.0,
                               "000.000");
  }
  bool Often() { return std::uniform_int_distribution(0, 3)(Random) != 0; }

  // Lines as an absolute transform prints them.
  std::string Text(int lines, bool arcs) {
    std::string text;
    for (int i = 0; i < lines; ++i) {
      if (Often()) text += "F" + std::to_string(i % 40 + 1) + " ";
      const bool arc = arcs && !Often();
      text += arc ? "G02 " : "G01 ";
      for (const char axis : {'X', 'Y', 'Z'}) {
        if (Often()) text += std::string(1, axis) + Length() + " ";
      }
      if (arc) text += "I" + Length() + " J" + Length() + " ";
      if (!Often()) text += "[line " + std::to_string(i) + "]";
      text += '\n';
    }
    return text;
  }

  std::mt19937 Random;
};

struct Properties : Transform_Test {
  // The ends of all records of a compile; absent places are NaN.
  static std::vector<double> Path(const std::string& text) {
    MachineSetup.Axis_Format = "0000.000000";
    Compiler = {};
    Compiler_Memory = {};
    Compile_Tables = {};
    Run_Line_Pass(std::make_shared<const GCode_Text>(text), Compile_Operations());
    std::vector<double> ends;
    for (const LineArc& record : Compile_Tables.Program_LineArc.Rows) {
      for (int axis = 1; axis <= 3; ++axis) ends.push_back(record.End[axis].value_or(0));
    }
    MachineSetup.Axis_Format = "000.000";
    return ends;
  }
};

TEST_F(Properties, ThereAndBackGivesTheSameText) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const std::string program = Random_Program(seed).Text(200, true);
    EXPECT_EQ(Text(Text(program, Transform::Incremental), Transform::Absolute), program);
    EXPECT_EQ(Text(Text(program, Transform::Offset, Axes(12.5F, -3.25F, 0.125F)), Transform::Offset,
                   Axes(-12.5F, 3.25F, -0.125F)),
              program);
    EXPECT_EQ(Text(program, Transform::Scale, Axes(1, 1)), program);
    EXPECT_EQ(Text(program, Transform::Decimal_Format), program);
    EXPECT_EQ(Text(Text(program, Transform::Add_Sequence), Transform::Remove_Sequence), program);
    EXPECT_EQ(Text(Text(program, Transform::Add_Sequence), Transform::Add_Sequence),
              Text(program, Transform::Add_Sequence));
  }
}

TEST_F(Properties, IncrementalProgramsCutTheSamePath) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const std::string absolute = "G90\nG00 X0 Y0 Z0\n" + Random_Program(seed).Text(100, false);
    const std::string incremental = Text(absolute, Transform::Incremental);
    ASSERT_NE(incremental.find("G91"), std::string::npos);
    const auto wanted = Path(absolute), cut = Path(incremental);
    ASSERT_EQ(cut.size(), wanted.size());
    for (std::size_t i = 0; i < cut.size(); ++i) ASSERT_NEAR(cut[i], wanted[i], 0.0005) << i;
  }
}

TEST_F(Properties, TwiceOverFactorsIsOnceOverTheirProduct) {
  const std::string program = Random_Program(7).Text(300, true);
  EXPECT_EQ(Text(Text(program, Transform::Scale, Axes(2, 4)), Transform::Scale, Axes(0.5F, 0.25F)),
            program);
}

}  // namespace
}  // namespace norvik
