#include "compiler/compensation/compensation.h"

#include "compiler/compensation/guard.h"
#include "compiler/compensation/join.h"
#include "compiler/compensation/records.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "platform/platform.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvik {

namespace {

using namespace compensation;

constexpr std::int16_t Left = 1, Right = 2;
constexpr std::int16_t XY_Plane = 17;
// A contour that the tool does not fit into is wrong in many places; so many are named to the
// operator.
constexpr int Most_Gouges_Told = 20;

bool Moves(const LineArc& record) {
  return record.RecordType == Record_Type::Line || record.RecordType == Record_Type::Arc;
}

// --- What the operator reads ---------------------------------------------------------------------

std::string Line_And_Text(const LineArc& record) {
  return std::to_string(record.LineNumber) + ", " + std::string(record.SourceText);
}

std::string Does_Not_Fit_Text(double radius, double distance, const LineArc& obstacle) {
  return "The tool of radius " + Format_Number(radius, "0.0000") + " comes as near as " +
         Format_Number(distance, "0.0000") + " to line " +
         std::to_string(Text_Line_Of_Step(obstacle.LineNumber)) +
         "; take a smaller tool or give the contour more room there";
}

// What a compile tells the operator, or the check its own teller.
class Trouble_Report {
 public:
  explicit Trouble_Report(const Compensation_Teller* check) : Check(check) {}

  // True for a check, which also looks for what a compile passes over in silence.
  bool Is_Check() const { return Check != nullptr; }
  void To_Check(Compensation_Trouble trouble, const LineArc& record, std::string what) const {
    if (Check) (*Check)(trouble, record, std::move(what));
  }

  void Too_Tight(const LineArc& record) const {
    if (Check) {
      To_Check(Compensation_Trouble::Does_Not_Fit, record, "the arc is tighter than the tool");
      return;
    }
    Log("Cutter Compensation Arc radius is smaller that compensaton radius ", record);
    Platform.Beep();
  }
  void No_Crossing(const LineArc& record) const {
    if (Check) {
      To_Check(Compensation_Trouble::Does_Not_Fit, record,
               "the tool does not fit into the corner at the end of this move");
      return;
    }
    Log("Cutter Compensation needs Lead-In or Lead Out near line ", record);
  }
  void Failed(const Fault& fault, const LineArc& record) const {
    if (Check) {
      To_Check(Compensation_Trouble::Fault, record, fault.Description);
      return;
    }
    Log_Fault(fault, record);
  }
  void Gouge(double radius, double distance, const LineArc& obstacle, const LineArc& record) const {
    const std::string text = Does_Not_Fit_Text(radius, distance, obstacle);
    if (Check) {
      To_Check(Compensation_Trouble::Does_Not_Fit, record, text);
    } else {
      Log_Fault({Fault_Number::Invalid_Call, text}, record);
    }
  }
  void More_Gouges(int count) const {
    ErrorLogWrite("Line Radius Compensation Error # " +
                  std::to_string(static_cast<int>(Fault_Number::Invalid_Call)) +
                  " The tool does not fit at " + std::to_string(count) +
                  " further moves of this contour");
  }

 private:
  static void Log(const std::string& text, const LineArc& record) {
    ErrorLogWrite(text + Line_And_Text(record));
    Compile_Host.Highlight_Line(record.LineNumber, record.SourceText);
  }
  static void Log_Fault(const Fault& fault, const LineArc& record) {
    Log("Line Radius Compensation Error # " + std::to_string(static_cast<int>(fault.Number)) + " " +
            fault.Description + ", line ",
        record);
  }

  const Compensation_Teller* Check;
};

// Percent in panel 1, written anew where its text changes.
class Pass_Progress {
 public:
  explicit Pass_Progress(std::size_t rows) : Rows(rows) {}

  void Reached(std::size_t row) {
    if (row < Next) return;
    Show(100.0 * static_cast<double>(row) / static_cast<double>(Rows), "");
    Next = row + 1 + Rows / 1000;
  }
  void Complete() { Show(100, " Complete."); }

 private:
  static void Show(double percent, const char* ending) {
    SetStatus(1, "GCode Compile: Processing Radius'... " + Format_Number(percent, "##.0") + ending,
              5);
  }

