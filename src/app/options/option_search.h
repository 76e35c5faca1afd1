// option_search.h: finding a setting by any of its words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Option_Found {
  std::string Key;    // "Axis_Backlash_1"; of a family that fits as a whole, its first entry
  std::string Label;  // "Backlash" of the whole family, "Backlash, X" of one entry
  std::string_view Page;
};

// The settings in whose label, help, key, unit, group and page all the words stand, in any case and
// any order: those with a word in the label first. No word finds nothing.
std::vector<Option_Found> Find_Options(std::string_view words);

}  // namespace norvik
