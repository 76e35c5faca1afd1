#include "import/excellon/reader.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/excellon/full_reader.h"
#include "import/excellon/table.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace norvik {

Excellon_State Excellon_Table;

namespace {

constexpr std::string_view Fault_Name = "NC File Load Error";
constexpr std::int16_t Leading_Zeros = 1, Trailing_Zeros = 2;

// The coordinate as the format places its point.
std::string Placed_Text(std::string_view text, std::int16_t zero_format) {
  const auto whole =
      static_cast<std::size_t>(std::max<std::int16_t>(MachineSetup.Excellon_Integer_Format, 0));
  const auto decimals =
      static_cast<std::size_t>(std::max<std::int16_t>(MachineSetup.Excellon_Decimal_Format, 0));
  std::string placed(text);
  if (text.find('.') != std::string_view::npos) return placed;
  if (zero_format == Leading_Zeros) {
    placed = std::string(text.substr(0, whole)) + ".";
    if (text.size() > whole) placed += text.substr(whole, decimals);
  } else if (zero_format == Trailing_Zeros) {
    placed.insert(text.size() - std::min(decimals, text.size()), ".");
  }
  return placed;
}

double Value_In_Format(std::string_view text, std::int16_t zero_format,
                       const Axis_Rounding& rounded, double factor) {
  constexpr double thousandths = 1000;
  const bool placed = zero_format == Leading_Zeros || zero_format == Trailing_Zeros ||
                      text.find('.') != std::string_view::npos;
  if (!placed) return rounded(Foreign_Number(text) / thousandths * factor);
  const std::string point_text = Placed_Text(text, zero_format);
  if (point_text == ".") return 0;
  return factor == 1 ? rounded(std::string_view(point_text))
                     : rounded(Foreign_Number(point_text) * factor);
}

// How large the board is under one reading of the coordinates.
struct Reading_Extent {
  double X = 0, Y = 0;
  double Size() const { return std::max(X, Y); }
};

class Reader {
 public:
  explicit Reader(const std::string& path) : Source(path) {}
  void Load();

 private:
  bool Next_Field(std::string_view& field);
  void Read_Header();
  void Read_Header_Tool(std::string_view line);
  void Read_Body();
  void Read_Body_Line(std::string_view line);
  void Select_Tool(std::string_view number);
  void Add_Hole();
  void Take_Coordinate(std::string_view text, double& last, double Reading_Extent::*extent);
  void Count_Other(std::string_view line);
  void Stop(const std::string& why);
  void Note_Word(std::string_view line);
  void Take_Unit(const File_Unit& unit);
  void Take_Stated_Digits(std::string_view line);
  void Note_Format();
  void Note_Stated_Digits();
  void Note_Lost_Tools();
  void Note_Text();

