#include "compiler/tables/program_wire.h"

#include "compiler/tables/tables_io.h"
#include "core/rounding.h"

#include <algorithm>
#include <utility>

namespace norvik {

Program_Wire_State Program_Wire;

namespace {

// As the executing table holds a wire.
void Narrow(Wire& wire) {
  try {
    wire.IPM_E = To_Int16(wire.IPM_E);
  } catch (const Fault& fault) {
    throw Fault(fault.Number, "Step " + std::to_string(wire.Step) + ": the end speed " +
                                  fault.Description + "; lower the feed of this line");
  }
  for (int axis = 5; axis <= 6; ++axis) wire.Start[axis] = wire.End[axis] = Nullable();
}

}  // namespace

std::vector<Program_Wire_State::Run> Program_Wire_State::Index_Of(const Record_List<Wire>& rows) {
  std::vector<Run> runs;
  for (std::uint32_t k = 0; k < rows.size(); ++k) {
    if (runs.empty() || runs.back().Step != rows[k].Step) {
      runs.push_back({rows[k].Step, k, 1});
    } else {
      ++runs.back().Count;
    }
  }
  const auto by_step = [](const Run& a, const Run& b) {
    return a.Step != b.Step ? a.Step < b.Step : a.First < b.First;
  };
  if (!std::is_sorted(runs.begin(), runs.end(), by_step)) {
    std::sort(runs.begin(), runs.end(), by_step);
  }
  return runs;
}

std::optional<std::size_t> Program_Wire_State::Next_Of_Step(std::int32_t step,
                                                            std::size_t from) const {
  // The first run of the step that reaches beyond `from`.
  const auto run = std::partition_point(Runs.begin(), Runs.end(), [&](const Run& at) {
    return at.Step < step || (at.Step == step && at.First + at.Count <= from);
  });
  if (run == Runs.end() || run->Step != step) return std::nullopt;
  return std::max<std::size_t>(from, run->First);
}

void Program_Wire_State::Take(Table<Wire>&& wires) {
  Table<Wire> taken = std::move(wires);
  taken.Rows.Cut_To(Wire_Table_Limit);
  for (Wire& wire : taken.Rows) Narrow(wire);
  std::vector<Run> runs = Index_Of(taken.Rows);
  Wires = std::move(taken);
  Runs = std::move(runs);
  Of_Goto = false;
}

void Take_Program_Wire(Table<Wire>&& wires) {
  Program_Wire.Take(std::move(wires));
}

void Load_Program_Wire(const std::string& path) {
  Program_Wire.Take(Read_Wire_Table(path, Wire_Table_Limit));
}

}  // namespace norvik
