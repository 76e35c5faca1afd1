#include "import/hpgl/full_reader.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/hpgl/encoded.h"
#include "import/hpgl/import.h"
#include "import/hpgl/pens.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace norvik {

namespace {

constexpr double Units_Of_Inch = 1016, Turn = 2 * std::numbers::pi;
constexpr double Largest_Number = 1e9;  // no plotter has room for more
constexpr char Escape = 27;

char Capital(int c) {
  return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}
bool Is_Letter(int c) {
  return Capital(c) >= 'A' && Capital(c) <= 'Z';
}

struct Command {
  std::string Letters;          // two capitals
  std::vector<double> Numbers;  // not of texts
  std::string Text;             // of LB and PE
  bool Readable = true;         // every number is one
};

// Commands one by one.
class Command_Source {
 public:
  explicit Command_Source(const std::string& path) : Source(path) { Advance(); }
  // False at the end of the file and on ESC.
  bool Next(Command& command);

 private:
  void Advance() { Ahead = Source.Next_Char(); }
  void Skip_Escape();
  void Read_Numbers(Command& command);
  // False when the file ends before it.
  bool Read_Until(int end, std::string& text);
  void Show_Progress();

  Text_Source Source;
  int Ahead = -1;  // -1: end of the file
  int Label_End = 3, Until_Progress = 0;
  Yield_Counter Yields{500};
};

void Command_Source::Show_Progress() {
  constexpr int commands_per_progress = 100;
  Yields.Round();
  if (--Until_Progress > 0) return;
  Until_Progress = commands_per_progress;
  Import_Progress("HPGL Conversion: ", Source.Share(), " % Completed", "###");
}

// "ESC . letter numbers :" speaks to the device, "ESC % .. capital" to the printer around it.
void Command_Source::Skip_Escape() {
  Advance();
  if (Ahead == '.') {
    Advance();
    Advance();
    while ((Ahead >= '0' && Ahead <= '9') || Ahead == ';') Advance();
    if (Ahead == ':') Advance();
    return;
  }
  while (Ahead >= 0 && !(Ahead >= 'A' && Ahead <= 'Z')) Advance();
  if (Ahead >= 0) Advance();
}

bool Command_Source::Read_Until(int end, std::string& text) {
  while (Ahead >= 0 && Ahead != end) {
    text += static_cast<char>(Ahead);
    Advance();
  }
  const bool ended = Ahead >= 0;
  if (ended) Advance();
  return ended;
}

// A sign begins a number, whatever parts it from the one before.
void Command_Source::Read_Numbers(Command& command) {
  std::string number;
  const auto take = [&] {
    if (number.empty()) return;
    const auto value = Try_Number(number);
    number.clear();
    if (value && std::abs(*value) <= Largest_Number) {
      command.Numbers.push_back(*value);
    } else {
      command.Readable = false;
    }
  };
  for (; Ahead >= 0 && Ahead != ';' && Ahead != Escape && !Is_Letter(Ahead); Advance()) {
    const bool part = (Ahead >= '0' && Ahead <= '9') || Ahead == '.';
    if (!part) take();
    if (part || Ahead == '-' || Ahead == '+') number += static_cast<char>(Ahead);
  }
  take();
  if (Ahead == ';') Advance();
}

bool Command_Source::Next(Command& command) {
  command = {};
  Show_Progress();
  while (!Application.EscFlag) {
    while (Ahead >= 0 && !Is_Letter(Ahead) && Ahead != Escape) Advance();
    if (Ahead < 0) return false;
    if (Ahead == Escape) {
      Skip_Escape();
      continue;
    }
    command.Letters = Capital(Ahead);
    Advance();
    if (!Is_Letter(Ahead)) {
      Count_Skipped("letters that make no command");
      continue;
    }
    command.Letters += Capital(Ahead);
    Advance();
    if (command.Letters == "LB") {
      if (!Read_Until(Label_End, command.Text)) {
        Report_Note(
            "A label (LB) has no end character, so that the rest of the file was taken as its "
            "text.");
      }
    } else if (command.Letters == "PE") {
      Read_Until(';', command.Text);
    } else if (command.Letters == "CO") {
      Read_Until(';', command.Text);
    } else if (command.Letters == "DT") {
      if (Ahead >= 0 && Ahead != ';') {
        Label_End = Ahead;
        Advance();
      }
    } else if (command.Letters == "SM") {
      if (Ahead >= 0 && Ahead != ';') Advance();
    } else {
      Read_Numbers(command);
    }
    return true;
  }
  return false;
}

struct Place {
  double X = 0, Y = 0;
};

// From the units that the file counts in to those of the plotter.
struct Scale {
  double Ratio_X = 1, Ratio_Y = 1, Move_X = 0, Move_Y = 0;
  int Quarters = 0;  // of RO

