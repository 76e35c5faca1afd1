#include "import/excellon/import.h"

#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/excellon/reader.h"
#include "import/excellon/table.h"
#include "import/pipeline/gcode.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/path_sort.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr std::string_view Fault_Name = "NC File Load Error";
constexpr std::int32_t Rounds_Per_Yield = 50;

void Sort_Holes(std::vector<Excellon_Hole>& holes, Point_Tree::Point& position) {
  std::vector<Point_Tree::Point> points;
  points.reserve(holes.size());
  for (const Excellon_Hole& hole : holes) points.push_back({hole.X, hole.Y});
  const auto steps = Sort_Path(points, Path_Rows::Points, position, [](std::int32_t done) {
    if (done % Rounds_Per_Yield == 0) DoEvents();
    return !Application.EscFlag;
  });
  std::vector<Excellon_Hole> sorted;
  sorted.reserve(holes.size());
  for (const Path_Step& step : steps) sorted.push_back(holes[static_cast<std::size_t>(step.Row)]);
  holes = std::move(sorted);
}

void Print_Holes(GCode_File& file, const Excellon_Tool& tool, double travel) {
  const double depth = Decimal_Of(MachineSetup.Axis_Tool_Height[1]);
  Yield_Counter yields(Rounds_Per_Yield);
  for (const Excellon_Hole& hole : tool.Holes) {
    if (Application.EscFlag) return;
    yields.Round();
    file.Rapid_XY_Formatted(Double_Of_Text(hole.X), Double_Of_Text(hole.Y));
    file.Cut_Z_Formatted(depth);
    for (const auto& [x, y] : hole.Path) {
      file.Cut_XY_Formatted(Double_Of_Text(x), Double_Of_Text(y));
    }
    file.Rapid_Z_Formatted(travel);
    if (MachineSetup.Auto_Dwell_Insertion) file.Line("G04");
  }
}

// The tool line stands behind the stop, so that it shows while the operator changes the drill.
void Print_Tool(GCode_File& file, std::int32_t number, double travel, double share) {
  const Excellon_Tool& tool = Excellon_Table.Tool[number];
  const bool mist = MachineSetup.Auto_Mist_OnOff_Insertion;
  const bool flood = MachineSetup.Auto_Flood_OnOff_Insertion;
  file.Line("M05");
  if (mist || flood) file.Line("M09");
  file.Line("M01");
  file.Line("T" + std::to_string(number) + " [TOOL DIAMETER " + General_Text(tool.Size) + " ]");
  file.Line("M03");
  if (mist) file.Line("M07");
  if (flood) file.Line("M08");
  Import_Progress("NC Conversion: Converting Data ", share, "% completed");
  Print_Holes(file, tool, travel);
}

void Place_Holes() {
  if (!Is_Placed()) return;
  const Placing placing([](Drawing_Extent& extent, const Placing& turned) {
    const auto take = [&](float x, float y) {
      const Placed_Point at = turned(x, y);
      extent.Take(at.X, at.Y);
    };
    for (const Excellon_Tool& tool : Excellon_Table.Tool) {
      for (const Excellon_Hole& hole : tool.Holes) {
        take(hole.X, hole.Y);
        for (const auto& [x, y] : hole.Path) take(x, y);
      }
    }
  });
  const auto place = [&](float& x, float& y) {
    const Placed_Point at = placing(x, y);
    x = To_Single(at.X);
    y = To_Single(at.Y);
  };
  for (Excellon_Tool& tool : Excellon_Table.Tool) {
    for (Excellon_Hole& hole : tool.Holes) {
      place(hole.X, hole.Y);
      for (auto& [x, y] : hole.Path) place(x, y);
    }
  }
}

// The tool list as the machine file keeps it.
void Save_Tool_Sizes() {
  Write_Setup_Together([] {
    for (int tool = Tools.Diameter.first; tool <= Tools.Diameter.last; ++tool) {
      WriteSetup("Tools", "ToolSize" + std::to_string(tool), General_Text(Tools.Diameter[tool]));
    }
  });
}

}  // namespace

std::vector<std::int32_t> Excellon_Tools_To_Drill() {
  std::vector<std::int32_t> tools;
  if (!Excellon_Table.By_Number) {
    for (std::int32_t tool = 1; tool <= Excellon_Tools_Drilled(); ++tool) tools.push_back(tool);
    return tools;
  }
  for (std::int32_t tool = 0; tool <= Excellon_Table.Tool.last; ++tool) {
    if (!Excellon_Table.Tool[tool].Holes.empty()) tools.push_back(tool);
  }
  return tools;
}

void Excellon_Sort_Step() {
  if (!MachineSetup.Excellon_Sort_Location) return;
  Trap(Fault_Name, [] {
    Point_Tree::Point position;
    const std::vector<std::int32_t> drilled = Excellon_Tools_To_Drill();
    for (const std::int32_t tool : drilled) {
      if (Application.EscFlag) return;
      Import_Progress("NC Conversion: Sorting Data ", static_cast<double>(tool) / drilled.back(),
                      "% completed");
      Sort_Holes(Excellon_Table.Tool[tool].Holes, position);
    }
  });
}

bool Excellon_Write_GCode() {
  const double travel = Decimal_Of(MachineSetup.Axis_Tool_Height[0]);
  return Write_Program(Import_Kind::Excellon, Fault_Name, travel, [&](GCode_File& file) {
    file.Rapid_Z_Formatted(travel);
    file.Rapid_XY_Formatted(0, 0);
    const std::vector<std::int32_t> drilled = Excellon_Tools_To_Drill();
    for (const std::int32_t tool : drilled) {
      if (Application.EscFlag) return;
      Print_Tool(file, tool, travel, static_cast<double>(tool) / drilled.back());
    }
  });
}

bool Import_Excellon_File(const std::string& path) {
  return Run_Import(Import_Kind::Excellon, path, "", [&] {
    Excellon_Table = {};
    Excellon_Load(path);
    Place_Holes();
    Excellon_Sort_Step();
    const bool written = Excellon_Write_GCode();
    Excellon_Table = {};
    Save_Tool_Sizes();
    return written;
  });
}

}  // namespace norvik
