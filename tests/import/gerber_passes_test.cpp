// Cleaning, the steps over the line file, and the passes as a whole.
#include "board_generator.h"
#include "import/gerber/file_steps.h"
#include "import/gerber/passes.h"
#include "import_fixture.h"
#include "plain_isolation.h"

namespace norvik {
namespace {

using Ends = std::array<Plane_Point, 2>;

std::vector<Ends> Left(const std::vector<Clean_Line>& lines) {
  std::vector<Ends> left;
  for (const Clean_Line& line : lines) {
    if (!line.Deleted) left.push_back(line.Ends);
  }
  return left;
}

const auto Go_On = [](double) { return true; };

TEST(Clean_Test, Joins_Lines_By_The_Ends_That_Lie_On_The_Other) {
  struct Row {
    const char* Name;
    Ends I, J;
    std::vector<Ends> Expected;
  };
  const Ends i{{{0, 0}, {4, 0}}}, beside{{{0, 1}, {4, 1}}}, across{{{2, -1}, {2, 1}}};
  const Row rows[] = {
      {"overlap", i, {{{3, 0}, {6, 0}}}, {{{{0, 0}, {6, 0}}}}},
      {"end to end", i, {{{6, 0}, {4, 0}}}, {{{{0, 0}, {6, 0}}}}},
      {"within", {{{1, 0}, {2, 0}}}, i, {i}},
      {"around", i, {{{1, 0}, {2, 0}}}, {i}},
      {"one end shared, longer", {{{0, 0}, {2, 0}}}, i, {i}},
      {"equal, reversed", i, {{{4, 0}, {0, 0}}}, {i}},
      {"apart", i, {{{5, 0}, {6, 0}}}, {i, {{{5, 0}, {6, 0}}}}},
      {"beside", i, beside, {i, beside}},
      {"across", i, across, {i, across}},
      {"upright", {{{1, 0}, {1, 2}}}, {{{1, 3}, {1, 1}}}, {{{{1, 0}, {1, 3}}}}},
      {"falling", {{{0, 2}, {1, 1}}}, {{{1, 1}, {2, 0}}}, {{{{0, 2}, {2, 0}}}}},
  };
  for (const Row& row : rows) {
    std::vector<Clean_Line> lines{{row.I, 1, false}, {row.J, 1, false}};
    Clean_Lines(lines, Clean_Data_Rule, Go_On);
    EXPECT_EQ(Left(lines), row.Expected) << row.Name;
  }
  std::vector<Clean_Line> widths{{i, 1, false}, {i, 2, false}};
  Clean_Lines(widths, Clean_Data_Rule, Go_On);
  EXPECT_EQ(Left(widths).size(), 2U);
}

constexpr Board_Kind Pass_Boards[] = {{40, 3, 1, 0.02, false},     {60, 12, 0.125, 0.02, false},
                                      {60, 6, 0.1, 0.05, true},    {40, 2, 1e-7, 1, false},
                                      {40, 5, 1e33, 1, false},     {30, 2000, 0.001, 0.01, true},
                                      {300, 40, 0.05, 0.02, false}};

TEST(Clean_Test, Joins_What_The_Comparison_Of_All_Pairs_Joins) {
  unsigned seed = 0;
  int most_rounds = 0;
  for (const Board_Kind& kind : Pass_Boards) {
    for (int n = 0; n < (kind.Shapes > 100 ? 10 : 250); ++n) {
      std::mt19937 random(++seed);
      Gerber_Table_State board = Generated_Board(random, kind);
      std::vector<Clean_Line> lines;
      for (const Gerber_Line& line : board.Lines) {
        const Ends ends{{{line.X1, line.Y1}, {line.X2, line.Y2}}};
        lines.push_back({ends, line.Width, random() % 20 == 0});
      }
      for (const Clean_Rule& rule : {Clean_Data_Rule, Clean_File_Rule}) {
        std::vector<Clean_Line> fast = lines, plain = lines;
        Clean_Lines(fast, rule, Go_On);
        most_rounds = std::max(most_rounds, Plain_Clean_Lines(plain, rule));
        ASSERT_EQ(Left(fast), Left(plain)) << "board " << seed;
      }
      std::vector<Gerber_Pad> fast = board.Pads, plain = board.Pads;
      Clean_Pads(fast);
      Plain_Clean_Pads(plain);
      for (std::size_t pad = 0; pad < fast.size(); ++pad) {
        ASSERT_EQ(fast[pad].Deleted, plain[pad].Deleted) << "board " << seed;
      }
    }
  }
  EXPECT_GT(most_rounds, 2);
}

// A line that grows meets pieces that were far away from it; out of order that takes rounds.
TEST(Clean_Test, A_Chain_Becomes_One_Line) {
  std::mt19937 random(1);
  std::vector<Clean_Line> lines;
  for (int n = 0; n < 3000; ++n) {
    lines.push_back({{{{n * 0.5, 7}, {n * 0.5 + 0.5, 7}}}, 1, false});
  }
  std::vector<Clean_Line> shuffled(lines.begin(), lines.begin() + 400);
  std::shuffle(shuffled.begin(), shuffled.end(), random);
  std::vector<Clean_Line> plain = shuffled;
  Clean_Lines(lines, Clean_Data_Rule, Go_On);
  Clean_Lines(shuffled, Clean_Data_Rule, Go_On);
  EXPECT_EQ(Left(lines), (std::vector<Ends>{{{{0, 7}, {1500, 7}}}}));
  EXPECT_GT(Plain_Clean_Lines(plain, Clean_Data_Rule), 2);
  EXPECT_EQ(Left(shuffled), Left(plain));
}

// --- The line file -------------------------------------------------------------------------------

struct Passes_Test : Import_Test {
  Passes_Test() {
    Gerber_Table = {};
    MachineSetup.Gerber_Isolation = true;
    MachineSetup.Gerber_Isolation_Width = 0.0001F;
    MachineSetup.Gerber_Isolation_SmallLines_Function = true;
    MachineSetup.Gerber_Isolation_Multi_Cut_Count = 3;
    MachineSetup.Gerber_Isolation_Multi_Cut_Gap = 0.002F;
  }
  std::string Lines() const {
    return FileExists(Application.Gerber_Scratch) ? Read_Whole_File(Application.Gerber_Scratch)
                                                  : "";
  }
  std::string Passes() {
    std::remove(Application.Gerber_Scratch.c_str());
    Gerber_Isolation_Passes();
    return Lines();
  }
  std::string Cleaned(std::string_view text) {
    Store("Graftmp.txt", text);
    File_Clean(Application.Gerber_Scratch, 1);
    return Lines();
  }
  std::string Sorted(std::string_view text) {
    Store("Graftmp.txt", text);
    File_Sort(Application.Gerber_Scratch, 1);
    return Lines();
  }
};

TEST_F(Passes_Test, The_File_Is_Rounded_Joined_And_Rid_Of_Points) {
  EXPECT_EQ(Cleaned("0,0,1.000000004,0\r\n2,2,2.000000001,2\r\n1,0,3,0\r\n5,5,5,6\r\n"),
            "0,0,3,0\r\n5,5,5,6\r\n");
  // A bend of less than a tenth is cut straight.
  EXPECT_EQ(Cleaned("0,0,10,0\r\n10,0,20,0.5\r\n"), "0,0,20,0.5\r\n");
  EXPECT_EQ(Cleaned("0,0,10,0\r\n10,0,20,1\r\n"), "0,0,10,0\r\n10,0,20,1\r\n");
  EXPECT_EQ(Cleaned("0,0,1,x\r\n0,#NULL#,1,1\r\n0,0,1,1\r\n"), "0,0,1,1\r\n");
  EXPECT_NE(Log(), "");
}

TEST_F(Passes_Test, Records_Of_Different_Loads_Do_Not_Meet) {
  std::string text = "-1,0,-2,0\r\n";
  for (std::size_t n = 1; n < File_Clean_Load; ++n) {
    const std::string y = std::to_string(n);
    text += "0," + y + ",1," + y + "\r\n";
  }
  const std::string twice = "-1,0,-2,0\r\n5,0,6,0\r\n5,0,6,0\r\n";
  EXPECT_EQ(Cleaned(text + twice), text + "-1,0,-2,0\r\n5,0,6,0\r\n");
}

TEST_F(Passes_Test, The_Sort_Keeps_The_Numbers_And_Turns_Records) {
  EXPECT_EQ(Sorted("9,9,8,8\r\n2,1,1.12345678,0\r\n8,8,2,1\r\n"),
            "1.12345678,0,2,1\r\n2,1,8,8\r\n8,8,9,9\r\n");
  // The slot's own record starts at the tool: a later equal one is not looked for.
  EXPECT_EQ(Sorted("0,0,1,1\r\n0,0,2,2\r\n"), "0,0,1,1\r\n0,0,2,2\r\n");
}

// --- The passes ----------------------------------------------------------------------------------

TEST_F(Passes_Test, Equal_Pads_Are_Cut_Once_Or_Twice) {
  Gerber_Table.Pads = {{1, 1, 0.2F, 0.2F, 'R', false}, {1, 1, 0.2F, 0.2F, 'R', false}};
  const std::string once =
      "0.8999,1.1001,1.1001,1.1001\r\n1.1001,1.1001,1.1001,0.8999\r\n"
      "1.1001,0.8999,0.8999,0.8999\r\n0.8999,0.8999,0.8999,1.1001\r\n";
  EXPECT_EQ(Passes(), once + once);
  MachineSetup.Gerber_Isolation_Cleanup_Lines = true;
  EXPECT_EQ(Passes(), once);
  MachineSetup.Gerber_Isolation_Cleanup_Lines = false;
  MachineSetup.Gerber_Clean_Data = true;
  EXPECT_EQ(Passes(), once);
}

TEST_F(Passes_Test, Each_Pass_Lies_Farther_Out_And_Repeats_The_Thin_Lines) {
  MachineSetup.Gerber_Isolation_Multi_Cut_Lines = true;
  Gerber_Table.Pads = {{1, 1, 0.2F, 0.2F, 'R', false}};
  Gerber_Table.Thin_Lines = {{5, 5, 6, 6}, {7, 7, 7, 7}};
  const std::vector<std::string> lines = Split_Lines(Passes());
  ASSERT_EQ(lines.size(), 15U);
  EXPECT_EQ(lines[0], "0.8999,1.1001,1.1001,1.1001");
  EXPECT_EQ(lines[5], "0.8979,1.1021,1.1021,1.1021");
  EXPECT_EQ(lines[10], "0.8959,1.1041,1.1041,1.1041");
  for (const std::size_t n : {4U, 9U, 14U}) EXPECT_EQ(lines[n], "5,5,6,6");
  EXPECT_TRUE(Gerber_Table.Thin_Lines.empty());

  MachineSetup.Gerber_Isolation_Multi_Cut_Count = 0;
  EXPECT_EQ(Passes(), "");
  EXPECT_THAT(Import_Report.Notes, ::testing::Contains(::testing::HasSubstr("Set the count")));
}

TEST_F(Passes_Test, Without_Isolation_Every_Edge_Is_Cut) {
  MachineSetup.Gerber_Isolation = false;
  Gerber_Table.Pads = {{1, 1, 0.2F, 0.2F, 'R', false}, {1.1F, 1, 0.2F, 0.2F, 'O', false}};
  EXPECT_EQ(Split_Lines(Passes()).size(), 4U + 8U);
}

// Every line of the file is whole, whenever the operator stops.
TEST_F(Passes_Test, Escape_Leaves_Whole_Records) {
  std::mt19937 random(4);
  const Gerber_Table_State board = Generated_Board(random, {40, 60, 0.0125, 0.06, false});
  MachineSetup.Gerber_Clean_Data = MachineSetup.Gerber_Isolation_Cleanup_Lines =
      MachineSetup.Gerber_Isolation_Sort_Lines = true;
  std::size_t shortest = 1'000'000, longest = 0;
  for (int stop = 0; stop < 120; ++stop) {
    Gerber_Table = board;
    Application.EscFlag = false;
    int turns = 0;
    Scripted.On_Yield = [&] { Application.EscFlag = Application.EscFlag || ++turns > stop; };
    const std::vector<std::string> lines = Split_Lines(Passes());
    for (const std::string& line : lines) EXPECT_EQ(std::count(line.begin(), line.end(), ','), 3);
    shortest = std::min(shortest, lines.size());
    longest = std::max(longest, lines.size());
  }
  EXPECT_EQ(shortest, 0U);
  EXPECT_GT(longest, 40U);
  EXPECT_EQ(Log(), "");
}

TEST_F(Passes_Test, A_Shape_That_Does_Not_Fit_Is_Logged_And_Left_Out) {
  Gerber_Table.Pads = {{3e38F, 0, 3e38F, 1, 'R', false}, {1, 1, 0.2F, 0.2F, 'R', false}};
  EXPECT_EQ(Split_Lines(Passes()).size(), 4U);
  EXPECT_THAT(Log(), ::testing::HasSubstr("Get_Gerber_DataFile_Error"));
}

}  // namespace
}  // namespace norvik
