#include "app/bitmap_form.h"

#include "app/import_menu.h"
#include "core/paths.h"
#include "core/remembered_files.h"

#include <algorithm>
#include <filesystem>

namespace norvik {

namespace fs = std::filesystem;

Bitmap_Import_Form Bitmap_Import;
Bitmap_Host_Operations Bitmap_Host;

namespace {

constexpr const char* Caption_Start = "Bitmap Import: ";
constexpr const char* Parent = "..";

bool Is_Picture_Name(std::string_view name) {
  return Kind_Of_File(name) == Opened_Kind::Picture;
}

void Sort_Names(std::vector<std::string>& names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const std::string upper_a = Upper(a), upper_b = Upper(b);
    return upper_a != upper_b ? upper_a < upper_b : a < b;
  });
}

// Names of a folder; a folder without the right to read shows as empty, and the hint says why.
void List_Folder() {
  Bitmap_Import.Dir1.clear();
  Bitmap_Import.File1.clear();
  std::error_code failure;
  for (fs::directory_iterator entry(Bitmap_Import.Folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    const std::string name = entry->path().filename().string();
    std::error_code ignored;
    if (name.front() == '.') continue;
    if (entry->is_directory(ignored)) {
      Bitmap_Import.Dir1.push_back(name);
    } else if (Is_Picture_Name(name) && entry->is_regular_file(ignored)) {
      Bitmap_Import.File1.push_back(name);
    }
  }
  Sort_Names(Bitmap_Import.Dir1);
  Sort_Names(Bitmap_Import.File1);
  const fs::path folder = Bitmap_Import.Folder;
  if (folder != folder.root_path()) Bitmap_Import.Dir1.insert(Bitmap_Import.Dir1.begin(), Parent);
  if (failure) {
    Bitmap_Import.Label_Hint = "This folder cannot be read: " + failure.message();
  } else if (Bitmap_Import.File1.empty()) {
    Bitmap_Import.Label_Hint = "No .jpg, .bmp or .gif pictures in this folder";
  }
}

void Show_Folder(const fs::path& folder) {
  Bitmap_Import = {};
  Bitmap_Import.Caption = Caption_Start;
  Bitmap_Import.Folder = folder.string();
  List_Folder();
  Bitmap_Host.Form_Changed();
}

std::string Chosen_Path() {
  return (fs::path(Bitmap_Import.Folder) / Bitmap_Import.Text_FileName).string();
}

// Why the chosen file cannot be opened; empty when it can. Reads the picture.
std::string Load_Picture(const std::string& path) {
  Bitmap_Import.Picture_Preview.reset();
  if (Bitmap_Import.Text_FileName.empty()) return "Choose a picture from the list";
  if (!Is_Picture_Name(path)) return "Only .jpg, .bmp and .gif pictures can be imported";
  if (!FileExists(path)) return "File not found : " + Bitmap_Import.Text_FileName;
  Bitmap_Import.Picture_Preview = Platform.Load_Picture(path);
  if (!Bitmap_Import.Picture_Preview) {
    return "This picture cannot be read: it is damaged, cut short or of another kind than its "
           "name says";
  }
  return "";
}

void ShowPicture() {
  Bitmap_Import.Label_Hint = Load_Picture(Chosen_Path());
  Bitmap_Import.Caption = Caption_Start + PathFileName(Bitmap_Import.Text_FileName);
}

}  // namespace

void Bitmap_Import_Form_Load(const std::string& otherwise) {
  const std::string& last = Last_File(File_Kind::Bitmap_In).Directory;
  std::error_code failure;
  const bool still_there = !last.empty() && fs::is_directory(last, failure);
  const fs::path folder = fs::absolute(still_there ? last : otherwise, failure).lexically_normal();
  // Without the separator at its end, so that the folder above is its parent.
  Show_Folder(folder.has_filename() ? folder : folder.parent_path());
}

void Bitmap_Import_Form_Unload() {
  const std::string folder = Join_Path(Bitmap_Import.Folder, "");
  if (Last_File(File_Kind::Bitmap_In).Directory != folder) {
    RememberFile(File_Kind::Bitmap_In, folder);
  }
  Bitmap_Import.Picture_Preview.reset();
}

void Bitmap_Import_Dir1_Change(std::size_t place) {
  const std::string name = Bitmap_Import.Dir1.at(place);
  const fs::path folder = Bitmap_Import.Folder;
  Show_Folder(name == Parent ? folder.parent_path() : folder / name);
}

void Bitmap_Import_File1_Click(std::size_t place) {
  Bitmap_Import.Text_FileName = Bitmap_Import.File1.at(place);
  ShowPicture();
  Bitmap_Host.Form_Changed();
}

void Bitmap_Import_Text_FileName_Change(const std::string& text) {
  if (text == Bitmap_Import.Text_FileName) return;
  Bitmap_Import.Text_FileName = text;
  ShowPicture();
  Bitmap_Host.Form_Changed();
}

void Bitmap_Import_Command_Open_Click() {
  ShowPicture();
  if (!Bitmap_Import.Label_Hint.empty()) {
    Platform.Beep();
    Bitmap_Host.Form_Changed();
    return;
  }
  const std::string path = Chosen_Path();
  Bitmap_Host.Close();
  Import_Chosen_File(Import_Kind::Bitmap, path);
}

void Bitmap_Import_File1_DblClick(std::size_t place) {
  Bitmap_Import_File1_Click(place);
  Bitmap_Import_Command_Open_Click();
}

void Bitmap_Import_Command_Cancel_Click() {
  Bitmap_Host.Close();
}

}  // namespace norvik
