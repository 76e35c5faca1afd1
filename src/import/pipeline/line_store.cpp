#include "import/pipeline/line_store.h"

#include "core/application.h"
#include "import/pipeline/pipeline.h"

namespace norvik {

void For_Each_Line(const std::string& line_file, Line_Form form, std::string_view fault_name,
                   const std::function<void(ImportLine& line)>& use) {
  constexpr std::int32_t records_per_yield = 500;
  Import_Faults faults(fault_name);
  Line_File_Reader reader(line_file, form);
  Yield_Counter yields(records_per_yield);
  ImportLine line;
  bool more = true;
  while (more && !Application.EscFlag) {
    yields.Round();
    faults.Try([&] {
      more = reader.Read(line);
      if (more) use(line);
    });
  }
}

void Line_Store::Add(const ImportLine& line) {
  Held.push_back({line.X1, line.Y1, line.Z1, line.X2, line.Y2, line.Z2, line.I, line.J, line.Type,
                  line.Pen, Texts.Number_Of(line.Layer), Texts.Number_Of(line.Cut_Feed),
                  Texts.Number_Of(line.Plunge_Feed)});
}

void Line_Store::Get(std::size_t number, ImportLine& line) const {
  const Record& held = Held[number];
  line.X1 = held.X1;
  line.Y1 = held.Y1;
  line.Z1 = held.Z1;
  line.X2 = held.X2;
  line.Y2 = held.Y2;
  line.Z2 = held.Z2;
  line.I = held.I;
  line.J = held.J;
  line.Type = held.Type;
  line.Pen = held.Pen;
  line.Layer = Texts.Name(held.Layer);
  line.Cut_Feed = Texts.Name(held.Cut_Feed);
  line.Plunge_Feed = Texts.Name(held.Plunge_Feed);
}

double Line_Store::X(std::size_t number, int side) const {
  return (side == 0 ? Held[number].X1 : Held[number].X2).value();
}

double Line_Store::Y(std::size_t number, int side) const {
  return (side == 0 ? Held[number].Y1 : Held[number].Y2).value();
}

void Line_Store::Load(const std::string& line_file, std::string_view fault_name) {
  For_Each_Line(line_file, Line_Form::Thirteen, fault_name,
                [&](const ImportLine& line) { Add(line); });
}

}  // namespace norvik
