// gcode_file.h: opening, saving and beginning a program.
#pragma once

#include <string>

namespace norvik {

// Menu commands: ask for the file, then do it.
void Menu_File_Open();
void Menu_File_Save();
void Menu_File_New();

// Loads a program into the window and the line table and compiles it when `Plot_Auto_Loading` says
// so. Refused with a beep and a status text unless the machine stands; a missing file only beeps.
// The temporary file of the importers is deleted once it is loaded, whatever its case and folder.
// True when it was loaded.
bool Open_GCode(const std::string& path);

// Writes the lines of the program, the file whole or not at all. Yields. True when it was written;
// otherwise the operator has been told why.
bool Save_GCode(const std::string& path);

}  // namespace norvik
