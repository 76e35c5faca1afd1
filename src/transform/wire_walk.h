// wire_walk.h: the wires of a table as the exports take them.
//
//   Walk_Wires(table, limit, [&](const Wire& wire, bool skipped) { ... return true; });
//
// A record is skipped when its line is that of the record in front of it in the table, whatever
// that one is, or when it has no length. Only X, Y and Z count; two absent coordinates are equal.
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>

namespace norvik {

inline bool Same_Place(const Indexed<Nullable, 1, 6>& a, const Indexed<Nullable, 1, 6>& b) {
  return a[1] == b[1] && a[2] == b[2] && a[3] == b[3];
}

// Hands over the records from `first` up to and without `last`; those in front of `first` are
// there to compare with. Ends when `visit` answers false.
template <class Visit>
void Walk_Wires(const Table<Wire>& table, std::size_t first, std::size_t last, Visit&& visit) {
  const Record_List<Wire>& wires = table.Rows;
  for (std::size_t i = first; i < last; ++i) {
    const Wire& wire = wires[i];
    const bool repeats = i > 0 && Same_Place(wires[i - 1].Start, wire.Start) &&
                         Same_Place(wires[i - 1].End, wire.End);
    if (!visit(wire, repeats || Same_Place(wire.Start, wire.End))) return;
  }
}

}  // namespace norvik
