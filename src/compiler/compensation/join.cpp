#include "compiler/compensation/join.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace norvik::compensation {

namespace {

// Ends that are this close meet; an arc shorter than this would not be drawn.
constexpr double Gap_Floor = 1e-4;
// Where a connecting arc would bulge less than this from its chord, two lines end where they would
// cross; text with four decimals has many such corners.
constexpr double Bulge_Floor = 1e-4;
// An arc may lose or gain so much radius at an end that is brought to its neighbour's.
constexpr double Radius_Slack = 1e-5;
// A crossing may lie this far beyond the end of an element.
constexpr double Crossing_Reach = 1e-6;
// A turn this close to 180 degrees goes back on itself; the curvatures tell to which side.
constexpr double Reversal_Slack = 1e-6;
// At most so many pieces on either side of a corner are looked at.
constexpr std::size_t Largest_Window = 64;

enum class Joint { Smooth, Outside, Inside };

struct Corner {
  Joint Kind = Joint::Smooth;
  Point At;
  Turn Direction = Turn::Clockwise;  // in which the path turns
  double Gap = 0;                    // between the moved ends
};

// Change of direction at a corner, -pi..pi, above 0 to the left. A path that goes back on itself
// turns to the side from which it leaves; one that retraces the way it came turns away from the
// tool.
double Turning(const Element& before, const Element& after, double to_left) {
  const Point in = End_Direction(before.Programmed), out = Start_Direction(after.Programmed);
  const double angle = std::atan2(Cross(in, out), Dot(in, out));
  if (std::abs(angle) < Pi - Reversal_Slack) return angle;
  const double bend = End_Curvature(before.Programmed) + Start_Curvature(after.Programmed);
  const bool leaves_right = to_left > 0 ? bend >= 0 : bend > 0;
  return leaves_right ? -Pi : Pi;
}

Corner Corner_Between(const Element& before, const Element& after, double to_left) {
  Corner corner;
  corner.At = after.Programmed.Start;
  corner.Gap = Distance(before.Moved.End, after.Moved.Start);
  if (corner.Gap <= Gap_Floor) return corner;
  const double angle = Turning(before, after, to_left);
  corner.Direction = angle > 0 ? Turn::Counter_Clockwise : Turn::Clockwise;
  const double bulge = std::abs(to_left) * (1 - std::cos(angle / 2));
  if (angle * to_left > 0) {
    corner.Kind = Joint::Inside;
  } else if (bulge > Bulge_Floor) {
    corner.Kind = Joint::Outside;
  }
  return corner;
}

// Pieces on either side of a corner, those next to it first.
struct Window {
  std::vector<const Path_Piece*> Before;
  std::vector<Path_Piece> After;
};

// Which pieces of a window meet, and where.
struct Meeting {
  std::size_t Before = 0, After = 0;  // places in the window: so many are passed over
  Point At;
};

class Joiner {
 public:
  Joiner(std::vector<Element>& elements, double to_left, const Join_Reports& reports)
      : Elements(elements), To_Left(to_left), Reports(reports) {}

  std::vector<Path_Piece> Run() {
    Path.reserve(Elements.size() + Elements.size() / 4);
    if (!Elements.empty()) Path.push_back({Elements.front().Moved, 0});
    for (std::size_t next = 1; next < Elements.size();) next = Join_Next(next);
    Join_Seams();
    for (const Path_Piece& piece : Path) {
      if (piece.Wrong_Way) Reports.No_Crossing(Elements[piece.Element]);
    }
    return std::move(Path);
  }

 private:
  // Joins element `next` to the end of the path; answers the first element not yet on it.
  std::size_t Join_Next(std::size_t next) {
    Element& before = Elements[next - 1];
    Reports.Progress(before);
    const Corner corner = Corner_Between(before, Elements[next], To_Left);
    Path_Piece piece{Elements[next].Moved, next};
    if (corner.Kind == Joint::Inside) {
      if (const auto past = Join_Inside(corner, next)) return *past;
      Nist_CompArc(corner, next);
      Path.back().Wrong_Way = !Shallow(corner) && !before.Too_Tight && !Elements[next].Too_Tight;
    } else if (!Meet(corner, Path.back().Shape, piece.Shape)) {
      Nist_CompArc(corner, next);
    }
    Path.push_back(piece);
    return next + 1;
  }

