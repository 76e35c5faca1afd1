// options_form.h: the window `Options` as a record of its controls, and its handlers.
//
//   setup --Display_Options_Info--> Fields --typed--> Text, Error
//                                     |
//   Apply: Save_Options_Info --> setup and files --load--> Display_Options_Info
//
// Nothing that is typed counts before it is applied, and nothing is applied while one field cannot
// be taken or while the machine moves. What a change asks for (a compile, a drive that is opened
// again) is said before, in `Label_Consequences`, and done behind the load. The load's rules may
// make another value of what was typed; the field then says so.
#pragma once

#include "app/options/option_fields.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Options_Form_Record {
  std::vector<Option_Field> Fields;  // in the order of the table, those of this computer last
  std::string Page;                  // the page that is shown
  std::string Shown_Key;             // the setting to go to; empty: the page's beginning
  std::string Label_Consequences;    // what applying would bring with it; empty: nothing
  std::string Label_Result;          // what the last Apply did, or why it did not
  bool Result_Is_Trouble = false;
  bool Applying = false;      // an Apply works with the fields, in yields too
  bool Unload_Waits = false;  // the window was closed meanwhile
};
extern Options_Form_Record Options_Form;

// What the logic asks of the windows. Each does nothing by default.
struct Options_Host_Operations {
  std::function<void()> Form_Changed = [] {};  // the record has changed
  std::function<void()> Close = [] {};
  // Opens the window, or brings it to the front.
  std::function<void()> Show = [] {};
  // Shows the page of `Options_Form` and the setting on it.
  std::function<void()> Go_To_Place = [] {};
};
extern Options_Host_Operations Options_Host;

// The window opens: all fields as the setup is, nothing typed.
void Options_Form_Load();
// The window closes, however: what was typed is forgotten, a priority that was tried ends.
void Options_Form_Unload();

// The field of a key ("Axis_SPI_1", "Axis.Axis_SPI_1", a key of this computer), in any case; null
// when there is none.
Option_Field* Find_Option(std::string_view key);
// Goes to a setting's page, or to a page by its name, and opens the window. False when there is
// neither, or while the machine moves.
bool Show_Option(std::string_view key_or_page);

// The operator has typed or chosen a text. `Combo_AppPriority` is tried at once.
void Option_Change(Option_Field& field, std::string_view text);
// Back to the factory value, not applied yet.
void Option_Reset(Option_Field& field);
// The page of corrections: all off, as the system was, or those on that suit every machine, the
// others as they are. Not applied yet.
void Choose_Corrections(bool recommended);
// Button 0 doubles the picture increment of an axis (0 X, 1 Y), button 1 halves it.
void Command_Increment_Click(int axis, int button);
// Digits in front of the point and behind it as "#", and what a number of the file means then.
std::string Display_Excellon_Format();

// The fields into the setup, the files written. False when that failed; it has been told then.
bool Save_Options_Info();
// The fields as the setup is; what was typed is dropped.
void Display_Options_Info();
// Fields in which nothing was typed follow what other windows have changed meanwhile.
void Refresh_Options_Info();

// True when everything was applied.
bool Options_Command_Apply_Click();
void Options_Command_OK_Click();
void Options_Command_Cancel_Click();

}  // namespace norvik
