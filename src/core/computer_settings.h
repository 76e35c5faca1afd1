// computer_settings.h: the settings that concern this computer and not the machine.
//
// They stand in section `Platform` of the pointer file, so that a machine file can move to another
// computer. Who uses one reads it by `ReadPointer` and makes something of every text; these rows
// say what an operator reads about it.
#pragma once

#include "core/setting_row.h"

#include <span>
#include <string>
#include <string_view>

namespace norvik {

inline constexpr std::string_view Computer_Section = "Platform";
inline constexpr std::string_view Computer_Page = "This computer";

struct Computer_Row : Setting_Row {
  std::string_view Default;  // what a missing or empty key stands for
};
std::span<const Computer_Row> Computer_Rows();

// The stored text; the default where there is none.
std::string Computer_Text(const Computer_Row& row, int index);
// Stores a text, an empty one as none. False when the pointer file cannot be written; it has been
// told then.
bool Write_Computer_Text(const Computer_Row& row, int index, std::string_view text);

// The part of the reference page about them, as Markdown.
std::string Computer_Reference();

}  // namespace norvik