  std::size_t Rows, Next = 0;
};

// --- First stage: one record moved aside ---------------------------------------------------------

double To_Left(double radius, std::int16_t mode) {
  return mode == Left ? radius : -radius;
}

void Nist_Add_Radius_to_Line(Element& line, double radius, std::int16_t mode) {
  bool collapsed = false;
  line.Moved = Moved_Aside(line.Programmed, To_Left(radius, mode), collapsed);
}

// True when the arc is smaller than the tool.
bool Nist_Add_Radius_to_Arc(Element& arc, double radius, std::int16_t mode) {
  arc.Moved = Moved_Aside(arc.Programmed, To_Left(radius, mode), arc.Too_Tight);
  return arc.Too_Tight;
}

// --- The pass ------------------------------------------------------------------------------------

// Records First..Last - 1 that share mode and radius, without the control records behind them.
struct Stretch {
  std::size_t First = 0, Last = 0;
  std::int16_t Mode = 0;
  double Radius = 0;
  std::vector<Element> Elements;
};

class Compensation_Pass {
 public:
  Compensation_Pass(Record_List<LineArc>& rows, const Trouble_Report& report)
      : Rows(std::move(rows)), Result(rows), Progress(Rows.size()), Report(report) {
    Result.clear();
  }

  void Run() {
    for (std::size_t row = 0; row < Rows.size();) {
      Progress.Reached(row);
      Stretch stretch = Collect(row);
      if (Report.Is_Check()) Look_At_Modes(stretch);
      if (stretch.Last == row) {
        Result.push_back(Rows[row++]);
      } else {
        Compensate(stretch);
        row = stretch.Last;
      }
      Rows.Release_Before(row);
    }
    Progress.Complete();
  }

 private:
  // 0: this record is not compensated.
  double Radius_Of(std::size_t row) {
    const LineArc& record = Rows[row];
    if (!Moves(record) || (record.CompMode != Left && record.CompMode != Right)) return 0;
    if (Refused_Row == row) return 0;
    double radius = 0;
    const bool known =
        Trap_With([&](const Fault& fault) { Report.Failed(fault, record); },
                  [&] {
                    radius = Tools.Diameter[To_Int32(record.ToolNumber.value())] / 2;
                    if (!(radius >= 0)) {
                      throw Fault(Fault_Number::Invalid_Call, "The tool's diameter is below 0");
                    }
                  });
    if (known) return radius;
    Refused_Row = row;
    return 0;
  }

  bool Trap_Shape(std::string_view place, const LineArc& record,
                  std::optional<Piece>& shape) const {
    const auto body = [&] { shape = Shape_Of(record); };
    if (!Report.Is_Check()) return Trap(place, body);
    return Trap_With([&](const Fault& fault) { Report.Failed(fault, record); }, body);
  }

  // Adds a record's way in the plane, moved aside. False where it does not join what is there.
  bool Add_Element(Stretch& stretch, std::size_t row) {
    const LineArc& record = Rows[row];
    std::optional<Piece> shape;
    const bool arc = record.RecordType == Record_Type::Arc;
    if (!Trap_Shape(arc ? "Nist_Add_Radius_to_Arc_Error # " : "Nist_Add_Radius_to_Line_Error # ",
                    record, shape)) {
      Refused_Row = row;
      return false;
    }
    if (!shape) return true;
    auto& elements = stretch.Elements;
    if (!elements.empty() && Distance(elements.back().Programmed.End, shape->Start) > Same_Point) {
      return false;
    }
    Element element;
    element.Programmed = *shape;
    element.Row = row;
    element.Cuts = record.FeedMove;
    if (!shape->Is_Arc) {
      Nist_Add_Radius_to_Line(element, stretch.Radius, stretch.Mode);
    } else if (Nist_Add_Radius_to_Arc(element, stretch.Radius, stretch.Mode)) {
      Report.Too_Tight(record);
      element.Reported = true;
    }
    elements.push_back(element);
    return true;
  }

