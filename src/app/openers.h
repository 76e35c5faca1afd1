// openers.h: opening any file by its extension.
//
// Each room that can open a kind of file registers how at start. A kind that nobody registered is
// not offered: the operator is told instead of seeing a drawing in the program's text.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// In the order in which an extension is looked up.
enum class Opened_Kind { Gerber, DXF, Excellon, HPGL, Picture, Motion, GCode };

using Opener = std::function<void(const std::string& path)>;

// Kind of a file by its extension, in any case; what is no other kind is a program.
Opened_Kind Kind_Of_File(std::string_view path);
// "DXF", ...; for menus and messages.
std::string_view Kind_Name(Opened_Kind kind);

void Register_Opener(Opened_Kind kind, Opener opener);
// Absent when the kind is not offered.
std::optional<Opener> Opener_Of(Opened_Kind kind);

// Opens a file of any offered kind and puts it to the front of the recent files; panel 3 says how
// long it took. The body of the ten entries of the file menu. Refused unless the machine stands.
void LoadRecentFile(const std::string& path);
// `Menu_File_File1` to `Menu_File_File10`, counted from 1.
void Menu_File_File_Click(int slot);

}  // namespace norvik
