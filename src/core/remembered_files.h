// remembered_files.h: the folder and the file that were used last, for each kind of file.
//
// Kept in section `General` of the pointer file. File dialogs start in the folder; the name is what
// the save dialog offers.
#pragma once

#include <array>
#include <string>

namespace norvik {

enum class File_Kind {
  GCode,
  DXF_In,
  HPGL_In,
  Excellon_In,
  Gerber_In,
  Bitmap_In,
  Motion,
  DXF_Out,
  HPGL_Out,
  Setup,
  Sound,
};
inline constexpr std::size_t File_Kinds = 11;

struct Remembered_File {
  std::string Directory;  // with the separator at its end
  std::string Name;
};

struct Remembered_State {
  std::array<Remembered_File, File_Kinds> Files;
};
extern Remembered_State Remembered;

// The last file of a kind; empty texts when there was none.
Remembered_File& Last_File(File_Kind kind);

// Stores folder and name of `path` in memory and writes them to the pointer file.
void RememberFile(File_Kind kind, const std::string& path);

// Reads what a start takes over from the run before.
void Read_Remembered_Files();

}  // namespace norvik
