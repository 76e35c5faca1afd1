// The executing table and its way from a step to its wires.
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/setup.h"

#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::ElementsAre;

Table<Wire> Wires_Of(const std::vector<std::int32_t>& steps) {
  Table<Wire> table;
  for (const std::int32_t step : steps) {
    Wire wire;
    wire.Step = step;
    table.Rows.push_back(wire);
  }
  return table;
}

TEST(Program_Wire_Table, Narrows_What_It_Takes) {
  struct Row {
    float File, Table;
  };
  const Row rows[] = {{12.7F, 13}, {12.5F, 12}, {13.5F, 14}, {-0.4F, 0}, {32767, 32767}};
  const std::string path =
      testing::TempDir() + std::to_string(::getpid()) + "norvik_program_wire.csv";
  Table<Wire> table;
  for (const Row& row : rows) {
    Wire wire;
    wire.IPM_E = row.File;
    wire.IPM_R = 12.7F;
    wire.Start = wire.End = {{1, 2, 3, 4, 5, 6}};
    table.Rows.push_back(wire);
  }
  Write_Wire_Table(path, table);
  Load_Program_Wire(path, {});
  std::filesystem::remove(path);
  ASSERT_EQ(Program_Wire.Count(), std::size(rows));
  for (std::size_t k = 0; k < std::size(rows); ++k) {
    EXPECT_EQ(Program_Wire.Rows()[k].IPM_E, rows[k].Table);
  }
  EXPECT_EQ(Program_Wire.Rows()[0].IPM_R, 12.7F);
  EXPECT_EQ(Program_Wire.Rows()[0].Start, (Indexed<Nullable, 1, 6>{{1, 2, 3, 4}}));

  // With the correction the end speed stays that of the file.
  MachineSetup.Drop_Rounding_Of_Loads = true;
  Write_Wire_Table(path, table);
  Load_Program_Wire(path, {});
  std::filesystem::remove(path);
  for (std::size_t k = 0; k < std::size(rows); ++k) {
    EXPECT_EQ(Program_Wire.Rows()[k].IPM_E, rows[k].File);
  }
  MachineSetup.Drop_Rounding_Of_Loads = false;

  // What cannot be taken leaves the table of before.
  table.Rows[1].IPM_E = 40'000;
  EXPECT_THROW(Install_Table(std::move(table)), Fault);
  EXPECT_THROW(Load_Program_Wire(path, {}), Fault);
  EXPECT_EQ(Program_Wire.Count(), std::size(rows));
}

TEST(Program_Wire_Table, Stops_At_Its_Limit) {
  Table<Wire> table;
  for (std::size_t k = 0; k < Wire_Table_Limit + 5; ++k) table.Rows.push_back(Wire());
  Install_Table(std::move(table));
  EXPECT_EQ(Program_Wire.Count(), Wire_Table_Limit);
  Install_Table({});
  EXPECT_EQ(Program_Wire.Count(), 0U);
}

// The index against a scan of the whole table, with runs, repeats and steps out of order.
TEST(Program_Wire_Table, Finds_The_Wires_Of_A_Step) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::int32_t> steps;
    while (steps.size() < random() % 60) {
      const auto step = static_cast<std::int32_t>(random() % 8) - 1;
      steps.insert(steps.end(), 1 + random() % 4, step);
    }
    Install_Table(Wires_Of(steps));
    for (std::int32_t step = -2; step < 9; ++step) {
      std::vector<std::size_t> found, expected;
      for (auto k = Program_Wire.Next_Of_Step(step, 0); k;
           k = Program_Wire.Next_Of_Step(step, *k + 1)) {
        found.push_back(*k);
      }
      for (std::size_t k = 0; k < steps.size(); ++k) {
        if (steps[k] == step) expected.push_back(k);
      }
      ASSERT_EQ(found, expected);
    }
  }
}

}  // namespace
}  // namespace norvik
