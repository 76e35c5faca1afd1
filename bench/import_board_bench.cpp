// Board artwork: seconds of each stage of the isolation passes at three sizes, and polygons and
// cleaning against the plain comparison of all with all.
//
//   import_board_bench [--plain] [TRACKS...]      half as many pads; 200, 2,000 and 10,000 by
//   default
//
// The plain versions grow with the square of the shapes; they run on boards of up to 2,000 tracks
// by themselves.
#include "../tests/import/plain_isolation.h"
#include "../tests/import/plain_path_sort.h"
#include "bench_inputs.h"
#include "core/application.h"
#include "core/setup.h"
#include "import/gerber/file_steps.h"
#include "import/gerber/passes.h"
#include "import/pipeline/report.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iterator>

#include <sys/resource.h>

namespace norvik {
namespace {

// Processor time, so that other work on the machine counts little.
double Seconds(const auto& body) {
  const std::clock_t start = std::clock();
  body();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Tracks in steps of 45 degrees, 0.1 to 0.6 long, that cross freely; two of three start at a pad,
// one in ten goes on from the one before. 50 tracks and 25 pads to the square inch at every size.
Gerber_Table_State Board(int tracks) {
  struct Pad_Kind {
    float X, Y;
    char Shape;
  };
  constexpr Pad_Kind kinds[] = {{0.06F, 0.06F, 'C'},
                                {0.06F, 0.06F, 'R'},
                                {0.05F, 0.08F, 'O'},
                                {0.03F, 0.08F, 'R'},
                                {0.04F, 0.04F, 'C'}};
  constexpr float widths[] = {0.01F, 0.012F, 0.02F};
  constexpr int ways[][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
  constexpr int margin = 4, pitches_an_inch = 40, tracks_a_square_inch = 50;
  const int side =
      static_cast<int>(std::sqrt(1.0 * tracks / tracks_a_square_inch) * pitches_an_inch);
  const auto inches = [](int pitches) {
    return static_cast<float>(static_cast<double>(pitches) / pitches_an_inch);
  };
  bench::Random random;
  const auto place = [&] { return random.Whole(margin, side + margin); };
  Gerber_Table_State board;
  std::vector<std::pair<int, int>> pads;
  for (int n = 0; n < tracks / 2; ++n) {
    const Pad_Kind kind = kinds[random.Whole(0, std::size(kinds) - 1)];
    pads.emplace_back(place(), place());
    board.Pads.push_back(
        {inches(pads.back().first), inches(pads.back().second), kind.X, kind.Y, kind.Shape, false});
  }
  int x = margin, y = margin;
  for (int n = 0; n < tracks; ++n) {
    const int start = random.Whole(0, 9);
    if (start > 6) {
      x = place();
      y = place();
    } else if (start > 0) {
      std::tie(x, y) = pads[static_cast<std::size_t>(random.Whole(0, tracks / 2 - 1))];
    }
    int to_x = -1, to_y = -1;
    while (std::min(to_x, to_y) < 0 || std::max(to_x, to_y) > side + 2 * margin) {
      const auto& way = ways[random.Whole(0, std::size(ways) - 1)];
      const int length = random.Whole(4, 24);
      to_x = x + way[0] * length;
      to_y = y + way[1] * length;
    }
    board.Lines.push_back({inches(to_x), inches(to_y), inches(x), inches(y),
                           widths[random.Whole(0, std::size(widths) - 1)], false});
    x = to_x;
    y = to_y;
  }
  return board;
}

constexpr double Extra = 0.0001;
constexpr int Pass = 1;

const std::string& Line_File() {
  return Application.Gerber_Scratch;
}

std::size_t Records() {
  Gerber_Line_Reader reader(Line_File(), "bench");
  Gerber_Cut cut;
  std::size_t records = 0;
  while (reader.Read(cut)) ++records;
  return records;
}

// Without the file: the searches alone.
void Print_Ratio(const char* stage, double seconds, double plain) {
  std::printf("    %-10s %.4f s, plain %.3f s, ratio %.0f\n", stage, seconds, plain,
              plain / seconds);
}

std::vector<Clean_Line> Lines_Of(const Gerber_Table_State& board) {
  std::vector<Clean_Line> lines;
  for (const Gerber_Line& line : board.Lines) {
    lines.push_back({{{{line.X1, line.Y1}, {line.X2, line.Y2}}}, line.Width, false});
  }
  return lines;
}

std::vector<Plain_Stroke> Strokes_In_File() {
  std::vector<Plain_Stroke> strokes;
  Gerber_Line_Reader reader(Line_File(), "bench");
  Gerber_Cut cut;
  while (reader.Read(cut)) {
    strokes.push_back({static_cast<float>(cut.From.X), static_cast<float>(cut.From.Y),
                       static_cast<float>(cut.To.X), static_cast<float>(cut.To.Y), 0, false});
  }
  return strokes;
}

void Print(int tracks, bool plain) {
  const Gerber_Table_State board = Board(tracks);
  double polygons = 1e9, isolation = 1e9, clean = 1e9, file_clean = 1e9, file_sort = 1e9;
  double passes = 1e9, all_passes = 1e9;
  std::size_t kept = 0, cleaned = 0;
  Iso_Polygon table;
  std::vector<Plain_Stroke> strokes;
  constexpr int runs = 5, one_sort_from = 5000;
  for (int run = 0; run < runs; ++run) {
    std::remove(Line_File().c_str());
    const bool sort = run == 0 || tracks < one_sort_from;
    polygons = std::min(polygons, Seconds([&] {
                          table = Make_Polygons(board, Extra);
                          table.Analyze_Bounds();
                        }));
    isolation = std::min(isolation, Seconds([&] { Isolate_Polygons(table, Pass, Line_File()); }));
    kept = Records();
    Gerber_Table_State copy = board;
    clean = std::min(clean, Seconds([&] { Gerber_Clean(copy, Pass); }));
    file_clean = std::min(file_clean, Seconds([&] { File_Clean(Line_File(), Pass); }));
    cleaned = Records();
    strokes = Strokes_In_File();
    if (sort) file_sort = std::min(file_sort, Seconds([&] { File_Sort(Line_File(), Pass); }));
    for (const bool options : {false, true}) {
      if (options && !sort) break;
      std::remove(Line_File().c_str());
      Gerber_Table = board;
      MachineSetup.Gerber_Isolation = true;
      MachineSetup.Gerber_Clean_Data = MachineSetup.Gerber_Isolation_Cleanup_Lines =
          MachineSetup.Gerber_Isolation_Sort_Lines = options;
      double& best = options ? all_passes : passes;
      best = std::min(best, Seconds([] { Gerber_Isolation_Passes(); }));
    }
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf(
      "%6d tracks  %6d polygons  polygons %.4f  isolation %.4f (%zu records)  cleaning %.4f  "
      "File_Clean %.4f (%zu left)  File_Sort %.4f  passes %.4f, with cleaning and sorting %.4f s  "
      "peak %.0f MB\n",
      tracks, table.Polygon_Total(), polygons, isolation, kept, clean, file_clean, cleaned,
      file_sort, passes, all_passes, static_cast<double>(usage.ru_maxrss) / 1024);
  if (!plain && tracks > 2000) return;
  Plain_Isolation reference{table, {}, {}};
  Print_Ratio("isolation", isolation, Seconds([&] { reference.Run(); }));
  std::vector<Clean_Line> lines = Lines_Of(board);
  Print_Ratio("cleaning", clean, Seconds([&] { Plain_Clean_Lines(lines, Clean_Data_Rule); }));
  lines.clear();
  for (const Gerber_Cut& cut : reference.Written) lines.push_back({{cut.From, cut.To}, 0, false});
  Print_Ratio("File_Clean", file_clean,
              Seconds([&] { Plain_Clean_Lines(lines, Clean_File_Rule); }));
  Print_Ratio("File_Sort", file_sort, Seconds([&] { Plain_Stroke_Sort(strokes, true); }));
}

}  // namespace
}  // namespace norvik

int main(int count, char** arguments) {
  using namespace norvik;
  Application.Gerber_Scratch =
      (std::filesystem::temp_directory_path() / "norvik_bench_board.txt").string();
  Restore_Factory_Setup();
  std::vector<std::string> sizes(arguments + 1, arguments + count);
  const bool plain = std::erase(sizes, "--plain") > 0;
  if (sizes.empty()) sizes = {"200", "2000", "10000"};
  for (const std::string& tracks : sizes) Print(std::stoi(tracks), plain);
  std::remove(Line_File().c_str());
}