  // The stretch that begins at a record; empty where that record is not compensated.
  Stretch Collect(std::size_t first) {
    Stretch stretch;
    stretch.First = stretch.Last = first;
    stretch.Mode = Rows[first].CompMode;
    stretch.Radius = Radius_Of(first);
    if (stretch.Radius == 0) return stretch;
    for (std::size_t row = first; row < Rows.size(); ++row) {
      const LineArc& record = Rows[row];
      if (!Moves(record)) continue;
      if (row != first && (record.CompMode != stretch.Mode || Radius_Of(row) != stretch.Radius)) {
        break;
      }
      if (!Add_Element(stretch, row)) break;
      stretch.Last = row + 1;
    }
    return stretch;
  }

  void Compensate(Stretch& stretch) {
    const double to_left = To_Left(stretch.Radius, stretch.Mode);
    Join_Reports reports;
    reports.No_Crossing = [&](Element& element) {
      Report.No_Crossing(Rows[element.Row]);
      element.Reported = true;
    };
    reports.Progress = [&](const Element& element) { Progress.Reached(element.Row); };
    const std::vector<Path_Piece> path = Radius_Join(stretch.Elements, to_left, reports);
    Check(stretch, path);
    Write(stretch, path);
  }

  void Check(const Stretch& stretch, const std::vector<Path_Piece>& path) {
    int found = 0;
    Find_Gouges(stretch.Elements, path, stretch.Radius, [&](const Gouge& gouge) {
      if (++found > Most_Gouges_Told && !Report.Is_Check()) return;
      Report.Gouge(stretch.Radius, gouge.Distance, Rows[stretch.Elements[gouge.Obstacle].Row],
                   Rows[stretch.Elements[gouge.Path].Row]);
    });
    if (Report.Is_Check()) {
      Check_Leads(stretch, path);
      Check_Reach(stretch, path);
    } else if (found > Most_Gouges_Told) {
      Report.More_Gouges(found - Most_Gouges_Told);
    }
  }

  // --- What only a check looks for
  // ----------------------------------------------------------------

  // Compensation that is asked for and has no radius; a change of the side at one go.
  void Look_At_Modes(const Stretch& stretch) {
    const LineArc& record = Rows[stretch.First];
    if (!Moves(record)) return;
    const bool asked = record.CompMode == Left || record.CompMode == Right;
    if (asked && Side_Before != 0 && Side_Before != record.CompMode) {
      Report.To_Check(Compensation_Trouble::Changes_Side, record,
                      "the tool leaves the contour and comes to its other side where it stands");
    }
    Side_Before = asked ? record.CompMode : std::int16_t{0};
    const bool without = asked && stretch.Radius == 0 && Refused_Row != stretch.First;
    if (without && !Without_Radius) {
      Report.To_Check(Compensation_Trouble::No_Diameter, record,
                      "tool T" + Format_Number(record.ToolNumber.value_or(0), "0") +
                          " has the diameter 0: the contour runs as programmed");
    }
    Without_Radius = without;
  }

  // The highest place of the moves that bound material; absent where no height is known.
  std::optional<double> Top_Of(const Stretch& stretch, Element_Range contour) {
    std::optional<double> top;
    for (std::size_t at = contour.First; at < contour.Last; ++at) {
      const Nullable z = Rows[stretch.Elements[at].Row].End[3];
      if (z) top = std::max(top.value_or(*z), *z);
    }
    return top;
  }

  // A lead that runs at the height of the contour and comes nearer to it than the tool's radius.
  void Check_Lead(const Stretch& stretch, const Cut& cut, const Piece& lead, Nullable z,
                  const LineArc& record, const char* what) {
    const auto top = Top_Of(stretch, cut.Contour);
    if (z && top && *z > *top + Same_Point) return;
    double nearest = stretch.Radius;
    for (std::size_t at = cut.Contour.First; at < cut.Contour.Last; ++at) {
      nearest = std::min(nearest, Distance(lead, stretch.Elements[at].Programmed));
    }
    if (nearest > stretch.Radius - 2 * Tolerance) return;
    Report.To_Check(Compensation_Trouble::Lead_Cuts, record,
                    what +
                        (" at depth, " + Format_Number_Point(stretch.Radius - nearest, "0.####")) +
                        " into the contour");
  }

