// A program that the reader reads without loss makes the same wires once it is adapted.
//
// "The same" are the moves with their ends, kinds and feeds, and in front of each what was
// switched, waited and halted for. Lines that a program does not need (an empty control record, a
// move of no length) do not count, nor do the numbers of lines. With the decimals of the axis
// format all places are exact but for what sums of increments lose: less than a millionth.
#include "adapt_fixture.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compiler_state.h"
#include "compiler/wires/wire_pass.h"
#include "core/format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>
#include <utility>
#include <vector>

namespace norvik {
namespace {

// One move of the machine and what comes before it.
struct Wire_Event {
  std::string Before;  // outputs, dwells, halts
  std::array<double, 4> End{};
  bool Cutting = false;
  float Feed = 0;
};

std::string Switches_Of(const Wire& wire) {
  std::string text;
  for (int output = 0; output <= 4; ++output) {
    if (wire.Out[output] != 1)
      text += "o" + std::to_string(output) + std::to_string(wire.Out[output]);
  }
  if (wire.Motion == 1) return text;
  if (wire.Dwell != 0) text += "d" + Shortest_Text(wire.Dwell);
  if (wire.Aux_Wait) text += "w";
  if (!text.empty() && wire.S_Word) text += "s" + Shortest_Text(*wire.S_Word);
  return text;
}

std::vector<Wire_Event> Events_Of(const std::string& text) {
  Compiler_Memory = {};
  Compile_Tables = {};
  Run_Line_Pass(std::make_shared<const GCode_Text>(text), Compile_Operations());
  const Table<Wire> wires =
      NIST_ConvertLineArctoWire(std::exchange(Compile_Tables.Program_LineArc, {}));
  std::vector<Wire_Event> events(1);
  for (const Wire& wire : wires.Rows) {
    events.back().Before += Switches_Of(wire);
    if (wire.Motion != 1) continue;
    bool moves = false;
    for (int axis = 1; axis <= 4; ++axis) {
      const double end = wire.End[axis].value_or(0);
      moves = moves || std::abs(end - wire.Start[axis].value_or(0)) > 1e-9;
      events.back().End[static_cast<std::size_t>(axis - 1)] = end;
    }
    if (!moves) continue;
    events.back().Cutting = wire.FeedMove;
    events.back().Feed = wire.IPM_D;
    events.emplace_back();
  }
  return events;
}

// Programs in the reader's own language, without what its check would find.
struct Native_Program {
  explicit Native_Program(unsigned seed) : Random(seed) {}

  int Below(int count) { return std::uniform_int_distribution(0, count - 1)(Random); }
  std::string Place() { return Number(Below(200'001) - 100'000); }
  static std::string Number(int thousandths) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", thousandths / 1000.0);
    return text;
  }

  void Line() {
    switch (Below(9)) {
      case 0:
        Text += Below(2) != 0 ? "M3 S1000\n" : "M5\n";
        break;
      case 1:
        Text += "G4 P0.5\n";
        break;
      case 2:
        Text += "(a note)\n";
        break;
      case 3:
        Arc();
        break;
      case 4:
        Hole();
        break;
      default:
        Straight();
    }
  }

