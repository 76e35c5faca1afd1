// part.h: a small part for pictures: an outline on the cut level, a deep ring, a helix between the
// travel level and below the table, and the travels between them.
#pragma once

#include "compiler/tables/program_wire.h"
#include "core/setup.h"

#include <cmath>
#include <utility>

namespace norvik {

class Part_Program {
 public:
  void Move_To(double x, double y, double z, bool feed_move) {
    Wire wire;
    wire.Step = 1;
    wire.Motion = 1;
    wire.FeedMove = feed_move;
    for (const auto& [axis, value] : {std::pair(1, x), std::pair(2, y), std::pair(3, z)}) {
      wire.Start[axis] = Here[axis];
      wire.End[axis] = Here[axis] = value;
    }
    Wires.Rows.push_back(wire);
  }
  void Travel(double x, double y, double z) { Move_To(x, y, z, false); }
  void Cut(double x, double y, double z) { Move_To(x, y, z, true); }
  // Turns around a centre in chords of 5 degrees, with Z advancing evenly.
  void Turn(double cx, double cy, double r, double from_z, double to_z, int chords) {
    constexpr double degree = 3.14159265358979 / 180;
    for (int i = 1; i <= chords; ++i)
      Cut(cx + r * std::cos(5 * i * degree), cy + r * std::sin(5 * i * degree),
          from_z + (to_z - from_z) * i / chords);
  }
  Table<Wire> Take() { return std::move(Wires); }

 private:
  Table<Wire> Wires;
  Indexed<Nullable, 1, 3> Here;
};

inline void Load_Part() {
  Part_Program part;
  part.Travel(1, 1, 1);
  part.Cut(1, 1, 0.5);
  for (const auto& [x, y] : {std::pair(6, 1), std::pair(6, 4), std::pair(1, 4), std::pair(1, 1)})
    part.Cut(x, y, 0.5);
  part.Travel(1, 1, 1);
  part.Travel(5, 2.5, 1);
  part.Cut(5, 2.5, 0);
  part.Turn(3.5, 2.5, 1.5, 0, 0, 72);
  part.Travel(4.5, 2.5, 1);
  part.Turn(3.5, 2.5, 1, 1, -1, 360);
  part.Travel(4.5, 2.5, 1);
  part.Travel(0, 0, 1);
  Install_Table(part.Take());
}

inline void Use_Picture_Setup() {
  MachineSetup = {};
  MachineSetup.Plot_Color = {
      {0xFF0000, 0x005ED5, 0x6B8F00, 0xFAFAFA, 0xA0A0A0, 0x1414DC, 0x0096FF}};
  MachineSetup.Axis_Depth = {{10, 8, 4, 1}};
  MachineSetup.Axis_Table_Grid_Size = 1;
  MachineSetup.Plot_Show_Grid = 1;
  MachineSetup.Axis_Tool_Height = {{1, 0.5F, 0}};
}

}  // namespace norvik