  // Whether the tool, run to the ends of both moved neighbours, cuts less than what is allowed: by
  // radius * (1 - cos(turn)).
  bool Shallow(const Corner& corner) const {
    return corner.Gap * corner.Gap <= Tolerance * std::abs(To_Left);
  }

  // Brings the end of one piece and the start of the next to one point: both go on straight, for
  // half of the gap, to where they cross. False at an outside corner, and where that would change
  // the radius of an arc.
  static bool Meet(const Corner& corner, Piece& before, Piece& after) {
    if (corner.Kind == Joint::Outside) return false;
    const double gap = Distance(before.End, after.Start);
    if (gap > Same_Point && Goes_Straight(before, gap / 2) && Goes_Straight(after, gap / 2)) {
      const Point tip = Tip(corner.At, before.End, after.Start);
      Trim_End(before, tip);
      Trim_Start(after, tip);
      return true;
    }
    if (gap > Gap_Floor) return false;
    if (!before.Full_Circle()) {
      Trim_End(before, after.Start);
    } else if (!after.Full_Circle()) {
      Trim_Start(after, before.End);
    } else {
      after.Start = after.End = before.End;
    }
    return true;
  }

  // Whether a piece leaves its way by no more than what an arc's radius may change, when it goes on
  // straight for `length`.
  static bool Goes_Straight(const Piece& piece, double length) {
    if (!piece.Is_Arc) return true;
    const double radius = std::min(piece.Start_Radius, piece.End_Radius);
    return !piece.Full_Circle() && length * length <= 2 * Radius_Slack * radius;
  }

  // Where two lines cross that touch the tool around a corner at these points.
  static Point Tip(Point corner, Point a, Point b) {
    const Point to_a = a - corner, to_b = b - corner;
    return corner + (to_a + to_b) * (1 / (1 + Dot(to_a, to_b) / (Length(to_a) * Length(to_b))));
  }

  // The connecting arc around the corner before element `next`.
  Path_Piece Connecting_Arc(const Corner& corner, std::size_t next) const {
    const Point from = Elements[next - 1].Moved.End, to = Elements[next].Moved.Start;
    return {Arc_Piece(from, to, corner.At, corner.Direction), next - 1, true};
  }

  void Nist_CompArc(const Corner& corner, std::size_t next) {
    Path.push_back(Connecting_Arc(corner, next));
  }

  // Trims both sides of an inside corner at their crossing. Absent: nothing crosses.
  std::optional<std::size_t> Join_Inside(const Corner& corner, std::size_t next) {
    if (Elements[next].Too_Tight || Elements[next - 1].Too_Tight) return std::nullopt;
    Window window;
    Path_Piece met{Elements[next].Moved, next};
    std::optional<Meeting> meeting;
    if (const auto at = Crossing(Path.back().Shape, met.Shape, corner.At, Crossing_Reach)) {
      meeting = Meeting{0, 0, *at};
    } else {
      window = {Pieces_Before(0, Path.size()), Pieces_After(next)};
      meeting = Find_Meeting(window, corner.At);
      if (!meeting) return Short_Cut(window, next);
      met = window.After[meeting->After];
    }
    Path.resize(Path.size() - meeting->Before);
    Trim_End(Path.back().Shape, meeting->At);
    Trim_Start(met.Shape, meeting->At);
    Path.push_back(met);
    const std::size_t following = met.Element + 1;
    if (!met.Connects || following == Elements.size()) return following;
    Path.push_back({Elements[following].Moved, following});
    return following + 1;
  }

  // Where moves are so short that the decimals of their ends make corners of them, moved neighbours
  // overlap without crossing: goes straight from the end of the path to the end of the next line
  // that lies ahead, or nowhere where all that is left lies behind.
  std::optional<std::size_t> Short_Cut(const Window& window, std::size_t next) {
    const Point from = Path.back().Shape.End;
    for (Path_Piece ahead : window.After) {
      if (ahead.Connects || ahead.Shape.Is_Arc) continue;
      if (Dot(ahead.Shape.End - from, End_Direction(ahead.Shape)) <= 0) continue;
      ahead.Shape = Line_Piece(from, ahead.Shape.End);
      if (!Clears(Elements[next - 1], ahead.Shape) ||
          !Clears(Elements[ahead.Element], ahead.Shape)) {
        continue;
      }
      if (!May_Leave_Out(next, ahead.Element, ahead.Shape)) continue;
      Path.push_back(ahead);
      return ahead.Element + 1;
    }
    const std::size_t end = Elements.size();
    if (window.After.empty() || window.After.back().Element + 1 != end) return std::nullopt;
    if (!Passable(Elements.back()) || !May_Leave_Out(next, end, Line_Piece(from, from))) {
      return std::nullopt;
    }
    return end;
  }

