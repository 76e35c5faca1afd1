#include "comp_contours.h"

#include "compiler/compensation/compensation.h"
#include "compiler/state/compile_host.h"
#include "core/application.h"
#include "core/geometry.h"
#include "core/messages.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <sstream>

namespace norvik::comp_test {

namespace {

constexpr double Pi = std::numbers::pi;

double Apart(Spot a, Spot b) {
  return std::hypot(a.X - b.X, a.Y - b.Y);
}

// A move seen from where it starts, by parameter 0..1.
struct Track {
  Spot From, To, Centre;
  bool Arc = false;
  double Angle = 0, Span = 0, Radius = 0;

  Spot At(double t) const {
    if (!Arc) return {From.X + (To.X - From.X) * t, From.Y + (To.Y - From.Y) * t};
    return {Centre.X + Radius * std::cos(Angle + Span * t),
            Centre.Y + Radius * std::sin(Angle + Span * t)};
  }
  double Long() const { return Arc ? std::abs(Span) * Radius : Apart(From, To); }
  // Direction of motion.
  Spot Heading(double t) const {
    if (!Arc) return {(To.X - From.X) / Long(), (To.Y - From.Y) / Long()};
    const double angle = Angle + Span * t, sign = Span > 0 ? 1 : -1;
    return {-std::sin(angle) * sign, std::cos(angle) * sign};
  }
  double Distance(Spot p) const {
    if (!Arc) {
      const double dx = To.X - From.X, dy = To.Y - From.Y, squared = dx * dx + dy * dy;
      const double t =
          squared > 0 ? std::clamp(((p.X - From.X) * dx + (p.Y - From.Y) * dy) / squared, 0.0, 1.0)
                      : 0;
      return Apart(p, At(t));
    }
    double turned = std::atan2(p.Y - Centre.Y, p.X - Centre.X) - Angle;
    if (Span < 0) turned = -turned;
    turned = std::fmod(turned + 8 * Pi, 2 * Pi);
    if (turned <= std::abs(Span)) return std::abs(Apart(p, Centre) - Radius);
    return std::min(Apart(p, From), Apart(p, To));
  }
};

Track Track_Of(Spot from, const Move& move) {
  Track track{from, move.To, move.Centre, move.Arc};
  if (!move.Arc) return track;
  track.Radius = Apart(from, move.Centre);
  track.Angle = std::atan2(from.Y - move.Centre.Y, from.X - move.Centre.X);
  const double end = std::atan2(move.To.Y - move.Centre.Y, move.To.X - move.Centre.X);
  double span =
      std::fmod((move.Direction == 1 ? end - track.Angle : track.Angle - end) + 4 * Pi, 2 * Pi);
  if (Apart(from, move.To) == 0) span = 2 * Pi;
  track.Span = move.Direction == 1 ? span : -span;
  return track;
}

std::vector<Track> Tracks_Of(const Contour& contour) {
  std::vector<Track> tracks;
  Spot at = contour.Start;
  for (const Move& move : contour.Moves) {
    tracks.push_back(Track_Of(at, move));
    at = move.To;
  }
  return tracks;
}

Spot Start_Spot(const LineArc& record) {
  return {*record.Start[1], *record.Start[2]};
}
Spot End_Spot(const LineArc& record) {
  return {*record.End[1], *record.End[2]};
}

Track Track_Of(const LineArc& record) {
  Move move{End_Spot(record)};
  const Spot from = Start_Spot(record);
  if (record.RecordType == Record_Type::Arc) {
    const bool from_start = MachineSetup.GC_IJ_Incremental;
    move.Arc = true;
    move.Direction = *record.ArcDirection;
    move.Centre = {*record.CenterI + (from_start ? from.X : 0),
                   *record.CenterJ + (from_start ? from.Y : 0)};
  }
  return Track_Of(from, move);
}

// An arc to a point by how far it bulges to the left of the chord, as a part of its length.
Contour& Bulged(Contour& contour, Spot to, double bulge) {
  const Spot from = contour.Moves.empty() ? contour.Start : contour.Moves.back().To;
  const double chord = Apart(from, to), height = bulge * chord;
  const double radius = (chord * chord / 4 + height * height) / (2 * height);  // signed
  const double left_x = -(to.Y - from.Y) / chord, left_y = (to.X - from.X) / chord;
  const double away = height - radius;
  return contour.Arc(to.X, to.Y, (from.X + to.X) / 2 + left_x * away,
                     (from.Y + to.Y) / 2 + left_y * away, height > 0 ? 0 : 1);
}

void Go_On(Contour& contour, Random& random, Spot to, bool with_arcs) {
  if (with_arcs && random() % 2 == 0) {
    const double bulge = Between(random, 0.03, 0.35);
    Bulged(contour, to, random() % 2 ? bulge : -bulge);
  } else {
    contour.Line(to.X, to.Y);
  }
}

}  // namespace

Contour& Contour::Line(double x, double y) {
  Moves.push_back({{x, y}});
  return *this;
}

Contour& Contour::Arc(double x, double y, double centre_x, double centre_y, int direction) {
  Moves.push_back({{x, y}, true, direction, {centre_x, centre_y}});
  return *this;
}

Contour Backwards(const Contour& contour) {
  Contour back;
  back.Start = contour.Moves.back().To;
  for (std::size_t k = contour.Moves.size(); k-- > 0;) {
    Move move = contour.Moves[k];
    move.To = k > 0 ? contour.Moves[k - 1].To : contour.Start;
    move.Direction = 1 - move.Direction;
    back.Moves.push_back(move);
  }
  return back;
}

Contour Scaled(const Contour& contour, double factor) {
  const auto scale = [&](Spot& spot) { spot = {spot.X * factor, spot.Y * factor}; };
  Contour scaled = contour;
  scale(scaled.Start);
  for (Move& move : scaled.Moves) {
    scale(move.To);
    scale(move.Centre);
  }
  return scaled;
}

Contour With_Decimals(const Contour& contour, int decimals) {
  const double places = std::pow(10, decimals);
  const auto cut = [&](Spot& spot) {
    spot = {std::round(spot.X * places) / places, std::round(spot.Y * places) / places};
  };
  Contour rounded = contour;
  cut(rounded.Start);
  for (Move& move : rounded.Moves) {
    cut(move.To);
    cut(move.Centre);
  }
  return rounded;
}

Contour With_Leads(const Contour& contour, int mode, double radius) {
  const Track first = Track_Of(contour.Start, contour.Moves.front());
  const Spot at = first.At(0.5), ahead = first.Heading(0.5);
  const double side = mode == 1 ? radius : -radius;
  const Spot aside{-ahead.Y * side, ahead.X * side};
  const Spot centre{at.X + aside.X, at.Y + aside.Y};
  const Spot in{centre.X - ahead.X * radius, centre.Y - ahead.Y * radius};
  const Spot out{centre.X + ahead.X * radius, centre.Y + ahead.Y * radius};
  const int turn = mode == 1 ? 1 : 0;
  Contour whole{{in.X + aside.X, in.Y + aside.Y}, {}};
  whole.Line(in.X, in.Y).Arc(at.X, at.Y, centre.X, centre.Y, turn);
  whole.Moves.insert(whole.Moves.end(), contour.Moves.begin(), contour.Moves.end());
  Move half = contour.Moves.front();
  half.To = at;
  whole.Moves.push_back(half);
  whole.Arc(out.X, out.Y, centre.X, centre.Y, turn).Line(out.X + aside.X, out.Y + aside.Y);
  return whole;
}

LineArc Line_Record(double x0, double y0, double x1, double y1, int mode) {
  LineArc record;
  record.RecordType = Record_Type::Line;
  record.RecordFlag = 1;
  record.Start[1] = x0;
  record.Start[2] = y0;
  record.End[1] = x1;
  record.End[2] = y1;
  record.Start[3] = record.End[3] = -1.0;
  record.ToolNumber = 1.0;
  record.FeedMove = true;
  record.CompMode = static_cast<std::int16_t>(mode);
  record.Feed.Fill(100);
  record.SourceText = "G1";
  return record;
}

Table<LineArc> Program_Of(const Contour& contour, int mode) {
  Table<LineArc> program;
  Spot at = contour.Start;
  std::int32_t line = 0;
  for (const Move& move : contour.Moves) {
    LineArc record = Line_Record(at.X, at.Y, move.To.X, move.To.Y, mode);
    record.LineNumber = ++line;
    if (move.Arc) {
      const bool from_start = MachineSetup.GC_IJ_Incremental;
      record.RecordType = Record_Type::Arc;
      record.ArcDirection = static_cast<std::int16_t>(move.Direction);
      record.CenterI = move.Centre.X - (from_start ? at.X : 0);
      record.CenterJ = move.Centre.Y - (from_start ? at.Y : 0);
    }
    program.Rows.push_back(record);
    at = move.To;
  }
  return program;
}

double Between(Random& random, double low, double high) {
  return low + (high - low) * static_cast<double>(random() >> 11) * 0x1p-53;
}

Contour Random_Polygon(Random& random, bool with_arcs) {
  const int corners = 3 + static_cast<int>(random() % 9);
  std::vector<Spot> spots;
  for (int k = 0; k < corners; ++k) {
    const double angle = 2 * Pi * (k + Between(random, -0.3, 0.3)) / corners;
    const double radius = Between(random, 8, 40);
    spots.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  Contour contour{spots[0], {}};
  for (int k = 1; k <= corners; ++k) {
    Go_On(contour, random, spots[static_cast<std::size_t>(k % corners)], with_arcs);
  }
  return contour;
}

Contour Random_Walk(Random& random, bool with_arcs) {
  Contour contour;
  Spot at;
  double heading = 0;
  for (std::size_t k = 2 + random() % 8; k > 0; --k) {
    heading += Between(random, -2.6, 2.6);
    const double step = Between(random, 3, 25);
    at = {at.X + step * std::cos(heading), at.Y + step * std::sin(heading)};
    Go_On(contour, random, at, with_arcs);
  }
  return contour;
}

Contour Rounded_Rectangle(double width, double height, double fillet) {
  const double w = width, h = height, f = fillet;
  Contour contour{{w / 2, 0}, {}};
  contour.Line(w - f, 0).Arc(w, f, w - f, f, 1).Line(w, h - f).Arc(w - f, h, w - f, h - f, 1);
  contour.Line(f, h).Arc(0, h - f, f, h - f, 1).Line(0, f).Arc(f, 0, f, f, 1).Line(w / 2, 0);
  return contour;
}

Contour Fine_Polyline(Random& random, double size, double step) {
  const double depth = Between(random, 0.02, 0.3);
  const double waves = static_cast<double>(2 + random() % 4);
  const auto spot = [&](double angle) {
    const double radius = size * (1 + depth * std::cos(waves * angle));
    const auto rounded = [](double v) { return std::round(v * 1e4) / 1e4; };
    return Spot{rounded(radius * std::cos(angle)), rounded(radius * std::sin(angle))};
  };
  const int count = static_cast<int>(2 * Pi * size / step);
  Contour contour{spot(0), {}};
  for (int k = 1; k < count; ++k) {
    const Spot to = spot(2 * Pi * k / count);
    contour.Line(to.X, to.Y);
  }
  return contour.Line(contour.Start.X, contour.Start.Y);
}

Contour Fine_Bend(Random& random, double step) {
  const double radius = Between(random, 5, 20);
  Contour contour;
  for (int k = 1; k <= 300; ++k) {
    const double angle = k * step / radius;
    contour.Line(radius * std::sin(angle), radius * (1 - std::cos(angle)));
  }
  return With_Decimals(contour, 4);
}

Outcome Compensate(const Table<LineArc>& program, double radius) {
  Outcome outcome{program, {}, {}};
  Tools.Diameter[1] = 2 * radius;
  const Messages_Host_Operations messages = Messages_Host;
  const Compile_Host_Operations host = Compile_Host;
  const std::string mark = "Error Write:";
  Messages_Host.Panel_Changed = [&](int panel) {
    const std::string& text = Messages.Panel[panel];
    if (panel == 1 && text.starts_with(mark)) outcome.Log.push_back(text.substr(mark.size()));
  };
  Compile_Host.Highlight_Line = [&](std::int32_t line, std::string_view) {
    outcome.Highlighted.push_back(line);
  };
  AddRadiusCompensation(outcome.Moved);
  Messages_Host = messages;
  Compile_Host = host;
  return outcome;
}

double Least_Distance(const Contour& contour, const Table<LineArc>& moved, double radius) {
  constexpr double step = 0.01;
  const std::vector<Track> programmed = Tracks_Of(contour);
  double least = radius;
  for (std::size_t row = 1; row + 1 < moved.Rows.size(); ++row) {
    const Track track = Track_Of(moved.Rows[row]);
    const double length = track.Long();
    for (const Track& wall : programmed) {
      // A point that is further away stays so for at least the difference.
      for (double gone = 0, distance = 0; gone <= length;
           gone += std::max(step, distance - radius)) {
        distance = wall.Distance(track.At(length > 0 ? gone / length : 0));
        least = std::min(least, distance);
      }
      least = std::min(least, wall.Distance(track.At(1)));
    }
  }
  return least;
}

double Largest_Gap(const Table<LineArc>& moved) {
  double largest = 0;
  for (std::size_t row = 1; row < moved.Rows.size(); ++row) {
    const Spot end = End_Spot(moved.Rows[row - 1]), start = Start_Spot(moved.Rows[row]);
    largest = std::max(largest, Apart(end, start));
  }
  return largest;
}

std::string Faulty_Record(const Table<LineArc>& moved, double radius_error) {
  std::ostringstream faults;
  for (std::size_t row = 0; row < moved.Rows.size(); ++row) {
    const LineArc& record = moved.Rows[row];
    if (record.RecordType != Record_Type::Arc) continue;
    const Track track = Track_Of(record);
    const double off = std::abs(Apart(track.To, track.Centre) - track.Radius);
    if (off > radius_error) faults << "row " << row << " ends on another radius by " << off << "; ";
    // As the wire pass takes the angles of an arc's ends.
    const auto angle = [&](Spot at) {
      return Motion_Angle(1, at.X, at.Y, track.Centre.X, track.Centre.Y);
    };
    const double turn = std::abs(angle(track.From) - angle(track.To));
    if (Arc_Length_Radians(turn, track.Radius) <= 0.0001) {
      faults << "row " << row << " would not be drawn; ";
    }
  }
  return faults.str();
}

std::string Missing_Element(const Contour& contour, const Table<LineArc>& moved, int mode,
                            double radius) {
  std::ostringstream faults;
  const std::vector<Track> programmed = Tracks_Of(contour);
  std::vector<int> found(programmed.size(), 0);
  for (std::size_t row = 1; row + 1 < moved.Rows.size(); ++row) {
    const LineArc& record = moved.Rows[row];
    const auto line = static_cast<std::size_t>(record.LineNumber - 1);
    const Track track = Track_Of(record), &own = programmed[line];
    if (own.Arc && !track.Arc && track.Long() < 2e-4) ++found[line];  // all that is left of an arc
    if (track.Arc != own.Arc) continue;
    if (own.Arc && Apart(track.Centre, own.Centre) > 1e-6) continue;  // a connecting arc
    if (track.Long() < 0.1) {  // may lie where a joint goes beyond the element
      ++found[line];
      continue;
    }
    const Spot middle = track.At(0.5), heading = track.Heading(0.5);
    const double off = std::abs(own.Distance(middle) - radius);
    if (off > 1e-4) continue;
    // The nearest point of the element lies straight to the side.
    const double side = mode == 1 ? -1 : 1;
    const Spot wall{middle.X - heading.Y * side * radius, middle.Y + heading.X * side * radius};
    if (own.Distance(wall) < 1e-4) ++found[line];
  }
  for (std::size_t line = 0; line < found.size(); ++line) {
    if (found[line] != 1) faults << "line " << line + 1 << " found " << found[line] << " times; ";
  }
  return faults.str();
}

std::string Text_Of(const Table<LineArc>& path) {
  const auto number = [](double value) {
    std::ostringstream text;
    const double rounded = std::round(value * 1e4) / 1e4;
    text << (rounded == 0 ? 0 : rounded);
    return text.str();
  };
  const auto spot = [&](Spot at) { return number(at.X) + "," + number(at.Y); };
  std::string text = spot(Start_Spot(path.Rows.front()));
  for (const LineArc& record : path.Rows) {
    const Track track = Track_Of(record);
    text += track.Arc ? (track.Span > 0 ? "|G3 " : "|G2 ") : "|G1 ";
    text += spot(track.To);
    if (track.Arc) text += " (" + spot(track.Centre) + ")";
  }
  return text;
}

std::string Text_Of(const Contour& contour) {
  std::ostringstream text;
  text.precision(12);
  text << "from " << contour.Start.X << "," << contour.Start.Y;
  for (const Move& move : contour.Moves) {
    text << (move.Arc ? (move.Direction ? "\n G3 " : "\n G2 ") : "\n G1 ") << move.To.X << ","
         << move.To.Y;
    if (move.Arc) text << " around " << move.Centre.X << "," << move.Centre.Y;
  }
  return text.str();
}

}  // namespace norvik::comp_test
