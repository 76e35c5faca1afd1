#include "import/pipeline/record_walk.h"

#include "import/pipeline/distance.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace norvik {

namespace {

constexpr float Nowhere = std::numeric_limits<float>::infinity();
constexpr auto Place_Bits = [] {
  std::array<std::uint32_t, 32> bits{};
  for (unsigned n = 0; n < bits.size(); ++n) bits[n] = 1U << n;
  return bits;
}();

// Compiled twice, for processors with and without wide vectors; the program takes what it finds.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
#define NORVIK_WIDE_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define NORVIK_WIDE_VECTORS
#endif

}  // namespace

void Record_Walk::Build(std::vector<Point_Tree::Point> ends) {
  const auto rows = static_cast<std::int32_t>(ends.size() / 2);
  Place.resize(ends.size() / 2);
  std::iota(Place.begin(), Place.end(), 0);
  Place_Block empty;
  for (std::size_t n = 0; n < Block; ++n) {
    for (const int side : {0, 1}) empty.X[side][n] = empty.Y[side][n] = Nowhere;
    empty.Start[n] = 0;
  }
  Blocks.assign(Index((rows + Block - 1) / Block), empty);
  for (std::int32_t row = 0; row < rows; ++row) {
    Blocks[Index(row / Block)].Start[Index(row % Block)] = row * 2;
  }
  Tree.Build(std::move(ends));
}

void Record_Walk::Switch(std::int32_t end, bool on) {
  Tree.Switch(end, on);
  const std::int32_t place = Place_Of(end / 2);
  Place_Block& block = Blocks[Index(place / Block)];
  block.X[end % 2][place % Block] = on ? Tree.At(end).X : Nowhere;
  block.Y[end % 2][place % Block] = on ? Tree.At(end).Y : Nowhere;
}

