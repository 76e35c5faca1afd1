#include "compiler/compensation/compensation.h"

#include "compiler/compensation/guard.h"
#include "compiler/compensation/join.h"
#include "compiler/compensation/records.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "platform/platform.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvik {

namespace {

using namespace compensation;

constexpr std::int16_t Left = 1, Right = 2;
constexpr std::int16_t XY_Plane = 17;
// A contour that the tool does not fit into is wrong in many places; so many are told.
constexpr int Most_Gouges_Told = 20;

bool Moves(const LineArc& record) {
  return record.RecordType == Record_Type::Line || record.RecordType == Record_Type::Arc;
}

// --- What the operator reads ---------------------------------------------------------------------

std::string Line_And_Text(const LineArc& record) {
  return std::to_string(record.LineNumber) + ", " + std::string(record.SourceText);
}

void Tell(const std::string& text, const LineArc& record) {
  ErrorLogWrite(text + Line_And_Text(record));
  Compile_Host.Highlight_Line(record.LineNumber, record.SourceText);
}

void Tell_Too_Tight(const LineArc& record) {
  Tell("Cutter Compensation Arc radius is smaller that compensaton radius ", record);
  Platform.Beep();
}

void Tell_No_Crossing(const LineArc& record) {
  Tell("Cutter Compensation needs Lead-In or Lead Out near line ", record);
}

void Tell_Fault(const Fault& fault, const LineArc& record) {
  Tell("Line Radius Compensation Error # " + std::to_string(static_cast<int>(fault.Number)) + " " +
           fault.Description + ", line ",
       record);
}

void Tell_Gouge(double radius, double distance, const LineArc& obstacle, const LineArc& record) {
  Tell_Fault(
      {Fault_Number::Invalid_Call, "The tool of radius " + Format_Number(radius, "0.0000") +
                                       " comes as near as " + Format_Number(distance, "0.0000") +
                                       " to line " + std::to_string(obstacle.LineNumber) +
                                       "; take a smaller tool or give the contour more room there"},
      record);
}

void Tell_More_Gouges(int count) {
  ErrorLogWrite("Line Radius Compensation Error # " +
                std::to_string(static_cast<int>(Fault_Number::Invalid_Call)) +
                " The tool does not fit at " + std::to_string(count) +
                " further moves of this contour");
}

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
  explicit Compensation_Pass(Record_List<LineArc>& rows)
      : Rows(std::move(rows)), Result(rows), Progress(Rows.size()) {
    Result.clear();
  }

  void Run() {
    for (std::size_t row = 0; row < Rows.size();) {
      Progress.Reached(row);
      Stretch stretch = Collect(row);
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
        Trap_With([&](const Fault& fault) { Tell_Fault(fault, record); },
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

  // Adds a record's way in the plane, moved aside. False where it does not join what is there.
  bool Add_Element(Stretch& stretch, std::size_t row) {
    const LineArc& record = Rows[row];
    std::optional<Piece> shape;
    const bool arc = record.RecordType == Record_Type::Arc;
    if (!Trap(arc ? "Nist_Add_Radius_to_Arc_Error # " : "Nist_Add_Radius_to_Line_Error # ",
              [&] { shape = Shape_Of(record); })) {
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
      Tell_Too_Tight(record);
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
      Tell_No_Crossing(Rows[element.Row]);
      element.Reported = true;
    };
    reports.Progress = [&](const Element& element) { Progress.Reached(element.Row); };
    const std::vector<Path_Piece> path = Radius_Join(stretch.Elements, to_left, reports);
    Check(stretch, path);
    Write(stretch, path);
  }

  void Check(const Stretch& stretch, const std::vector<Path_Piece>& path) const {
    int found = 0;
    Find_Gouges(stretch.Elements, path, stretch.Radius, [&](const Gouge& gouge) {
      if (++found > Most_Gouges_Told) return;
      Tell_Gouge(stretch.Radius, gouge.Distance, Rows[stretch.Elements[gouge.Obstacle].Row],
                 Rows[stretch.Elements[gouge.Path].Row]);
    });
    if (found > Most_Gouges_Told) Tell_More_Gouges(found - Most_Gouges_Told);
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
  std::optional<std::size_t> Refused_Row;  // stays as programmed; the operator has been told
};

bool Has_Compensated_Move(const Record_List<LineArc>& rows) {
  for (const LineArc& record : rows) {
    if (Moves(record) && record.CompMode != 0) return true;
  }
  return false;
}

}  // namespace

void AddRadiusCompensation(Table<LineArc>& table) {
  SetStatus(1, "GCode Compile: Adding Radius Compensation...", 5);
  Compile_Host.Show_Progress("GCode Adding Radius Compensation");
  const auto plane = Compiler.ModalGroups[modal_group::Plane];
  if (plane != XY_Plane && Has_Compensated_Move(table.Rows)) {
    ErrorLogWrite("Cutter Compensation works in G17 only; the program ends in G" +
                  (plane ? std::to_string(*plane) : "?") +
                  " and stays as programmed. Set G17 before the first arc and keep it");
    return;
  }
  Trap("Line Radius Compensation Error # ", [&] { Compensation_Pass(table.Rows).Run(); });
}

}  // namespace norvik