  void Check_Leads(const Stretch& stretch, const std::vector<Path_Piece>& path) {
    const std::vector<Cut> cuts = Cuts_Of(stretch.Elements);
    if (cuts.empty() || path.empty()) return;
    const LineArc& first = Rows[stretch.Elements.front().Row];
    const LineArc& last = Rows[stretch.Elements.back().Row];
    if (cuts.front().All.First == 0 && Start_Known(first)) {
      const Piece lead = Line_Piece(Start_Of(first), path.front().Shape.Start);
      Check_Lead(stretch, cuts.front(), lead, first.Start[3], first,
                 "the tool moves aside to the contour");
    }
    if (cuts.back().All.Last == stretch.Elements.size() && End_Known(last)) {
      const Piece lead = Line_Piece(path.back().Shape.End, End_Of(last));
      Check_Lead(stretch, cuts.back(), lead, Rows[stretch.Last - 1].End[3], last,
                 "the tool moves back from the contour");
    }
    for (const Cut& cut : cuts) Check_Ends(stretch, cut, path);
  }

  // Whether the ways to and from a contour cut its first or last move shorter than the contour
  // alone would be.
  void Check_Ends(const Stretch& stretch, const Cut& cut, const std::vector<Path_Piece>& path) {
    if (cut.Contour.First == cut.All.First && cut.Contour.Last == cut.All.Last) return;
    const auto at = [&](std::size_t index) {
      return stretch.Elements.begin() + static_cast<std::ptrdiff_t>(index);
    };
    std::vector<Element> contour(at(cut.Contour.First), at(cut.Contour.Last));
    if (contour.empty()) return;
    const std::vector<Path_Piece> alone =
        Radius_Join(contour, To_Left(stretch.Radius, stretch.Mode), {});
    const auto piece_of = [](const std::vector<Path_Piece>& pieces, std::size_t element) {
      return std::ranges::find_if(pieces, [&](const Path_Piece& piece) {
        return piece.Element == element && !piece.Connects;
      });
    };
    const auto tell = [&](std::size_t element, Point here, Point there, const char* where) {
      const double left = norvik::compensation::Distance(here, there);
      if (left <= std::max(10 * Tolerance, stretch.Radius / 50)) return;
      Report.To_Check(
          Compensation_Trouble::Leaves_Material, Rows[stretch.Elements[element].Row],
          where + (" " + Format_Number_Point(left, "0.####")) + " of this move is not reached");
    };
    const std::size_t first = cut.Contour.First, last = cut.Contour.Last - 1;
    const auto here = piece_of(path, first), there = piece_of(alone, 0);
    if (first != cut.All.First && here != path.end() && there != alone.end()) {
      tell(first, here->Shape.Start, there->Shape.Start, "the first");
    }
    const auto end = piece_of(path, last), end_alone = piece_of(alone, last - first);
    if (last + 1 != cut.All.Last && end != path.end() && end_alone != alone.end()) {
      tell(last, end->Shape.End, end_alone->Shape.End, "the last");
    }
  }

  // Moves of the contour that are not on the path, and that the tool does not reach from it.
  void Check_Reach(const Stretch& stretch, const std::vector<Path_Piece>& path) {
    constexpr std::size_t around = 16;  // pieces on either side that may reach the move
    std::size_t piece = 0;
    for (std::size_t element = 0; element < stretch.Elements.size(); ++element) {
      while (piece < path.size() && path[piece].Element < element) ++piece;
      if (piece < path.size() && path[piece].Element == element) continue;
      const Piece& programmed = stretch.Elements[element].Programmed;
      if (!stretch.Elements[element].Cuts) continue;
      double nearest = std::numeric_limits<double>::infinity();
      const std::size_t from = piece > around ? piece - around : 0;
      for (std::size_t at = from; at < std::min(piece + around, path.size()); ++at) {
        nearest = std::min(nearest, Distance(path[at].Shape, programmed));
      }
      const double left = nearest - stretch.Radius;
      if (left <= std::max(4 * Tolerance, stretch.Radius / 100)) continue;
      Report.To_Check(
          Compensation_Trouble::Passed_Over, Rows[stretch.Elements[element].Row],
          "the tool comes no nearer than " + Format_Number_Point(left, "0.####") + " to this move");
    }
  }

