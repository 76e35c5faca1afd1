#include "import/dxf/sort.h"

#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/dxf/end_index.h"
#include "import/dxf/table.h"
#include "import/pipeline/distance.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/record_walk.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr std::int32_t Rows_Per_Yield = 50;
constexpr Point_Tree::Point Best_Reset{999999, 9999999};  // what the first candidate must beat

// The rows of one group by number, and the place where each stands now.
class Entity_Sort {
 public:
  Entity_Sort(std::vector<DXF_Row>& rows, const Layer_Group& group);

  // Sorts from `tool` on and leaves it at the end of the last chain. `progress(rows done)` is
  // called every 50 rows.
  template <class Progress>
  void Run(Point_Tree::Point& tool, Progress&& progress);
  // Puts the sorted rows back into the table.
  void Store(std::vector<DXF_Row>& rows) const;

 private:
  void Choose_Chain(const Point_Tree::Point& tool, std::int32_t slot);
  void Take_Out(std::int32_t row);
  std::int32_t First_Connecting(End_Index::End end, std::int32_t from) const;

  std::vector<DXF_Row> Rows;
  std::int64_t Table_Start;
  End_Index Ends;
  Record_Walk Walk{Record_Walk::Finds::Nearer};  // free ends are switched on
  std::vector<End_Index::End> Freed;
};

Entity_Sort::Entity_Sort(std::vector<DXF_Row>& rows, const Layer_Group& group)
    : Rows(rows.begin() + group.Start, rows.begin() + group.End + 1), Table_Start(group.Start) {
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
  Walk.Build(std::move(points));
  for (std::size_t end = 0; end < ends.size(); ++end) {
    const auto number = static_cast<End_Index::End>(end);
    if (Ends.Is_Free(number)) Walk.Switch(number, true);
  }
}

void Entity_Sort::Choose_Chain(const Point_Tree::Point& tool, std::int32_t slot) {
  if (Walk.Any_On()) Walk.Find(tool, slot, slot, Best_Reset);
}

void Entity_Sort::Take_Out(std::int32_t row) {
  Walk.Switch(row * 2, false);
  Walk.Switch(row * 2 + 1, false);
  Freed.clear();
  Ends.Remove_Row(row, Freed);
  for (const End_Index::End end : Freed) Walk.Switch(end, true);
}

// In a crowd of ends on one spot a row that meets them is found sooner by looking through the
// table.
std::int32_t Entity_Sort::First_Connecting(End_Index::End end, std::int32_t from) const {
  constexpr std::int32_t crowd_from = 16;
  const std::int32_t crowd = Ends.Crowd_At(end);
  if (crowd == 0) return -1;
  if (crowd > crowd_from) {
    const std::int32_t stop = std::min(Walk.Size(), from + crowd);
    for (std::int32_t place = from; place < stop; ++place) {
      const std::int32_t row = Walk.Row_In(place);
      if (Ends.Meet(end, row * 2) || Ends.Meet(end, row * 2 + 1)) return place;
    }
  }
  std::int32_t first = -1;
  Ends.For_Rows_At(end, [&](std::int32_t row) {
    const std::int32_t place = Walk.Place_Of(row);
    if (first < 0 || place < first) first = place;
  });
  return first;
}

template <class Progress>
void Entity_Sort::Run(Point_Tree::Point& tool, Progress&& progress) {
  std::int32_t until_yield = Rows_Per_Yield;
  const auto round = [&](std::int32_t done) {
    if (--until_yield > 0) return;
    until_yield = Rows_Per_Yield;
    progress(done);
  };
  std::int32_t slot = 0;
  while (slot < Walk.Size() && !Application.EscFlag) {
    Choose_Chain(tool, slot);
    for (;;) {
      const End_Index::End end = Walk.End_Of(slot);
      Take_Out(Walk.Row_In(slot));
      tool = Walk.End_At(end);
      round(++slot);
      if (slot == Walk.Size() || Application.EscFlag) break;
      const std::int32_t next = First_Connecting(end, slot);
      if (next < 0) break;
      Walk.Exchange(next, slot);
      const auto &near = Walk.End_At(Walk.Start_Of(slot)), &far = Walk.End_At(Walk.End_Of(slot));
      if (Is_Closer(tool.X, tool.Y, near.X, near.Y, far.X, far.Y)) Walk.Reverse(slot);
    }
  }
}

void Entity_Sort::Store(std::vector<DXF_Row>& rows) const {
  for (std::int32_t place = 0; place < Walk.Size(); ++place) {
    const std::int32_t row = Walk.Row_In(place);
    DXF_Row& stored = rows[static_cast<std::size_t>(Table_Start + place)];
    stored = Rows[static_cast<std::size_t>(row)];
    if (Walk.Is_Reversed(place)) Reverse_Row(stored);
  }
}

}  // namespace

void DXF_Sort_Entities_Step() {
  if (!MachineSetup.DXF_Sort_Lines) return;
  Import_Status("DXF Conversion: Sorting Entities...");
  Trap("DXF Sort Entities Error", [] {
    const auto total = static_cast<double>(DXF_Entity.Rows.size());
    Point_Tree::Point tool;
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
