#include "import/gerber/reader.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/gerber/apertures.h"
#include "import/gerber/layers.h"
#include "import/gerber/table.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <vector>

namespace norvik {

Gerber_Format_State Gerber_Format;

namespace {

constexpr std::string_view Fault_Name = "Get_Gerber_DataFile_Error";
constexpr std::size_t Longest_Word = 1000;
constexpr int First_Aperture = 10;

constexpr int Draw = 1, Move = 2, Flash = 3;  // operations by their D code

bool Is_Letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Two letters: no data word begins so.
bool Is_Parameter_Word(std::string_view word) {
  return word.size() >= 2 && Is_Letter(word[0]) && Is_Letter(word[1]);
}

// A letter and a number: no macro body begins so.
bool Is_Data_Word(std::string_view word) {
  return !word.empty() && Is_Letter(word[0]) && !Is_Parameter_Word(word);
}

std::string_view Digits_Behind(char letter, std::string_view text) {
  const std::string_view number = Gerber_Number_Text(letter, text);
  return number.substr(0, number.find_first_not_of("0123456789"));
}

// --- Parameters ----------------------------------------------------------------------------------

void Read_Number_Format(std::string_view rest) {
  Gerber_Format_State& format = Gerber_Format;
  if (Gerber_Contains("L", rest)) format.Zeros.Omit_Leading = true;
  if (Gerber_Contains("T", rest)) format.Zeros.Omit_Trailing = true;
  if (Gerber_Contains("A", rest)) format.Absolute = true;
  if (Gerber_Contains("I", rest)) format.Absolute = false;
  const auto store = [&](char letter, std::string& digits) {
    if (Gerber_Contains(std::string_view(&letter, 1), rest)) digits = Digits_Behind(letter, rest);
  };
  store('N', format.Sequence_Digits);
  store('G', format.G_Digits);
  store('M', format.M_Digits);
  store('D', format.D_Digits);
  store('X', format.Format_X);
  store('Y', format.Format_Y);
  if (Gerber_Contains("I", rest)) {
    Report_Note("The file says incremental coordinates (FS I); they were read as absolute ones.");
  }
}

void Read_Unit(std::string_view rest) {
  if (Gerber_Contains("IN", rest)) Gerber_Format.Inches = true;
  if (Gerber_Contains("MM", rest)) Gerber_Format.Inches = false;
}

void Read_Offset(std::string_view rest, double& a, double& b) {
  a = Gerber_Find_Val('A', rest).value_or(0);
  b = Gerber_Find_Val('B', rest).value_or(0);
  if (a != 0 || b != 0) Count_Skipped("offset of the image (OF, IO)");
}

void Read_Polarity(std::string_view rest) {
  if (Gerber_Contains("POS", rest)) Gerber_Format.Negative = false;
  if (!Gerber_Contains("NEG", rest)) return;
  Gerber_Format.Negative = true;
  Report_Note("The image is negative (IPNEG); it was cut as a positive one.");
}

// Values of a parameter that ask for nothing.
bool Asks_Nothing(std::string_view kind, std::string_view rest) {
  const auto is = [&](char letter, double value) {
    return Gerber_Find_Val(letter, rest).value_or(value) == value;
  };
  if (kind == "AS") return rest == "AXBY";
  if (kind == "MI") return is('A', 0) && is('B', 0);
  if (kind == "SF") return is('A', 1) && is('B', 1);
  if (kind == "SR") return is('X', 1) && is('Y', 1);
  if (kind == "LP") return rest == "D";
  if (kind == "IR") return Gerber_Find_CSV_Val(0, rest).value_or(0) == 0;
  return kind == "AD" || kind == "AM";
}

std::string Parameter_Title(std::string_view kind) {
  if (kind == "LP") return "LPC clear polarity (drawn like the rest)";
  if (kind == "SR") return "SR step and repeat (drawn once)";
  if (kind == "IF") return "IF included file";
  if (kind == "KO") return "KO knockout";
  return std::string(kind);
}

// --- Data ----------------------------------------------------------------------------------------

class Data_Scan {
 public:
  explicit Data_Scan(const std::string& path)
      : Words(path, Gerber_Words::Percent::Parts_Blocks, Longest_Word) {}
  void Load();

 private:
  struct Point {
    float X = 0, Y = 0;
    bool operator==(const Point&) const = default;
  };

