#include "import/gerber/file_steps.h"

#include "core/application.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "import/gerber/clean.h"
#include "import/gerber/lines.h"
#include "import/pipeline/path_sort.h"
#include "platform/platform.h"

namespace norvik {

namespace {

constexpr std::string_view Sort_Fault_Name = "GCode File Sort Error";
constexpr std::int32_t Records_Per_Yield = 500, Rounds_Per_Yield = 50;

std::string Pass_Text(int pass, std::string_view text) {
  return "Pass #" + std::to_string(pass) + std::string(text);
}

// The records with some length of the next load, rounded; fewer at the end of the file.
void Read_Load(Gerber_Line_Reader& reader, Yield_Counter& yields, std::vector<Clean_Line>& lines) {
  lines.clear();
  Gerber_Cut cut;
  while (lines.size() < File_Clean_Load && reader.Read(cut)) {
    yields.Round();
    for (Plane_Point* point : {&cut.From, &cut.To}) *point = {Round8(point->X), Round8(point->Y)};
    if (cut.From != cut.To) lines.push_back({{cut.From, cut.To}, 0, false});
  }
}

std::vector<Gerber_Cut> Read_All(const std::string& line_file) {
  std::vector<Gerber_Cut> cuts;
  Gerber_Line_Reader reader(line_file, Sort_Fault_Name);
  Yield_Counter yields(Records_Per_Yield);
  Gerber_Cut cut;
  while (reader.Read(cut)) {
    yields.Round();
    cuts.push_back(cut);
  }
  return cuts;
}

void Sort_File(const std::string& line_file, int pass) {
  const std::vector<Gerber_Cut> cuts = Read_All(line_file);
  std::vector<Point_Tree::Point> ends;
  ends.reserve(cuts.size() * 2);
  for (const Gerber_Cut& cut : cuts) {
    for (const Plane_Point& point : {cut.From, cut.To}) {
      ends.push_back({To_Single(point.X), To_Single(point.Y)});
    }
  }
  const std::string before = Pass_Text(pass, "   File Sort: Sorting Data... ");
  const auto total = static_cast<double>(cuts.size());
  Point_Tree::Point position;
  const auto steps = Sort_Path(ends, Path_Rows::Lines_To_Meeting, position, [&](std::int32_t done) {
    if (done % Rounds_Per_Yield == 0) {
      Import_Progress(before, done / total, "% Completed, press ESC to cancel");
      DoEvents();
    }
    return !Application.EscFlag;
  });

  Gerber_Line_Replacement file(line_file);
  for (const Path_Step& step : steps) {
    Gerber_Cut cut = cuts[static_cast<std::size_t>(step.Row)];
    if (step.Reversed) std::swap(cut.From, cut.To);
    file.Write(cut);
  }
  file.Commit();
}

void Clean_File(const std::string& line_file, int pass) {
  Clean_Progress progress(Pass_Text(pass, "   File Sort: Cleaning Lines... "));
  Gerber_Line_Reader reader(line_file, Gerber_Fault_Name);
  Gerber_Line_Replacement file(line_file);
  Yield_Counter yields(Records_Per_Yield);
  std::vector<Clean_Line> lines;
  do {
    Read_Load(reader, yields, lines);
    Clean_Lines(lines, Clean_File_Rule, std::ref(progress));
    for (const Clean_Line& line : lines) {
      if (!line.Deleted) file.Write({line.Ends[0], line.Ends[1]});
    }
  } while (lines.size() == File_Clean_Load);
  file.Commit();
}

}  // namespace

void File_Clean(const std::string& line_file, int pass) {
  if (Application.EscFlag || !FileExists(line_file)) return;
  Import_Status("File Clean: Cleaning Data...");
  Trap(Gerber_Fault_Name, [&] { Clean_File(line_file, pass); });
}

void File_Sort(const std::string& line_file, int pass) {
  if (Application.EscFlag || !FileExists(line_file)) return;
  Import_Status("File Sort: Sorting Data...");
  Trap(Sort_Fault_Name, [&] { Sort_File(line_file, pass); });
}

void Write_Thin_Lines(const std::vector<Thin_Line>& lines, const std::string& line_file, int pass) {
  if (lines.empty()) return;
  const std::string before = Pass_Text(pass, "   Isolation Process: Writing Lines...");
  Trap(Gerber_Fault_Name, [&] {
    Gerber_Line_Appender file(line_file);
    double written = 0;
    for (const Thin_Line& line : lines) {
      if (Application.EscFlag) break;
      if (static_cast<std::int64_t>(written) % Rounds_Per_Yield == 0) {
        Import_Progress(before, written / static_cast<double>(lines.size()), "% completed",
                        "##.00");
        DoEvents();
      }
      ++written;
      const Gerber_Cut cut{{line.X1, line.Y1}, {line.X2, line.Y2}};
      if (cut.From != cut.To) file.Write(cut);
    }
    file.Close();
  });
}

}  // namespace norvik