void Record_Walk::Exchange(std::int32_t place, std::int32_t other) {
  const Row_State here = State_At(place);
  Put_State(place, State_At(other));
  Put_State(other, here);
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
inline bool Record_Walk::Passes(const Row_State& row, float rough_square) {
  Found_Root = -1;
  if (rough_square < Low) return true;
  if (row.X[0] == Nowhere && row.X[1] == Nowhere) return false;
  Found_Root = Exact_Root(row);
  if (Root < 0) Root = Exact_Root(Carried);
  return Rule == Finds::Nearer ? Found_Root < Root : Found_Root <= Root;
}

// The row has its near end where the best has it, and the other ends are out of the question: an
// exact tie. Where paths pass on from stroke to stroke these are most of the rows to be judged.
inline bool Record_Walk::Shares_Best_Point(const Row_State& row, float near_square) const {
  if (near_square != Near) return false;
  const auto near_side = [&](const Row_State& of) {
    const float square[] = {Rough_Square(of.X[0], of.Y[0]), Rough_Square(of.X[1], of.Y[1])};
    return square[0] == Near && square[1] > High   ? 0
           : square[1] == Near && square[0] > High ? 1
                                                   : -1;
  };
  const int side = near_side(row), best = near_side(Carried);
  return side >= 0 && best >= 0 && row.X[side] == Carried.X[best] && row.Y[side] == Carried.Y[best];
}

// --- Search --------------------------------------------------------------------------------------

inline Record_Walk::Row_State Record_Walk::State_At(std::int32_t place) const {
  const Place_Block& block = Blocks[Index(place / Block)];
  const std::size_t n = Index(place % Block);
  return {block.Start[n], {block.X[0][n], block.X[1][n]}, {block.Y[0][n], block.Y[1][n]}};
}

inline void Record_Walk::Put_State(std::int32_t place, const Row_State& state) {
  Place_Block& block = Blocks[Index(place / Block)];
  const std::size_t n = Index(place % Block);
  block.Start[n] = state.Start;
  for (const int side : {0, 1}) {
    block.X[side][n] = state.X[side];
    block.Y[side][n] = state.Y[side];
  }
  Place[Index(state.Start / 2)] = place;
}

// Turns the row to start at its nearer live end, on a tie where it starts now.
void Record_Walk::Turn_Carried() {
  const bool live[] = {Carried.X[0] != Nowhere, Carried.X[1] != Nowhere};
  const int start = Carried.Start % 2, end = 1 - start;
  if (live[0] && live[1]) {
    const auto square = [&](int side) {
      return Distance_Square(Centre.X, Centre.Y, Carried.X[side], Carried.Y[side]);
    };
    if (Is_Nearer_Square(square(end), square(start))) Carried.Start ^= 1;
  } else if (live[end]) {
    const Point_Tree::Point& other = Tree.At(Carried.Start);
    Carried.Start ^= 1;
    Set_Best(Rough_Square(other.X, other.Y));
    Root = std::sqrt(Distance_Square(Centre.X, Centre.Y, other.X, other.Y));
  }
}

void Record_Walk::Note_Found() {
  const Row_State& row = Carried;
  Found.push_back({row.Start / 2,
                   Last_Found,
                   {Rough_Square(row.X[0], row.Y[0]), Rough_Square(row.X[1], row.Y[1])}});
  for (const int side : {0, 1}) Met |= row.X[side] == Centre.X && row.Y[side] == Centre.Y;
}

inline void Record_Walk::Take(std::int32_t place, const Row_State& row, float near_square) {
  const Row_State found = row;  // `row` may lie where the next line writes
  Put_State(place, Carried);
  Carried = found;
  Last_Found = place;
  if (Ends_At_Meeting) Note_Found();
  Near = near_square;
  Set_Best(near_square);
  Root = Found_Root;
  if (Rule == Finds::Nearer) Turn_Carried();
}

// From At on, until `allowance` places behind the row found last brought nothing. Places are looked
// at a block at a time; the loop over a block stands in a form that compilers turn into vector
// instructions. A row found leaves the places behind it, and so their squares, as they are.
NORVIK_WIDE_VECTORS
void Record_Walk::Scan(std::int32_t allowance) {
  const float x = Centre.X, y = Centre.Y;
  while (At < std::min(Size(), Last_Found + allowance)) {
    const Place_Block& block = Blocks[Index(At / Block)];
    const std::int32_t block_start = At / Block * Block;
    float near[Block];
    const float high = High;
    std::uint32_t hits = 0;  // a bit for each place
    for (int n = 0; n < Block; ++n) {
      const float dx0 = block.X[0][n] - x, dy0 = block.Y[0][n] - y;
      const float dx1 = block.X[1][n] - x, dy1 = block.Y[1][n] - y;
      const float square0 = dx0 * dx0 + dy0 * dy0, square1 = dx1 * dx1 + dy1 * dy1;
      near[n] = square0 < square1 ? square0 : square1;
      hits |= near[n] <= high ? Place_Bits[Index(n)] : 0U;
    }
    hits &= 0U - Place_Bits[Index(At - block_start)];  // from At on
    std::int32_t next = block_start + Block;
    for (; hits != 0; hits &= hits - 1) {
      const std::int32_t n = std::countr_zero(hits), place = block_start + n;
      // The last block is filled up with places that hold no row.
      if (!(near[n] <= High) || place >= Size()) continue;
      const Row_State row = State_At(place);
      if (Rule == Finds::Not_Farther && Shares_Best_Point(row, near[n])) {
        Found_Root = Root;
      } else if (!Passes(row, near[n])) {
        continue;
      }
      Take(place, row, near[n]);
      if (Met) return;
      if (High > high) {  // the best has become worse: places of this block may pass after all
        next = place + 1;
        break;
      }
    }
    At = next;
  }
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
    const Row_State row = State_At(place);
    const float square0 = Rough_Square(row.X[0], row.Y[0]);
    const float square1 = Rough_Square(row.X[1], row.Y[1]), near = std::min(square0, square1);
    if (!(near <= High) || !Passes(row, near)) continue;
    Take(place, row, near);
    At = place + 1;
    if (High > asked || Met) return;
  }
  At = Size();
}

void Record_Walk::Find(Point_Tree::Point centre, std::int32_t slot, std::int32_t from,
                       Point_Tree::Point best) {
  Centre = centre;
  Near = -1;  // no row shares the first best
  At = Last_Found = from;
  Met = false;
  Found.clear();
  Carried = State_At(slot);
  Set_Best(Rough_Square(best.X, best.Y));
  Root = std::sqrt(Distance_Square(centre.X, centre.Y, best.X, best.Y));
  std::int32_t allowance = First_Allowance;
  while (At < Size() && !Met) {
    Scan(allowance);
    if (Met || At >= Size()) break;
    if (Ask_Tree()) {
      Walk_Answer();
    } else {
      allowance *= Growth;
    }
  }
  Put_State(slot, Carried);
}

}  // namespace norvik
