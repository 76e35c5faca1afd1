// placing.h: where a drawing is put on the table, chosen for one import.
//
//   reader -> table or line file --scale, mirror, turn, then move--> sort, passes, writer
//
// Nothing is placed unless it was asked for. Depths stay as they are: they are the machine's.
#pragma once

#include "import/pipeline/file_unit.h"
#include "import/pipeline/line.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace norvik {

enum class Placed_Origin : std::uint8_t { As_Is, Lower_Left, Centre };  // what comes to X 0 Y 0

struct Import_Placing_State {
  Placed_Origin Origin = Placed_Origin::As_Is;
  double Scale = 1;     // above 0
  double Rotate = 0;    // degrees counter-clockwise
  bool Mirror = false;  // left and right change places, before the turn
  // Of files that name no unit; absent: that of the setup. Acts with `Import_Convert_Units`.
  std::optional<File_Unit> Unit = std::nullopt;
};
extern Import_Placing_State Import_Placing;

// True when the next import is to be placed otherwise than the file says.
bool Is_Placed();

struct Placed_Point {
  double X = 0, Y = 0;
};

// What a drawing reaches, in X and Y.
struct Drawing_Extent {
  std::optional<double> Left, Right, Lower, Upper;
  void Take(double x, double y);
  // All points of an arc, whose centre is absolute.
  void Take_Arc(bool clockwise, Placed_Point from, Placed_Point to, Placed_Point centre);
};

// The map of one import.
class Placing {
 public:
  // `measure` takes all of the drawing, each point first put through the map that it is given:
  // turned, but not yet moved.
  explicit Placing(
      const std::function<void(Drawing_Extent& extent, const Placing& turned)>& measure);

  Placed_Point operator()(double x, double y) const;
  double Scale() const { return Import_Placing.Scale; }
  // Arcs turn the other way round.
  bool Mirrors() const { return Import_Placing.Mirror; }
  // Ends and centre of a record, whose centre is absolute.
  void Place(ImportLine& line) const;

 private:
  double Cos, Sin;
  double Move_X = 0, Move_Y = 0;
};

}  // namespace norvik
