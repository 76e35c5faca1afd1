// board_generator.h: generated artwork for the tests of isolation and cleaning.
#pragma once

#include "import/gerber/table.h"

#include <iterator>
#include <random>

namespace norvik {

struct Board_Kind {
  int Shapes;      // at most, of lines and of pads
  int Grid;        // places lie on so many grid lines; few give many that coincide
  double Spacing;  // of the grid
  double Size;     // of the largest shape; 0: some have none at all
  bool Slanted;    // lines in any direction, else in steps of 45 degrees
};

inline Gerber_Table_State Generated_Board(std::mt19937& random, const Board_Kind& kind) {
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const auto at = [&](int place) { return static_cast<float>(place * kind.Spacing); };
  const auto size = [&] { return static_cast<float>(kind.Size * pick(1, 4) / 4); };
  constexpr int ways[][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}};
  Gerber_Table_State board;
  for (int n = pick(0, kind.Shapes); n > 0; --n) {
    int x = pick(0, kind.Grid), y = pick(0, kind.Grid);
    if (!board.Lines.empty() && pick(0, 3) == 0) {  // goes on from the last one
      x = static_cast<int>(std::lround(board.Lines.back().X2 / kind.Spacing));
      y = static_cast<int>(std::lround(board.Lines.back().Y2 / kind.Spacing));
    }
    int to_x = pick(0, kind.Grid), to_y = pick(0, kind.Grid);
    if (!kind.Slanted) {
      const auto& way = ways[pick(0, std::size(ways) - 1)];
      const int length = pick(-kind.Grid, kind.Grid);
      to_x = x + way[0] * length;
      to_y = y + way[1] * length;
    }
    board.Lines.push_back({at(x), at(y), at(to_x), at(to_y), size(), false});
    if (pick(0, 9) == 0) board.Lines.push_back(board.Lines.front());
  }
  for (int n = pick(0, kind.Shapes); n > 0; --n) {
    board.Pads.push_back(
        {at(pick(0, kind.Grid)), at(pick(0, kind.Grid)), size(), size(), "RCO"[pick(0, 2)], false});
    if (pick(0, 9) == 0) board.Pads.push_back(board.Pads.front());
  }
  return board;
}

}  // namespace norvik
