// folders.h: where the program keeps its files.
//
//   what                               desktop                   companion with --home DIR
//   ------------------------------------------------------------------------------------------
//   working folder: machine file,      $XDG_DATA_HOME/norvik     DIR
//     tools, scratch files, error log    (~/.local/share/norvik)
//   pointer file Norvik.Ini            $XDG_CONFIG_HOME/norvik   DIR
//                                        (~/.config/norvik)
//   compile tables and traces          `Table_Directory` of section `Platform` of the pointer file;
//                                        without it the working folder
//
// The desktop enters its working folder; the companion stays where it was called, so that the names
// on its command line mean what they say.
#pragma once

#include <string>

namespace norvik {

struct Folder_Set {
  std::string Working, Pointer;
};

// The folders of this user; of the environment only absolute paths count.
Folder_Set Usual_Folders();

// Makes both folders where they are missing and fills every path of `Application` that hangs under
// them, the machine file as the pointer file names it included. Raises a fault, with words for the
// operator, when one of them cannot be made or written.
void Use_Folders(const Folder_Set& folders);
// The same, and makes the working folder the current one.
void Enter_Desktop_Folders();
// The folders of the companion: everything under `home`, or where the desktop has it when `home` is
// empty.
void Set_Companion_Folders(const std::string& home);

// `MachineFile` as the pointer file names it, or the default one.
void Read_Machine_Name();

// The decimal sign of the region that the environment names.
char Regional_Decimal_Sign();

}  // namespace norvik
