// recent_files.h: the files that were opened last.
//
// Twenty names are kept in section `FileList` of the pointer file; the menu shows the first ten,
// each with the file part of its path only.
#pragma once

#include "core/indexed.h"

#include <functional>
#include <string>
#include <vector>

namespace norvik {

struct Recent_State {
  Indexed<std::string, 1, 20> RecentFiles;  // full paths, the newest first; empty: no file
};
extern Recent_State Recent;

struct Recent_Host_Operations {
  std::function<void()> List_Changed = [] {};  // the menu is to be filled again
};
extern Recent_Host_Operations Recent_Host;

// Reads the list and lets the menu be filled.
void Read_Recent_Files();
// Puts a name into slot 1 and takes it out of every other; writes the list.
void Add_Recent_File(const std::string& path);
// Texts of `Menu_File_File1` to `Menu_File_File10`; empty texts are not shown.
std::vector<std::string> Recent_Menu_Texts();

}  // namespace norvik