  Text_Source Source;
  Import_Faults Faults{Fault_Name};
  const Axis_Rounding Rounded;
  std::string Line;      // in capitals
  std::size_t Rest = 0;  // where the next field of the line begins
  bool Has_Rest = false, Stopped = false;
  std::optional<File_Unit> Unit;
  double Factor = Unit_Factor(Unit);          // units of the setup in one of the file
  std::array<bool, 201> Size_Read{};          // by the header, of the tool list
  std::string Zero_Word;                      // "LZ" or "TZ" of the header
  int Stated_Whole = 0, Stated_Decimals = 0;  // digits that the file names; both 0: none
  std::int16_t Tool = 1;
  double X = 0, Y = 0;
  Reading_Extent Leading, Trailing;  // the same coordinates under both readings
};

// A comma ends a field as a line end does.
bool Reader::Next_Field(std::string_view& field) {
  if (Application.EscFlag || Stopped) return false;
  DoEvents();
  if (!Has_Rest) {
    std::string_view line;
    if (!Source.Next_Line(line)) return false;
    Line = Upper(line);
    Rest = 0;
  }
  const auto comma = std::min(Line.find(',', Rest), Line.size());
  field = Without_Blanks(std::string_view(Line).substr(Rest, comma - Rest));
  Has_Rest = comma < Line.size();
  Rest = comma + 1;
  return true;
}

// The board's tables are full or the number means no tool: going on would drill the wrong holes.
void Reader::Stop(const std::string& why) {
  Stopped = true;
  const std::string text =
      "Line " + std::to_string(Source.Line_Number()) + ": " + why + " The load stopped there.";
  Faults.Try([&] { throw Fault(Fault_Number::Out_Of_Range, text); });
  AddMessage(text);
  Report_Note(text);
}

void Reader::Read_Header() {
  std::string_view field;
  while (Next_Field(field)) {
    if (field == "%") return;
    Note_Word(field);
    Take_Stated_Digits(field);
    if (Is_Line_Of_Program(field)) Report_Program_Instead();
    if (!Faults.Try([&] { Read_Header_Tool(field); })) {
      Count_Skipped("tool sizes with unreadable numbers");
    }
  }
  if (!Application.EscFlag && !Stopped) {
    Report_Note(
        "The file has no line \"%\", so all of it was read as header and nothing is drilled. Put a "
        "line \"%\" where its header ends and import again.");
  }
}

void Reader::Read_Header_Tool(std::string_view line) {
  constexpr double metric_factor = 2.54;
  const auto number = Find_Coordinate('T', line), diameter = Find_Coordinate('C', line);
  if (!number || !diameter) return;
  const double value = Foreign_Number(*number);
  if (value > Tools.Diameter.last) {
    Stop("Tool " + std::string(*number) + " is above 200, the last of the tool list.");
    return;
  }
  const std::int16_t tool = To_Int16(value);
  double size = Foreign_Number(*diameter);
  if (MachineSetup.Import_Convert_Units) {
    size *= Factor;
  } else if (MachineSetup.UnitsofMeasurement == 1) {
    size *= metric_factor;
  }
  Excellon_Table.Tool[tool].Size = To_Single(size);
  Tools.Diameter[tool] = size;
  Size_Read[static_cast<std::size_t>(tool)] = true;
  ++Excellon_Table.Header_Tools;
  Count_Read("tool sizes");
}

// Unit and zero format as the file names them. Sizes stand in the header too, in front of the word
// or behind it.
void Reader::Note_Word(std::string_view line) {
  if (line == "INCH" || line == "M72" || line == "G70") {
    Take_Unit(Unit_Inches);
  } else if (line == "METRIC" || line == "M71" || line == "G71") {
    Take_Unit(Unit_Millimetres);
  } else if (line == "LZ" || line == "TZ") {
    Zero_Word = line;
  }
}

void Reader::Take_Unit(const File_Unit& unit) {
  const double before = Factor;
  Unit = unit;
  Factor = Unit_Factor(Unit);
  if (Factor == before) return;
  for (std::int32_t tool = 0; tool <= Tools.Diameter.last; ++tool) {
    if (!Size_Read[static_cast<std::size_t>(tool)]) continue;
    Tools.Diameter[tool] *= Factor / before;
    Excellon_Table.Tool[tool].Size = To_Single(Tools.Diameter[tool]);
  }
}

// "000.000" behind METRIC or INCH, ";FILE_FORMAT=2:4", "; FORMAT={3:3/ absolute / metric}".
void Reader::Take_Stated_Digits(std::string_view line) {
  const auto zeros_and_point = [](char c) { return c == '0' || c == '.'; };
  const auto point = line.find('.');
  if (point != std::string_view::npos && point > 0 && point + 1 < line.size() &&
      std::ranges::all_of(line, zeros_and_point)) {
    Stated_Whole = static_cast<int>(point);
    Stated_Decimals = static_cast<int>(line.size() - point - 1);
    return;
  }
  const auto format = line.find("FORMAT");
  if (line.empty() || line.front() != ';' || format == std::string_view::npos) return;
  const auto colon = line.find(':', format);
  if (colon == std::string_view::npos || colon + 1 >= line.size()) return;
  const char whole = line[colon - 1], decimals = line[colon + 1];
  if (whole < '0' || whole > '9' || decimals < '0' || decimals > '9') return;
  Stated_Whole = whole - '0';
  Stated_Decimals = decimals - '0';
}

void Reader::Read_Body() {
  std::string_view field;
  while (Next_Field(field)) {
    if (!Faults.Try([&] { Read_Body_Line(field); })) Count_Skipped("lines with unreadable numbers");
  }
}

void Reader::Read_Body_Line(std::string_view line) {
  const auto tool = Find_Coordinate('T', line);
  const auto x = Find_Coordinate('X', line), y = Find_Coordinate('Y', line);
  if (tool) Select_Tool(*tool);
  if (Stopped) return;
  Count_Other(line);
  if (!x && !y) {
    Note_Word(line);
    return;
  }
  if (x) Take_Coordinate(*x, X, &Reading_Extent::X);
  if (y) Take_Coordinate(*y, Y, &Reading_Extent::Y);
  Add_Hole();
}

void Reader::Select_Tool(std::string_view number) {
  const double value = Foreign_Number(number);
  if (value == 0) return;
  if (value < 0 || value > Excellon_Table.Tool.last) {
    Stop("Tool " + std::string(number) + " is not between 1 and 500.");
    return;
  }
  Tool = To_Int16(value);
  Excellon_Tool& tool = Excellon_Table.Tool[Tool];
  if (!tool.Holes.empty()) {
    Count_Skipped("holes of a tool that is selected again",
                  static_cast<std::int64_t>(tool.Holes.size()));
    Report_Answer("Excellon_Header", "A tool that is selected again loses its earlier holes.");
  }
  tool.Holes.clear();
  ++Excellon_Table.Tools_Used;
  Count_Read("tool selections");
  if (Tool > Tools.Diameter.last) {  // beyond the tool list
    if (tool.Size == 0) tool.Size = MachineSetup.Excellon_Default_Drill_Size;
    return;
  }
  double& listed = Tools.Diameter[Tool];
  if (listed == 0) listed = Decimal_Of(MachineSetup.Excellon_Default_Drill_Size);
  tool.Size = To_Single(listed);
}

void Reader::Take_Coordinate(std::string_view text, double& last, double Reading_Extent::*extent) {
  if (text.find_first_of("0123456789") == std::string_view::npos)
    throw Fault(Fault_Number::Type_Mismatch, "A coordinate without digits: the hole is left out");
  last = Value_In_Format(text, MachineSetup.Excellon_Zero_Format, Rounded, Factor);
  const auto reach = [&](Reading_Extent& reading, std::int16_t format) {
    try {
      reading.*extent =
          std::max(reading.*extent, std::abs(Value_In_Format(text, format, Rounded, Factor)));
    } catch (const Fault&) {  // not readable that way: says nothing about the other reading
    }
  };
  if (text.find('.') != std::string_view::npos) return;
  reach(Leading, Leading_Zeros);
  reach(Trailing, Trailing_Zeros);
}

void Reader::Add_Hole() {
  std::vector<Excellon_Hole>& holes = Excellon_Table.Tool[Tool].Holes;
  if (holes.size() >= Excellon_Holes_Limit) {
    Stop("Tool " + std::to_string(Tool) + " has more than 10,000 holes.");
    return;
  }
  holes.push_back({To_Single(X), To_Single(Y)});
  Count_Read("holes");
}

// What the line says besides a tool and a hole.
void Reader::Count_Other(std::string_view line) {
  if (line.empty() || line.front() == ';' || line == "%") return;
  const char first = line.front();
  if (line.find("G85") != std::string_view::npos) {
    Count_Skipped("G85 slot (drilled at its start only)");
    Report_Answer("Excellon_Header", "Slots (G85) are drilled at one place only.");
  }
  if (first == 'R' && line.find_first_of("XY") != std::string_view::npos) {
    Count_Skipped("R repeat");
    Report_Answer(
        "Excellon_Header",
        "The file repeats holes (R). The repeats are not drilled, and the step of each stands as a "
        "hole. Have the file written without repeats and import again.");
  }
  if (first == 'T' && Find_Coordinate('C', line)) {
    Count_Skipped("tool size behind the header");
    Report_Answer(
        "Excellon_Header",
        "Tool sizes behind the first line \"%\" are not read. Remove the line that ends the header "
        "too early and import again.");
  }
  if (Is_Line_Of_Program(line)) Report_Program_Instead();
  if (first == 'G' || first == 'M') {
    const auto end = line.find_first_not_of("0123456789", 1);
    Count_Skipped(line.substr(0, std::min(end, line.size())));
  }
}

// --- Report --------------------------------------------------------------------------------------

void Reader::Note_Format() {
  const std::int16_t zeros = MachineSetup.Excellon_Zero_Format;
  Import_Report.Format = "format " + std::to_string(MachineSetup.Excellon_Integer_Format) + ":" +
                         std::to_string(MachineSetup.Excellon_Decimal_Format) +
                         (zeros == Leading_Zeros    ? ", leading zeros kept"
                          : zeros == Trailing_Zeros ? ", trailing zeros kept"
                                                    : ", thousandths");
  const bool placed = Leading.Size() > 0 || Trailing.Size() > 0;
  if (placed && Zero_Word == "LZ" && zeros != Leading_Zeros) {
    Report_Note("The file keeps leading zeros (LZ); the setup reads another zero format.");
  } else if (placed && Zero_Word == "TZ" && zeros != Trailing_Zeros) {
    Report_Note("The file keeps trailing zeros (TZ); the setup reads another zero format.");
  }
  constexpr double suspicious = 5;
  const double leading = Leading.Size(), trailing = Trailing.Size();
  if (std::max(leading, trailing) <= suspicious * std::min(leading, trailing)) return;
  const auto size_of = [](const Reading_Extent& reading) {
    return General_Text(reading.X) + " by " + General_Text(reading.Y);
  };
  Report_Note("Check the zero format: with leading zeros kept the holes reach " + size_of(Leading) +
              ", with trailing zeros kept " + size_of(Trailing) + ".");
}

// What the digits that the file names make of the coordinates, against those of the setup.
void Reader::Note_Stated_Digits() {
  if (Stated_Whole + Stated_Decimals == 0) return;
  if (Leading.Size() == 0 && Trailing.Size() == 0) return;  // all numbers have points
  const int whole = MachineSetup.Excellon_Integer_Format;
  const int decimals = MachineSetup.Excellon_Decimal_Format;
  constexpr int thousandths = 3;
  int larger = 0;  // places by which the coordinates come out too large
  switch (MachineSetup.Excellon_Zero_Format) {
    case Leading_Zeros:
      larger = whole - Stated_Whole;
      break;
    case Trailing_Zeros:
      larger = Stated_Decimals - decimals;
      break;
    default:
      larger = Stated_Decimals - thousandths;
  }
  if (larger == 0) return;
  constexpr std::array names{"ten", "a hundred", "a thousand", "ten thousand"};
  const auto place = static_cast<std::size_t>(std::abs(larger) - 1);
  const std::string times = place < names.size() ? names[place] : "many";
  Report_Answer(
      "Excellon_Header",
      "The file states " + std::to_string(Stated_Whole) + ":" + std::to_string(Stated_Decimals) +
          " digits, the setup reads " + std::to_string(whole) + ":" + std::to_string(decimals) +
          ": the coordinates come out " + times + " times too " + (larger > 0 ? "large" : "small") +
          ". Set the digits of the file under Excellon and import again.");
}

void Reader::Note_Lost_Tools() {
  std::string lost, first_idle;
  std::size_t holes = 0, idle = 0;
  for (std::int32_t tool = 0; tool <= Excellon_Table.Tool.last; ++tool) {
    const Excellon_Tool& row = Excellon_Table.Tool[tool];
    const bool drilled = tool >= 1 && tool <= Excellon_Tools_Drilled();
    const std::string number = std::to_string(tool);
    if (drilled && row.Holes.empty() && idle++ == 0) first_idle = number;
    if (row.Holes.empty()) continue;
    if (drilled) {
      Import_Report.Tools.push_back("T" + number + " " + General_Text(row.Size) + " x " +
                                    std::to_string(row.Holes.size()));
    } else {
      lost += (lost.empty() ? "T" : ", T") + number;
      holes += row.Holes.size();
    }
  }
  if (idle > 0) {
    Report_Note("The program also stops for tools without holes: " + std::to_string(idle) +
                ", the first is T" + first_idle + ".");
  }
  if (lost.empty()) return;
  Report_Answer("Excellon_Header", "Not drilled: " + lost + " with " + std::to_string(holes) +
                                       " holes. Tools must be numbered from 1 without gaps.");
}

void Reader::Note_Text() {
  if (Source.Lines_Cut() > 0) Report_Cut_Lines();
  const bool at_hole = Line.find('X') != std::string::npos || Line.find('Y') != std::string::npos;
  if (!Source.Last_Line_Ended() && at_hole && !Stopped) {
    Report_Note("The file ends within a line of coordinates; it may be cut short.");
  }
}

void Reader::Load() {
  Read_Header();
  Read_Body();
  Report_Unit(Unit);
  Note_Format();
  Note_Stated_Digits();
  Note_Lost_Tools();
  Note_Text();
}

}  // namespace