  // Whether a search may look beyond this element: it is short, or so short beside the tool that
  // the tool can touch both its ends from one place.
  bool Passable(const Element& element) const {
    if (element.Too_Tight) return false;
    const double both_ends = 4 * std::sqrt(Tolerance * std::abs(To_Left));
    return !Moves_Far(element.Programmed) || Piece_Length(element.Programmed) <= both_ends;
  }
  bool Passable(const Path_Piece& piece) const {
    return piece.Connects || Passable(Elements[piece.Element]);
  }

  // Index of the first element from `index` on that no search looks beyond; `count`: none before
  // it.
  std::size_t GetNextNonZMoveIndex(std::size_t index, std::size_t count) const {
    while (index < count && Passable(Elements[index])) ++index;
    return index;
  }

  // Whether the tool on this way stays off an element.
  bool Clears(const Element& element, const Piece& way) const {
    return Distance(element.Programmed, way) >= std::abs(To_Left) - Tolerance / 2;
  }

  // Whether elements first..last - 1 need no piece of their own when the tool takes this way: it
  // stays off them, and it cuts them all the same, unless they are short.
  bool May_Leave_Out(std::size_t first, std::size_t last, const Piece& way) const {
    const double touches = std::abs(To_Left) + Tolerance;
    const auto left = std::span(Elements).subspan(first, last - first);
    return std::all_of(left.begin(), left.end(), [&](const Element& element) {
      const Piece& programmed = element.Programmed;
      if (!Clears(element, way)) return false;
      return !Moves_Far(programmed) || (Distance(way, programmed.Start) <= touches &&
                                        Distance(way, programmed.End) <= touches);
    });
  }

  // The pieces of the path before `to`, nearest first, back to one that may not be passed over.
  std::vector<const Path_Piece*> Pieces_Before(std::size_t from, std::size_t to) const {
    std::vector<const Path_Piece*> pieces;
    for (std::size_t at = to; at > from && pieces.size() < Largest_Window; --at) {
      if (Elements[Path[at - 1].Element].Too_Tight) break;
      pieces.push_back(&Path[at - 1]);
      if (!Passable(Path[at - 1])) break;
    }
    return pieces;
  }

  // The coming elements and the arcs between them, up to the first that may not be passed over.
  std::vector<Path_Piece> Pieces_After(std::size_t next) const {
    std::vector<Path_Piece> pieces;
    const std::size_t limit = std::min(next + Largest_Window, Elements.size());
    const std::size_t last = GetNextNonZMoveIndex(next, limit);
    for (std::size_t at = next; at <= last && at < limit; ++at) {
      if (Elements[at].Too_Tight) break;
      Path_Piece piece{Elements[at].Moved, at};
      if (at > next) {
        const Corner corner = Corner_Between(Elements[at - 1], Elements[at], To_Left);
        if (corner.Kind != Joint::Inside && !Meet(corner, pieces.back().Shape, piece.Shape)) {
          pieces.push_back(Connecting_Arc(corner, at));
        }
      }
      pieces.push_back(piece);
    }
    return pieces;
  }

  // The first crossing, those that pass over the fewest pieces first.
  std::optional<Meeting> Find_Meeting(const Window& window, Point corner) const {
    const std::size_t before = window.Before.size(), after = window.After.size();
    for (std::size_t passed = 0; passed + 1 < before + after; ++passed) {
      for (std::size_t b = 0; b <= passed && b < before; ++b) {
        const std::size_t a = passed - b;
        if (a >= after) continue;
        const auto at =
            Crossing(window.Before[b]->Shape, window.After[a].Shape, corner, Crossing_Reach);
        if (at && Clears_Passed(window, {b, a, *at})) return Meeting{b, a, *at};
      }
    }
    return std::nullopt;
  }

