#include "import/picture/scan.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/pipeline/line.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace norvik {

namespace {

constexpr std::int32_t White = 0xFFFFFF;
constexpr std::int64_t Most_Samples = 25'000'000;

std::int32_t Steps_Of(const char* axis, float size, float increment) {
  const float steps = std::floor(size / increment);
  if (!(size > 0) || !(increment > 0) || !(steps >= 1)) {
    throw Fault(Fault_Number::Out_Of_Range,
                std::string("The material size and the increment in ") + axis +
                    " must be above 0 and the increment not above the size (now " +
                    General_Text(size) + " and " + General_Text(increment) +
                    "). Change them in the bitmap options.");
  }
  if (steps > static_cast<float>(Most_Samples)) return static_cast<std::int32_t>(Most_Samples);
  return static_cast<std::int32_t>(steps);
}

double Step_Of(float size, std::int32_t steps) {
  return 1 / (steps / Decimal_Of(size));
}

// The height in a pass from the height in the picture.
struct Pass_Height {
  double Top = Decimal_Of(MachineSetup.BMAP_Material_Size_Z);
  double Offset = Decimal_Of(MachineSetup.BMAP_Import_Offset_Z);
  bool In_Passes = false;
  double Share = 1;  // of the depth

  double operator()(double z) const {
    return In_Passes ? (z - Top + Offset) * Share + Top : z + Offset;
  }
};

class Scanner {
 public:
  Scanner(const Picture& picture, const Bitmap_Grid& grid, const std::string& line_file);
  // False on ESC.
  bool Scan_Pass(const Pass_Height& height);
  void Close();

 private:
  struct Spot {
    std::int32_t Col = 0, Row = 0;
    double Z = 0;
  };

  Spot At(std::int32_t line, std::int32_t place) const;
  double Picture_Height(std::int32_t col, std::int32_t row);
  bool Scan_Line(std::int32_t line, bool down);
  void Link_To(const Spot& start);
  void Take(const Spot& here, bool last_of_line);
  void Write(const Spot& from, const Spot& to);
  // Rounded here as the program prints them: shorter texts are written and read faster.
  double X_Of(const Spot& spot) const { return Round_12(spot.Col * Grid.Step_X + Offset_X); }
  double Y_Of(const Spot& spot) const { return Round_12(spot.Row * Grid.Step_Y + Offset_Y); }

  const Picture& Source;
  const Bitmap_Grid Grid;
  const bool Along_X = MachineSetup.BMAP_Sway_XY != 0;
  const bool Rotated = MachineSetup.BMAP_Rotate90 != 0;
  const bool Inverted = MachineSetup.BMAP_Invert_Z != 0;
  const double Offset_X = Decimal_Of(MachineSetup.BMAP_Import_Offset_X);
  const double Offset_Y = Decimal_Of(MachineSetup.BMAP_Import_Offset_Y);
  const double Size_Z = Decimal_Of(MachineSetup.BMAP_Material_Size_Z);
  std::vector<std::int32_t> Col_Pixel, Row_Pixel;  // the pixel of each step on its picture axis

