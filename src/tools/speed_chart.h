// speed_chart.h: the planned speeds over the way of the tool, as points for a painter.
//
//   speed ^   ______        ______
//         |  /      \      /      \        IPM_S at the start of a move, IPM_R along it,
//         | /        \____/        \       IPM_E at its end
//         +------------------------------> way, units
//
// Only moves have a way; commands stand between them without one. The chart shows a section of the
// way, which follows the chosen row until it is held.
#pragma once

#include "compiler/state/tables.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

struct Chart_Point {
  double Way = 0;    // units
  double Speed = 0;  // IPM
};

struct Chart_Limit {
  std::string Name;
  double Speed = 0;  // IPM
};

class Speed_Chart {
 public:
  // Measures the table and shows all of it. A held section stays where it lies within the new way.
  void Take(const Record_List<Wire>& wires);

  double Length() const { return Way_Behind.empty() ? 0 : Way_Behind.back(); }
  double From() const { return Left; }
  double To() const { return Right; }
  double Fastest() const { return Top; }  // the highest of all speeds

  // The section is held where it is: choosing a row moves it no more.
  bool Held = false;

  void Show_All();
  // Around a place of the section, which stays where it is; a factor above 1 shows less.
  void Zoom(double at, double factor);
  // The section by so much of the way.
  void Move_By(double way);
  // Brings a row (from 1) into the section, unless it is held.
  void Follow(std::int32_t row);

  // The row that lies at a place of the way; 0 for an empty chart.
  std::int32_t Row_At(double way) const;
  double Start_Of(std::int32_t row) const;  // of the way
  double End_Of(std::int32_t row) const;

  enum class Line { IPM_S, IPM_R, IPM_E };
  // The line within the section. Where more than two points fall on one of `columns` columns, its
  // first, lowest, highest and last point stand for all of them.
  std::vector<Chart_Point> Points(const Record_List<Wire>& wires, Line line, int columns) const;

 private:
  void Set_Section(double from, double to);

  std::vector<double> Way_Behind;  // behind each record
  double Left = 0, Right = 0, Top = 0;
};

// The speeds that the setup allows: of X, Y and Z, and that of the ramps' start.
std::vector<Chart_Limit> Chart_Limits();

}  // namespace norvik
