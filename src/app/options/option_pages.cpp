#include "app/options/option_pages.h"

#include "core/computer_settings.h"
#include "core/setup_rows.h"

#include <algorithm>

namespace norvik {

namespace {

// Tables of so many entries have a column for each.
constexpr int Most_Columns = 4;

bool Is_Offered(const Setup_Row& row) {
  // The mark of a good save belongs to the save itself.
  return row.Key != "INI_Save_Test";
}

// Families of one entry stand on lines of their own.
bool Stand_Together(const Setting_Row& one, const Setting_Row& other) {
  const Index_Span a = Offered_Entries(one), b = Offered_Entries(other);
  return one.Is_Family && other.Is_Family && one.Entries == other.Entries && a.First == b.First &&
         a.Last == b.Last && a.First < a.Last;
}

Option_Block Block_Of(const Setting_Row& row) {
  Option_Block block;
  block.Rows = {&row};
  block.Entries = Offered_Entries(row);
  const int count = block.Entries.Last - block.Entries.First + 1;
  if (!row.Is_Family || count < 2) return block;
  block.Shape = count <= Most_Columns ? Block_Shape::Columns : Block_Shape::Entries;
  return block;
}

}  // namespace

std::span<const Option_Page> Option_Pages() {
  static const std::vector<Option_Page> pages = {
      {"General", {page::General, page::Goto}, "", ""},
      {"Plot", {page::Plot}, "", ""},
      {"Arcs and program", {page::Arcs}, "", ""},
      {"Axes", {page::Units, page::Axes, page::Levels}, "", ""},
      {"Speeds and ramps", {page::Speeds}, "", ""},
      {"Home and ReTool", {page::Homing}, "", ""},
      {"Limits and safety", {page::Safety}, "", ""},
      {"Display", {page::Panel}, "", ""},
      {"Import: all kinds", {page::Inserted}, "", ""},
      {"Import: DXF", {page::Dxf}, "", ""},
      {"Import: HPGL", {page::Hpgl}, "", ""},
      {"Import: Gerber", {page::Gerber}, "", ""},
      {"Import: Excellon", {page::Excellon}, "", ""},
      {"Import: Pictures", {page::Pictures}, "", ""},
      {"Conversion", {page::Text}, "", ""},
      {"Drive", {page::Drive, page::Motors}, "System_Timing", "Find the time constant..."},
      {"Outputs and inputs", {page::Pins}, "Port_Setup", "Port and pins..."},
      {"Serial board", {page::Board, page::Encoders}, "", ""},
      {"Jog keys and joystick", {page::Jog}, "Table_Setup", "Read keys by pressing them..."},
      {"Tools and macros", {page::Tools}, "MacroFiles", "List of macros..."},
      {"Sounds", {page::Sounds}, "Event_Sounds", "List of sounds..."},
      {"This computer", {Computer_Page}, "", ""},
      {"Corrections", {page::Corrections}, "", ""},
  };
  return pages;
}

const Option_Page& Page_Of_Group(std::string_view group) {
  const auto pages = Option_Pages();
  const auto found = std::ranges::find_if(pages, [group](const Option_Page& page) {
    return std::ranges::find(page.Groups, group) != page.Groups.end();
  });
  return found == pages.end() ? pages.front() : *found;
}

std::vector<const Setting_Row*> Option_Rows() {
  std::vector<const Setting_Row*> rows;
  for (const Setup_Row& row : Setup_Rows()) {
    if (Is_Offered(row)) rows.push_back(&row);
  }
  for (const Computer_Row& row : Computer_Rows()) rows.push_back(&row);
  return rows;
}

const Setup_Row* Machine_Row(const Setting_Row& row) {
  for (const Setup_Row& candidate : Setup_Rows()) {
    if (&candidate == &row) return &candidate;
  }
  return nullptr;
}

Index_Span Offered_Entries(const Setting_Row& row) {
  const Setup_Row* machine = Machine_Row(row);
  if (machine == nullptr || machine->Save == Save_Place::Nowhere) return row.Loaded;
  return {std::min(row.Loaded.First, machine->Saved.First),
          std::max(row.Loaded.Last, machine->Saved.Last)};
}

std::vector<Option_Block> Blocks_Of_Group(std::string_view group) {
  std::vector<Option_Block> blocks;
  for (const Setting_Row* row : Option_Rows()) {
    if (row->Group != group) continue;
    const bool joins = !blocks.empty() && Stand_Together(*blocks.back().Rows.front(), *row);
    if (joins) {
      blocks.back().Rows.push_back(row);
    } else {
      blocks.push_back(Block_Of(*row));
    }
  }
  return blocks;
}

}  // namespace norvik
