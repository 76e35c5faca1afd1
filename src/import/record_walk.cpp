#include "import/record_walk.h"

#include "import/import_distance.h"

#include <algorithm>
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
float Record_Walk::Rough_Square(const Point_Tree::Point& point) const {
  const float dx = point.X - Centre.X, dy = point.Y - Centre.Y;
  return dx * dx + dy * dy;
}

// The margins are far wider than what rounding and underflow can hide in either square.
void Record_Walk::Set_Best(const Point_Tree::Point& point, float rough_square) {
  constexpr float less = 1 - 1e-5F, more = 1 + 1e-5F, smallest = 1e-36F;
  Best = point;
  Low = rough_square * less - smallest;
  High = rough_square * more + smallest;
  Root = -1;
}

double Record_Walk::Best_Root() {
  if (Root < 0) Root = std::sqrt(Distance_Square(Centre.X, Centre.Y, Best.X, Best.Y));
  return Root;
}

bool Record_Walk::Passes(const Point_Tree::Point& point, float rough_square) {
  if (!(rough_square <= High) || point.X == Nowhere) return false;
  if (rough_square < Low) return true;
  const double root = std::sqrt(Distance_Square(Centre.X, Centre.Y, point.X, point.Y));
  return Rule == Finds::Nearer ? root < Best_Root() : root <= Best_Root();
}

bool Record_Walk::Passes_At(std::int32_t place) {
  const Point_Tree::Point first = Point_At(place, 0), second = Point_At(place, 1);
  return Passes(first, Rough_Square(first)) || Passes(second, Rough_Square(second));
}

// The nearer live end of the row there; on a tie the one where it starts now.
int Record_Walk::Near_Side(std::int32_t place) const {
  const Point_Tree::Point first = Point_At(place, 0), second = Point_At(place, 1);
  if (second.X == Nowhere) return 0;
  if (first.X == Nowhere) return 1;
  const double squares[] = {Distance_Square(Centre.X, Centre.Y, first.X, first.Y),
                            Distance_Square(Centre.X, Centre.Y, second.X, second.Y)};
  const int start = Side_At[Index(place)];
  return Is_Nearer_Square(squares[1 - start], squares[start]) ? 1 - start : start;
}

// --- Search --------------------------------------------------------------------------------------

void Record_Walk::Take(std::int32_t place) {
  const int side = Near_Side(place);
  const bool other_is_off = Point_At(place, 1 - side).X == Nowhere;
  const bool starts_there = Side_At[Index(place)] == side;
  Point_Tree::Point best = Point_At(place, side);
  if (other_is_off && !starts_there) best = Tree.At(Row_In(place) * 2 + 1 - side);
  Side_At[Index(place)] = static_cast<std::uint8_t>(side);
  Exchange(place, Slot);
  Set_Best(best, Rough_Square(best));
  Last_Found = place;
}

// The first block from `block` on, before `stop`, with a place whose rough square is at most High.
// The loop over a block stands in a form that compilers turn into vector instructions.
std::int32_t Record_Walk::Next_Near_Block(std::int32_t block, std::int32_t stop) const {
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
    const float square0 = Rough_Square({X_At[0][first + n], Y_At[0][first + n]});
    const float square1 = Rough_Square({X_At[1][first + n], Y_At[1][first + n]});
    squares[n] = square0 < square1 ? square0 : square1;
  }
  const std::int32_t block_stop = (block + 1) * Block;
  for (; At < block_stop; ++At) {
    if (squares[At % Block] <= High && At < Size() && Passes_At(At)) Take(At);
  }
}

// Fills Answer with what can still be found; false when that is much.
bool Record_Walk::Ask_Tree() {
  constexpr double allowance = 1 + 1e-14;  // squares that differ can have the same root
  const double square = Distance_Square(Centre.X, Centre.Y, Best.X, Best.Y) * allowance;
  const auto most = static_cast<std::size_t>(At - Last_Found);
  if (!Tree.Gather(Centre.X, Centre.Y, square, most, Points)) return false;
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
    if (place < At || !Passes_At(place)) continue;
    Take(place);
    At = place + 1;
    if (High > asked) return;
  }
  At = Size();
}

void Record_Walk::Find(Point_Tree::Point from_point, std::int32_t slot, std::int32_t from,
                       Point_Tree::Point best) {
  Centre = from_point;
  Slot = slot;
  At = Last_Found = from;
  Set_Best(best, Rough_Square(best));
  std::int32_t allowance = First_Allowance;
  while (At < Size()) {
    Scan(std::min(Size(), Last_Found + allowance));
    if (At - Last_Found < allowance || At >= Size()) continue;
    if (Ask_Tree()) {
      Walk_Answer();
    } else {
      allowance *= Growth;
    }
  }
}

}  // namespace norvik
