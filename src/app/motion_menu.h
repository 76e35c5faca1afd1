// motion_menu.h: motion files in the file menu, and what the lists and the analyzer ask of the
// rooms above them.
#pragma once

namespace norvik {

// `Save motion`: asks for the file. Where the table is not that of the text, it says so first.
void Menu_File_Save_Motion();
// `Open motion`: asks for the file. Refused unless the machine stands.
void Menu_File_Open_Motion();

// Another table has been installed: the marks of the lists follow it.
void Show_Marks_Of_Table();

// Registers the opener of motion files and fills the hooks of the room `tools`.
void Connect_Tools();

}  // namespace norvik
