// file_unit.h: a unit of length as a foreign file names it.
#pragma once

#include <string_view>

namespace norvik {

struct File_Unit {
  std::string_view Name;   // in the plural
  double Millimetres = 0;  // in one unit
};
inline constexpr File_Unit Unit_Inches{"inches", 25.4}, Unit_Millimetres{"millimetres", 1};

File_Unit Unit_Of_Setup();
// Millimetres where the setup is in inches and the other way round.
File_Unit Other_Unit();

}  // namespace norvik
