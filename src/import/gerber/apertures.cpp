#include "import/gerber/apertures.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/rounding.h"
#include "import/gerber/layers.h"
#include "import/gerber/reader.h"
#include "import/gerber/words.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"

#include <algorithm>
#include <optional>

namespace norvik {

Gerber_Aperture_State Gerber_Apertures;

namespace {

constexpr std::string_view Fault_Name = "Get_Gerber_AperatureFile_Error";
constexpr std::size_t Longest_Word = 4096;  // no name, macro or definition needs more
constexpr std::size_t Most_Layers = 1001;
constexpr float Polygon_Sides = 8;  // whatever the macro says

float Single_Or_0(std::optional<double> value) {
  return To_Single(value.value_or(0));
}

class Aperture_Scan {
 public:
  explicit Aperture_Scan(const std::string& path)
      : Words(path, Gerber_Words::Percent::Empties, Longest_Word) {}
  void Load();

 private:
  void Take(std::string_view word);
  void Convert_Sizes();
  void Take_Layer(std::string_view name);
  void Take_Macro(std::string_view name);
  void Take_Definition(std::string_view text);
  void Read_Sizes(Gerber_Aperture& aperture, std::string_view definition);
  void Read_Macro_Polygon(Gerber_Aperture& aperture, std::string_view name);
  void Note_Definition(const Gerber_Aperture& aperture, std::string_view definition);