  void Read_Parameter(std::string_view word);
  void Select_Layer(std::string_view name);
  void Read_Data(std::string_view word);
  bool Read_G(std::string_view word);
  void Look_For_Arcs(std::string_view word);
  bool Read_Coordinate(char letter, std::string_view word, const std::string& format, float& value);
  void Operate(std::optional<double> code);
  void Select_Aperture(double code);
  void Draw_Line();
  void Flash_Pad();
  bool Is_Kept(const char* what);

  void Note_Units();
  void Note_Apertures();
  void Note_End();

  Gerber_Words Words;
  Import_Faults Faults{Fault_Name};
  Import_Faults Value_Faults{"Gerber_Find_Val_Error"}, Format_Faults{"Gerber_XY_Format_Error"};

  const float Thin_Width = MachineSetup.Gerber_Isolation_Minimum_Poly_Width;
  const bool Keep_Thin = MachineSetup.Gerber_Isolation_SmallLines_Function;
  std::unordered_map<std::string, bool> Layer_Choice;
  bool Layer_On = true;

  Point Old, New;
  bool Seen = false;  // the word under way has a coordinate
  int Last = 0;       // operation; 0 before the first
  std::int32_t Aperture = 0;
  bool Aperture_In_Range = true;
  bool Arc = false;
  bool Circle = false;  // the word under way is an arc with a centre and no end: a full circle
  std::int64_t Short_Coordinates = 0, Lost_Words = 0;
};

void Data_Scan::Load() {
  for (const Gerber_Layer& layer : Gerber_Layers.Layers) {
    Layer_Choice.emplace(layer.Layer_Name, layer.Layer_Selected);
    if (layer.Layer_Selected) Import_Report.Layers.push_back(layer.Layer_Name);
  }
  std::string word;
  while (Words.Next(word) && !Words.Was_Cut()) {
    Faults.Try([&] {
      if (Is_Parameter_Word(word)) {
        Read_Parameter(word);
      } else if (!Words.In_Block() || Is_Data_Word(word)) {
        Read_Data(word);
      }
    });
  }
  Note_Units();
  Note_Apertures();
  Note_End();
}

void Data_Scan::Read_Parameter(std::string_view word) {
  const std::string_view kind = word.substr(0, 2), rest = word.substr(2);
  Gerber_Format_State& format = Gerber_Format;
  if (kind == "FS") {
    Read_Number_Format(rest);
  } else if (kind == "MO") {
    Read_Unit(rest);
  } else if (kind == "OF") {
    Read_Offset(rest, format.Offset_A, format.Offset_B);
  } else if (kind == "IN") {
    format.Image_Name = rest;
  } else if (kind == "IO") {
    Read_Offset(rest, format.Image_Offset_A, format.Image_Offset_B);
  } else if (kind == "IP") {
    Read_Polarity(rest);
  } else if (kind == "LN") {
    Select_Layer(rest);
  } else if (!Asks_Nothing(kind, rest)) {
    Count_Skipped(Parameter_Title(kind));
  }
}

void Data_Scan::Select_Layer(std::string_view name) {
  const auto layer = Layer_Choice.find(std::string(name));
  Layer_On = layer != Layer_Choice.end() && layer->second;
}

void Data_Scan::Read_Data(std::string_view word) {
  Seen = false;
  if (!Read_G(word)) return;
  const Point before = New;
  const bool readable = Read_Coordinate('X', word, Gerber_Format.Format_X, New.X) &&
                        Read_Coordinate('Y', word, Gerber_Format.Format_Y, New.Y);
  std::optional<double> code;
  Circle = Arc && Gerber_Number_Text('X', word).empty() && Gerber_Number_Text('Y', word).empty() &&
           (!Gerber_Number_Text('I', word).empty() || !Gerber_Number_Text('J', word).empty());
  if (!readable || !Value_Faults.Try([&] { code = Gerber_Find_Val('D', word); })) {
    New = before;
    ++Lost_Words;
    return;
  }
  if (code && *code >= First_Aperture) {
    Select_Aperture(*code);
  } else if (code || Seen) {
    Operate(code);
  } else if (Circle) {
    Count_Skipped("full circle without X and Y (not drawn)");
  }
}

// The interpolation that the word's G codes leave in force, the second and later ones too:
// "G75G02".
void Data_Scan::Look_For_Arcs(std::string_view word) {
  for (auto at = word.find('G'); at != std::string_view::npos; at = word.find('G', at + 1)) {
    const auto number = Try_Number(Gerber_Number_Text('G', word.substr(at)));
    if (number == 1 || number == 10 || number == 11 || number == 12) Arc = false;
    if (number == 2 || number == 3) Arc = true;
  }
}

// False when the word is a comment.
bool Data_Scan::Read_G(std::string_view word) {
  constexpr std::array accepted{0, 1, 2, 3, 4, 10, 11, 12, 36, 37, 54, 70, 71, 74, 75, 90, 91};
  const std::string_view text = Gerber_Number_Text('G', word);
  if (text.empty()) return true;
  double number = 0;
  if (!Value_Faults.Try([&] { number = Foreign_Number(text); })) {
    ++Lost_Words;
    return true;
  }
  if (number == 4) return false;
  Look_For_Arcs(word);
  const auto code = static_cast<int>(std::clamp(number, -1.0, 1000.0));
  if (std::find(accepted.begin(), accepted.end(), code) == accepted.end()) {
    Count_Skipped("G" + std::string(text.substr(0, 10)));
  }
  if (code == 36) Count_Skipped("G36 region (its outline drawn with the aperture, not filled)");
  if (code == 70) Gerber_Format.Inches = Gerber_Format.Inches.value_or(true);
  if (code == 71) Gerber_Format.Inches = Gerber_Format.Inches.value_or(false);
  if (code == 91) {
    Report_Note("The file says incremental coordinates (G91); they were read as absolute ones.");
  }
  return true;
}

// False when there is a number that cannot be read.
bool Data_Scan::Read_Coordinate(char letter, std::string_view word, const std::string& format,
                                float& value) {
  const std::string_view text = Gerber_Number_Text(letter, word);
  if (text.empty()) return true;
  const bool readable = Format_Faults.Try([&] {
    if (text.find_last_of("+-") + 1 > 1)  // a sign behind the first character
      throw Fault(Fault_Number::Type_Mismatch, "A coordinate with a sign in its middle");
    value = To_Single(Gerber_XY_Format(text, format, Gerber_Format.Zeros) * Gerber_Format.Factor);
  });
  if (!readable) return false;
  if (Gerber_Is_Short(text, format, Gerber_Format.Zeros)) ++Short_Coordinates;
  Seen = true;
  return true;
}

void Data_Scan::Select_Aperture(double code) {
  Aperture_In_Range = code <= Gerber_Apertures.Aperture.last;
  if (Aperture_In_Range) {
    Aperture = static_cast<std::int32_t>(code);
    return;
  }
  Count_Skipped("selection of an aperture beyond D1000");
  throw Fault(Fault_Number::Out_Of_Range,
              "Aperture D" + General_Text(code) + " is beyond D1000, the last that is kept");
}

// Without a code the last operation counts again, but a flash only as a move, and a stroke only
// where the point has moved.
void Data_Scan::Operate(std::optional<double> code) {
  if (code && *code != Draw && *code != Move && *code != Flash) {
    Count_Skipped("operation D" + General_Text(*code));
    return;
  }
  if (code) Last = static_cast<int>(*code);
  const int now = code ? Last : std::min(Last, Move);
  if (now == Draw && Circle) {
    Count_Skipped("full circle without X and Y (not drawn)");
    return;
  }
  if (now == Draw) {
    const bool moved = !(New == Old);
    if (Seen && (code || moved)) Draw_Line();
  } else if (now == Flash) {
    Flash_Pad();
  }
  if (now == Move || now == Flash || (now == Draw && Seen)) Old = New;
}

// True when a stroke or flash is to be cut.
bool Data_Scan::Is_Kept(const char* what) {
  if (!Layer_On) {
    Count_Skipped(std::string(what) + " of a layer that was not chosen");
    return false;
  }
  if (!Aperture_In_Range) {
    Count_Skipped(std::string(what) + " with an aperture beyond D1000");
    return false;
  }
  return true;
}

void Data_Scan::Draw_Line() {
  if (!Is_Kept("draw")) return;
  if (Arc) Count_Skipped("arc (drawn straight to its end)");
  Gerber_Aperture& aperture = Gerber_Apertures.Aperture[Aperture];
  ++aperture.Draws;
  if (aperture.Size_X > Thin_Width) {
    Gerber_Table.Lines.push_back({New.X, New.Y, Old.X, Old.Y, aperture.Size_X, false});
    Count_Read("draw");
  } else if (Keep_Thin) {  // in the order of the file, so that cuts join without lifts
    Gerber_Table.Thin_Lines.push_back({Old.X, Old.Y, New.X, New.Y});
    Count_Read("thin draw (cut along its middle)");
  } else {
    Count_Skipped("thin draw");
  }
}

void Data_Scan::Flash_Pad() {
  if (!Is_Kept("flash")) return;
  Gerber_Aperture& aperture = Gerber_Apertures.Aperture[Aperture];
  ++aperture.Flashes;
  if (aperture.Size_X < Thin_Width) {
    Count_Skipped("small flash");
    return;
  }
  Gerber_Table.Pads.push_back(
      {New.X, New.Y, aperture.Size_X, aperture.Size_Y, aperture.Shape, false});
  Count_Read("flash");
}

// --- Report --------------------------------------------------------------------------------------

// "D12, D14 to D30"
std::string Code_List(const std::vector<int>& codes) {
  std::string text;
  for (std::size_t n = 0; n < codes.size(); ++n) {
    const std::size_t first = n;
    while (n + 1 < codes.size() && codes[n + 1] == codes[n] + 1) ++n;
    text += (text.empty() ? "D" : ", D") + std::to_string(codes[first]);
    if (n > first) text += (n > first + 1 ? " to D" : ", D") + std::to_string(codes[n]);
  }
  return text;
}

void Data_Scan::Note_Units() {
  const Gerber_Format_State& format = Gerber_Format;
  const auto digits = [](const std::string& text) {
    return text.empty() ? std::string("thousandths")
                        : std::string{text.front()} + "." + std::string{text.back()};
  };
  std::string& line = Import_Report.Format;
  line = !format.Inches   ? "the file names no unit"
         : *format.Inches ? "file in inches"
                          : "file in millimetres";
  line += ", format " + digits(format.Format_X);
  if (format.Format_Y != format.Format_X) line += " and " + digits(format.Format_Y);
  line += format.Zeros.Omit_Leading    ? ", leading zeros omitted"
          : format.Zeros.Omit_Trailing ? ", trailing zeros omitted"
                                       : ", no zeros omitted";
  Report_Unit(!format.Inches ? std::nullopt
                             : std::optional(*format.Inches ? Unit_Inches : Unit_Millimetres));
  if (Short_Coordinates > 0) {
    Report_Note(std::to_string(Short_Coordinates) +
                " coordinates have so few digits that their places shift under this number format. "
                "Write the artwork with leading zeros or with fewer decimals.");
  }
}

void Data_Scan::Note_Apertures() {
  std::vector<int> unused;
  std::string undefined;
  bool polygons = false;
  for (int code = Gerber_Apertures.Aperture.first; code <= Gerber_Apertures.Aperture.last; ++code) {
    const Gerber_Aperture& aperture = Gerber_Apertures.Aperture[code];
    const std::int64_t uses = aperture.Draws + aperture.Flashes;
    const std::string name = "D" + std::to_string(code), times = " x " + std::to_string(uses);
    if (!aperture.Defined) {
      if (uses > 0)
        undefined += (undefined.empty() ? "" : ", ") + (code > 0 ? name : "none") + times;
    } else if (uses == 0) {
      unused.push_back(code);
    } else {
      const std::string shape = aperture.Shape != 0 ? std::string{' ', aperture.Shape} : "";
      polygons = polygons || (aperture.Shape == 'P' && aperture.Flashes > 0);
      Import_Report.Tools.push_back(name + shape + " " + General_Text(aperture.Size_X) + times);
    }
  }
  if (polygons) {
    Report_Note("Polygon apertures (P): the number of sides counts as height. Check their pads.");
  }
  if (!unused.empty()) Report_Note("Apertures without use: " + Code_List(unused));
  if (!undefined.empty()) {
    Report_Note("Apertures used but not defined (no size): " + undefined);
  }
}

void Data_Scan::Note_End() {
  if (Lost_Words > 0) {
    Report_Note(std::to_string(Lost_Words) +
                " words hold a number that cannot be read; they were left out. See the error log.");
  }
  if (Application.EscFlag) return;
  if (Words.Was_Cut()) {
    Report_Note("Word " + std::to_string(Words.Number()) +
                " has more than 1000 characters; the reading stopped there.");
  } else if (Words.Ended_In_Word()) {
    Report_Note("The file ends in the middle of a word; it may be incomplete.");
  }
}

}  // namespace

void Gerber_Read_Data(const std::string& path) {
  Import_Status("Gerber Import: Loading Coordinate Data...");
  Application.EscFlag = false;
  Trap(Fault_Name, [&] { Data_Scan(path).Load(); });
}

}  // namespace norvik