  Place operator()(const Place& at) const {
    Place to{at.X * Ratio_X + Move_X, at.Y * Ratio_Y + Move_Y};
    for (int n = 0; n < Quarters; ++n) to = {0 - to.Y, to.X};
    return to;
  }
  bool Keeps_Circles() const {
    return std::abs(std::abs(Ratio_X) - std::abs(Ratio_Y)) <= 1e-9 * std::abs(Ratio_X);
  }
  bool Mirrors() const { return Ratio_X * Ratio_Y < 0; }
};

class Reader {
 public:
  Reader(const std::string& path, const std::string& line_file)
      : Commands(path), File(line_file, Line_Form::Thirteen) {
    Record.Layer = "0";
    Record.Cut_Feed = Record.Plunge_Feed = General_Text(MachineSetup.Axis_Feed_Rate_Cut);
  }
  void Load();

 private:
  bool Act(const Command& command);
  bool Act_On_Shape(const Command& command);
  void Start_Anew(bool whole);
  void Set_Corners(const std::vector<double>& numbers);
  void Set_Scale(const std::vector<double>& numbers);
  void Work_Out_Scale();

  void Pen(bool down);
  void Move_Along(const std::vector<double>& pairs, bool relative);
  void Move_To(const Place& to);
  void Draw_To(const Place& to);
  void Draw_Arc(const Place& centre, double sweep);
  void Circle(double radius);
  void Arc(const std::vector<double>& numbers, bool relative);
  void Arc_By_Points(const std::vector<double>& numbers, bool relative);
  void Rectangle(const Place& corner);
  void Wedge(const std::vector<double>& numbers);
  void Polygon_Mode(int mode);
  void Draw_Polygon();
  void Encoded(const std::string& text);
  void Select_Pen(double number);
  void End_Dot();
  void Write(const Place& from, const Place& to, const Place* centre, bool clockwise);

  Place On_Paper(const Place& at) const {
    const Place to = Map(at);
    return {to.X / Units_Of_Inch * Factor, to.Y / Units_Of_Inch * Factor};
  }

  Command_Source Commands;
  Line_File_Writer File;
  Import_Faults Faults{HPGL_Fault_Name};
  const double Factor = Unit_Factor(Unit_Inches);

  Scale Map;
  // P1 and P2 of a paper that the file does not know: those of a plotter of A4.
  static constexpr std::array<double, 4> Usual_Corners{0, 0, 10000, 7200};
  std::array<double, 4> Corners = Usual_Corners;
  bool Corners_Stated = false;
  std::vector<double> Scaled_By;  // numbers of SC; empty: none

