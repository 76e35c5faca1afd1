#include "import/dxf/reader.h"

#include "core/application.h"
#include "core/geometry.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/dxf/table.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace norvik {

namespace {

constexpr std::int32_t Pairs_Per_Yield = 500;
constexpr std::string_view Fault_Name = "DXF Import Error";

struct Point {
  Nullable X, Y, Z;
};

// The fields of one entity; all missing at its start.
struct Entity_Fields {
  std::array<Point, 4> Points;
  Nullable Radius, Start_Angle, End_Angle;
  std::string Layer;
};

// Pairs of the file, one at a time, with the pair that ended an entity kept for the dispatch.
class Pair_Source {
 public:
  explicit Pair_Source(const std::string& path) : Source(path), Yields(Pairs_Per_Yield) {}

  int Code = 0;
  std::string Value;

  // False at the end of the file and on ESC.
  bool Next(Import_Faults& faults) {
    if (Application.EscFlag) return false;
    Yields.Round();
    std::string_view line;
    if (!Next_Line(line)) return false;
    Check_Binary(line);
    Read_Code(Without_Blanks(line), faults);
    if (!Next_Line(line)) return false;
    Value = Without_Blanks(line);
    return true;
  }
  void Keep() { Pending = true; }
  bool Next_Or_Kept(Import_Faults& faults) {
    if (!Pending) return Next(faults);
    Pending = false;
    return true;
  }
  bool Is_Binary() const { return Binary; }
  // The file ended in the middle of a line: the value read last may be cut short.
  bool Is_Cut_Off() const { return Ended && !Source.Last_Line_Ended(); }
  std::int64_t Lines_Cut() const { return Source.Lines_Cut(); }

 private:
  static constexpr int No_Code = -32768;  // of a code line that is no whole number

  bool Next_Line(std::string_view& line) {
    Ended = !Source.Next_Line(line);
    return !Ended;
  }

  void Read_Code(std::string_view text, Import_Faults& faults) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), Code);
    if (failure == std::errc() && end == text.data() + text.size()) return;
    Code = No_Code;
    faults.Try([&] { Code = text.empty() ? 0 : To_Int16(To_Double(text)); });
  }

  void Check_Binary(std::string_view line) {
    if (Source.Line_Number() <= 4 && line.find('\0') != std::string_view::npos) Binary = true;
  }

  Text_Source Source;
  Yield_Counter Yields;
  bool Pending = false, Binary = false, Ended = false;
};

struct Entity_Kind;

class Reader {
 public:
  explicit Reader(const std::string& path) : Pairs(path), Faults(Fault_Name) {}

  void Load();

 private:
  bool Skip_To_Entities();
  static const Entity_Kind* Kind_Of(std::string_view name);
  void Dispatch();
  void Read_Fields();
  void Take_Field();
  double Length_Of(std::string_view text, bool rounded) const;
  void Take_Length(Nullable& field, bool rounded);
  void Take_Angle(Nullable& field);
  void Note_Unread_Field();

  void Read_Polyline_Header();
  void Add_Vertex_Entity();
  void Add_Vertex();

  void Set_Depths(const Nullable& z1, const Nullable& z2);
  void Add_Line();
  void Add_Face();
  void Add_Arc();
  void Add_Circle();
  void Add_Point();
  Point Arc_Point(double angle) const;
  void Add_Arc_Row(const Point& from, const Point& to);
  void Add_Straight_Row(const Point& from, const Point& to, const std::string& layer);
  void Add_Row(DXF_Row row, const std::string& layer);
  bool Is_Complete(const Point& point);
  std::optional<File_Unit> Stated_Unit() const;

  Pair_Source Pairs;
  Import_Faults Faults;
  const Axis_Rounding Rounded;
  const Decimal_Rounding Nine_Decimals{"0000000.000000000"};

  Entity_Fields Fields;
  std::string Entity_Name;

