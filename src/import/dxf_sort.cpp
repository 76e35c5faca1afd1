#include "import/dxf_sort.h"

#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/dxf_table.h"
#include "import/end_index.h"
#include "import/import_distance.h"
#include "import/import_pipeline.h"
#include "import/record_walk.h"
#include "platform/platform.h"

#include <limits>
#include <numeric>

namespace norvik {

namespace {

constexpr std::int32_t Rows_Per_Yield = 50;
constexpr float Best_Reset_X = 999999, Best_Reset_Y = 9999999;

struct Tool_Point {
  float X = 0, Y = 0;
};

// The rows of one group by number, and the place where each stands now.
class Entity_Sort {
 public:
  Entity_Sort(std::vector<DXF_Row>& rows, const Layer_Group& group);

  // Sorts from `tool` on and leaves it at the end of the last chain. `progress(rows done)` is
  // called every 50 rows.
  template <class Progress>
  void Run(Tool_Point& tool, Progress&& progress);
  // Puts the sorted rows back into the table.
  void Store(std::vector<DXF_Row>& rows) const;

  // --- What Record_Walk asks -------------------------------------------------------------------
  std::int32_t Size() const { return static_cast<std::int32_t>(Row_At.size()); }
  double Key_At(std::int32_t place, float x, float y) const;
  std::int32_t Place_Of(Point_Tree::Number end) const {
    return Place[static_cast<std::size_t>(end / 2)];
  }
  const Point_Tree& Tree() const { return Free_Ends; }

 private:
  std::int32_t Row_In(std::int32_t place) const { return Row_At[static_cast<std::size_t>(place)]; }
  End_Index::End Start_Of(std::int32_t row) const {
    return row * 2 + Reversed[static_cast<std::size_t>(row)];
  }
  End_Index::End End_Of(std::int32_t row) const {
    return row * 2 + 1 - Reversed[static_cast<std::size_t>(row)];
  }
  double Distance(const Tool_Point& tool, End_Index::End end) const {
    const auto& point = Free_Ends.At(end);
    return Scaled_Distance(tool.X, tool.Y, point.X, point.Y);
  }
  void Reverse(std::int32_t row) { Reversed[static_cast<std::size_t>(row)] ^= 1; }
  void Exchange(std::int32_t a, std::int32_t b);
  void Choose_Chain(const Tool_Point& tool, std::int32_t slot);
  double Turn_Candidate(const Tool_Point& tool, std::int32_t row);
  void Take_Out(std::int32_t row);
  std::int32_t First_Connecting(End_Index::End end, std::int32_t from) const;

