#include "import/record_walk.h"

#include "import/import_distance.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace norvik {

namespace {

constexpr float Nowhere = std::numeric_limits<float>::infinity();

}  // namespace

void Record_Walk::Build(std::vector<Point_Tree::Point> ends) {
  const std::size_t rows = ends.size() / 2;
  Row_At.resize(rows);
  std::iota(Row_At.begin(), Row_At.end(), 0);
  Place = Row_At;
  Side_At.assign(rows, 0);
  const std::size_t filled = (rows + Block - 1) / Block * Block;
  for (std::size_t side = 0; side < 2; ++side) {
    X_At[side].assign(filled, Nowhere);
    Y_At[side].assign(filled, Nowhere);
  }
  Tree.Build(std::move(ends));
}

void Record_Walk::Switch(std::int32_t end, bool on) {
  Tree.Switch(end, on);
  const std::size_t at = Index(Place_Of(end / 2)), side = Index(end % 2);
  X_At[side][at] = on ? Tree.At(end).X : Nowhere;
  Y_At[side][at] = on ? Tree.At(end).Y : Nowhere;
}

void Record_Walk::Exchange(std::int32_t place, std::int32_t other) {
  if (place == other) return;
  const std::size_t a = Index(place), b = Index(other);
  std::swap(Row_At[a], Row_At[b]);
  std::swap(Side_At[a], Side_At[b]);
  Place[Index(Row_At[a])] = place;
  Place[Index(Row_At[b])] = other;
  for (std::size_t side = 0; side < 2; ++side) {
    std::swap(X_At[side][a], X_At[side][b]);
    std::swap(Y_At[side][a], Y_At[side][b]);
  }
}

// --- Distances -----------------------------------------------------------------------------------

// Unscaled and in singles throughout, for the first look.
float Record_Walk::Rough_Square(float x, float y) const {
  const float dx = x - Centre.X, dy = y - Centre.Y;
  return dx * dx + dy * dy;
}

// Distance of the nearer live end; infinite without one.
double Record_Walk::Exact_Root(const Row_State& row) const {
  double square = std::numeric_limits<double>::infinity();
  for (const int side : {0, 1}) {
    if (row.X[side] == Nowhere) continue;
    square = std::min(square, Distance_Square(Centre.X, Centre.Y, row.X[side], row.Y[side]));
  }
  return std::sqrt(square);
}

inline void Record_Walk::Set_Best(float rough_square) {
  Low = rough_square * Less - Smallest;
  High = rough_square * More + Smallest;
  Root = -1;
}

// For rough squares up to High.
inline bool Record_Walk::Passes(float rough_square, std::int32_t place) {
  if (rough_square < Low) return true;
  const Row_State row = State_At(place);
  if (row.X[0] == Nowhere && row.X[1] == Nowhere) return false;
  const double root = Exact_Root(row);
  if (Root < 0) Root = Exact_Root(Carried);
  return Rule == Finds::Nearer ? root < Root : root <= Root;
}

// --- Search --------------------------------------------------------------------------------------

inline Record_Walk::Row_State Record_Walk::State_At(std::int32_t place) const {
  const std::size_t at = Index(place);
  return {Row_At[at], Side_At[at], {X_At[0][at], X_At[1][at]}, {Y_At[0][at], Y_At[1][at]}};
}

inline void Record_Walk::Put_State(std::int32_t place, const Row_State& state) {
  const std::size_t at = Index(place);
  Row_At[at] = state.Row;
  Side_At[at] = state.Side;
  X_At[0][at] = state.X[0];
  Y_At[0][at] = state.Y[0];
  X_At[1][at] = state.X[1];
  Y_At[1][at] = state.Y[1];
  Place[Index(state.Row)] = place;
}

// Turns the row to start at its nearer live end, on a tie where it starts now.
void Record_Walk::Turn_Carried() {
  const bool live[] = {Carried.X[0] != Nowhere, Carried.X[1] != Nowhere};
  const int start = Carried.Side, end = 1 - start;
  if (live[0] && live[1]) {
    const auto square = [&](int side) {
      return Distance_Square(Centre.X, Centre.Y, Carried.X[side], Carried.Y[side]);
    };
    if (Is_Nearer_Square(square(end), square(start))) Carried.Side ^= 1;
  } else if (live[end]) {
    Carried.Side ^= 1;
    const Point_Tree::Point& other = Tree.At(Carried.Row * 2 + start);
    Set_Best(Rough_Square(other.X, other.Y));
    Root = std::sqrt(Distance_Square(Centre.X, Centre.Y, other.X, other.Y));
  }
}

inline void Record_Walk::Take(std::int32_t place) {
  const Row_State found = State_At(place);
  Put_State(place, Carried);
  Carried = found;
  Last_Found = place;
  const float first = Rough_Square(found.X[0], found.Y[0]);
  const float second = Rough_Square(found.X[1], found.Y[1]);
  Set_Best(first < second ? first : second);
  if (Ends_At_Meeting) {
    Found.push_back({found.Row, place, {first, second}});
    for (const int side : {0, 1}) Met |= found.X[side] == Centre.X && found.Y[side] == Centre.Y;
  }
  if (Rule == Finds::Nearer) Turn_Carried();
}

