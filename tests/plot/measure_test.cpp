#include "plot/measure.h"

#include "plot_fixture.h"

namespace norvik {
namespace {

class Measure_Test : public Plot_Test {
 protected:
  Measure_Test() {
    Plot_Host.Select_Program_Text = [this](const std::string& text) { Selected.push_back(text); };
  }
  std::vector<std::string> Selected;
};

TEST(Segments_Cross, Ends_And_Parallels) {
  struct Row {
    const char* Name;
    std::array<double, 4> Mouse, Element;
    bool Cross;
    std::optional<std::pair<double, double>> Point;
  };
  const Row rows[] = {
      {"a cross", {0, 0, 2, 2}, {0, 2, 2, 0}, true, {{1, 1}}},
      {"ends on the element", {1, -1, 1, 0}, {0, 0, 2, 0}, true, {{1, 0}}},
      {"starts on the element", {1, 0, 1, 1}, {0, 0, 2, 0}, true, {{1, 0}}},
      {"through the near end", {0, -1, 0, 1}, {0, 0, 2, 0}, true, {{0, 0}}},
      {"through the far end", {2, -1, 2, 1}, {0, 0, 2, 0}, false, {{2, 0}}},
      {"stops short", {1, -2, 1, -1}, {0, 0, 2, 0}, false, {{1, 0}}},
      {"passes by", {3, -1, 3, 1}, {0, 0, 2, 0}, false, {{3, 0}}},
      {"parallel", {0, 1, 2, 1}, {0, 0, 2, 0}, false, {}},
      {"the same line", {0, 0, 2, 0}, {0, 0, 2, 0}, false, {}},
      {"no length", {1, 0, 1, 0}, {0, 0, 2, 0}, false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    const auto& [ax1, ay1, ax2, ay2] = row.Mouse;
    const auto& [bx1, by1, bx2, by2] = row.Element;
    double x = -99, y = -99;
    EXPECT_EQ(Segments_Cross(ax1, ay1, ax2, ay2, bx1, by1, bx2, by2, x, y), row.Cross);
    EXPECT_EQ(x, row.Point ? row.Point->first : -99);
    EXPECT_EQ(y, row.Point ? row.Point->second : -99);
  }
}

TEST_F(Measure_Test, Texts) {
  Load_Program({{.From = {}, .To = {1.0, 1.0, {}}, .Text = "N1 G0 X1 Y1"},
                {.From = {1.0, 1.0, 0.0}, .To = {5.0, 1.0, 0.0}, .Text = "N2 G1 X5"},
                {.From = {5.0, 1.0, 0.0}, .To = {5.0, 4.0, 0.0}, .Text = "N3 Y4"}});
  for (Wire& wire : Program_Wire.Rows()) {
    wire.IPM_S = 2.5F;
    wire.IPM_R = 15.25F;
    wire.IPM_E = 13;
  }
  struct Row {
    const char* Name;
    std::array<double, 4> Line;
    const char* Text;
    std::optional<std::size_t> Wire;
  };
  const Row rows[] = {
      {"over nothing", {-5, -5, -2, -1}, "Measurement Length= 5", {}},
      {"no length", {3, 1, 3, 1}, "Measurement Length= 0", {}},
      {"not a round length", {-2, -2, -1, -1}, "Measurement Length= 1.414214", {}},
      {"an element",
       {3, 0, 3, 2},
       "N2 G1 X5      Start IPM=2.5   Run IPM=15.25   End IPM=13  Measurement Length= 2",
       1},
      {"the earlier of two",
       {3, 0, 6, 3},
       "N2 G1 X5      Start IPM=2.5   Run IPM=15.25   End IPM=13  Measurement Length= 4.242641",
       1},
      {"a shared end belongs to the following",
       {4, 0, 6, 2},
       "N3 Y4      Start IPM=2.5   Run IPM=15.25   End IPM=13  Measurement Length= 2.828427",
       2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    const auto& [x1, y1, x2, y2] = row.Line;
    Selected.clear();
    const Measurement report = Plot_Measure(x1, y1, x2, y2, true);
    EXPECT_EQ(report.Text, row.Text);
    EXPECT_EQ(report.Wire, row.Wire);
    EXPECT_EQ(Selected.size(), row.Wire ? 1U : 0U);
  }
  EXPECT_EQ(Selected, std::vector<std::string>{"N3 Y4"});
  Plot_Measure(3, 0, 3, 2, false);
  EXPECT_EQ(Selected.size(), 1U);

  Application.DecimalSeparator = ',';
  EXPECT_EQ(Plot_Measure(-2, -2, -1, -1, false).Text, "Measurement Length= 1,414214");
}

}  // namespace
}  // namespace norvik