  std::vector<DXF_Row> Rows;
  std::int64_t Table_Start;
  std::vector<std::int32_t> Row_At, Place;
  std::vector<std::uint8_t> Reversed;
  End_Index Ends;
  Point_Tree Free_Ends;
  Record_Walk<Entity_Sort> Walk{*this};
  std::vector<End_Index::End> Freed;
};

Entity_Sort::Entity_Sort(std::vector<DXF_Row>& rows, const Layer_Group& group)
    : Rows(rows.begin() + group.Start, rows.begin() + group.End + 1), Table_Start(group.Start) {
  Row_At.resize(Rows.size());
  std::iota(Row_At.begin(), Row_At.end(), 0);
  Place = Row_At;
  Reversed.assign(Rows.size(), 0);

  std::vector<End_Index::Point> ends;
  std::vector<Point_Tree::Point> points;
  ends.reserve(Rows.size() * 2);
  points.reserve(Rows.size() * 2);
  const auto add = [&](double x, double y, const Nullable& z) {
    const Point_Tree::Point point{To_Single(x), To_Single(y)};
    points.push_back(point);
    ends.push_back({point.X, point.Y, z ? To_Single(*z) : 0.0F, z.has_value()});
  };
  for (const DXF_Row& row : Rows) {
    add(row.X1, row.Y1, row.Z1);
    add(row.X2, row.Y2, row.Z2);
  }
  Ends.Build(ends, MachineSetup.DXF_Line_Tolerance);
  Free_Ends.Build(std::move(points));
  for (std::size_t end = 0; end < ends.size(); ++end) {
    const auto number = static_cast<End_Index::End>(end);
    if (Ends.Is_Free(number)) Free_Ends.Switch(number, true);
  }
}

double Entity_Sort::Key_At(std::int32_t place, float x, float y) const {
  double key = std::numeric_limits<double>::infinity();
  const std::int32_t first = Row_In(place) * 2;
  for (const End_Index::End end : {first, first + 1}) {
    if (!Free_Ends.Is_On(end)) continue;
    const auto& point = Free_Ends.At(end);
    key = std::min(key, Distance_Square(x, y, point.X, point.Y));
  }
  return key;
}

void Entity_Sort::Exchange(std::int32_t a, std::int32_t b) {
  std::swap(Row_At[static_cast<std::size_t>(a)], Row_At[static_cast<std::size_t>(b)]);
  Place[static_cast<std::size_t>(Row_In(a))] = a;
  Place[static_cast<std::size_t>(Row_In(b))] = b;
}

// Turns the row that has just come into the slot; gives the distance that the next candidate must
// beat.
double Entity_Sort::Turn_Candidate(const Tool_Point& tool, std::int32_t row) {
  const double start = Distance(tool, Start_Of(row)), end = Distance(tool, End_Of(row));
  const bool start_free = Ends.Is_Free(Start_Of(row)), end_free = Ends.Is_Free(End_Of(row));
  if (start_free && !end_free) return start;
  if (!start_free) {
    Reverse(row);
    return start;  // now its far end
  }
  if (end < start) Reverse(row);
  return std::min(start, end);
}

void Entity_Sort::Choose_Chain(const Tool_Point& tool, std::int32_t slot) {
  if (Free_Ends.Live() == 0) return;
  double best = Scaled_Distance(tool.X, tool.Y, Best_Reset_X, Best_Reset_Y);
  Walk.Begin(tool.X, tool.Y, slot);
  for (;;) {
    const std::int32_t place = Walk.Next(Largest_Square_Below(best));
    if (place < 0) return;
    Exchange(place, slot);
    best = Turn_Candidate(tool, Row_In(slot));
  }
}

void Entity_Sort::Take_Out(std::int32_t row) {
  Free_Ends.Switch(row * 2, false);
  Free_Ends.Switch(row * 2 + 1, false);
  Freed.clear();
  Ends.Remove_Row(row, Freed);
  for (const End_Index::End end : Freed) Free_Ends.Switch(end, true);
}

// In a crowd of ends on one spot a row that meets them is found sooner by looking through the
// table.
std::int32_t Entity_Sort::First_Connecting(End_Index::End end, std::int32_t from) const {
  constexpr std::int32_t crowd_from = 16;
  const std::int32_t crowd = Ends.Crowd_At(end);
  if (crowd == 0) return -1;
  if (crowd > crowd_from) {
    const std::int32_t stop = std::min(Size(), from + crowd);
    for (std::int32_t place = from; place < stop; ++place) {
      const std::int32_t row = Row_In(place);
      if (Ends.Meet(end, row * 2) || Ends.Meet(end, row * 2 + 1)) return place;
    }
  }
  std::int32_t first = -1;
  Ends.For_Rows_At(end, [&](std::int32_t row) {
    const std::int32_t place = Place[static_cast<std::size_t>(row)];
    if (first < 0 || place < first) first = place;
  });
  return first;
}

template <class Progress>
void Entity_Sort::Run(Tool_Point& tool, Progress&& progress) {
  std::int32_t until_yield = Rows_Per_Yield;
  const auto round = [&](std::int32_t done) {
    if (--until_yield > 0) return;
    until_yield = Rows_Per_Yield;
    progress(done);
  };
  std::int32_t slot = 0;
  while (slot < Size() && !Application.EscFlag) {
    Choose_Chain(tool, slot);
    for (;;) {
      const std::int32_t row = Row_In(slot);
      Take_Out(row);
      const End_Index::End end = End_Of(row);
      tool = {Free_Ends.At(end).X, Free_Ends.At(end).Y};
      round(++slot);
      if (slot == Size() || Application.EscFlag) break;
      const std::int32_t next = First_Connecting(end, slot);
      if (next < 0) break;
      Exchange(next, slot);
      const std::int32_t found = Row_In(slot);
      if (Distance(tool, End_Of(found)) < Distance(tool, Start_Of(found))) Reverse(found);
    }
  }
}

void Entity_Sort::Store(std::vector<DXF_Row>& rows) const {
  for (std::int32_t place = 0; place < Size(); ++place) {
    const std::int32_t row = Row_In(place);
    DXF_Row& stored = rows[static_cast<std::size_t>(Table_Start + place)];
    stored = Rows[static_cast<std::size_t>(row)];
    if (Reversed[static_cast<std::size_t>(row)] != 0) Reverse_Row(stored);
  }
}

}  // namespace

void DXF_Sort_Entities_Step() {
  if (!MachineSetup.DXF_Sort_Lines) return;
  Import_Status("DXF Conversion: Sorting Entities...");
  Trap("DXF Sort Entities Error", [] {
    const auto total = static_cast<double>(DXF_Entity.Rows.size());
    Tool_Point tool;
    for (const Layer_Group& group : DXF_Entity.Groups) {
      if (Application.EscFlag || group.End < group.Start) continue;
      Entity_Sort sort(DXF_Entity.Rows, group);
      sort.Run(tool, [&](std::int32_t done) {
        Import_Progress("File Sort: Sorting Data... ",
                        static_cast<double>(group.Start + done) / total,
                        "% Completed, press ESC to cancel");
        DoEvents();
      });
      sort.Store(DXF_Entity.Rows);
    }
  });
}

}  // namespace norvik