  // Depths of the row before. An entity that gives only one of its two depths takes the other from
  // here.
  Nullable Depth_1, Depth_2;

  // Polyline in progress.
  bool First_Vertex = true, Closed = false, End_Of_Sequence = false;
  bool In_Polyline = false;  // bulges and elevations count
  Point First, Previous;
  std::string Polyline_Layer;

  bool In_Section = true;  // the ENTITIES section has not ended; only then unread kinds count
  bool Any_Incomplete = false;
  std::string Unit_Code, Measurement;
  double Factor = 1;  // units of the setup in one of the file
};

char Upper_Letter(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// `tail` in capitals.
bool Ends_With(std::string_view value, std::string_view tail) {
  if (value.size() < tail.size()) return false;
  value.remove_prefix(value.size() - tail.size());
  return std::equal(value.begin(), value.end(), tail.begin(),
                    [](char c, char wanted) { return Upper_Letter(c) == wanted; });
}

void Reader::Load() {
  if (!Skip_To_Entities()) {
    Report_Note(Pairs.Is_Binary()
                    ? "This is not a text file; only the text form of DXF can be read. Save the "
                      "drawing as ASCII DXF and import again."
                    : "The file has no ENTITIES section, so there is nothing to cut.");
    return;
  }
  const std::optional<File_Unit> unit = Stated_Unit();
  Report_Unit(unit);
  Factor = Unit_Factor(unit);
  bool ended = false;
  while (!ended && Pairs.Next_Or_Kept(Faults)) {
    ended = Pairs.Code == 0 && Pairs.Value == "EOF";
    if (!ended && Pairs.Code == 0) Dispatch();
  }
  if (!ended && !Application.EscFlag) {
    Report_Note("The file ends before its EOF mark; it may be cut short.");
  }
  if (Any_Incomplete) {
    Report_Note("Entities without all their coordinates were left out.");
  }
  if (Pairs.Lines_Cut() > 0) Report_Cut_Lines();
}

bool Reader::Skip_To_Entities() {
  std::string* follows = nullptr;
  while (Pairs.Next(Faults)) {
    if (Pairs.Value == "ENTITIES") return true;
    if (follows && Pairs.Code == 70) *follows = Pairs.Value;
    follows = Pairs.Value == "$INSUNITS"      ? &Unit_Code
              : Pairs.Value == "$MEASUREMENT" ? &Measurement
                                              : nullptr;
  }
  return false;
}

// The unit by the code of $INSUNITS, or the two of $MEASUREMENT where that is missing or says
// "none".
std::optional<File_Unit> Reader::Stated_Unit() const {
  constexpr double foot = 304.8, survey_foot = 1200.0 / 3937 * 1000;
  constexpr std::array<File_Unit, 25> units{{{"", 0},
                                             Unit_Inches,
                                             {"feet", foot},
                                             {"miles", 5280 * foot},
                                             Unit_Millimetres,
                                             {"centimetres", 10},
                                             {"metres", 1e3},
                                             {"kilometres", 1e6},
                                             {"microinches", 25.4e-6},
                                             {"mils", 25.4e-3},
                                             {"yards", 3 * foot},
                                             {"angstroms", 1e-7},
                                             {"nanometres", 1e-6},
                                             {"microns", 1e-3},
                                             {"decimetres", 100},
                                             {"decametres", 1e4},
                                             {"hectometres", 1e5},
                                             {"gigametres", 1e12},
                                             {"astronomical units", 149597870700e3},
                                             {"light years", 9460730472580800e3},
                                             {"parsecs", 3.0856775814913673e19},
                                             {"survey feet", survey_foot},
                                             {"survey inches", survey_foot / 12},
                                             {"survey yards", 3 * survey_foot},
                                             {"survey miles", 5280 * survey_foot}}};
  if (const auto code = Try_Number(Unit_Code); code && *code >= 1 && *code < units.size()) {
    return units.at(static_cast<std::size_t>(*code));
  }
  if (Measurement == "0") return Unit_Inches;
  if (Measurement == "1") return Unit_Millimetres;
  return std::nullopt;
}

// Entities by the end of their name, looked for in this order.
struct Entity_Kind {
  std::string_view Tail;
  bool Whole_Name;  // the name must match as a whole, in capitals
  bool Polyline;
  void (Reader::*Add)();  // turns the fields into rows; absent: reads its own fields
};

const Entity_Kind* Reader::Kind_Of(std::string_view name) {
  static constexpr std::array<Entity_Kind, 7> kinds{{
      {"LINE", true, false, &Reader::Add_Line},
      {"POLYLINE", false, true, nullptr},  // LWPOLYLINE, too
      {"3DFACE", false, false, &Reader::Add_Face},
      {"VERTEX", false, true, &Reader::Add_Vertex_Entity},
      {"CIRCLE", false, false, &Reader::Add_Circle},
      {"ARC", false, false, &Reader::Add_Arc},
      {"POINT", false, false, &Reader::Add_Point},
  }};
  const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const Entity_Kind& kind) {
    return kind.Whole_Name ? name == kind.Tail : Ends_With(name, kind.Tail);
  });
  return found == kinds.end() ? nullptr : &*found;
}

