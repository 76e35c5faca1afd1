#include "import/pipeline/distance.h"

#include "core/rounding.h"
#include "core/setup.h"

namespace norvik {

namespace {

bool Near(const Nullable& a, const Nullable& b) {
  return a && b && std::abs(To_Single(*a) - To_Single(*b)) < MachineSetup.DXF_Line_Tolerance;
}

bool Meets(const Nullable& x, const Nullable& y, const Nullable& z, const Nullable& px,
           const Nullable& py, const Nullable& pz) {
  return Near(x, px) && Near(y, py) && (Near(z, pz) || (!z && !pz));
}

}  // namespace

bool Is_Closer(Nullable cx, Nullable cy, Nullable ax, Nullable ay, Nullable bx, Nullable by) {
  if (!cx || !cy || !ax || !ay || !bx || !by) return false;
  return Is_Closer(To_Single(*cx), To_Single(*cy), To_Single(*ax), To_Single(*ay), To_Single(*bx),
                   To_Single(*by));
}

bool Ends_Connect(Nullable x, Nullable y, Nullable z, Nullable ax, Nullable ay, Nullable az,
                  Nullable bx, Nullable by, Nullable bz) {
  return Meets(x, y, z, ax, ay, az) || Meets(x, y, z, bx, by, bz);
}

}  // namespace norvik
