// main_form.h: the main window as a record, and what the spine asks of the windows and of drives
// that are not built in.
//
// Every operation does nothing by default, so that the spine runs without windows.
#pragma once

#include "core/window_memory.h"

#include <functional>
#include <string>
#include <string_view>

namespace norvik {

struct Main_Form_Record {
  std::string Caption = "Norvik 4";
  std::string Port_Text;     // which port the drive uses, in words
  std::string Current_File;  // the file that was opened or saved last, with its folder
  std::string Program_File;  // the program's own: opened from it or saved to it; empty: it has none
};
extern Main_Form_Record Main_Form;

struct Main_Host_Operations {
  // --- Windows -----------------------------------------------------------------------------------
  std::function<void()> Caption_Changed = [] {};
  std::function<void(const Window_Place&)> Place_Main = [](const Window_Place&) {};
  // Opens a tool window where it stood; brings an open one to the front.
  std::function<void(Form_Id)> Show_Form = [](Form_Id) {};
  // Closes a tool window; it writes its place before.
  std::function<void(Form_Id)> Unload_Form = [](Form_Id) {};
  std::function<void(Form_Id)> Focus_Form = [](Form_Id) {};
  std::function<Form_View(Form_Id)> View_Of = [](Form_Id) { return Form_View(); };
  // Closes every other window: options, lists, dialogs.
  std::function<void()> Unload_Other_Windows = [] {};
  // Closes the windows that change the setup: they show the one that was loaded when they opened.
  std::function<void()> Unload_Setup_Windows = [] {};

  // Opens a list or a set-up window by its name, where that may be now.
  std::function<void(const std::string& name)> Show_Window = [](const std::string&) {};
  // Opens the options at a setting, by its key, or at a page, by its name.
  std::function<void(const std::string& key_or_page)> Show_Setting = [](const std::string&) {};

  // --- Devices of other rooms --------------------------------------------------------------------
  // Real or simulated port, by the pointer file and the machine file, before the first access.
  // Raises a fault with words for the operator when another program drives the machine.
  std::function<void()> Open_Port = [] {};
};
extern Main_Host_Operations Main_Host;

// `before`, then the file's name.
void Set_Caption(const std::string& path, std::string_view before = "Norvik 4  ");

}  // namespace norvik