void Reader::Dispatch() {
  Entity_Name = Pairs.Value;
  const Entity_Kind* kind = Kind_Of(Entity_Name);
  if (kind == nullptr) {
    if (Entity_Name == "ENDSEC") In_Section = false;
    if (In_Section && Entity_Name != "SEQEND") Count_Skipped(Entity_Name);
    return;
  }
  In_Polyline = kind->Polyline;
  if (kind->Add == nullptr) {
    Read_Polyline_Header();
    return;
  }
  Read_Fields();
  if (!Pairs.Is_Cut_Off()) (this->*kind->Add)();
}

// --- Fields --------------------------------------------------------------------------------------

void Reader::Read_Fields() {
  Fields = {};
  while (Pairs.Next(Faults)) {
    if (Pairs.Code == 0 || Pairs.Value == "EOF") {
      if (Pairs.Value == "SEQEND") End_Of_Sequence = true;
      Pairs.Keep();
      return;
    }
    Take_Field();
  }
}

void Reader::Take_Field() {
  const int code = Pairs.Code;
  if (code == 8) {
    Fields.Layer = Pairs.Value;
  } else if (code >= 10 && code <= 13) {
    Take_Length(Fields.Points[static_cast<std::size_t>(code - 10)].X, true);
  } else if (code >= 20 && code <= 23) {
    Take_Length(Fields.Points[static_cast<std::size_t>(code - 20)].Y, true);
  } else if (code == 30 || code == 31) {
    if (MachineSetup.DXF_Ingore_Depth) return;
    Take_Length(Fields.Points[static_cast<std::size_t>(code - 30)].Z, false);
  } else if (code == 32 || code == 33) {
    Take_Length(Fields.Points[static_cast<std::size_t>(code - 30)].Z, false);
  } else if (code == 40) {
    Take_Length(Fields.Radius, false);
  } else if (code == 50) {
    Take_Angle(Fields.Start_Angle);
  } else if (code == 51) {
    Take_Angle(Fields.End_Angle);
  } else if (code == 70) {
    Faults.Try([&] {
      if ((To_Int32(To_Double(Pairs.Value)) & 1) == 1) Closed = true;
    });
  } else {
    Note_Unread_Field();
  }
}

// A length of the file.
double Reader::Length_Of(std::string_view text, bool rounded) const {
  if (Factor == 1) return rounded ? Rounded(text) : Foreign_Number(text);
  const double length = (text.empty() && rounded ? 0 : Foreign_Number(text)) * Factor;
  return rounded ? Rounded(length) : length;
}

void Reader::Take_Length(Nullable& field, bool rounded) {
  const bool readable = Faults.Try([&] { field = Length_Of(Pairs.Value, rounded); });
  if (!readable) Count_Skipped(Entity_Name + " number that cannot be read");
}

