#include "core/setup_tail.h"

#include "core/application.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/setup.h"
#include "core/setup_table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace norvik {

Lost_Tail_State Lost_Tail;

namespace {

// A file with fewer is one that somebody has begun to write.
constexpr std::size_t Fewest_Keys = 10;

// A section of the save and what the file has of it.
struct Saved_Section {
  std::string_view Name;
  std::size_t Present = 0;
  std::vector<std::string> Missing;
  bool Has_Gaps = false;  // a key stands behind a missing one
};

Saved_Section& Section_Named(std::vector<Saved_Section>& sections, std::string_view name) {
  const auto place = std::find_if(sections.begin(), sections.end(),
                                  [&](const Saved_Section& s) { return s.Name == name; });
  if (place != sections.end()) return *place;
  return sections.emplace_back(Saved_Section{name, 0, {}, false});
}

// The sections in the order in which a save makes them. Corrections came later than the files of
// earlier systems, and their absence means that they are off.
std::vector<Saved_Section> Saved_Sections() {
  std::vector<Saved_Section> sections;
  for (const Setup_Row* row : Setup_Rows_In_Save_Order()) {
    if (row->Save == Save_Place::Corrections) continue;
    Setting_Row named = *row;
    if (!row->Save_Key.empty()) named.Key = row->Save_Key;
    Saved_Section& section = Section_Named(sections, row->Section);
    for (int index = row->Saved.First; index <= row->Saved.Last; ++index) {
      const std::string key = Setting_Key(named, index);
      if (Find_Profile(Application.MachineFile, row->Section, key)) {
        ++section.Present;
        section.Has_Gaps = section.Has_Gaps || !section.Missing.empty();
      } else {
        section.Missing.push_back(std::string(row->Section) + "." + key);
      }
    }
  }
  return sections;
}

bool Has_Most(const Saved_Section& section) {
  return section.Present > section.Missing.size();
}

// For sections that stand in the order of the save.
bool Ends_Too_Early(const std::vector<Saved_Section>& sections) {
  auto behind_last = sections.end();
  while (behind_last != sections.begin() && (behind_last - 1)->Present == 0) --behind_last;
  if (behind_last == sections.begin() || behind_last == sections.end()) return false;
  return !(behind_last - 1)->Has_Gaps && std::all_of(sections.begin(), behind_last - 1, Has_Most);
}

// For sections in any order, as in a file that a person began: a save ends every line, so that a
// last line without an end, in the only section that lacks much, was cut.
bool Is_Cut_Within_A_Line(const std::vector<Saved_Section>& sections) {
  const std::string text = Read_Whole_File(Application.MachineFile);
  if (text.empty() || text.back() == '\n') return false;
  const auto start = text.rfind("\n[");
  const std::string_view last =
      start == text.npos ? std::string_view() : std::string_view(text).substr(start + 2);
  return std::all_of(sections.begin(), sections.end(), [&](const Saved_Section& section) {
    return section.Present == 0 || Has_Most(section) ||
           (last.starts_with(section.Name) && last.substr(section.Name.size()).starts_with(']'));
  });
}

}  // namespace

void Look_For_Lost_Tail() {
  Lost_Tail = {};
  if (!FileExists(Application.MachineFile) || !Saved_Whole()) return;
  const Profile_Session file(Application.MachineFile, Profile_Use::Reading);
  const std::vector<Saved_Section> sections = Saved_Sections();
  std::size_t present = 0;
  for (const Saved_Section& section : sections) present += section.Present;
  if (present < Fewest_Keys) return;
  if (!Ends_Too_Early(sections) && !Is_Cut_Within_A_Line(sections)) return;
  for (const Saved_Section& section : sections) {
    Lost_Tail.Keys.insert(Lost_Tail.Keys.end(), section.Missing.begin(), section.Missing.end());
  }
}

std::string Words_About_Lost_Tail() {
  if (Lost_Tail.Keys.empty()) return {};
  return "The machine file " + Application.MachineFile +
         " has lost its end: " + std::to_string(Lost_Tail.Keys.size()) +
         " settings are missing and have their factory values, from " + Lost_Tail.Keys.front() +
         " on. \"norvik-cli setup check\" lists them. Put back a copy of the file that is whole, "
         "or "
         "look at every setting and save the machine setup.";
}

}  // namespace norvik
