#include "compiler/tables/program_wire.h"

#include "compiler/tables/tables_io.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <utility>

namespace norvik {

Program_Wire_State Program_Wire;
Program_Wire_Host_Operations Program_Wire_Host;

namespace {

// As the executing table holds a wire.
void Narrow(Wire& wire) {
  try {
    const std::int16_t whole = To_Int16(wire.IPM_E);
    if (!MachineSetup.Drop_Rounding_Of_Loads) wire.IPM_E = whole;
  } catch (const Fault& fault) {
    throw Fault(fault.Number, "Step " + std::to_string(wire.Step) + ": the end speed " +
                                  fault.Description + "; lower the feed of this line");
  }
  for (int axis = 5; axis <= 6; ++axis) wire.Start[axis] = wire.End[axis] = Nullable();
}

}  // namespace

std::optional<std::size_t> Program_Wire_State::Next_Of_Step(std::int32_t step,
                                                            std::size_t from) const {
  // The first run of the step that reaches beyond `from`.
  const auto run = std::partition_point(Runs.begin(), Runs.end(), [&](const Run& at) {
    return at.Step < step || (at.Step == step && at.First + at.Count <= from);
  });
  if (run == Runs.end() || run->Step != step) return std::nullopt;
  return std::max<std::size_t>(from, run->First);
}

std::optional<std::int32_t> Program_Wire_State::First_Scattered_Step() const {
  const auto same_step = [](const Run& a, const Run& b) { return a.Step == b.Step; };
  const auto found = std::adjacent_find(Runs.begin(), Runs.end(), same_step);
  return found == Runs.end() ? std::nullopt : std::optional(found->Step);
}

void Program_Wire_State::Install(Table<Wire>&& wires, Table_Origin&& origin) {
  Table<Wire> taken = std::move(wires);
  taken.Rows.Cut_To(Wire_Table_Limit);
  // Narrowed and indexed in one walk over what may be 200 MB.
  std::vector<Run> runs;
  std::uint32_t k = 0;
  bool sorted = true;
  for (Wire& wire : taken.Rows) {
    Narrow(wire);
    if (runs.empty() || runs.back().Step != wire.Step) {
      sorted = sorted && (runs.empty() || runs.back().Step < wire.Step);
      runs.push_back({wire.Step, k, 0});
    }
    ++runs.back().Count;
    ++k;
  }
  if (!sorted) {
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) {
      return a.Step != b.Step ? a.Step < b.Step : a.First < b.First;
    });
  }
  if (origin.Kind != Table_Kind::Goto) {
    Aside.reset();
  } else if (!Aside) {
    Aside = Set_Aside{std::move(Wires), std::move(Runs), std::move(From)};
  }
  Wires = std::move(taken);
  Runs = std::move(runs);
  From = std::move(origin);
}

bool Program_Wire_State::Put_Back() {
  if (!Aside) return false;
  Wires = std::move(Aside->Wires);
  Runs = std::move(Aside->Runs);
  From = std::move(Aside->From);
  Aside.reset();
  return true;
}

void Install_Table(Table<Wire>&& wires, Table_Origin origin) {
  Program_Wire.Install(std::move(wires), std::move(origin));
  Program_Wire_Host.Installed();
}

void Put_Back_Table() {
  if (Program_Wire.Put_Back()) Program_Wire_Host.Installed();
}

void Load_Program_Wire(const std::string& path, Table_Origin origin) {
  Install_Table(Read_Wire_Table(path, Wire_Table_Limit), std::move(origin));
}

std::int32_t Last_Program_Step() {
  const bool of_file = Program_Wire.Program_Origin().Kind == Table_Kind::Motion_File;
  return of_file ? Program_Wire.Program_Last_Step() : GCodeLineCount();
}

namespace {

Table_Judgement Judge(const Table_Origin& origin) {
  if (origin.Kind == Table_Kind::Goto) return {Table_Standing::Of_Goto, {}};
  if (origin.Kind == Table_Kind::None) return {Table_Standing::Other_Text, {}};
  if (origin.Sources && (GCode_Program.Typed_Waits || !Is_Of_Present_Text(*origin.Sources)))
    return {Table_Standing::Other_Text, {}};
  if (!origin.Whole) return {Table_Standing::Cut_Short, {}};
  if (!origin.Sources || origin.Kind == Table_Kind::Motion_File) return {};
  std::string changed = Changed_Source(*origin.Sources);
  if (changed.empty()) return {};
  return {Table_Standing::Other_Sources, std::move(changed)};
}

}  // namespace

Table_Judgement Judge_Table() {
  return Judge(Program_Wire.Origin());
}

Table_Judgement Judge_Program_Table() {
  return Judge(Program_Wire.Program_Origin());
}

}  // namespace norvik