// The first block from `block` on, before `stop`, with a place whose rough square is at most High.
// The loop over a block stands in a form that compilers turn into vector instructions.
inline std::int32_t Record_Walk::Next_Near_Block(std::int32_t block, std::int32_t stop) const {
  const float x = Centre.X, y = Centre.Y, high = High;
  for (; block < stop; ++block) {
    const std::size_t first = Index(block * Block);
    const float *x0 = &X_At[0][first], *y0 = &Y_At[0][first];
    const float *x1 = &X_At[1][first], *y1 = &Y_At[1][first];
    std::int32_t any = 0;
    for (int n = 0; n < Block; ++n) {
      const float dx0 = x0[n] - x, dy0 = y0[n] - y, dx1 = x1[n] - x, dy1 = y1[n] - y;
      any |= static_cast<std::int32_t>(dx0 * dx0 + dy0 * dy0 <= high) |
             static_cast<std::int32_t>(dx1 * dx1 + dy1 * dy1 <= high);
    }
    if (any != 0) break;
  }
  return block;
}

// From At through the next near block, or to `stop`. A row found leaves the places behind it, and
// so their squares, as they are.
void Record_Walk::Scan(std::int32_t stop) {
  const std::int32_t stop_block = (stop + Block - 1) / Block;
  const std::int32_t block = Next_Near_Block(At / Block, stop_block);
  At = std::max(At, block * Block);
  if (block == stop_block) return;
  const std::size_t first = Index(block * Block);
  float squares[Block];
  for (std::size_t n = 0; n < Block; ++n) {
    const float square0 = Rough_Square(X_At[0][first + n], Y_At[0][first + n]);
    const float square1 = Rough_Square(X_At[1][first + n], Y_At[1][first + n]);
    squares[n] = square0 < square1 ? square0 : square1;
  }
  const std::int32_t block_start = block * Block;
  // The last block is filled up with places that hold no row.
  const std::int32_t rows = std::min(Block, Size() - block_start);
  const auto near_from = [&](std::int32_t first_row) {
    std::uint32_t near = 0;
    for (int n = 0; n < Block; ++n) near |= static_cast<std::uint32_t>(squares[n] <= High) << n;
    return near & ((1U << rows) - (1U << std::min(first_row, rows)));
  };
  std::uint32_t near = near_from(At - block_start);
  while (near != 0 && !Met) {
    const int n = std::countr_zero(near);
    near &= near - 1;
    if (!(squares[n] <= High) || !Passes(squares[n], block_start + n)) continue;
    const float before = High;
    Take(block_start + n);
    if (High > before) near = near_from(n + 1);
  }
  At = block_start + Block;
}

// Fills Answer with what can still be found; false when that is much.
bool Record_Walk::Ask_Tree() {
  constexpr double allowance = 1 + 1e-14;  // squares that differ can have the same root
  if (Root < 0) Root = Exact_Root(Carried);
  const auto most = static_cast<std::size_t>(At - Last_Found);
  if (!Tree.Gather(Centre.X, Centre.Y, Root * Root * allowance, most, Points)) return false;
  Answer.clear();
  for (const Point_Tree::Number end : Points) {
    const std::int32_t place = Place_Of(end / 2);
    if (place >= At) Answer.push_back(place);
  }
  std::sort(Answer.begin(), Answer.end());
  return true;
}

// Ends before the end of the answer when the best distance has grown: then it no longer holds all.
void Record_Walk::Walk_Answer() {
  const float asked = High;
  for (const std::int32_t place : Answer) {
    if (place < At) continue;
    const std::size_t at = Index(place);
    const float square =
        std::min(Rough_Square(X_At[0][at], Y_At[0][at]), Rough_Square(X_At[1][at], Y_At[1][at]));
    if (!(square <= High) || !Passes(square, place)) continue;
    Take(place);
    At = place + 1;
    if (High > asked || Met) return;
  }
  At = Size();
}

void Record_Walk::Find(Point_Tree::Point centre, std::int32_t slot, std::int32_t from,
                       Point_Tree::Point best) {
  Centre = centre;
  At = Last_Found = from;
  Met = false;
  Found.clear();
  Carried = State_At(slot);
  Set_Best(Rough_Square(best.X, best.Y));
  Root = std::sqrt(Distance_Square(centre.X, centre.Y, best.X, best.Y));
  std::int32_t allowance = First_Allowance;
  while (At < Size() && !Met) {
    Scan(std::min(Size(), Last_Found + allowance));
    if (Met || At - Last_Found < allowance || At >= Size()) continue;
    if (Ask_Tree()) {
      Walk_Answer();
    } else {
      allowance *= Growth;
    }
  }
  Put_State(slot, Carried);
}

}  // namespace norvik