  // Whether the tool at a crossing does what the pieces that are passed over did.
  bool Clears_Passed(const Window& window, const Meeting& meeting) const {
    const Piece stop = Line_Piece(meeting.At, meeting.At);
    const auto clears = [&](const Path_Piece& piece) {
      return piece.Connects || May_Leave_Out(piece.Element, piece.Element + 1, stop);
    };
    for (std::size_t b = 0; b < meeting.Before; ++b) {
      if (!clears(*window.Before[b])) return false;
    }
    for (std::size_t a = 0; a < meeting.After; ++a) {
      if (!clears(window.After[a])) return false;
    }
    return true;
  }

  // The cuts at the two ends of the stretch have no neighbour on one side each. Where such a cut
  // returns to its start at an inside corner, that side ends at the crossing too.
  void Join_Seams() {
    const auto travels = [](const Element& element) { return !element.Cuts; };
    const auto begin = Elements.begin(), end = Elements.end();
    const auto first_end = std::find_if(begin, end, travels);
    const auto last_begin = std::find_if(Elements.rbegin(), Elements.rend(), travels).base();
    if (first_end != begin) Join_Seam({begin, first_end}, true, first_end == end);
    if (last_begin != begin && last_begin != end) Join_Seam({last_begin, end}, false, true);
  }

  using Cut = std::span<const Element>;

  void Join_Seam(Cut cut, bool trim_start, bool trim_end) {
    const Element &first = cut.front(), &last = cut.back();
    if (Distance(first.Programmed.Start, last.Programmed.End) > Same_Point) return;
    if (first.Too_Tight || last.Too_Tight) return;
    const Corner corner = Corner_Between(last, first, To_Left);
    if (corner.Kind != Joint::Inside) return;

    const auto [from, to] = Pieces_Of(cut);
    if (to - from < 2) return;
    const Window window{Pieces_Before(from + 1, to), Pieces_From(from, to - 1)};
    const auto meeting = Find_Meeting(window, corner.At);
    if (!meeting || meeting->Before + meeting->After + 2 > to - from) return;
    if (trim_end) {
      Path.resize(Path.size() - meeting->Before);
      Trim_End(Path.back().Shape, meeting->At);
    }
    if (trim_start) {
      Path.erase(Path.begin(), Path.begin() + static_cast<std::ptrdiff_t>(meeting->After));
      Trim_Start(Path.front().Shape, meeting->At);
    }
  }

  // Places in the path of a cut's pieces, without an arc that leads out of it.
  std::pair<std::size_t, std::size_t> Pieces_Of(Cut cut) const {
    const auto first = static_cast<std::size_t>(cut.data() - Elements.data());
    const std::size_t last = first + cut.size() - 1;
    const auto starts = std::partition_point(
        Path.begin(), Path.end(), [&](const Path_Piece& piece) { return piece.Element < first; });
    auto ends = std::partition_point(
        starts, Path.end(), [&](const Path_Piece& piece) { return piece.Element <= last; });
    if (ends != starts && (ends - 1)->Connects && (ends - 1)->Element == last) --ends;
    return {static_cast<std::size_t>(starts - Path.begin()),
            static_cast<std::size_t>(ends - Path.begin())};
  }

  // The pieces of the path from `from` on, up to the first that may not be passed over.
  std::vector<Path_Piece> Pieces_From(std::size_t from, std::size_t to) const {
    std::vector<Path_Piece> pieces;
    for (std::size_t at = from; at < to && pieces.size() < Largest_Window; ++at) {
      if (Elements[Path[at].Element].Too_Tight) break;
      pieces.push_back(Path[at]);
      if (!Passable(Path[at])) break;
    }
    return pieces;
  }

  std::vector<Element>& Elements;
  double To_Left;
  const Join_Reports& Reports;
  std::vector<Path_Piece> Path;
};

}  // namespace

bool Moves_Far(const Piece& programmed) {
  const Point by = programmed.End - programmed.Start;
  if (std::abs(by.X) >= Short_Move || std::abs(by.Y) >= Short_Move) return true;
  return programmed.Is_Arc && programmed.Sweep > Pi;
}

std::vector<Path_Piece> Radius_Join(std::vector<Element>& elements, double to_left,
                                    const Join_Reports& reports) {
  return Joiner(elements, to_left, reports).Run();
}

}  // namespace norvik::compensation
