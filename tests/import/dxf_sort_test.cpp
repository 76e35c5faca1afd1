// The entity sort against a plain transcription of its rules, on thousands of drawings.
#include "import/dxf/layers.h"
#include "import/dxf/sort.h"
#include "import/dxf/table.h"
#include "import/pipeline/distance.h"
#include "import_fixture.h"
#include "plain_dxf_sort.h"

#include <algorithm>

namespace norvik {
namespace {

// --- Drawings ------------------------------------------------------------------------------------

using Random = std::mt19937;

int Pick(Random& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

struct Drawing_Kind {
  int Rows;        // at most
  int Grid;        // points lie on so many grid lines in X and Y; few give many ties
  double Spacing;  // of the grid
  double Jitter;   // moves points off the grid by up to this
  int Z_Levels;    // 0: no Z anywhere
  bool Missing_Z;  // some Z are missing
  float Tolerance;
  bool Chained;  // rows continue where the row before ended, then are shuffled
};

std::vector<DXF_Row> Drawing(Random& random, const Drawing_Kind& kind) {
  std::uniform_real_distribution<double> shift(-kind.Jitter, kind.Jitter);
  const auto coordinate = [&] { return Pick(random, 0, kind.Grid) * kind.Spacing + shift(random); };
  const auto depth = [&]() -> Nullable {
    if (kind.Z_Levels == 0 || (kind.Missing_Z && Pick(random, 0, 2) == 0)) return {};
    return -0.1 * Pick(random, 1, kind.Z_Levels);
  };
  std::vector<DXF_Row> rows(static_cast<std::size_t>(Pick(random, 0, kind.Rows)));
  int number = 0;
  for (std::size_t n = 0; n < rows.size(); ++n) {
    DXF_Row& row = rows[n];
    row = {coordinate(), coordinate(), coordinate(), coordinate(), depth(), depth(), {}, {}, {}, 0};
    if (kind.Chained && n > 0 && Pick(random, 0, 5) > 0) {
      row.X1 = rows[n - 1].X2;
      row.Y1 = rows[n - 1].Y2;
      row.Z1 = rows[n - 1].Z2;
    }
    if (Pick(random, 0, 8) == 0) {  // a point or a closed arc
      row.X2 = row.X1;
      row.Y2 = row.Y1;
      row.Z2 = row.Z1;
    }
    if (Pick(random, 0, 3) == 0) row.Type = static_cast<std::int16_t>(Pick(random, 2, 3));
    row.I = number++;  // tells the row from others like it
    if (kind.Chained && Pick(random, 0, 1) == 0) Reverse_Row(row);
  }
  if (Pick(random, 0, 3) > 0) std::shuffle(rows.begin(), rows.end(), random);
  return rows;
}

std::string Text_Of(const DXF_Row& row) {
  std::ostringstream text;
  text << *row.I << ": " << row.X1 << " " << row.Y1 << " " << row.Z1.value_or(-99) << " > "
       << row.X2 << " " << row.Y2 << " " << row.Z2.value_or(-99) << " type "
       << row.Type.value_or(0);
  return text.str();
}

std::vector<std::string> Texts_Of(const std::vector<DXF_Row>& rows) {
  std::vector<std::string> texts;
  for (const DXF_Row& row : rows) texts.push_back(Text_Of(row));
  return texts;
}

struct Dxf_Sort_Test : Import_Test {
  // Sorts `rows` both ways in groups of the given sizes (the last takes the rest).
  void Compare(const std::vector<DXF_Row>& rows, std::vector<std::size_t> sizes,
               const std::string& name) {
    std::vector<DXF_Row> plain = rows;
    DXF_Entity = {};
    DXF_Entity.Rows = rows;
    Plain_Dxf_Sort sort{plain, 0.0, 0.0, {}, {}, {}, 0, 0};
    std::int64_t first = 0;
    sizes.push_back(rows.size());
    for (const std::size_t size : sizes) {
      const auto last = std::min(first + static_cast<std::int64_t>(size),
                                 static_cast<std::int64_t>(rows.size())) -
                        1;
      DXF_Entity.Groups.push_back({"", first, last});
      if (last >= first) sort.Sort_Group(first, last);
      first = last + 1;
    }
    MachineSetup.DXF_Sort_Lines = true;
    DXF_Sort_Entities_Step();
    ASSERT_EQ(Texts_Of(DXF_Entity.Rows), Texts_Of(plain)) << name;
    ASSERT_EQ(Log(), "");
  }
};

TEST_F(Dxf_Sort_Test, Orders_Like_The_Plain_Scan) {
  const Drawing_Kind kinds[] = {
      {12, 3, 1, 0, 0, false, 0.001F, false},      // ties everywhere
      {40, 4, 1, 0, 0, false, 0.001F, true},       // chains that branch and close
      {60, 40, 0.125, 0, 0, false, 0.001F, true},  // clean chains
      {60, 40, 0.125, 0, 2, true, 0.001F, true},   // depths, some missing
      {50, 6, 1, 0.0008, 0, false, 0.001F, true},  // ends that nearly meet, and some that do not
      {50, 6, 1, 0.0008, 3, true, 0.002F, true},
      {40, 5, 1, 0.3, 0, false, 0.5F, false},    // a tolerance of half the grid
      {30, 5, 1, 0.3, 2, true, 1000, false},     // everything meets everything
      {30, 4, 1, 0, 0, false, 0, true},          // nothing meets anything
      {25, 0, 1, 0, 2, true, 0.001F, false},     // all on one spot
      {25, 3, 4e6, 0, 0, false, 0.001F, false},  // beyond the first best point
      {25, 9, 1e-9, 0, 0, false, 1e-9F, true},   // microscopic
      {300, 500, 0.01, 0.004, 0, false, 0.001F, true},
  };
  constexpr int drawings = 250;
  int number = 0;
  for (const Drawing_Kind& kind : kinds) {
    MachineSetup.DXF_Line_Tolerance = kind.Tolerance;
    for (int n = 0; n < (kind.Rows > 100 ? drawings / 25 : drawings); ++n) {
      Random random(static_cast<unsigned>(++number));
      const std::vector<DXF_Row> rows = Drawing(random, kind);
      std::vector<std::size_t> sizes;
      if (n % 3 == 0) sizes.push_back(rows.size() / 3);
      Compare(rows, sizes, "drawing " + std::to_string(number));
      if (HasFatalFailure()) return;
    }
  }
}

// Rows in runs towards and away from the tool move every candidate; a star has one crowded spot.
TEST_F(Dxf_Sort_Test, Orders_Regular_Drawings_Like_The_Plain_Scan) {
  const auto line = [](double x1, double y1, double x2, double y2, double number) {
    return DXF_Row{x1, y1, x2, y2, {}, {}, number, {}, {}, 0};
  };
  constexpr int count = 150;
  std::vector<DXF_Row> away, towards, star, hatch, ring;
  for (int n = 0; n < count; ++n) {
    const double d = n;
    away.push_back(line(d, 1, d, 0.5, d));
    towards.push_back(line(count - d, 1, count - d, 0.5, d));
    star.push_back(line(50, 50, 50 + d, 50 - d * d / count, d));
    hatch.push_back(n % 2 == 0 ? line(0, d, 20, d, d) : line(20, d, 0, d, d));
    const double a = d * 2.4, b = (d + 1) * 2.4;
    ring.push_back(line(std::cos(a), std::sin(a), std::cos(b), std::sin(b), d));
  }
  for (const auto& rows : {away, towards, star, hatch, ring}) Compare(rows, {}, Text_Of(rows[1]));
}

TEST_F(Dxf_Sort_Test, Layer_Sort_Keeps_The_Order_Within_A_Layer) {
  DXF_Entity = {};
  const char* layers[] = {"b", "A", "a", "B", "A", "b", "", "A"};
  double number = 0;
  for (const char* layer : layers) {
    DXF_Row row;
    row.X1 = number++;
    row.Layer = DXF_Entity.Layers.Number_Of(layer);
    DXF_Entity.Rows.push_back(row);
  }
  MachineSetup.DXF_Sort_Layers = true;
  int shown = 0;
  Import_Host.Show_DXF_Layers = [&] { ++shown; };
  DXF_Sort_Layers_Step();
  std::vector<double> order;
  for (const DXF_Row& row : DXF_Entity.Rows) order.push_back(row.X1);
  EXPECT_THAT(order, ::testing::ElementsAre(6, 1, 4, 7, 3, 2, 0, 5));
  EXPECT_EQ(DXF_Import_Layers.Text_Layers, "\r\nA\r\nB\r\na\r\nb\r\n");
  EXPECT_EQ(shown, 1);
  ASSERT_EQ(DXF_Entity.Groups.size(), 5U);
  EXPECT_EQ(DXF_Entity.Groups[1].Start, 1);
  EXPECT_EQ(DXF_Entity.Groups[1].End, 3);
}

TEST_F(Dxf_Sort_Test, Esc_Leaves_Every_Row_Once) {
  Random random(7);
  const std::vector<DXF_Row> rows = Drawing(random, {4000, 500, 0.01, 0, 0, false, 0.001F, true});
  DXF_Entity = {};
  DXF_Entity.Rows = rows;
  DXF_Entity.Groups.push_back({"", 0, static_cast<std::int64_t>(rows.size()) - 1});
  MachineSetup.DXF_Sort_Lines = true;
  Scripted.On_Yield = [&] { Application.EscFlag = Scripted.Yields >= 3; };
  DXF_Sort_Entities_Step();
  EXPECT_EQ(Scripted.Yields, 3);
  std::vector<double> numbers;
  for (const DXF_Row& row : DXF_Entity.Rows) numbers.push_back(*row.I);
  std::sort(numbers.begin(), numbers.end());
  for (std::size_t n = 0; n < rows.size(); ++n) ASSERT_EQ(numbers[n], static_cast<double>(n));
}

}  // namespace
}  // namespace norvik
