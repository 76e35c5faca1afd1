// arcs.h: arcs that are not what their words say.
//
// Three centres of one arc are compared:
//
//   meant     as the words say it in their mode and plane (the setup tells how I, J and K count)
//   stored    as the record holds it
//   walked    as the wire pass will take it, by the modes at the program's end
#pragma once

#include "compiler/check/blocks.h"
#include "compiler/check/words.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace norvik {

// An arc whose walk is judged once the program's end is known.
struct Pending_Arc {
  std::size_t Finding_Place = 0;  // the checker's own number of file and line
  std::int16_t Plane = 17;
  double Start[2] = {}, Stored[2] = {}, Meant[2] = {};
  double Other[2] = {};  // the centre by the other reading of I and J; the same for an arc by R
  bool Open = false;     // both readings agree with its end, as with each full circle
  bool Fits = false;     // only the reading in force agrees with its end
  bool Misfits = false;  // only the other one does
};

// The rules that need no more than the block. Arcs to be judged at the end go to `pending`.
struct Meant_Modes;
void Check_Arcs(const Block_Event& event, const Meant_Modes& modes, std::size_t place,
                std::vector<Pending_Arc>& pending, const Report_Finding& report);

// An arc whose end agrees with both readings of I and J is a finding where more of the other arcs
// agree with the other reading only than with the one in force.
void Check_Open_Arcs(const std::vector<Pending_Arc>& arcs,
                     const std::function<void(const Pending_Arc& arc, std::string what)>& report);

// Why the arc will be walked otherwise than meant; absent when it will not.
std::optional<std::string> Walked_Elsewhere(const Pending_Arc& arc);

}  // namespace norvik