void Reader::Take_Angle(Nullable& field) {
  const bool readable = Faults.Try([&] { field = Foreign_Number(Pairs.Value); });
  if (!readable) Count_Skipped(Entity_Name + " number that cannot be read");
}

// What changes the shape of an entity and is not taken goes into the report.
void Reader::Note_Unread_Field() {
  const bool bulge = Pairs.Code == 42 && In_Polyline, elevation = Pairs.Code == 38;
  const bool extrusion = Pairs.Code == 230;
  if (!bulge && !elevation && !extrusion) return;
  const double value = Try_Number(Pairs.Value).value_or(0);
  if (bulge && value != 0) Count_Skipped("polyline bulge");
  if (elevation && value != 0) Count_Skipped("elevation");
  if (extrusion && value != 1) Count_Skipped("extrusion direction");
}

// --- Polylines -----------------------------------------------------------------------------------

// The vertices of a LWPOLYLINE stand in its header, one at each code 10. A POLYLINE has a dummy
// point there, which is forgotten when the next vertex counts as the first again.
void Reader::Read_Polyline_Header() {
  Count_Read(Ends_With(Entity_Name, "LWPOLYLINE") ? "LWPOLYLINE" : "POLYLINE");
  Fields = {};
  First_Vertex = true;
  Closed = false;
  End_Of_Sequence = false;
  Polyline_Layer.clear();
  Point& vertex = Fields.Points[0];
  while (Pairs.Next(Faults)) {
    const int code = Pairs.Code;
    if (code == 0 && Pairs.Value != "VERTEX") End_Of_Sequence = true;
    if ((code == 10 || code == 20 || code == 0) && vertex.X && vertex.Y) {
      Add_Vertex();
      vertex.X.reset();
      vertex.Y.reset();
    }
    if (code == 0 || Pairs.Value == "EOF") {
      Pairs.Keep();
      break;
    }
    Take_Field();
    if (code == 8) Polyline_Layer = Upper(Fields.Layer);
  }
  First_Vertex = true;
}

void Reader::Add_Vertex_Entity() {
  Count_Read("VERTEX");
  Add_Vertex();
}

void Reader::Add_Vertex() {
  const Point vertex = Fields.Points[0];
  if (!Is_Complete(vertex)) return;
  if (First_Vertex) {
    First_Vertex = false;
    First = Previous = vertex;
    return;
  }
  Add_Straight_Row(Previous, vertex, Polyline_Layer);
  Previous = vertex;
  if (End_Of_Sequence && Closed) {
    Closed = false;
    Add_Straight_Row(Previous, First, Polyline_Layer);
  }
}

// --- Rows ----------------------------------------------------------------------------------------

bool Reader::Is_Complete(const Point& point) {
  if (point.X && point.Y) return true;
  Count_Skipped(Entity_Name + " without a coordinate");
  Any_Incomplete = true;
  return false;
}

void Reader::Add_Row(DXF_Row row, const std::string& layer) {
  row.Layer = DXF_Entity.Layers.Number_Of(layer);
  Depth_1 = row.Z1;
  Depth_2 = row.Z2;
  DXF_Entity.Rows.push_back(row);
}

void Reader::Add_Straight_Row(const Point& from, const Point& to, const std::string& layer) {
  DXF_Row row;
  row.X1 = *from.X;
  row.Y1 = *from.Y;
  row.Z1 = from.Z;
  row.X2 = *to.X;
  row.Y2 = *to.Y;
  row.Z2 = to.Z;
  Add_Row(row, layer);
}

// The depths of the row to come. An entity with neither has none; one that gives a single depth
// keeps the other from the entity before.
void Reader::Set_Depths(const Nullable& z1, const Nullable& z2) {
  if (!z1 && !z2) {
    Depth_1.reset();
    Depth_2.reset();
  }
  if (z1) Depth_1 = z1;
  if (z2) Depth_2 = z2;
}