  Gerber_Words Words;
  Import_Faults Faults{Fault_Name};
  Import_Faults Value_Faults{"Gerber_Find_Val_Error"}, CSV_Faults{"Gerber_Find_CSV_Val_Error"};
  std::optional<File_Unit> Unit;
};

void Aperture_Scan::Load() {
  std::string word;
  while (Words.Next(word)) {
    Faults.Try([&] { Take(word); });
  }
  Convert_Sizes();
  if (Gerber_Layers.Layers.empty()) {
    Gerber_Layers.Layers.push_back({std::string(Gerber_Unnamed_Layer), false});
  }
}

void Aperture_Scan::Take(std::string_view word) {
  const std::string_view kind = word.substr(0, 2);
  const std::string_view rest = word.substr(kind.size());
  if (kind == "LN") Take_Layer(rest);
  if (kind == "AM") Take_Macro(rest);
  if (kind == "AD") Take_Definition(rest);
  if (kind == "MO" && Gerber_Contains("IN", rest)) Unit = Unit_Inches;
  if (kind == "MO" && Gerber_Contains("MM", rest)) Unit = Unit_Millimetres;
  if (!Unit && word == "G70") Unit = Unit_Inches;
  if (!Unit && word == "G71") Unit = Unit_Millimetres;
}

// The data scan compares sizes, so they are of the setup from here on.
void Aperture_Scan::Convert_Sizes() {
  const double factor = Gerber_Format.Factor = Unit_Factor(Unit);
  if (factor == 1) return;
  for (Gerber_Aperture& aperture : Gerber_Apertures.Aperture) {
    aperture.Size_X = To_Single(aperture.Size_X * factor);
    aperture.Size_Y = To_Single(aperture.Size_Y * factor);
  }
}

// A layer that the file enters again is still one layer.
void Aperture_Scan::Take_Layer(std::string_view name) {
  auto& layers = Gerber_Layers.Layers;
  const auto same = [&](const Gerber_Layer& layer) { return layer.Layer_Name == name; };
  if (std::any_of(layers.begin(), layers.end(), same)) return;
  if (layers.size() == Most_Layers) {
    Report_Note("The file has more than 1001 layers; the others are not cut.");
    throw Fault(Fault_Number::Out_Of_Range, "More than 1001 layers");
  }
  layers.push_back({std::string(name), false});
}

void Aperture_Scan::Take_Macro(std::string_view name) {
  std::string body;
  if (!Words.Next(body)) return;
  Gerber_Macro& macro = Gerber_Apertures.Macro[Gerber_Apertures.Macro_Count];
  macro = {std::string(name), body};
  ++Gerber_Apertures.Macro_Count;
}

void Aperture_Scan::Take_Definition(std::string_view text) {
  const std::string_view number = Gerber_Number_Text('D', text);
  if (number.empty() || text.front() != 'D') {
    throw Fault(Fault_Number::Type_Mismatch,
                "\"AD" + std::string(text.substr(0, 40)) + "\" names no aperture");
  }
  const double code = *Gerber_Find_Val('D', text);
  if (code > Gerber_Apertures.Aperture.last) {
    Count_Skipped("aperture definition beyond D1000");
    throw Fault(Fault_Number::Out_Of_Range, "Aperture D" + std::string(number.substr(0, 40)) +
                                                " is beyond D1000, the last that is kept");
  }
  Gerber_Aperture& aperture = Gerber_Apertures.Aperture[To_Int32(code)];
  const std::string_view definition = text.substr(1 + number.size());
  aperture = {};
  aperture.Defined = true;
  if (Gerber_Contains(",", definition)) {
    Read_Sizes(aperture, definition);
  } else {
    Read_Macro_Polygon(aperture, definition);
  }
  Note_Definition(aperture, definition);
}

void Aperture_Scan::Read_Sizes(Gerber_Aperture& aperture, std::string_view definition) {
  aperture.Shape = definition.front() == ',' ? '\0' : definition.front();
  const std::string_view sizes = definition.substr(definition.find(',') + 1);
  const bool first_read =
      CSV_Faults.Try([&] { aperture.Size_X = Single_Or_0(Gerber_Find_CSV_Val(1, definition)); });
  const bool second_read = Value_Faults.Try([&] {
    const std::optional<double> second = Gerber_Find_Val('X', sizes);
    const bool needs_second = aperture.Shape != 'R' && aperture.Shape != 'O';
    const bool as_high_as_wide = aperture.Shape == 'C' || (!second && !needs_second);
    aperture.Size_Y = as_high_as_wide ? aperture.Size_X : Single_Or_0(second);
    if (aperture.Shape == 'C' && second) aperture.Sides = Single_Or_0(second);
  });
  if (!first_read || !second_read) Count_Skipped("aperture size that is no number");
}

void Aperture_Scan::Read_Macro_Polygon(Gerber_Aperture& aperture, std::string_view name) {
  constexpr int diameter_place = 5;
  for (std::int32_t n = 0; n < Gerber_Apertures.Macro_Count; ++n) {
    const Gerber_Macro& macro = Gerber_Apertures.Macro[n];
    if (macro.Name != name) continue;
    if (!macro.Body.starts_with('5')) return;
    CSV_Faults.Try([&] {
      aperture.Size_X = Single_Or_0(Gerber_Find_CSV_Val(diameter_place, macro.Body));
      aperture.Size_Y = aperture.Size_X;
      aperture.Sides = Polygon_Sides;
    });
    return;
  }
}

// Says what of the definition has no effect.
void Aperture_Scan::Note_Definition(const Gerber_Aperture& aperture, std::string_view definition) {
  const auto comma = definition.find(',');
  const std::string name(definition.substr(0, comma));
  if (comma == std::string_view::npos) {
    if (aperture.Sides == Polygon_Sides) {
      Count_Read("aperture macro (polygon)");
    } else {
      Count_Skipped("aperture macro " + name + " (no size)");
    }
    return;
  }
  const std::string_view sizes = definition.substr(comma);
  const auto parts = std::count(sizes.begin(), sizes.end(), 'X');
  if (name != "C" && name != "R" && name != "O" && name != "P") {
    Count_Skipped("aperture macro " + name + " (first values taken as sizes)");
    return;
  }
  Count_Read("aperture " + name);
  const auto sizes_without_hole = name == "C" ? 0 : name == "P" ? 2 : 1;
  if (parts > sizes_without_hole) Count_Skipped("hole in an aperture");
}

}  // namespace

void Gerber_Read_Apertures(const std::string& path) {
  Import_Status("Gerber Import: Loading Apperature Data...");
  Trap(Fault_Name, [&] { Aperture_Scan(path).Load(); });
  if (Application.EscFlag) {
    Report_Note("ESC ended the search for apertures; those behind it have no size.");
  }
}

}  // namespace norvik