  void Straight() {
    const bool cuts = Below(3) != 0;
    Text += cuts ? "G1" : "G0";
    const int X_More = Below(2000), Y_More = Below(2000);
    const bool incremental = Incremental;
    X = incremental ? X + X_More : Below(100'000);
    Y = incremental ? Y + Y_More : Below(100'000);
    Text += " X" + Number(incremental ? X_More : X) + " Y" + Number(incremental ? Y_More : Y);
    if (!incremental && Below(2) != 0) Text += " Z" + Number(Z = Below(5000));
    if (cuts && Below(3) == 0) Text += " F" + std::to_string(10 + Below(500));
    Text += Below(4) == 0 ? " (here)\n" : "\n";
    if (Below(4) == 0) Text += "X" + Number(incremental ? 1 : ++X) + "\n", X += incremental ? 1 : 0;
  }

  // Quarter and three quarters of a circle about a whole place, and full ones.
  void Arc() {
    if (Incremental) return;
    const int radius = 1000 + Below(5000);
    const bool clockwise = Below(2) != 0, full = Below(4) == 0;
    const int cx = X + radius, cy = Y;
    if (!full) X = cx, Y = cy + radius;
    Text += clockwise ? "G2" : "G3";
    Text += " X" + Number(X) + " Y" + Number(Y);
    if (Below(3) == 0) Text += " Z" + Number(Z = Below(3000));
    const bool from_start = MachineSetup.GC_IJ_Incremental;
    Text += " I" + Number(from_start ? radius : cx) + " J" + Number(from_start ? 0 : cy) + "\n";
  }

  // From R on, where the reader and controllers move alike.
  void Hole() {
    if (Incremental) return;
    Z = 6000;
    Text += "G0 Z6.000\n";
    const int count = 1 + Below(3);
    for (int n = 0; n < count; ++n) {
      X = Below(100'000), Y = Below(100'000);
      if (n == 0) Text += Below(2) != 0 ? "G81" : "G82";
      Text += (n == 0 ? " X" : "X") + Number(X) + " Y" + Number(Y);
      if (n == 0) Text += " Z-1.000 R6.000 P0.250 F80";
      Text += "\n";
    }
    Text += "G80\nG0 X" + Number(X) + "\n";
  }

  std::string Make(int lines) {
    Text = "G17 G90\nG0 X0 Y0 Z0\nF100\n";
    for (int n = 0; n < lines; ++n) Line();
    if (Below(2) != 0) {
      Text += "G91\n";
      Incremental = true;
      for (int n = 0; n < lines / 2; ++n) Line();
      Text += "G90\n";
      Incremental = false;
    }
    return Text + "M5\nM30\n";
  }

  std::mt19937 Random;
  std::string Text;
  int X = 0, Y = 0, Z = 0;
  bool Incremental = false;
};

struct Adapt_Property : Adapt_Test {
  // What the check says of a generated program but for hazards that no text avoids.
  static std::string Losses(const std::string& text) {
    MachineSetup.Slow_Before_Stops = true;
    return Lost_Or_Wrong(text);
  }
};

TEST_F(Adapt_Property, Adapted_Programs_Make_The_Wires_Of_Their_Originals) {
  int compared = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    MachineSetup.GC_IJ_Incremental = seed % 2 == 0;
    Options = Adapt_Options_Of_Setup();
    const std::string before = Native_Program(seed).Make(30);
    if (!Losses(before).empty()) continue;
    ++compared;
    const Adapted result = Result(before);
    EXPECT_EQ(result.Refused, 0) << before;
    const auto expected = Events_Of(before), found = Events_Of(result.Text);
    ASSERT_EQ(found.size(), expected.size()) << before << "\n---\n" << result.Text;
    for (std::size_t n = 0; n < found.size(); ++n) {
      EXPECT_EQ(found[n].Before, expected[n].Before) << seed << " move " << n;
      EXPECT_EQ(found[n].Cutting, expected[n].Cutting) << seed << " move " << n;
      EXPECT_EQ(found[n].Feed, expected[n].Feed) << seed << " move " << n;
      for (std::size_t axis = 0; axis < 4; ++axis) {
        EXPECT_NEAR(found[n].End[axis], expected[n].End[axis], 1e-6) << seed << " move " << n;
      }
    }
    EXPECT_EQ(Losses(result.Text), "") << result.Text;
    EXPECT_EQ(Result(result.Text).Text, result.Text);
    if (HasFailure()) FAIL() << before << "\n---\n" << result.Text;
  }
  EXPECT_GT(compared, 100) << "most of the generated programs are read without loss";
}

// The same path written in the ways of other controllers.
TEST_F(Adapt_Property, Foreign_Spellings_Of_A_Path_Come_Out_Alike) {
  const std::string plain = Text("G90\nG0 X10 Y0 Z1\nG1 Z-1 F50\nG3 X0 Y10 I-10 J0\nG1 X-5\nM30");
  const char* others[] = {
      "%\nn1g90g0x10y0z1\nn2z-1g1f50\nn3g3y10x0i-10\nn4x-5g1\nn5m30\n%",
      "G90 G90.1\nG00 X10. Y0 Z1.0\nG01 F50. Z-1.\nG03 X0 Y10 I0 J0\nG01 X-5\nM30",
      "g90\n#1=10\ng0 x#1 y0 z[#1/10]\ng1 z-[#1/10] f[5*#1]\ng3 x0 y#1 r#1\ng1 x-[#1/2]\nm30",
      "G90\nG0 X10 Y0 Z1\nG91 G1 Z-2 F50\nG3 X-10 Y10 I-10 J0\nG1 X-5\nM30",
      "G90\nG92 X0 Y0 Z0\nG0 X10 Y0 Z1\nG1 Z-1 F50\nG3 X0 Y10 R10\nG1 X-5\nM30",
  };
  for (const char* other : others) {
    const auto expected = Events_Of(plain), found = Events_Of(Text(other));
    ASSERT_EQ(found.size(), expected.size()) << Text(other);
    for (std::size_t n = 0; n < found.size(); ++n) {
      EXPECT_EQ(found[n].End, expected[n].End) << other;
      EXPECT_EQ(found[n].Feed, expected[n].Feed) << other;
    }
  }
}

// --- Simplify ------------------------------------------------------------------------------------

double Distance_To_Path(const std::array<double, 4>& point, const std::vector<Wire_Event>& path) {
  double least = 1e9;
  const std::array<double, 4> origin{};  // all begin there
  for (std::size_t n = 0; n + 1 < path.size(); ++n) {
    const auto &a = n == 0 ? origin : path[n - 1].End, &b = path[n].End;
    double length = 0, along = 0, off = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      length += std::pow(b[axis] - a[axis], 2);
      along += (point[axis] - a[axis]) * (b[axis] - a[axis]);
    }
    const double part = length > 0 ? std::clamp(along / length, 0.0, 1.0) : 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      off += std::pow(a[axis] + part * (b[axis] - a[axis]) - point[axis], 2);
    }
    least = std::min(least, std::sqrt(off));
  }
  return least;
}

TEST_F(Adapt_Property, Simplified_Paths_Stay_Within_The_Tolerance) {
  std::string text = "G21 G90\nG0 X0 Y0 Z0\nG1 X0 F100\n";
  for (int n = 1; n <= 50; ++n)
    text += "X" + Native_Program::Number(n * 200) + " Y" + Native_Program::Number(n * 100) + "\n";
  for (int n = 0; n <= 180; ++n) {
    const double angle = n * std::acos(-1.0) / 180;
    text +=
        "X" +
        Native_Program::Number(static_cast<int>(std::lround(1000 * (20 - 10 * std::cos(angle))))) +
        " Y" +
        Native_Program::Number(static_cast<int>(std::lround(1000 * (5 + 10 * std::sin(angle))))) +
        "\n";
  }
  text += "(done)\nG0 Z5\n";
  const auto full = Events_Of(Text(text));
  Options.Simplify = true;
  Options.Tolerance = 0.005;
  const Adapted result = Result(text);
  EXPECT_LT(result.Old_Lines.size(), 12U) << result.Text;
  EXPECT_THAT(result.Text, ::testing::HasSubstr("G2 X"));
  MachineSetup.Arc_Resolution = 720;
  MachineSetup.Arc_Max_Segments = 2000;
  const auto simple = Events_Of(result.Text);
  for (const Wire_Event& each : full) EXPECT_LT(Distance_To_Path(each.End, simple), 0.0085);
  for (const Wire_Event& each : simple) EXPECT_LT(Distance_To_Path(each.End, full), 0.0085);
}

}  // namespace
}  // namespace norvik
