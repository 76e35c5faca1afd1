// planes.h: the planes in which arcs lie.
//
//   plane   first axis   second axis   third axis   centre words
//   G17     X            Y             Z            I, J
//   G18     X            Z             Y            I, K
//   G19     Z            Y             X            K, J
#pragma once

#include "compiler/state/compiler_state.h"

#include <cstdint>
#include <optional>

namespace norvik {

struct Arc_Plane {
  int First, Second, Third;            // axes, the last one across the plane
  word::Name First_Word, Second_Word;  // centre words
};
// Absent for a plane code other than 17, 18 and 19.
constexpr std::optional<Arc_Plane> Arc_Plane_Of(std::optional<std::int16_t> plane_code) {
  switch (plane_code.value_or(0)) {
    case 17:
      return Arc_Plane{1, 2, 3, word::I, word::J};
    case 18:
      return Arc_Plane{1, 3, 2, word::I, word::K};
    case 19:
      return Arc_Plane{3, 2, 1, word::K, word::J};
    default:
      return std::nullopt;
  }
}

}  // namespace norvik
