// clean.h: lines that lie along one another become one; repeated pads are dropped.
//
// Two lines meet when they have about the same slope and ends of one lie on the other:
//
//     i o-------o           two ends on the other line: the two ends that lie on neither
//          j o------o       become those of i
//     i o----------o        three or four: one line covers the other, i takes its ends
//     j o------o
//
// and j is dropped. All pairs i before j are gone through, again and again until a round changes
// nothing, ten rounds at most. Lines are compared only with those that share a cell of a grid; the
// outcome is that of comparing all.
#pragma once

#include "import/gerber/geometry.h"
#include "import/gerber/table.h"

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace norvik {

inline constexpr int Clean_Rounds = 10;

struct Clean_Line {
  std::array<Plane_Point, 2> Ends;
  double Width = 0;  // only lines of equal width meet
  bool Deleted = false;
};

struct Clean_Rule {
  double Slope_Limit;    // slopes differ by less
  double Upright_Slope;  // of a line without extent in X
};
inline constexpr Clean_Rule Clean_Data_Rule{0.0001, 1'000'000};
inline constexpr Clean_Rule Clean_File_Rule{0.1, 10'000'000};

// The ends of the line that two lines make; false when they stay two. Widths are not looked at.
bool Join_Lines(const Clean_Rule& rule, const Clean_Line& i, const Clean_Line& j,
                std::array<Plane_Point, 2>& ends);

// `round(share of the round)` is called before each line; when it gives false the cleaning ends.
void Clean_Lines(std::vector<Clean_Line>& lines, const Clean_Rule& rule,
                 const std::function<bool(double)>& round);

// Of pads with the same place and shape only the first stays, whatever their sizes.
void Clean_Pads(std::vector<Gerber_Pad>& pads);

// Progress and ESC of both cleanings: every ten lines a text and a turn of the event queue.
class Clean_Progress {
 public:
  explicit Clean_Progress(std::string before) : Before(std::move(before)) {}
  bool operator()(double share);

 private:
  std::string Before;
  int Until_Text = 0;
};

// Lines and pads of the table.
void Gerber_Clean(Gerber_Table_State& artwork, int pass);

}  // namespace norvik
