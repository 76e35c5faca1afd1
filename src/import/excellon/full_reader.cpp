#include "import/excellon/full_reader.h"

#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/excellon/reader.h"
#include "import/excellon/table.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <utility>
#include <vector>

namespace norvik {

namespace {

constexpr std::string_view Fault_Name = "NC File Load Error";

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// The whole number behind the first character; absent when there is none.
std::optional<int> Number_Behind(std::string_view text) {
  if (text.size() < 2 || !Is_Digit(text[1])) return std::nullopt;
  int number = 0;
  for (std::size_t at = 1; at < text.size() && Is_Digit(text[at]) && number < 100'000; ++at) {
    number = number * 10 + (text[at] - '0');
  }
  return number;
}

struct Place {
  double X = 0, Y = 0;  // units of the setup
};

class Reader {
 public:
  explicit Reader(const std::string& path) : Source(path) { Take_Setup_Format(); }
  void Load();

 private:
  enum class Zeros { Leading_Kept, Trailing_Kept };
  enum class Route { None, Up, Down };
  struct Drilled {  // for repeats
    int Tool;
    Excellon_Hole Hole;
  };

  void Take_Setup_Format();
  void Read_Line(std::string_view line);
  void Take_Comment(std::string_view line);
  bool Take_Setting(std::string_view line);
  void Take_Unit(const File_Unit& unit, std::string_view rest);
  void Take_Zeros_And_Digits(std::string_view field);
  void Take_Usual_Digits();
  void Take_Tool(std::string_view line);
  void Select_Tool(int number);
  bool Take_Code(std::string_view line);
  bool Take_Repeat(std::string_view line);

  double Length(std::string_view text);
  double Coordinate(std::string_view text);
  // The point that the line names; what it leaves out stays. False when it names none.
  bool Point_Of(std::string_view line, Place& point);
  Place Step_Of(std::string_view line);

  void Take_Point(std::string_view line);
  void Add_Slot(std::string_view line, std::size_t g85);
  void Cut_Arc(std::string_view line, bool clockwise, const Place& to);
  void End_Route();
  void Add(Excellon_Hole hole);
  static Excellon_Hole Hole_At(const Place& at);
  static void Move(Excellon_Hole& hole, const Place& step);
  void Repeat(const std::vector<Drilled>& what, int times, const Place& step);

  void Finish_Sizes();
  void Note_Format() const;
  void Note_Digits() const;
  void Note_End();

  Text_Source Source;
  Import_Faults Faults{Fault_Name};
  const Axis_Rounding Rounded;

  // --- What the file has said ---
  std::optional<File_Unit> Unit;
  Zeros Kept = Zeros::Trailing_Kept;
  int Whole = 2, Decimals = 3;
  bool Any_Without_Point = false;  // so that digits and zeros count
  bool Zeros_Stated = false, Digits_Stated = false, Incremental = false;
  std::map<int, double> Sizes;  // as written

