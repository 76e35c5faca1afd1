// bitmap_form.h: the window `Bitmap_Import` as a record of its controls, and its handlers.
//
//   Dir1    folders: the one above, then those inside      Picture_Preview
//   File1   pictures of the folder                         the chosen picture
//   Text_FileName, Label_Hint                              Command_Open, Command_Cancel
//
// The window is opened by `Menu_Import_Bitmap`, starts in the folder of the last time and closes
// before the import begins.
#pragma once

#include "platform/platform.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// The picture files that the list shows.
inline constexpr std::string_view Bitmap_Pattern = "*.jpg;*.bmp;*.gif";

struct Bitmap_Import_Form {
  std::string Caption;
  std::string Folder;              // full path of the folder that is shown
  std::vector<std::string> Dir1;   // ".." unless it is the root, then the folders in it
  std::vector<std::string> File1;  // names that match the pattern
  std::string Text_FileName;       // a name in the folder, or a full path that was typed
  std::optional<Picture> Picture_Preview;
  std::string Label_Hint;  // why a picture is not shown or opened; empty: all is well
};
extern Bitmap_Import_Form Bitmap_Import;

struct Bitmap_Host_Operations {
  std::function<void()> Show = [] {};
  std::function<void()> Close = [] {};
  std::function<void()> Form_Changed = [] {};
};
extern Bitmap_Host_Operations Bitmap_Host;

// The window opens: a fresh record, in the folder of the last time, else in `otherwise`.
void Bitmap_Import_Form_Load(const std::string& otherwise);
// The window closes, by whichever road: the folder is remembered.
void Bitmap_Import_Form_Unload();

// The operator entered the folder at this place of the list.
void Bitmap_Import_Dir1_Change(std::size_t place);
// The operator selected the name at this place: it goes to `Text_FileName` and is shown.
void Bitmap_Import_File1_Click(std::size_t place);
// The operator typed a name.
void Bitmap_Import_Text_FileName_Change(const std::string& text);

// Closes the window and imports the picture of `Text_FileName`. A name that is no picture, a
// missing or a damaged file beeps, and the hint says why; the window stays.
void Bitmap_Import_Command_Open_Click();
void Bitmap_Import_File1_DblClick(std::size_t place);
void Bitmap_Import_Command_Cancel_Click();

}  // namespace norvik
