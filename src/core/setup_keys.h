// setup_keys.h: the settings one by one: for the companion's `setup` command, option windows and
// the reference page.
//
// Nothing here touches a file; `SaveMachineSetup` stores what was changed.
#pragma once

#include "core/setup_table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Setup_Key {
  const Setup_Row* Row = nullptr;
  int Index = 0;
};

// Every key that is loaded or saved, in the order of the load.
std::vector<Setup_Key> Setup_Keys();
// By section and key, in any case; absent when there is no such key.
std::optional<Setup_Key> Find_Setup_Key(std::string_view section, std::string_view key);
// By "Section.Key" or by the key alone where it stands in one section only.
std::optional<Setup_Key> Find_Setup_Key(std::string_view name);

// "Axis.Axis_SPI_1"
std::string Setup_Full_Name(const Setup_Key& key);

// Takes a text as the value, with either decimal sign. Raises a type or overflow fault, worded for
// the operator, when the text is no value of the type, is none of the row's choices or lies outside
// its bounds; the old value is then kept.
void Change_Setup_Key(const Setup_Key& key, std::string_view text);
// Why a text that an operator types cannot be the value, a sentence for beside its field; empty: it
// can. Stricter than `Change_Setup_Key`: an empty number, a sign before 0 and line ends are
// refused.
std::string Why_Not_Setup_Text(const Setup_Key& key, std::string_view text);
// What the key would hold after a load of this text; an empty one gives the factory value. The
// setup stays as it is.
std::string Setup_Text_After(const Setup_Key& key, std::string_view text);
// Back to the factory value.
void Reset_Setup_Key(const Setup_Key& key);

// The reference page of all keys of the machine file as Markdown, page by page.
std::string Setup_Reference_Page();

}  // namespace norvik
