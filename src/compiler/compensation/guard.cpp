#include "compiler/compensation/guard.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace norvik::compensation {

namespace {

using Range = Element_Range;

// Boxes of a range of elements, halved again and again in the order of the path: what lies close
// together on the path lies close together in the plane.
class Box_Tree {
 public:
  Box_Tree(const std::vector<Element>& elements, Range range)
      : Elements(elements), All(range), Boxes(2 * (range.Last - range.First)) {
    if (All.First < All.Last) Build(1, All);
  }

  // Calls `visit` for each element of `range` whose box lies closer to `box` than `reach`.
  template <class Visit>
  void Near(const Box& box, double reach, Range range, const Visit& visit) const {
    if (All.First < All.Last) Walk(1, All, box, reach, range, visit);
  }

 private:
  static constexpr std::size_t Leaf = 4;

  // The node behind `node` in a tree laid out in order: its halves follow it, the left one with all
  // its own first. A range of n elements takes at most 2 n - 1 nodes.
  static std::size_t Right_Node(std::size_t node, Range left) {
    return node + 2 * (left.Last - left.First);
  }
  static Range Left_Half(Range range) {
    return {range.First, range.First + (range.Last - range.First) / 2};
  }

  const Box& Build(std::size_t node, Range range) {
    Box& box = Boxes[node - 1];
    if (range.Last - range.First <= Leaf) {
      for (std::size_t at = range.First; at < range.Last; ++at) {
        box.Add(Box_Of(Elements[at].Programmed));
      }
      return box;
    }
    const Range left = Left_Half(range);
    box.Add(Build(node + 1, left));
    box.Add(Build(Right_Node(node, left), {left.Last, range.Last}));
    return box;
  }

  template <class Visit>
  void Walk(std::size_t node, Range range, const Box& box, double reach, Range wanted,
            const Visit& visit) const {
    if (range.Last <= wanted.First || range.First >= wanted.Last) return;
    if (Distance(Boxes[node - 1], box) >= reach) return;
    if (range.Last - range.First <= Leaf) {
      for (std::size_t at = range.First; at < range.Last; ++at) {
        if (wanted.Holds(at)) visit(at);
      }
      return;
    }
    const Range left = Left_Half(range);
    Walk(node + 1, left, box, reach, wanted, visit);
    Walk(Right_Node(node, left), {left.Last, range.Last}, box, reach, wanted, visit);
  }

  const std::vector<Element>& Elements;
  Range All;
  std::vector<Box> Boxes;
};

// A place in the plane, to a tenth of a thousandth.
struct Place {
  std::int64_t X = 0, Y = 0;

  explicit Place(Point point) : X(std::llround(point.X * 1e4)), Y(std::llround(point.Y * 1e4)) {}
  bool operator==(const Place&) const = default;
};

struct Place_Hash {
  std::size_t operator()(const Place& place) const {
    return static_cast<std::size_t>(place.X) * 0x9E3779B97F4A7C15U ^
           static_cast<std::size_t>(place.Y);
  }
};

// From the first vertex that is passed again to the last that has been passed before; vertex i
// stands before element i.
Range Contour_Of(const std::vector<Element>& elements, Range cut) {
  std::unordered_map<Place, std::size_t, Place_Hash> first_at;
  first_at.reserve(cut.Last - cut.First + 1);
  std::optional<Range> contour;
  bool closes = false;
  for (std::size_t vertex = cut.First; vertex <= cut.Last; ++vertex) {
    const Point at =
        vertex < cut.Last ? elements[vertex].Programmed.Start : elements[vertex - 1].Programmed.End;
    const std::size_t first = first_at.try_emplace(Place(at), vertex).first->second;
    if (first == vertex) continue;
    if (first == cut.First && vertex == cut.Last) {
      closes = true;
      continue;
    }
    if (!contour) contour = Range{first, vertex};
    contour->First = std::min(contour->First, first);
    contour->Last = vertex;
  }
  // A cut that ends where it began and passes no other point twice is the contour itself.
  return contour && !(closes && contour->First == cut.First) ? *contour : cut;
}

}  // namespace

std::vector<Cut> Cuts_Of(const std::vector<Element>& elements) {
  std::vector<Cut> cuts;
  for (std::size_t at = 0; at < elements.size(); ++at) {
    if (!elements[at].Cuts) continue;
    if (at == 0 || !elements[at - 1].Cuts) cuts.push_back({{at, at}, {}});
    cuts.back().All.Last = at + 1;
  }
  for (Cut& cut : cuts) cut.Contour = Contour_Of(elements, cut.All);
  return cuts;
}

namespace {

double Radius_Error(const Piece& piece) {
  return piece.Is_Arc ? std::abs(piece.Start_Radius - piece.End_Radius) : 0;
}

class Guard {
 public:
  Guard(const std::vector<Element>& elements, double radius) : Elements(elements), Radius(radius) {}

  // Looks at the pieces of one cut, which are those from `piece` on; answers the piece behind it.
  std::size_t Check(const Cut& cut, const std::vector<Path_Piece>& path, std::size_t piece,
                    const std::function<void(const Gouge&)>& report) {
    const Box_Tree tree(Elements, cut.All);
    while (piece < path.size() && path[piece].Element < cut.All.First) ++piece;
    while (piece < path.size() && path[piece].Element < cut.All.Last) {
      const std::size_t element = path[piece].Element;
      std::optional<Gouge> closest;
      for (; piece < path.size() && path[piece].Element == element; ++piece) {
        Measure(path[piece], cut, tree, closest);
      }
      if (closest) report(*closest);
    }
    return piece;
  }

 private:
  void Measure(const Path_Piece& piece, const Cut& cut, const Box_Tree& tree,
               std::optional<Gouge>& closest) const {
    if (Elements[piece.Element].Reported) return;
    const double allowed = Radius - Tolerance;
    tree.Near(Box_Of(piece.Shape), allowed, cut.Obstacles_Of(piece.Element), [&](std::size_t at) {
      if (at == piece.Element && !piece.Connects) return;
      if (Elements[at].Reported && (at + 1 == piece.Element || piece.Element + 1 == at)) return;
      const double errors = Radius_Error(piece.Shape) + Radius_Error(Elements[at].Programmed);
      const double distance = Distance(piece.Shape, Elements[at].Programmed);
      if (distance >= allowed - errors) return;
      if (!closest || distance < closest->Distance) closest = Gouge{piece.Element, at, distance};
    });
  }

  const std::vector<Element>& Elements;
  double Radius;
};

}  // namespace

void Find_Gouges(const std::vector<Element>& elements, const std::vector<Path_Piece>& path,
                 double radius, const std::function<void(const Gouge&)>& report) {
  Guard guard(elements, radius);
  std::size_t piece = 0;
  for (const Cut& cut : Cuts_Of(elements)) piece = guard.Check(cut, path, piece, report);
}

}  // namespace norvik::compensation
