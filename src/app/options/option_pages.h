// option_pages.h: the pages of the window `Options` and how the settings stand on them.
//
// A page shows one or more groups of the settings, each under its title. Within a group the rows
// keep the order of the table. Families that belong together become one table:
//
//   Lines     one setting in a line
//   Columns   few entries (axes): a line for each family, a column for each entry
//   Entries   many entries (layers, pens, pins): a line for each entry, a column for each family
#pragma once

#include "core/setup_table.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Option_Page {
  std::string_view Name;
  std::vector<std::string_view> Groups;
  // The list windows that edit the same things, by their names; "" where there is none.
  std::string_view List_Window, List_Title;
};
std::span<const Option_Page> Option_Pages();
// The page on which a group stands; the first one for a group of no page.
const Option_Page& Page_Of_Group(std::string_view group);

enum class Block_Shape { Line, Columns, Entries };
struct Option_Block {
  Block_Shape Shape = Block_Shape::Line;
  std::vector<const Setting_Row*> Rows;  // one for a line
  Index_Span Entries;                    // of a table
};
// The blocks of a group, from the top.
std::vector<Option_Block> Blocks_Of_Group(std::string_view group);

// Every setting that the window offers, of the machine and of this computer.
std::vector<const Setting_Row*> Option_Rows();
// The row of the machine file; null for one of this computer.
const Setup_Row* Machine_Row(const Setting_Row& row);
// The indices that the window offers of a row: those that are loaded or saved.
Index_Span Offered_Entries(const Setting_Row& row);

}  // namespace norvik
