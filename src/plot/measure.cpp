#include "plot/measure.h"

#include "compiler/tables/program_wire.h"
#include "core/format.h"
#include "core/geometry.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "plot/plot_host.h"

namespace norvik {

namespace {

// What the operator reads: six decimals at most, as the read-out of the mouse.
std::string Length_Text(double x1, double y1, double x2, double y2) {
  const double length = Line_Length(x1, y1, std::nullopt, x2, y2, std::nullopt).value_or(0);
  return "Measurement Length= " + RegionalFix(Shortest_Text(Round_Half_Even(length * 1e6) / 1e6));
}

std::string Speed_Text(float speed) {
  return RegionalFix(Shortest_Text(speed));
}

// An element without all four coordinates is not on the plane and crosses nothing.
std::optional<std::size_t> First_Crossed(double x1, double y1, double x2, double y2) {
  const Record_List<Wire>& wires = Program_Wire.Rows();
  for (std::size_t i = 0; i < wires.size(); ++i) {
    const Wire& wire = wires[i];
    const Nullable from_x = wire.Start[1], from_y = wire.Start[2];
    const Nullable to_x = wire.End[1], to_y = wire.End[2];
    if (!from_x || !from_y || !to_x || !to_y) continue;
    double x = 0, y = 0;
    if (Segments_Cross(x1, y1, x2, y2, *from_x, *from_y, *to_x, *to_y, x, y)) return i;
  }
  return std::nullopt;
}

}  // namespace

bool Segments_Cross(double ax1, double ay1, double ax2, double ay2, double bx1, double by1,
                    double bx2, double by2, double& x, double& y) {
  const double adx = ax2 - ax1, ady = ay2 - ay1, bdx = bx2 - bx1, bdy = by2 - by1;
  const double den = adx * bdy - ady * bdx;
  if (den == 0) return false;
  const double a = ((ay1 - by1) * bdx - (ax1 - bx1) * bdy) / den;
  const double b = ((ay1 - by1) * adx - (ax1 - bx1) * ady) / den;
  x = ax1 + adx * a;
  y = ay1 + ady * a;
  return a >= 0 && a <= 1 && b >= 0 && b < 1;
}

Measurement Plot_Measure(double x1, double y1, double x2, double y2, bool highlight) {
  Measurement result{Length_Text(x1, y1, x2, y2), First_Crossed(x1, y1, x2, y2)};
  if (!result.Wire) return result;
  const Wire& wire = Program_Wire.Rows()[*result.Wire];
  const std::string block(wire.Block_Text);
  result.Text = block + "      Start IPM=" + Speed_Text(wire.IPM_S) +
                "   Run IPM=" + Speed_Text(wire.IPM_R) + "   End IPM=" + Speed_Text(wire.IPM_E) +
                "  " + result.Text;
  if (highlight) Plot_Host.Select_Program_Text(block);
  return result;
}

}  // namespace norvik
