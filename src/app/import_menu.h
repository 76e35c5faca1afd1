// import_menu.h: the menu `Import`, and the importers as openers of their kinds of file.
//
// Every import of the program with an operator goes through `Import_File`: from the menu, the
// recent files, a dropped file or the command line. While one runs its loops yield, so the menus
// stay alive; a second one is refused, since all importers share the working program.
#pragma once

#include "app/openers.h"
#include "import/pipeline/pipeline.h"

#include <array>
#include <optional>
#include <string>

namespace norvik {

inline constexpr std::array Import_Kinds{Import_Kind::DXF, Import_Kind::HPGL, Import_Kind::Excellon,
                                         Import_Kind::Gerber, Import_Kind::Bitmap};

// Absent for the kinds that no importer reads.
std::optional<Import_Kind> Import_Kind_Of(Opened_Kind kind);

// Runs the importer of a kind under the busy pointer, whatever the file's extension. False, after a
// beep, when the file does not exist or another import runs.
bool Import_File(Import_Kind kind, const std::string& path);

// Stores folder and name, puts the file to the recent ones and into the caption, then imports it.
// What the menu does once it knows the file.
void Import_Chosen_File(Import_Kind kind, const std::string& path);

// Menu entries: ask for the file and import it. Refused unless the machine stands.
void Menu_Import_DXF();
void Menu_Import_HPGL();
void Menu_Import_Excellon();
void Menu_Import_Gerber();
// Opens the window `Bitmap_Import`.
void Menu_Import_Bitmap();

// Once at the start: the openers, and the finished program goes to the program's window.
void Connect_Importers();

}  // namespace norvik
