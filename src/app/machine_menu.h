// machine_menu.h: choosing, making and resetting the machine setup.
#pragma once

#include <string>

namespace norvik {

// Asks for a name and writes the present parameters there; that file is the machine file from then
// on. When it cannot be written the old one stays.
void Menu_Machine_Create_New_Machine();
// Asks for a machine file and takes it over, windows included. Refused unless the machine stands.
// The machine before is left as at the end of the program, by its own pins; the new one begins as
// at the start, so that no direction, mark or switch of the old one counts for it. The positions of
// the axes stay what they are.
void Menu_Machine_Load_Machine_Setup();
// The same for a file that is known. Only while the machine stands.
void Take_Machine_File(const std::string& path);
// Every parameter to its factory value and into the machine file, after a question. Machine and
// pins as with another setup.
void Command_Parameter_Reset_Click();

}  // namespace norvik