void Reader::Add_Line() {
  Point from = Fields.Points[0], to = Fields.Points[1];
  if (!Is_Complete(from) || !Is_Complete(to)) return;
  Count_Read("LINE");
  Set_Depths(from.Z, to.Z);
  from.Z = Depth_1;
  to.Z = Depth_2;
  Add_Straight_Row(from, to, Fields.Layer);
}

void Reader::Add_Face() {
  const auto& corners = Fields.Points;
  for (const Point& corner : corners) {
    if (!Is_Complete(corner)) return;
  }
  Count_Read("3DFACE");
  for (std::size_t n = 0; n < corners.size(); ++n) {
    Add_Straight_Row(corners[n], corners[(n + 1) % corners.size()], Fields.Layer);
  }
}

// Point of the entity's circle at `angle` degrees, counter-clockwise from +X.
Point Reader::Arc_Point(double angle) const {
  constexpr double turn = 2 * Arc_Pi;
  const double radians = turn - angle / (360 / turn) + Arc_Pi / 2;
  const Point& centre = Fields.Points[0];
  Point point;
  point.X = Rounded(Nine_Decimals(std::sin(radians) * *Fields.Radius + *centre.X));
  point.Y = Rounded(Nine_Decimals(std::cos(radians) * *Fields.Radius + *centre.Y));
  return point;
}

void Reader::Add_Arc_Row(const Point& from, const Point& to) {
  DXF_Row row;
  row.X1 = *from.X;
  row.Y1 = *from.Y;
  row.Z1 = Depth_1;
  row.X2 = *to.X;
  row.Y2 = *to.Y;
  row.Z2 = Depth_2;
  row.I = Fields.Points[0].X;
  row.J = Fields.Points[0].Y;
  row.Type = Arc_Clockwise;
  Add_Row(row, Fields.Layer);
}

void Reader::Add_Arc() {
  if (!Is_Complete(Fields.Points[0]) ||
      !Is_Complete(
          {Fields.Radius, Fields.Start_Angle && Fields.End_Angle ? 0.0 : Nullable(), {}})) {
    return;
  }
  const bool made = Faults.Try([&] {
    const Point end = Arc_Point(*Fields.End_Angle), start = Arc_Point(*Fields.Start_Angle);
    Count_Read("ARC");
    Set_Depths(Fields.Points[1].Z, Fields.Points[0].Z);
    Add_Arc_Row(end, start);
  });
  if (!made) Count_Skipped(Entity_Name + " beyond what can be computed");
}

void Reader::Add_Circle() {
  if (!Is_Complete(Fields.Points[0]) || !Is_Complete({Fields.Radius, 0.0, {}})) return;
  const bool made = Faults.Try([&] {
    const Point right = Arc_Point(0), left = Arc_Point(180);
    Count_Read("CIRCLE");
    Set_Depths(Fields.Points[0].Z, Fields.Points[1].Z);
    Add_Arc_Row(right, left);
    Add_Arc_Row(left, right);
  });
  if (!made) Count_Skipped(Entity_Name + " beyond what can be computed");
}

void Reader::Add_Point() {
  Point from = Fields.Points[0], to = from;
  if (!Is_Complete(from)) return;
  Count_Read("POINT");
  to.Z = Fields.Points[1].Z;
  if (!from.Z || !to.Z) {
    from.Z = Decimal_Of(MachineSetup.Axis_Tool_Height[2]);
    to.Z = Decimal_Of(MachineSetup.Axis_Tool_Height[1]);
  }
  Add_Straight_Row(from, to, Fields.Layer);
}

}  // namespace

void DXF_Load(const std::string& path) {
  Import_Status("DXF Conversion: Loading File...");
  if (!Trap(Fault_Name, [&] { Reader(path).Load(); })) Report_Unreadable();
  Import_Report.Layers = DXF_Entity.Layers.All();
}

}  // namespace norvik