std::optional<std::string_view> Find_Coordinate(char letter, std::string_view line) {
  auto at = line.find(letter);
  if (at == std::string_view::npos) return std::nullopt;
  at = line.find_first_not_of(' ', at + 1);
  if (at == std::string_view::npos) return std::nullopt;
  const auto end = line.find_first_not_of("0123456789+-.", at);
  const std::string_view text = line.substr(at, std::min(end, line.size()) - at);
  if (text.empty()) return std::nullopt;
  return text;
}

bool Is_Line_Of_Program(std::string_view line) {
  const auto z = line.find('Z');
  if (line.empty() || line.front() == ';' || line.front() == '(') return false;
  return z != std::string_view::npos && line.find('G') < z && Find_Coordinate('Z', line);
}

void Report_Program_Instead() {
  Report_Note(
      "The file moves Z by G words: it looks like a G-code program, not like a drill file. Open it "
      "as a program.");
}

void Excellon_Load(const std::string& path) {
  Import_Status("NC Conversion: Loading File...");
  const bool read = Trap(Fault_Name, [&] {
    if (MachineSetup.Excellon_Header) {
      Excellon_Load_Full(path);
    } else {
      Reader(path).Load();
    }
  });
  if (!read) Report_Unreadable();
}

}  // namespace norvik
