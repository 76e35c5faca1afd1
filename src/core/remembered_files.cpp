#include "core/remembered_files.h"

#include "core/paths.h"
#include "core/setup.h"

#include <string_view>

namespace norvik {

Remembered_State Remembered;

namespace {

struct Kind_Keys {
  std::string_view Directory, Name;  // an empty name: the kind remembers its folder only
  bool Reads_Directory, Reads_Name;  // at start
};

// In the order of File_Kind.
constexpr std::array<Kind_Keys, File_Kinds> Keys{{
    {"GCode_File_Source_Directory", "GCode_Source_File_Name", true, true},
    {"DXF_File_Source_Directory", "DXF_Source_File_Name", true, true},
    {"HPGL_File_Source_Directory", "HPGL_Source_File_Name", true, true},
    {"Excellon_File_Source_Directory", "Excellon_Source_File_Name", true, true},
    {"Gerber_File_Source_Directory", "Gerber_Source_File_Name", true, true},
    {"BMap_File_Source_Directory", "BMap_Source_File_Name", true, false},
    {"Motion_File_Source_Directory", "Motion_Source_File_Name", false, false},
    {"DXF_File_Destination_Directory", "DXF_Destination_File_Name", true, true},
    {"HPGL_File_Destination_Directory", "HPGL_Destination_File_Name", true, true},
    {"INI_File_Source_Directory", "INI_Source_File_Name", true, true},
    {"Sound_File_Source_Directory", "", false, false},
}};

constexpr std::string_view Section = "General";

}  // namespace

Remembered_File& Last_File(File_Kind kind) {
  return Remembered.Files.at(static_cast<std::size_t>(kind));
}

void RememberFile(File_Kind kind, const std::string& path) {
  const Kind_Keys& keys = Keys.at(static_cast<std::size_t>(kind));
  Remembered_File& file = Last_File(kind);
  file = {PathDirectory(path), PathFileName(path)};
  Write_Pointer_Together([&] {
    WritePointer(Section, keys.Directory, file.Directory);
    if (!keys.Name.empty()) WritePointer(Section, keys.Name, file.Name);
  });
}

void Read_Remembered_Files() {
  for (std::size_t kind = 0; kind < File_Kinds; ++kind) {
    Remembered_File& file = Remembered.Files[kind];
    if (Keys[kind].Reads_Directory) file.Directory = ReadPointer(Section, Keys[kind].Directory);
    if (Keys[kind].Reads_Name) file.Name = ReadPointer(Section, Keys[kind].Name);
  }
}

}  // namespace norvik