  Place At;  // in units of the file
  bool Pen_Down = false, Relative = false;
  bool Dot = false;  // the pen is down and has drawn nothing yet
  bool In_Polygon = false;
  bool Begins_Part = false;  // of a polygon: the next point is its first
  Place Polygon_Start;
  std::vector<ImportLine> Polygon;
  ImportLine Record;
};

void Reader::Load() {
  Command command;
  while (Commands.Next(command)) {
    bool known = false;
    if (!command.Readable || !Faults.Try([&] { known = Act(command); })) {
      Count_Skipped("commands with a number that cannot be read");
    } else if (known) {
      Count_Read(command.Letters);
    } else {
      Count_Skipped(command.Letters);
    }
  }
  Faults.Try([&] { End_Dot(); });
  File.Close();
  Report_Unit(Unit_Inches);
  if (!Scaled_By.empty() && !Corners_Stated) {
    Report_Note(
        "The file is scaled to the corners of a paper that it does not name (SC without IP): its "
        "size is a guess. Compare the cutting extents, and scale it by the import.");
  }
}

// False when the command would draw and is not read, or is not known.
bool Reader::Act(const Command& command) {
  // What sets up lines, fills, letters and pens, or asks the plotter for an answer.
  constexpr std::array<std::string_view, 47> passed_over{
      "LT", "LA", "SI", "SR", "SS", "SA", "SL", "CS", "CA", "CP", "CO", "CM",
      "CC", "DI", "DR", "DT", "DV", "ES", "LO", "SM", "FT", "FI", "FN", "PT",
      "PW", "WU", "UL", "TL", "PS", "IW", "IR", "AC", "CT", "VS", "AP", "FS",
      "AS", "NP", "CR", "MC", "PC", "SB", "SD", "TD", "TR", "RF", "BP"};
  constexpr std::array<std::string_view, 14> answered{"OA", "OC", "OD", "OE", "OF", "OG", "OH",
                                                      "OI", "OK", "OL", "OO", "OP", "OS", "OW"};
  const std::string_view letters = command.Letters;
  const auto& numbers = command.Numbers;
  if (letters == "IN" || letters == "DF") {
    Start_Anew(letters == "IN");
  } else if (letters == "PU" || letters == "PD") {
    Pen(letters == "PD");
    Move_Along(numbers, Relative);
  } else if (letters == "PA" || letters == "PR") {
    Relative = letters == "PR";
    Move_Along(numbers, Relative);
  } else if (letters == "SP") {
    Select_Pen(numbers.empty() ? 0 : numbers[0]);
  } else if (letters == "SC") {
    Set_Scale(numbers);
  } else if (letters == "IP") {
    Set_Corners(numbers);
  } else if (letters == "RO") {
    const double degrees = numbers.empty() ? 0 : numbers[0];
    Map.Quarters = (static_cast<int>(std::lround(degrees / 90)) % 4 + 4) % 4;
  } else if (letters == "PE") {
    Encoded(command.Text);
  } else if (letters == "PG" || letters == "EC" || letters == "AF" || letters == "AH") {
    // a new sheet: the same table
  } else if (std::ranges::count(passed_over, letters) + std::ranges::count(answered, letters) ==
             0) {
    return Act_On_Shape(command);
  }
  return true;
}

bool Reader::Act_On_Shape(const Command& command) {
  const std::string_view letters = command.Letters;
  const auto& numbers = command.Numbers;
  const auto needs = [&](std::size_t count) {
    if (numbers.size() < count) {
      throw Fault(Fault_Number::Type_Mismatch, std::string(letters) + " lacks numbers");
    }
  };
  if (letters == "CI") {
    needs(1);
    Circle(numbers[0]);
  } else if (letters == "AA" || letters == "AR") {
    needs(3);
    Arc(numbers, letters == "AR");
  } else if (letters == "AT" || letters == "RT") {
    needs(4);
    Arc_By_Points(numbers, letters == "RT");
  } else if (letters == "EA" || letters == "RA") {
    needs(2);
    Rectangle({numbers[0], numbers[1]});
  } else if (letters == "ER" || letters == "RR") {
    needs(2);
    Rectangle({At.X + numbers[0], At.Y + numbers[1]});
  } else if (letters == "EW" || letters == "WG") {
    needs(3);
    Wedge(numbers);
  } else if (letters == "PM") {
    Polygon_Mode(numbers.empty() ? 0 : static_cast<int>(numbers[0]));
  } else if (letters == "EP" || letters == "FP") {
    Draw_Polygon();
  } else {
    return false;
  }
  if (letters == "RA" || letters == "RR" || letters == "WG" || letters == "FP") {
    Report_Note("Filled areas (RA, RR, WG, FP) are cut along their outlines only.");
  }
  return true;
}

// --- Set-up --------------------------------------------------------------------------------------

void Reader::Start_Anew(bool whole) {
  Relative = false;
  Scaled_By.clear();
  if (whole) {
    Pen(false);
    Map.Quarters = 0;
    Corners = Usual_Corners;
    Corners_Stated = false;
  }
  Work_Out_Scale();
}

void Reader::Set_Corners(const std::vector<double>& numbers) {
  Corners_Stated = numbers.size() >= 2;
  if (numbers.size() >= 4) {
    std::copy_n(numbers.begin(), 4, Corners.begin());
  } else if (numbers.size() >= 2) {
    Corners = {numbers[0], numbers[1], numbers[0] + Corners[2] - Corners[0],
               numbers[1] + Corners[3] - Corners[1]};
  } else {
    Corners = Usual_Corners;
  }
  Work_Out_Scale();
}

void Reader::Set_Scale(const std::vector<double>& numbers) {
  Scaled_By = numbers.size() >= 4 ? numbers : std::vector<double>();
  Work_Out_Scale();
}

// The pen stays where it is, so its place is another number in the new units.
void Reader::Work_Out_Scale() {
  const int quarters = Map.Quarters;
  Map.Quarters = 0;
  const Place plotter = Map(At);
  Map = {};
  if (!Scaled_By.empty()) {
    constexpr std::size_t kind_place = 4;
    const auto& by = Scaled_By;
    const double kind = by.size() > kind_place ? by[kind_place] : 0;
    const double width = Corners[2] - Corners[0], height = Corners[3] - Corners[1];
    if (kind == 2) {  // factors
      Map.Ratio_X = by[1];
      Map.Ratio_Y = by[3];
      Map.Move_X = Corners[0] - by[0] * by[1];
      Map.Move_Y = Corners[1] - by[2] * by[3];
    } else {
      Map.Ratio_X = width / (by[1] - by[0]);
      Map.Ratio_Y = height / (by[3] - by[2]);
      double left = 0, below = 0;  // room beside the drawing
      if (kind == 1) {             // the same in X and Y
        const double least = std::min(std::abs(Map.Ratio_X), std::abs(Map.Ratio_Y));
        Map.Ratio_X = std::copysign(least, Map.Ratio_X);
        Map.Ratio_Y = std::copysign(least, Map.Ratio_Y);
        const double share_x = by.size() > 6 ? by[5] : 50, share_y = by.size() > 6 ? by[6] : 50;
        left = (width - Map.Ratio_X * (by[1] - by[0])) * share_x / 100;
        below = (height - Map.Ratio_Y * (by[3] - by[2])) * share_y / 100;
      }
      Map.Move_X = Corners[0] + left - by[0] * Map.Ratio_X;
      Map.Move_Y = Corners[1] + below - by[2] * Map.Ratio_Y;
    }
  }
  const bool usable = std::isfinite(Map.Ratio_X) && std::isfinite(Map.Ratio_Y) &&
                      Map.Ratio_X != 0 && Map.Ratio_Y != 0;
  if (!usable) {
    Map = {};
    Scaled_By.clear();
  }
  At = {(plotter.X - Map.Move_X) / Map.Ratio_X, (plotter.Y - Map.Move_Y) / Map.Ratio_Y};
  Map.Quarters = quarters;
  if (!usable) throw Fault(Fault_Number::Division_By_Zero, "SC or IP leaves no room");
}

void Reader::Select_Pen(double number) {
  constexpr double highest = 1000;
  if (!MachineSetup.HPGL_Multiple_Pen_Enable || number <= 0 || number > highest) return;
  const auto pen = To_Int16(number);
  if (pen > 8) Report_Note("Pens above 8 have no settings; they cut with those of the program.");
  Take_HPGL_Pen(Record, pen, Faults);
}

// --- Moves ---------------------------------------------------------------------------------------

void Reader::Write(const Place& from, const Place& to, const Place* centre, bool clockwise) {
  const Place a = On_Paper(from), b = On_Paper(to);
  Record.X1 = a.X;
  Record.Y1 = a.Y;
  Record.X2 = b.X;
  Record.Y2 = b.Y;
  Record.I.reset();
  Record.J.reset();
  Record.Type.reset();
  if (centre != nullptr) {
    const Place c = On_Paper(*centre);
    Record.I = c.X;
    Record.J = c.Y;
    Record.Type = clockwise != Map.Mirrors() ? Arc_Clockwise : Arc_Counter_Clockwise;
  }
  if (In_Polygon) {
    Polygon.push_back(Record);
  } else {
    File.Write(Record);
  }
}

// A pen that has been down and drawn nothing has made a dot.
void Reader::End_Dot() {
  if (!Dot) return;
  Dot = false;
  if (In_Polygon) return;
  Write(At, At, nullptr, false);
  Count_Read("dot (a plunge)");
}

void Reader::Pen(bool down) {
  if (down == Pen_Down) return;
  if (!down) End_Dot();
  Pen_Down = Dot = down;
}

void Reader::Move_Along(const std::vector<double>& pairs, bool relative) {
  for (std::size_t n = 0; n + 1 < pairs.size(); n += 2) {
    Move_To({(relative ? At.X : 0) + pairs[n], (relative ? At.Y : 0) + pairs[n + 1]});
  }
  if (pairs.size() % 2 != 0) Count_Skipped("numbers without a partner");
}

void Reader::Move_To(const Place& to) {
  if (In_Polygon && Begins_Part) {
    Begins_Part = false;
    At = Polygon_Start = to;
  } else if (Pen_Down) {
    Draw_To(to);
  } else {
    At = to;
  }
}

void Reader::Draw_To(const Place& to) {
  if (to.X == At.X && to.Y == At.Y) return;  // a dot stays one
  Dot = false;
  Write(At, to, nullptr, false);
  At = to;
}

// --- Arcs ----------------------------------------------------------------------------------------

// From where the pen is, `sweep` degrees counter-clockwise around the centre. An arc where the
// program can hold it and the scale keeps it one, otherwise chords within the tolerance.
void Reader::Draw_Arc(const Place& centre, double sweep) {
  const double radius = std::hypot(At.X - centre.X, At.Y - centre.Y);
  if (radius == 0 || sweep == 0) return;
  Dot = false;
  const double turn = std::clamp(sweep, -360.0, 360.0) / 360 * Turn;
  const double begin = std::atan2(At.Y - centre.Y, At.X - centre.X);
  const bool full = std::abs(turn) >= Turn, clockwise = turn < 0;
  const Place start = At;
  const auto at = [&](double angle) {
    return Place{centre.X + radius * std::cos(angle), centre.Y + radius * std::sin(angle)};
  };
  const bool as_arc = Map.Keeps_Circles() && !MachineSetup.GC_IJ_Incremental;
  int pieces = full ? 2 : 1;
  if (!as_arc) {
    const double ratio = std::max(std::abs(Map.Ratio_X), std::abs(Map.Ratio_Y));
    const double size = radius * ratio / Units_Of_Inch * Factor;
    const double tolerance = std::max<double>(MachineSetup.DXF_Line_Tolerance, 1e-4);
    const double piece = size > tolerance ? 2 * std::acos(1 - tolerance / size) : Turn / 4;
    pieces = std::clamp(static_cast<int>(std::ceil(std::abs(turn) / piece)), full ? 4 : 1, 10'000);
  }
  for (int n = 1; n <= pieces; ++n) {
    const Place to = n == pieces && full ? start : at(begin + turn * n / pieces);
    Write(At, to, as_arc ? &centre : nullptr, clockwise);
    At = to;
  }
}

// The pen goes down for it and comes back to the centre as it was.
void Reader::Circle(double radius) {
  const Place centre = At;
  const bool dot = Dot;
  At = {centre.X + radius, centre.Y};
  Draw_Arc(centre, 360);
  At = centre;
  Dot = dot && radius == 0;
}

void Reader::Arc(const std::vector<double>& numbers, bool relative) {
  const Place centre{(relative ? At.X : 0) + numbers[0], (relative ? At.Y : 0) + numbers[1]};
  if (Pen_Down) return Draw_Arc(centre, numbers[2]);
  const double angle = numbers[2] / 360 * Turn, dx = At.X - centre.X, dy = At.Y - centre.Y;
  At = {centre.X + dx * std::cos(angle) - dy * std::sin(angle),
        centre.Y + dx * std::sin(angle) + dy * std::cos(angle)};
}

// Through a point to a point.
void Reader::Arc_By_Points(const std::vector<double>& numbers, bool relative) {
  const double x = relative ? At.X : 0, y = relative ? At.Y : 0;
  const Place through{x + numbers[0], y + numbers[1]}, end{x + numbers[2], y + numbers[3]};
  const double bx = through.X - At.X, by = through.Y - At.Y;
  const double cx = end.X - At.X, cy = end.Y - At.Y;
  const double twice = 2 * (bx * cy - by * cx);
  if (!Pen_Down) {
    At = end;
  } else if (twice == 0) {
    Draw_To(end);  // on one line
  } else {
    const double b = bx * bx + by * by, c = cx * cx + cy * cy;
    const Place centre{At.X + (cy * b - by * c) / twice, At.Y + (bx * c - cx * b) / twice};
    const double from = std::atan2(At.Y - centre.Y, At.X - centre.X);
    double sweep = std::atan2(end.Y - centre.Y, end.X - centre.X) - from;
    const bool counter_clockwise = twice > 0;
    if (counter_clockwise && sweep <= 0) sweep += Turn;
    if (!counter_clockwise && sweep >= 0) sweep -= Turn;
    Draw_Arc(centre, sweep / Turn * 360);
    At = end;
  }
}

// --- Shapes --------------------------------------------------------------------------------------

void Reader::Rectangle(const Place& corner) {
  const Place start = At;
  for (const Place& to : {Place{corner.X, start.Y}, corner, Place{start.X, corner.Y}, start}) {
    Draw_To(to);
  }
}

void Reader::Wedge(const std::vector<double>& numbers) {
  const Place centre = At;
  const double radius = numbers[0], from = numbers[1] / 360 * Turn, sweep = numbers[2];
  if (std::abs(sweep) >= 360) return Circle(radius);
  Draw_To({centre.X + radius * std::cos(from), centre.Y + radius * std::sin(from)});
  Draw_Arc(centre, sweep);
  Draw_To(centre);
}

// 0 begins a polygon where the pen is, 1 closes a part of it, 2 closes it and ends.
void Reader::Polygon_Mode(int mode) {
  if (mode == 0) {
    End_Dot();
    In_Polygon = true;
    Begins_Part = false;
    Polygon.clear();
    Polygon_Start = At;
    return;
  }
  if (!In_Polygon) return;
  Draw_To(Polygon_Start);
  Begins_Part = mode == 1;
  if (mode == 2) In_Polygon = false;
}

void Reader::Draw_Polygon() {
  for (const ImportLine& line : Polygon) File.Write(line);
}

void Reader::Encoded(const std::string& text) {
  Pen(true);
  Dot = false;
  const bool whole = Decode_Polyline(
      text,
      [&](const Encoded_Move& move) {
        const Place from = move.Absolute ? Place{} : At;
        const Place to{from.X + move.X, from.Y + move.Y};
        if (move.Pen_Up) {
          At = to;
        } else {
          Draw_To(to);
        }
      },
      [&](int pen) { Select_Pen(pen); });
  if (!whole) Count_Skipped("end of encoded strokes that is cut short");
}

}  // namespace

void HPGL_Load_Full(const std::string& path, const std::string& line_file) {
  Reader(path, line_file).Load();
}

}  // namespace norvik
