// gcode_file.h: opening, saving and beginning a program.
#pragma once

#include <string>

namespace norvik {

// Menu commands: ask for the file, then do it.
void Menu_File_Open();
void Menu_File_Save_As();
void Menu_File_New();
// Into the program's own file; asks for one only where it has none.
void Menu_File_Save();

// True when another program may take the place of this one: it is saved, or the operator has saved
// it now, or does not want to. Asked before every opening, importing and closing.
bool May_Lose_Program();

// Loads a program into the window and the line table, without a question, and compiles it when
// `Plot_Auto_Loading` says so. Refused with a beep and a status text unless the machine stands; a
// missing file only beeps. The temporary file of the importers is deleted once it is loaded,
// whatever its case and folder. True when it was loaded.
bool Open_GCode(const std::string& path);

// Writes the lines of the program, the file whole or not at all. Yields. True when it was written;
// otherwise the operator has been told why.
bool Save_GCode(const std::string& path);

}  // namespace norvik