  bool In_Header = false, Stopped = false, Ended = false;
  int Tool = 1;
  Place At;
  Route Now = Route::None;
  int Interpolation = 1;  // of a route: 1 straight, 2 and 3 arcs
  Excellon_Hole Under_Way;
  std::vector<Drilled> Pattern;
  bool In_Pattern = false;
  Place Pattern_Step;
  std::optional<Drilled> Last;
  std::string Line;
};

void Reader::Take_Setup_Format() {
  constexpr std::int16_t leading = 1, trailing = 2;
  const std::int16_t zeros = MachineSetup.Excellon_Zero_Format;
  Kept = zeros == leading ? Zeros::Leading_Kept : Zeros::Trailing_Kept;
  Whole = std::clamp<int>(MachineSetup.Excellon_Integer_Format, 0, 9);
  Decimals = std::clamp<int>(MachineSetup.Excellon_Decimal_Format, 0, 9);
  if (zeros != leading && zeros != trailing) Decimals = 3;  // thousandths
}

void Reader::Load() {
  std::string_view line;
  while (!Application.EscFlag && !Stopped && !Ended && Source.Next_Line(line)) {
    DoEvents();
    Line = Upper(Without_Blanks(line));
    if (Line.empty()) continue;
    if (!Faults.Try([&] { Read_Line(Line); })) Count_Skipped("lines with unreadable numbers");
  }
  End_Route();
  Finish_Sizes();
  Report_Unit(Unit);
  Note_Format();
  Note_Digits();
  Note_End();
}

void Reader::Read_Line(std::string_view line) {
  if (line.front() == ';') return Take_Comment(line);
  if (Is_Line_Of_Program(line)) Report_Program_Instead();
  if (line == "M48") {
    In_Header = true;
  } else if (line == "%" || line == "M95") {
    In_Header = false;
  } else if (line.starts_with("M30") || line == "M00") {
    Ended = true;
  } else if (line.front() == 'T' && Number_Behind(line)) {
    Take_Tool(line);
  } else if (Take_Setting(line) || In_Header || Take_Repeat(line) || Take_Code(line)) {
    return;
  } else if (line.front() == 'X' || line.front() == 'Y') {
    Take_Point(line);
  } else {
    Count_Skipped(line.substr(0, 20));
  }
}

// --- Header --------------------------------------------------------------------------------------

// ";FILE_FORMAT=2:4", "; FORMAT={3:3/ absolute / metric / suppress trailing zeros}"
void Reader::Take_Comment(std::string_view line) {
  const auto format = line.find("FORMAT");
  if (format == std::string_view::npos) return;
  const auto colon = line.find(':', format);
  if (colon != std::string_view::npos && colon + 1 < line.size() && Is_Digit(line[colon - 1]) &&
      Is_Digit(line[colon + 1])) {
    Whole = line[colon - 1] - '0';
    Decimals = line[colon + 1] - '0';
    Digits_Stated = true;
  }
  // What is left out is said here, not what is kept.
  const bool leading = Contains(line, "SUPPRESS LEADING"), all = Contains(line, "KEEP ZEROS");
  if (!leading && !all && !Contains(line, "SUPPRESS TRAILING")) return;
  Kept = leading || all ? Zeros::Trailing_Kept : Zeros::Leading_Kept;
  Zeros_Stated = true;
}

bool Reader::Take_Setting(std::string_view line) {
  const auto comma = std::min(line.find(','), line.size());
  const std::string_view word = line.substr(0, comma), rest = line.substr(comma);
  if (word == "METRIC" || word == "M71") {
    Take_Unit(Unit_Millimetres, rest);
  } else if (word == "INCH" || word == "M72") {
    Take_Unit(Unit_Inches, rest);
  } else if (word == "ICI") {
    Incremental = rest == ",ON";
  } else if (word == "G90" || word == "G91") {
    Incremental = word == "G91";
  } else if (word == "LZ" || word == "TZ") {
    Take_Zeros_And_Digits(word);
  } else {
    return false;
  }
  return true;
}

void Reader::Take_Unit(const File_Unit& unit, std::string_view rest) {
  Unit = unit;
  while (!rest.empty()) {
    rest.remove_prefix(1);  // the comma
    const auto end = std::min(rest.find(','), rest.size());
    Take_Zeros_And_Digits(Without_Blanks(rest.substr(0, end)));
    rest.remove_prefix(end);
  }
  Take_Usual_Digits();
}

// A unit with zeros and no digits means those of the format's own machines.
void Reader::Take_Usual_Digits() {
  if (!Unit || !Zeros_Stated || Digits_Stated) return;
  const bool metric = Unit->Millimetres == 1;
  Whole = metric ? 3 : 2;
  Decimals = metric ? 3 : 4;
}

void Reader::Take_Zeros_And_Digits(std::string_view field) {
  if (field == "LZ" || field == "TZ") {
    Kept = field == "LZ" ? Zeros::Leading_Kept : Zeros::Trailing_Kept;
    Zeros_Stated = true;
    Take_Usual_Digits();
    return;
  }
  const auto point = field.find('.');
  const bool digits =
      point != std::string_view::npos && field.find_first_not_of("0.") == std::string_view::npos;
  if (!digits || point > 9 || field.size() - point > 10) return;
  Whole = static_cast<int>(point);
  Decimals = static_cast<int>(field.size() - point - 1);
  Digits_Stated = true;
}

// --- Tools ---------------------------------------------------------------------------------------

void Reader::Take_Tool(std::string_view line) {
  const int number = *Number_Behind(line);
  if (const auto size = Find_Coordinate('C', line)) {
    Sizes[number] = Foreign_Number(*size);
    Count_Read("tool sizes");
  }
  if (In_Header || number == 0) return;
  End_Route();
  Select_Tool(number);
  const auto coordinates = line.find_first_of("XY");
  if (coordinates != std::string_view::npos) Take_Point(line.substr(coordinates));
}

void Reader::Select_Tool(int number) {
  if (number > Excellon_Table.Tool.last) {
    Stopped = true;
    const std::string text = "Line " + std::to_string(Source.Line_Number()) + ": Tool " +
                             std::to_string(number) +
                             " is not between 1 and 500. The load stopped there.";
    AddMessage(text);
    Report_Note(text);
    return;
  }
  Tool = number;
  Count_Read("tool selections");
}

// Sizes by the unit that the file named last: it may stand behind them.
void Reader::Finish_Sizes() {
  constexpr double stated_metric_factor = 2.54;
  double factor = Unit_Factor(Unit);
  if (!MachineSetup.Import_Convert_Units && MachineSetup.UnitsofMeasurement == 1) {
    factor = stated_metric_factor;
  }
  for (const auto& [number, size] : Sizes) {
    if (number > Excellon_Table.Tool.last) continue;
    Excellon_Table.Tool[number].Size = To_Single(size * factor);
    if (number <= Tools.Diameter.last) Tools.Diameter[number] = size * factor;
    ++Excellon_Table.Header_Tools;
  }
  for (int number = 0; number <= Excellon_Table.Tool.last; ++number) {
    Excellon_Tool& tool = Excellon_Table.Tool[number];
    if (tool.Holes.empty() || tool.Size != 0) continue;
    tool.Size = MachineSetup.Excellon_Default_Drill_Size;
    if (number > Tools.Diameter.last) continue;
    double& listed = Tools.Diameter[number];
    if (listed == 0) listed = Decimal_Of(MachineSetup.Excellon_Default_Drill_Size);
    tool.Size = To_Single(listed);
  }
}

// --- Coordinates ---------------------------------------------------------------------------------

// In units of the file.
double Reader::Length(std::string_view text) {
  if (Contains(text, ".")) return Foreign_Number(text);
  Any_Without_Point = true;
  std::string digits(text);
  const bool negative = digits.front() == '-';
  if (negative || digits.front() == '+') digits.erase(0, 1);
  const auto all = static_cast<std::size_t>(Whole + Decimals);
  if (digits.empty()) digits = "0";
  if (digits.size() < all) {
    digits.insert(Kept == Zeros::Leading_Kept ? digits.size() : 0, all - digits.size(), '0');
  }
  const std::size_t point = Kept == Zeros::Leading_Kept
                                ? static_cast<std::size_t>(Whole)
                                : digits.size() - static_cast<std::size_t>(Decimals);
  digits.insert(point, ".");
  return Foreign_Number((negative ? "-0" : "0") + digits);
}

double Reader::Coordinate(std::string_view text) {
  return Rounded(Length(text) * Unit_Factor(Unit));
}

bool Reader::Point_Of(std::string_view line, Place& point) {
  const auto x = Find_Coordinate('X', line), y = Find_Coordinate('Y', line);
  if (x) point.X = (Incremental ? point.X : 0) + Coordinate(*x);
  if (y) point.Y = (Incremental ? point.Y : 0) + Coordinate(*y);
  return x || y;
}

Place Reader::Step_Of(std::string_view line) {
  const auto x = Find_Coordinate('X', line), y = Find_Coordinate('Y', line);
  return {x ? Coordinate(*x) : 0, y ? Coordinate(*y) : 0};
}

// --- Holes, slots and routes ---------------------------------------------------------------------

Excellon_Hole Reader::Hole_At(const Place& at) {
  Excellon_Hole hole;
  hole.X = To_Single(at.X);
  hole.Y = To_Single(at.Y);
  return hole;
}

void Reader::Take_Point(std::string_view line) {
  if (const auto g85 = line.find("G85"); g85 != std::string_view::npos) return Add_Slot(line, g85);
  const Place from = At;
  if (!Point_Of(line, At)) return;
  if (Now == Route::None) {
    Add(Hole_At(At));
    Count_Read("holes");
  } else if (Now == Route::Down && Interpolation != 1) {
    const Place to = At;
    At = from;
    Cut_Arc(line, Interpolation == 2, to);
  } else if (Now == Route::Down) {
    Under_Way.Path.push_back({To_Single(At.X), To_Single(At.Y)});
  }
}

void Reader::Add_Slot(std::string_view line, std::size_t g85) {
  Point_Of(line.substr(0, g85), At);
  Excellon_Hole slot = Hole_At(At);
  Point_Of(line.substr(g85 + 3), At);
  slot.Path.push_back({To_Single(At.X), To_Single(At.Y)});
  Add(slot);
  Count_Read("slots");
}

// By its centre from the start (I, J), or by its radius (A), then less than half a turn. As chords
// that stay within the tolerance.
void Reader::Cut_Arc(std::string_view line, bool clockwise, const Place& to) {
  constexpr double turn = 2 * std::numbers::pi;
  const auto i = Find_Coordinate('I', line), j = Find_Coordinate('J', line);
  const auto a = Find_Coordinate('A', line);
  Place centre = At;
  if (i || j) {
    centre.X += i ? Coordinate(*i) : 0;
    centre.Y += j ? Coordinate(*j) : 0;
  } else if (a) {
    const double radius = std::abs(Coordinate(*a));
    const double dx = to.X - At.X, dy = to.Y - At.Y, chord = std::hypot(dx, dy);
    const double height = std::sqrt(std::max(radius * radius - chord * chord / 4, 0.0));
    const double side = (clockwise ? -1 : 1) * (chord > 0 ? height / chord : 0);
    centre = {At.X + dx / 2 - dy * side, At.Y + dy / 2 + dx * side};
  } else {
    Count_Skipped("arc without centre and radius (cut straight to its end)");
    At = to;
    Under_Way.Path.push_back({To_Single(to.X), To_Single(to.Y)});
    return;
  }
  const double radius = std::hypot(At.X - centre.X, At.Y - centre.Y);
  const double begin = std::atan2(At.Y - centre.Y, At.X - centre.X);
  double sweep = std::atan2(to.Y - centre.Y, to.X - centre.X) - begin;
  if (clockwise && sweep >= -1e-9) sweep -= turn;
  if (!clockwise && sweep <= 1e-9) sweep += turn;
  const double tolerance = std::max<double>(MachineSetup.DXF_Line_Tolerance, 1e-4);
  const double piece = radius > tolerance ? 2 * std::acos(1 - tolerance / radius) : turn / 4;
  const int pieces = std::clamp(static_cast<int>(std::ceil(std::abs(sweep) / piece)), 1, 1000);
  for (int n = 1; n < pieces; ++n) {
    const double angle = begin + sweep * n / pieces;
    Under_Way.Path.push_back({To_Single(Rounded(centre.X + radius * std::cos(angle))),
                              To_Single(Rounded(centre.Y + radius * std::sin(angle)))});
  }
  Under_Way.Path.push_back({To_Single(to.X), To_Single(to.Y)});
  At = to;
}

void Reader::End_Route() {
  if (Now == Route::Down) {
    Add(Under_Way);
    Count_Read("routes");
  }
  if (Now != Route::None) Now = Route::Up;
  Under_Way = {};
}

void Reader::Add(Excellon_Hole hole) {
  Excellon_Table.Tool[Tool].Holes.push_back(hole);
  Last = Drilled{Tool, std::move(hole)};
  if (In_Pattern) Pattern.push_back(*Last);
}

// False where the line begins with none of the codes of routes and patterns.
bool Reader::Take_Code(std::string_view line) {
  const auto number = Number_Behind(line);
  const char letter = line.front();
  if (!number || (letter != 'G' && letter != 'M')) return false;
  const auto coordinates = std::min(line.find_first_of("XY"), line.size());
  const std::string_view point = line.substr(coordinates);
  if (letter == 'M') {
    switch (*number) {
      case 15:
        Under_Way = Hole_At(At);
        Now = Route::Down;
        return true;
      case 16:
      case 17:
        End_Route();
        return true;
      case 25:
        Pattern.clear();
        Pattern_Step = {};
        In_Pattern = true;
        return true;
      case 1:
        In_Pattern = false;
        return true;
      case 2: {
        In_Pattern = false;
        if (point.empty()) return true;
        const Place step = Step_Of(point);
        Pattern_Step = {Pattern_Step.X + step.X, Pattern_Step.Y + step.Y};
        Repeat(Pattern, 1, Pattern_Step);
        return true;
      }
      case 8:
        Pattern.clear();
        return true;
      default:
        // Ends, pauses and words to the operator ask for nothing here.
        if (*number != 9 && *number != 47 && *number != 97 && *number != 98)
          Count_Skipped(
              line.substr(0, std::min(line.find_first_not_of("0123456789", 1), line.size())));
        return true;
    }
  }
  switch (*number) {
    case 0:
      End_Route();
      Now = Route::Up;
      Point_Of(point, At);
      return true;
    case 1:
    case 2:
    case 3:
      Interpolation = *number;
      if (Now == Route::None) Now = Route::Up;
      Take_Point(point);
      return true;
    case 5:
    case 81:
      End_Route();
      Now = Route::None;
      Take_Point(point);
      return true;
    default:  // what its numbers mean is not known
      Count_Skipped(line.substr(0, std::min(line.find_first_not_of("0123456789", 1), line.size())));
      return true;
  }
}

bool Reader::Take_Repeat(std::string_view line) {
  const auto times = Number_Behind(line);
  if (line.front() != 'R' || !times) return false;
  const auto coordinates = std::min(line.find_first_of("XY"), line.size());
  const Place step = Step_Of(line.substr(coordinates));
  constexpr int most = 10'000;
  if (*times > most) {
    Count_Skipped("R repeat of more than 10,000 times");
  } else if (Contains(line, "M02") && !Pattern.empty()) {
    In_Pattern = false;
    for (int n = 0; n < *times; ++n) {
      Pattern_Step = {Pattern_Step.X + step.X, Pattern_Step.Y + step.Y};
      Repeat(Pattern, 1, Pattern_Step);
    }
  } else if (Last) {
    Repeat({*Last}, *times, step);
    At = {At.X + *times * step.X, At.Y + *times * step.Y};
  }
  return true;
}

void Reader::Move(Excellon_Hole& hole, const Place& step) {
  hole.X = To_Single(hole.X + step.X);
  hole.Y = To_Single(hole.Y + step.Y);
  for (auto& [x, y] : hole.Path) {
    x = To_Single(x + step.X);
    y = To_Single(y + step.Y);
  }
}

void Reader::Repeat(const std::vector<Drilled>& what, int times, const Place& step) {
  for (int n = 1; n <= times; ++n) {
    for (Drilled copy : what) {
      Move(copy.Hole, {step.X * n, step.Y * n});
      copy.Hole.X = To_Single(Rounded(copy.Hole.X));
      copy.Hole.Y = To_Single(Rounded(copy.Hole.Y));
      Excellon_Table.Tool[copy.Tool].Holes.push_back(copy.Hole);
      Count_Read("holes of repeats");
      if (times > 1 || what.size() == 1) Last = copy;
    }
  }
}

// --- Report --------------------------------------------------------------------------------------

void Reader::Note_Format() const {
  Import_Report.Format =
      "format " + std::to_string(Whole) + ":" + std::to_string(Decimals) +
      (Digits_Stated          ? " of the file"
       : Zeros_Stated && Unit ? " of the unit"
                              : " of the setup") +
      (Kept == Zeros::Leading_Kept ? ", leading zeros kept" : ", trailing zeros kept");
}

// Wrong digits give a board that is a power of ten too large or too small.
void Reader::Note_Digits() const {
  if (Digits_Stated || !Any_Without_Point) return;
  double x = 0, y = 0;
  for (const Excellon_Tool& tool : Excellon_Table.Tool) {
    for (const Excellon_Hole& hole : tool.Holes) {
      x = std::max(x, std::abs(double{hole.X}));
      y = std::max(y, std::abs(double{hole.Y}));
    }
  }
  Report_Note("The file does not state its digits; read as " + std::to_string(Whole) + ":" +
              std::to_string(Decimals) + " the holes reach " + General_Text(Rounded(x)) + " by " +
              General_Text(Rounded(y)) + ". Compare that with the board.");
}

void Reader::Note_End() {
  for (const std::int32_t tool : Excellon_Tools_To_Drill()) {
    const Excellon_Tool& row = Excellon_Table.Tool[tool];
    Import_Report.Tools.push_back("T" + std::to_string(tool) + " " + General_Text(row.Size) +
                                  " x " + std::to_string(row.Holes.size()));
  }
  if (Source.Lines_Cut() > 0) Report_Cut_Lines();
  if (!Source.Last_Line_Ended() && Line.find_first_of("XY") != std::string::npos && !Stopped &&
      !Ended) {
    Report_Note("The file ends within a line of coordinates; it may be cut short.");
  }
}

}  // namespace

void Excellon_Load_Full(const std::string& path) {
  Excellon_Table.By_Number = true;
  Reader(path).Load();
}

}  // namespace norvik