  // Writes the records of a stretch at their new places, with the leads around them. Before the
  // first of them that moves in the plane, records in Z stand at the uncompensated point.
  void Write(const Stretch& stretch, const std::vector<Path_Piece>& path) {
    std::size_t element = 0, piece = 0;
    std::optional<Point> tool_at;  // LastEndX, LastEndY
    for (std::size_t row = stretch.First; row < stretch.Last; ++row) {
      LineArc record = Rows[row];
      if (!Moves(record)) {
        Result.push_back(record);
        continue;
      }
      if (element == stretch.Elements.size() || stretch.Elements[element].Row != row) {
        if (tool_at) Stand_At(record, *tool_at);
        Result.push_back(record);
        continue;
      }
      if (!tool_at) tool_at = Lead_In(record, path.front().Shape.Start);
      if (piece < path.size() && path[piece].Element == element && !path[piece].Connects) {
        tool_at = path[piece].Shape.End;
        Set_Shape(record, path[piece++].Shape);
      } else {
        Stand_At(record, *tool_at);
      }
      Result.push_back(record);
      if (piece < path.size() && path[piece].Element == element) {
        tool_at = path[piece].Shape.End;
        if (End_Known(record)) Result.push_back(Inserted_After(record, path[piece].Shape));
        ++piece;
      }
      ++element;
    }
    if (tool_at) Lead_Out(stretch, *tool_at);
  }

  // The way from the uncompensated point to the start of the path. It takes over the outputs of the
  // block that it begins: they switch before anything moves. Answers where the tool then is.
  Point Lead_In(LineArc& record, Point to) {
    const Point from = Start_Of(record);
    if (!Start_Known(record) || from == to) return to;
    LineArc& lead = Result.push_back(Inserted_Before(record, Line_Piece(from, to)));
    std::swap(lead.Out, record.Out);
    return to;
  }

  // The way from the end of the path to the uncompensated point, with the feed of the last move in
  // the plane, and where the last move of all has left the other axes.
  void Lead_Out(const Stretch& stretch, Point from) {
    LineArc record = Rows[stretch.Elements.back().Row];
    const Point to = End_Of(record);
    if (!End_Known(record) || from == to) return;
    record.End = Rows[stretch.Last - 1].End;
    Result.push_back(Inserted_After(record, Line_Piece(from, to)));
  }

  Record_List<LineArc> Rows;     // as programmed
  Record_List<LineArc>& Result;  // as moved
  Pass_Progress Progress;
  const Trouble_Report& Report;
  std::int16_t Side_Before = 0;  // of the last move, for the check
  bool Without_Radius = false;   // the last move was to be compensated by a tool of no diameter
  std::optional<std::size_t> Refused_Row;  // stays as programmed; the operator has been told
};

const LineArc* First_Compensated_Move(const Record_List<LineArc>& rows) {
  for (const LineArc& record : rows) {
    if (Moves(record) && record.CompMode != 0) return &record;
  }
  return nullptr;
}

}  // namespace

namespace {

void Compensate_All(Table<LineArc>& table, const Trouble_Report& report) {
  const auto plane = Compiler.ModalGroups[modal_group::Plane];
  const LineArc* const first = First_Compensated_Move(table.Rows);
  if (plane == XY_Plane || !first) {
    Compensation_Pass(table.Rows, report).Run();
    return;
  }
  const std::string name = "G" + (plane ? std::to_string(*plane) : "?");
  if (report.Is_Check()) {
    report.To_Check(Compensation_Trouble::Wrong_Plane, *first,
                    "the program ends in " + name + " and is not compensated at all");
    return;
  }
  ErrorLogWrite("Cutter Compensation works in G17 only; the program ends in " + name +
                " and stays as programmed. Set G17 before the first arc and keep it");
}

}  // namespace

void AddRadiusCompensation(Table<LineArc>& table) {
  SetStatus(1, "GCode Compile: Adding Radius Compensation...", 5);
  Compile_Host.Show_Progress("GCode Adding Radius Compensation");
  Trap("Line Radius Compensation Error # ",
       [&] { Compensate_All(table, Trouble_Report(nullptr)); });
}

void Check_Radius_Compensation(Table<LineArc>& table, const Compensation_Teller& tell) {
  Trap_With([](const Fault&) {}, [&] { Compensate_All(table, Trouble_Report(&tell)); });
}

}  // namespace norvik