  Line_File_Writer File;
  Pass_Height Height;
  Yield_Counter Yields{200};
  ImportLine Record;
  Spot Last, Previous;     // end of the last record; the point scanned before
  std::int64_t Count = 0;  // points scanned in the pass
  bool Coloured = false;
};

// Where each of the steps 0..`steps` falls on `pixels` pixels; the last one inside.
std::vector<std::int32_t> Pixels_Of_Steps(std::int32_t steps, std::int32_t pixels) {
  std::vector<std::int32_t> places(static_cast<std::size_t>(steps) + 1);
  for (std::int64_t n = 0; n <= steps; ++n) {
    places[static_cast<std::size_t>(n)] =
        static_cast<std::int32_t>(n * pixels / (std::int64_t{steps} + 1));
  }
  return places;
}

Scanner::Scanner(const Picture& picture, const Bitmap_Grid& grid, const std::string& line_file)
    : Source(picture),
      Grid(grid),
      Col_Pixel(Pixels_Of_Steps(grid.Cols, Rotated ? picture.Height : picture.Width)),
      Row_Pixel(Pixels_Of_Steps(grid.Rows, Rotated ? picture.Width : picture.Height)),
      File(line_file, Line_Form::Thirteen) {
  File.Write_Z_As_Singles();
  Record.Pen = 0;
}

bool Scanner::Scan_Pass(const Pass_Height& height) {
  Height = height;
  Count = 0;
  const std::int32_t last_line = Along_X ? Grid.Rows : Grid.Cols;
  const std::int32_t last_place = Along_X ? Grid.Cols : Grid.Rows;
  bool down = true;
  for (std::int32_t line = 0; line <= last_line; ++line) {
    Import_Progress("Add Passes: Adding Passes... ", static_cast<double>(line) / last_line,
                    "% Completed, press ESC to cancel");
    if (line > 0) Link_To(At(line, down ? 0 : last_place));
    if (!Scan_Line(line, down)) return false;
    down = !down;
  }
  return true;
}

void Scanner::Close() {
  File.Close();
  Count_Read("points", Count);
  if (Coloured) {
    Report_Note(
        "The picture has colours: as depths blue counts most and red least. Make it grey for an "
        "even relief.");
  }
}

Scanner::Spot Scanner::At(std::int32_t line, std::int32_t place) const {
  return Along_X ? Spot{place, line, 0} : Spot{line, place, 0};
}

// Pictures count their rows from the top, the table from the front.
double Scanner::Picture_Height(std::int32_t col, std::int32_t row) {
  const std::int32_t c = Col_Pixel[static_cast<std::size_t>(col)];
  const std::int32_t r = Row_Pixel[static_cast<std::size_t>(row)];
  const std::int64_t x = Rotated ? r : c, y = Rotated ? c : Source.Height - 1 - r;
  const std::uint8_t* pixel = &Source.Rgb[static_cast<std::size_t>((y * Source.Width + x) * 3)];
  Coloured = Coloured || pixel[0] != pixel[1] || pixel[1] != pixel[2];
  const std::int32_t colour = pixel[2] << 16 | pixel[1] << 8 | pixel[0];
  return static_cast<double>(Inverted ? White - colour : colour) / White * Size_Z;
}

// False on ESC.
bool Scanner::Scan_Line(std::int32_t line, bool down) {
  const std::int32_t last_place = Along_X ? Grid.Cols : Grid.Rows;
  for (std::int32_t n = 0; n <= last_place; ++n) {
    if (Application.EscFlag) return false;
    Yields.Round();
    Spot here = At(line, down ? n : last_place - n);
    here.Z = Picture_Height(here.Col, here.Row);
    ++Count;
    Take(here, n == last_place);
    Previous = here;
  }
  return true;
}

void Scanner::Link_To(const Spot& start) {
  Spot end = start;
  end.Z = Last.Z;
  Write(Last, end);
  Last = Previous = end;
}

// A run of equal Z ends one step before the change.
void Scanner::Take(const Spot& here, bool last_of_line) {
  if (Count == 1) {
    Last = here;
    Last.Z = Decimal_Of(MachineSetup.BMAP_Travel_Height) + Size_Z;
  } else if (here.Z == Last.Z && !last_of_line) {
    return;
  } else {
    Write(Last, Previous);
    Last = Previous;
  }
  Write(Last, here);
  Last = here;
}

void Scanner::Write(const Spot& from, const Spot& to) {
  Record.X1 = X_Of(from);
  Record.Y1 = Y_Of(from);
  Record.Z1 = Height(from.Z);
  Record.X2 = X_Of(to);
  Record.Y2 = Y_Of(to);
  Record.Z2 = Height(to.Z);
  File.Write(Record);
}

}  // namespace

Bitmap_Grid Bitmap_Grid_Of_Setup() {
  const float size_x = MachineSetup.BMAP_Material_Size_X,
              size_y = MachineSetup.BMAP_Material_Size_Y;
  Bitmap_Grid grid;
  grid.Cols = Steps_Of("X", size_x, MachineSetup.BMAP_Increment_X);
  grid.Rows = Steps_Of("Y", size_y, MachineSetup.BMAP_Increment_Y);
  if (grid.Samples() > Most_Samples) {
    throw Fault(Fault_Number::Out_Of_Range,
                "The increments give more than 25 million points. Enlarge them in the bitmap "
                "options; a quarter of the tool's diameter is fine enough.");
  }
  grid.Step_X = Step_Of(size_x, grid.Cols);
  grid.Step_Y = Step_Of(size_y, grid.Rows);
  return grid;
}

void Bitmap_Scan(const Picture& picture, const Bitmap_Grid& grid, const std::string& line_file) {
  Scanner scanner(picture, grid, line_file);
  const int passes = std::max<int>(MachineSetup.BMAP_Passes_to_Depth, 1);
  Pass_Height height;
  height.In_Passes = passes >= 2;
  for (int pass = 1; pass <= passes; ++pass) {
    height.Share = static_cast<double>(pass) / passes;
    if (!scanner.Scan_Pass(height)) break;
  }
  scanner.Close();
}

}  // namespace norvik
