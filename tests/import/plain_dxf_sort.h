// plain_dxf_sort.h: the entity sort as its rules stand, row by row; the reference of the tests and
// of the benchmark. Its cost grows with the cube of the rows.
#pragma once

#include "core/rounding.h"
#include "core/setup.h"
#include "import/dxf/table.h"
#include "import/pipeline/distance.h"

#include <cmath>
#include <utility>

namespace norvik {

// True when b lies strictly nearer to c than a does; any missing value gives false.
inline bool Is_Closer(Nullable cx, Nullable cy, Nullable ax, Nullable ay, Nullable bx,
                      Nullable by) {
  if (!cx || !cy || !ax || !ay || !bx || !by) return false;
  return Is_Closer(To_Single(*cx), To_Single(*cy), To_Single(*ax), To_Single(*ay), To_Single(*bx),
                   To_Single(*by));
}

// True when point (x, y, z) meets a or b: each axis differs by less than `DXF_Line_Tolerance`
// (strictly, so that a tolerance of 0 connects nothing); two missing Z meet, a missing and a
// present one do not.
inline bool Ends_Connect(Nullable x, Nullable y, Nullable z, Nullable ax, Nullable ay, Nullable az,
                         Nullable bx, Nullable by, Nullable bz) {
  const auto near = [](const Nullable& p, const Nullable& q) {
    return p && q && std::abs(To_Single(*p) - To_Single(*q)) < MachineSetup.DXF_Line_Tolerance;
  };
  const auto meets = [&](const Nullable& px, const Nullable& py, const Nullable& pz) {
    return near(x, px) && near(y, py) && (near(z, pz) || (!z && !pz));
  };
  return meets(ax, ay, az) || meets(bx, by, bz);
}

struct Plain_Dxf_Sort {
  std::vector<DXF_Row>& Rows;
  Nullable X = 0.0, Y = 0.0, Z;
  Nullable Best_X, Best_Y;
  std::int64_t Slot = 0, Last = 0;

  DXF_Row& Row(std::int64_t n) { return Rows[static_cast<std::size_t>(n)]; }
  void Reset_Best() {
    Best_X = 999999;
    Best_Y = 9999999;
  }
  void Remember(const Nullable& x, const Nullable& y) {
    Best_X = x;
    Best_Y = y;
  }
  bool Beats_Best(const Nullable& x, const Nullable& y) {
    return Is_Closer(X, Y, Best_X, Best_Y, x, y);
  }
  bool Start_Connects(std::int64_t i, std::int64_t j) {
    const DXF_Row &a = Row(i), &b = Row(j);
    return Ends_Connect(a.X1, a.Y1, a.Z1, b.X1, b.Y1, b.Z1, b.X2, b.Y2, b.Z2);
  }
  bool End_Connects(std::int64_t i, std::int64_t j) {
    const DXF_Row &a = Row(i), &b = Row(j);
    return Ends_Connect(a.X2, a.Y2, a.Z2, b.X1, b.Y1, b.Z1, b.X2, b.Y2, b.Z2);
  }

  void Look_For_Chain() {
    for (std::int64_t i = Slot; i <= Last; ++i) {
      bool start_free = true, end_free = true;
      for (std::int64_t j = Slot; j <= Last && (start_free || end_free); ++j) {
        if (j == i) continue;
        if (Start_Connects(i, j)) start_free = false;
        if (End_Connects(i, j)) end_free = false;
      }
      const bool start_nearer = Beats_Best(Row(i).X1, Row(i).Y1);
      const bool end_nearer = Beats_Best(Row(i).X2, Row(i).Y2);
      DXF_Row& slot = Row(Slot);
      if (start_free && end_free && (start_nearer || end_nearer)) {
        std::swap(Row(i), slot);
        if (Is_Closer(X, Y, slot.X1, slot.Y1, slot.X2, slot.Y2)) Reverse_Row(slot);
        Remember(slot.X1, slot.Y1);
      } else if (start_free && !end_free && start_nearer) {
        std::swap(Row(i), slot);
        Remember(slot.X1, slot.Y1);
      } else if (!start_free && end_free && end_nearer) {
        std::swap(Row(i), slot);
        Reverse_Row(slot);
        Remember(slot.X2, slot.Y2);
      }
    }
  }

  void Move_To_End_Of(std::int64_t n) {
    X = Row(n).X2;
    Y = Row(n).Y2;
    Z = Row(n).Z2;
    Reset_Best();
  }

  void Follow_Chain() {
    for (std::int64_t k = Slot + 1; k <= Last; ++k) {
      std::int64_t m = k;
      for (; m <= Last; ++m) {
        const DXF_Row& row = Row(m);
        if (Ends_Connect(X, Y, Z, row.X1, row.Y1, row.Z1, row.X2, row.Y2, row.Z2)) break;
      }
      if (m > Last) continue;
      std::swap(Row(m), Row(k));
      if (Is_Closer(X, Y, Row(k).X1, Row(k).Y1, Row(k).X2, Row(k).Y2)) Reverse_Row(Row(k));
      Slot = k;
      Move_To_End_Of(k);
    }
  }

  void Sort_Group(std::int64_t first, std::int64_t last) {
    Last = last;
    Reset_Best();
    for (Slot = first; Slot <= Last; ++Slot) {
      Look_For_Chain();
      Move_To_End_Of(Slot);
      Follow_Chain();
    }
  }
};

}  // namespace norvik
