// Lists, pens, grid and the painter.
#include "plot/display_list.h"

#include "plot/line_painter.h"
#include "plot_fixture.h"

#include <optional>
#include <random>

namespace norvik {
namespace {

using Display_List_Test = Plot_Test;
using testing::ElementsAre;

const Plot_Palette& Palette() {
  return MachineSetup.Plot_Color;
}

TEST_F(Display_List_Test, Width_Of_A_Wire) {
  struct Row {
    const char* Name;
    Nullable Tool, Remembered;
    bool FeedMove;
    int Bit_Radius_Enable;
    std::int16_t Width;
  };
  // Pixel factor 2, tool 1 of 3 units, tool 2 without a diameter, radius of the drawn bit 2.25.
  const Row rows[] = {
      {"tool of the wire", 1, {}, true, 0, 6},
      {"remembered tool", {}, 1, true, 0, 6},
      {"no tool yet", {}, {}, true, 0, 4},  // 4.5, the even neighbour
      {"tool without a diameter", 2, {}, true, 0, 4},
      {"the radius overrides every tool", 1, {}, true, 1, 4},
      {"travel", 1, {}, false, 0, 1},
  };
  Tools.Diameter[1] = 3;
  MachineSetup.Plot_Bit_Radious = 2.25F;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    MachineSetup.Plot_Bit_Radius_Enable = static_cast<std::int16_t>(row.Bit_Radius_Enable);
    Wire_Pens pens(2, Palette());
    pens.Remembered_Tool = row.Remembered;
    EXPECT_EQ(pens.Width(Make_Wire({.FeedMove = row.FeedMove, .Tool = row.Tool})), row.Width);
  }
  MachineSetup.Plot_Bit_Radius_Enable = 0;
  EXPECT_EQ(Wire_Pens(1e-9, Palette()).Width(Make_Wire({.Tool = 1})), 1);
  EXPECT_EQ(Wire_Pens(1e30, Palette()).Width(Make_Wire({.Tool = 1})), 32767);
  EXPECT_NO_THROW(Wire_Pens(1, Palette()).Width(Make_Wire({.Tool = 200})));
  EXPECT_THROW(Wire_Pens(1, Palette()).Width(Make_Wire({.Tool = 201})), Fault);
}

TEST_F(Display_List_Test, Color_Of_A_Wire) {
  struct Row {
    bool FeedMove;
    Nullable Start_Z;
    std::int32_t Color;
  };
  const Row rows[] = {{true, 0.0, Cut_Color},      {false, 0.0, Travel_Color},
                      {true, -1.009, Deep_Color},  {true, -1.01, Cut_Color},
                      {false, -0.991, Deep_Color}, {true, {}, Cut_Color}};
  for (const Row& row : rows) {
    const Wire wire = Make_Wire({.FeedMove = row.FeedMove, .From = {0.0, 0.0, row.Start_Z}});
    EXPECT_EQ(Wire_Pens(1, Palette()).Color(wire), row.Color) << row.FeedMove;
  }
}

TEST_F(Display_List_Test, Circles_Stand_Where_The_Spindle_Is_Switched) {
  MachineSetup.Gcode_LineNodes = true;
  constexpr std::array<std::int16_t, 2> clockwise{2, 0}, counter{0, 2}, off{0, 0}, half_off{0, 1};
  const std::array<std::int16_t, 2> commands[] = {off,      clockwise, {1, 1}, counter,
                                                  half_off, off,       off};
  Display_List list;
  Wire_Pens pens(1, Palette());
  for (const auto& spindle : commands) pens.Append_To(list, Make_Wire({.Spindle = spindle}));
  EXPECT_THAT(list.NodeMark, ElementsAre(false, true, false, false, false, true, false));
  EXPECT_THAT(list.NodeColor, ElementsAre(Travel_Color, Cut_Color, Cut_Color, Cut_Color, Cut_Color,
                                          Travel_Color, Travel_Color));

  MachineSetup.Gcode_LineNodes = false;
  Display_List plain;
  Wire_Pens(1, Palette()).Append_To(plain, Make_Wire({.Spindle = clockwise}));
  EXPECT_FALSE(plain.Has_Nodes);
}

TEST_F(Display_List_Test, A_Circle_Is_Ten_Closed_Strokes) {
  const auto strokes = Node_Circle(2, 3, 4);
  // The first point stands a tenth of a turn from +X.
  EXPECT_NEAR(*strokes[0][line_end::X1], 2 + 0.1025 * 0.809017, 1e-6);
  EXPECT_NEAR(*strokes[0][line_end::Y1], 3 + 0.1025 * 0.587785, 1e-6);
  for (std::size_t i = 0; i < strokes.size(); ++i) {
    const auto& next = strokes[(i + 1) % strokes.size()];
    EXPECT_EQ(strokes[i][line_end::X2], next[line_end::X1]);
    EXPECT_EQ(strokes[i][line_end::Y2], next[line_end::Y1]);
    EXPECT_EQ(strokes[i][line_end::Z2], Nullable(4));
  }
}

TEST_F(Display_List_Test, Grid_Lines_Add_Up_Their_Steps) {
  struct Row {
    const char* Name;
    float Width, Height, Step;
    bool Centered;
    std::vector<std::array<float, 4>> Lines;  // X1, Y1, X2, Y2
  };
  const Row rows[] = {
      {"even",
       2,
       1,
       1,
       false,
       {{0, 0, 0, 1}, {1, 0, 1, 1}, {2, 0, 2, 1}, {0, 0, 2, 0}, {0, 1, 2, 1}}},
      {"centred", 2, 2, 2, true, {{-1, -1, -1, 1}, {1, -1, 1, 1}, {-1, -1, 1, -1}, {-1, 1, 1, 1}}},
      {"short of the edge", 2.5F, 1, 2, false, {{0, 0, 0, 1}, {2, 0, 2, 1}, {0, 0, 2.5F, 0}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    MachineSetup.Axis_Depth = {{row.Width, row.Height, 4, 1}};
    MachineSetup.Plot_Centered = row.Centered;
    Display_List grid;
    Build_Grid(Palette(), row.Step, grid);
    ASSERT_EQ(grid.Count(), row.Lines.size());
    for (std::size_t i = 0; i < grid.Count(); ++i) {
      const auto& e = grid.Ends;
      EXPECT_EQ((std::array<float, 4>{e[line_end::X1][i], e[line_end::Y1][i], e[line_end::X2][i],
                                      e[line_end::Y2][i]}),
                row.Lines[i]);
      EXPECT_EQ(e[line_end::Z1][i], 0);
      EXPECT_EQ(grid.Color[i], Grid_Color);
    }
  }
}

TEST_F(Display_List_Test, A_Grid_Without_Sense_Is_A_Fault_And_Ends) {
  Display_List grid;
  for (const float step : {0.0F, -1.0F, 1e-6F}) {
    EXPECT_THROW(Build_Grid(Palette(), step, grid), Fault) << step;
    EXPECT_EQ(grid.Count(), 0U);
  }
}

TEST_F(Display_List_Test, Only_Lines_Wholly_Beyond_One_Side_Are_Left_Out) {
  struct Row {
    const char* Name;
    float X1, Y1, X2, Y2;
    bool Drawn;
  };
  const Row rows[] = {
      {"inside", 0, 0, 1, 1, true},      {"right", 3, 0, 4, 0, false},
      {"left", -3, 0, -4, 0, false},     {"above", 0, 3, 0, 4, false},
      {"below", 0, -3, 0, -4, false},    {"crosses", -30, 0, 40, 1, true},
      {"on the edge", 2, 0, 2, 1, true}, {"passes a corner", 3, 0, 0, -30, true},
  };
  View.ViewAngleA = View.ViewAngleB = View.ViewAngleC = 0;  // x, -y
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    Recording_Surface surface;
    Line_Memory memory{};
    Line_Painter painter(surface, Current_Projection(), {-2, 2, 2, -2}, memory);
    painter.Draw({row.X1, -row.Y1, 0.0, row.X2, -row.Y2, 0.0}, 7, 3);
    painter.Flush();
    if (!row.Drawn) {
      EXPECT_TRUE(surface.Calls.empty());
    } else {
      EXPECT_THAT(surface.Lines(), ElementsAre(Plot_Line{row.X1, row.Y1, row.X2, row.Y2, 7, 3}));
    }
  }
}

// The plain rule for absent coordinates: line by line, each place from its own last value.
std::vector<Plot_Line> Plainly_Drawn(const std::vector<Wire_Row>& rows, Line_Memory& memory,
                                     const Projection& view) {
  std::vector<Plot_Line> lines;
  for (const Wire_Row& row : rows) {
    for (std::size_t k = 0; k < 3; ++k) {
      if (row.From[k]) memory[k] = static_cast<float>(*row.From[k]);
      if (row.To[k]) memory[k + 3] = static_cast<float>(*row.To[k]);
    }
    const auto from = view.Project_Single(memory[0], memory[1], memory[2]);
    const auto to = view.Project_Single(memory[3], memory[4], memory[5]);
    const std::int32_t color = row.FeedMove ? Cut_Color : Travel_Color;
    lines.push_back({from.X, from.Y, to.X, to.Y, color, 1});
  }
  return lines;
}

TEST_F(Display_List_Test, Lists_With_Absent_Coordinates_Equal_Line_By_Line_Drawing) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> coordinate(-9, 9);
  MachineSetup.Axis_Tool_Height[2] = -100;
  const Plot_Scale everything{-1e3, 1e3, 1e3, -1e3};
  const Projection view(0.7, 3.9, 5.1);
  for (int round = 0; round < 60; ++round) {
    // From programs that never name an axis to such that name all in every line; longer than a
    // block of the painter.
    const double named = (round % 6) / 5.0;
    std::bernoulli_distribution given(named), late(0.999);
    std::vector<Wire_Row> rows(static_cast<std::size_t>(round * 23 + 1));
    for (Wire_Row& row : rows) {
      row.FeedMove = given(random);
      for (std::size_t k = 0; k < 3; ++k) {
        if (given(random) && (k != 2 || late(random))) row.From[k] = coordinate(random);
        if (given(random)) row.To[k] = coordinate(random);
      }
    }
    Line_Memory expected_memory{1, 2, 3, 4, 5, 6}, memory = expected_memory;
    Display_List list;
    Wire_Pens pens(0, Palette());
    for (const Wire_Row& row : rows) pens.Append_To(list, Make_Wire(row));
    list.Close();
    // A second painting starts from what the first one left.
    for (int painting = 0; painting < 2; ++painting) {
      const auto expected = Plainly_Drawn(rows, expected_memory, view);
      Recording_Surface surface;
      Line_Painter painter(surface, view, everything, memory);
      list.Fill_Leading(memory);
      painter.Draw(list, 0, list.Count());
      painter.Flush();
      const auto drawn = surface.Lines();
      ASSERT_EQ(drawn.size(), expected.size());
      for (std::size_t i = 0; i < drawn.size(); ++i)
        ASSERT_EQ(drawn[i], expected[i])
            << "round " << round << ", painting " << painting << ", line " << i;
      ASSERT_EQ(memory, expected_memory) << "round " << round;
    }
  }
}

}  // namespace
}  // namespace norvik
