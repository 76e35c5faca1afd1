// numbers.h: the numbers of a plotter command.
//
// A number is a run of digits, "-" and "."; every other character ends it, "+" included.
// Coordinates count 1016 to the unit, but a number that runs to the very end of the command text
// counts 1000: with a ";" behind every command all of them count 1016. An angle ended by a
// character is taken as it stands.
#pragma once

#include "core/nullable.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace norvik {

class HPGL_Numbers {
 public:
  // Takes the command apart once; the text must outlive the object.
  explicit HPGL_Numbers(std::string_view command);

  std::size_t Count() const { return Runs.size(); }
  // The n-th number from 1 on; absent when there are fewer. Raises a type fault when the run is no
  // number ("1-2").
  Nullable Coordinate(std::size_t n) const;
  Nullable Angle(std::size_t n) const;

 private:
  struct Run {
    std::string_view Text;
    bool At_End;  // runs to the end of the command
  };
  std::vector<Run> Runs;
};

// True when the letters stand together anywhere in the text, in any case.
bool Contains_Word(std::string_view word, std::string_view text);

}  // namespace norvik
