// version.h: what the program calls itself.
#pragma once

#include <string_view>

namespace norvik {

inline constexpr std::string_view Program_Title = "Norvik 4";
// Major, minor and revision numbers joined by points.
std::string_view Program_Version();

}  // namespace norvik
