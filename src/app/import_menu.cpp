#include "app/import_menu.h"

#include "app/bitmap_form.h"
#include "app/gcode_file.h"
#include "app/main_form.h"
#include "control/motion/motion.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "import/dxf/import.h"
#include "import/excellon/import.h"
#include "import/gerber/import.h"
#include "import/hpgl/import.h"
#include "import/picture/import.h"
#include "import/pipeline/file_unit.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

namespace norvik {

namespace {

// What the rooms below cannot know about a kind.
struct Importer_Row {
  Opened_Kind Opened;
  File_Kind Remembered;
  bool (*Import)(const std::string& path);
  const char* Title;  // of the file dialog
  const char* Default_Extension;
  const char* Options_Page;  // of the window `Options`
};

// In the order of Import_Kind.
constexpr std::array<Importer_Row, Import_Kinds.size()> Importers{{
    {Opened_Kind::DXF, File_Kind::DXF_In, Import_DXF_File, "Import DXF", "dxf", "Import: DXF"},
    {Opened_Kind::HPGL, File_Kind::HPGL_In, Import_HPGL_File, "Import HPGL", "plt", "Import: HPGL"},
    {Opened_Kind::Excellon, File_Kind::Excellon_In, Import_Excellon_File, "Import Excellon", "nc",
     "Import: Excellon"},
    {Opened_Kind::Gerber, File_Kind::Gerber_In, Import_Gerber_File, "Import Gerber", "gbr",
     "Import: Gerber"},
    {Opened_Kind::Picture, File_Kind::Bitmap_In, Import_Bitmap_File, "Import Bitmap", "bmp",
     "Import: Pictures"},
}};

constexpr int Second_Entry = 2;

const Importer_Row& Row_Of(Import_Kind kind) {
  return Importers.at(static_cast<std::size_t>(kind));
}

// An import in progress: keeps others out and shows the busy pointer.
struct Import_Under_Way {
  Import_Under_Way() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy); }
  ~Import_Under_Way() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal); }
  Import_Under_Way(const Import_Under_Way&) = delete;
  Import_Under_Way& operator=(const Import_Under_Way&) = delete;

 private:
  Operation_Scope Entry{Operation::Import};
};

bool Nothing_Is_Imported() {
  if (Obstacle_To(Operation::Import) != Obstacle::Import) return true;
  Platform.Beep();
  Tell("Can't import another file now: wait for the import, or press ESC to end it", 5);
  return false;
}

bool May_Import() {
  return Stopped_For("Can't open file") && Nothing_Is_Imported();
}

void Import_By_Dialog(Import_Kind kind) {
  if (!May_Import()) return;
  const Importer_Row& row = Row_Of(kind);
  const auto path = Platform.Open_File_Dialog(
      {row.Title, std::string(Import_Row(kind).Dialog_Filter), Last_File(row.Remembered).Directory,
       "", row.Default_Extension, Second_Entry,
       [&row] { Main_Host.Show_Setting(row.Options_Page); }});
  if (path) Import_Chosen_File(kind, *path);
}

void Open_Imported_Program(const std::string& path) {
  if (Application.ShutdownFlag || Open_GCode(path)) return;
  Report_Note(
      "The new program was not opened, the old one is still there. Stop the machine and import the "
      "file again.");
}

}  // namespace

std::optional<Import_Kind> Import_Kind_Of(Opened_Kind kind) {
  for (const Import_Kind candidate : Import_Kinds) {
    if (Row_Of(candidate).Opened == kind) return candidate;
  }
  return std::nullopt;
}

bool Import_File(Import_Kind kind, const std::string& path) {
  if (!Nothing_Is_Imported()) return false;
  const Import_Under_Way under_way;
  return Row_Of(kind).Import(path);
}

namespace {

// A file that names no unit is imported again in the other one when the operator says so.
void Ask_For_Unit(Import_Kind kind, const std::string& path) {
  if (!Import_Report.Unit_Unknown || !MachineSetup.Import_Convert_Units) return;
  if (Import_Report.Cancelled || !Import_Report.Written || Nothing_Arrived()) return;
  const std::string other(Other_Unit().Name);
  const Box_Answer answer = Platform.Message_Box(
      "Unit of the file",
      "The file names no unit. " + Words_About_Both_Sizes() + "\n\nAre its numbers " + other + "?",
      Box_Buttons::Yes_No);
  if (answer != Box_Answer::Yes || !May_Import()) return;
  Import_Placing.Unit = Other_Unit();
  Import_File(kind, path);
  Import_Placing.Unit.reset();
}

}  // namespace

void Import_Chosen_File(Import_Kind kind, const std::string& path) {
  if (!May_Import() || !May_Lose_Program()) return;
  RememberFile(Row_Of(kind).Remembered, path);
  Add_Recent_File(path);
  Main_Form.Current_File = path;
  Set_Caption(path, Import_Row(kind).Caption);
  if (Import_File(kind, path)) Ask_For_Unit(kind, path);
}

void Menu_Import_DXF() {
  Import_By_Dialog(Import_Kind::DXF);
}

void Menu_Import_HPGL() {
  Import_By_Dialog(Import_Kind::HPGL);
}

void Menu_Import_Excellon() {
  Import_By_Dialog(Import_Kind::Excellon);
}

void Menu_Import_Gerber() {
  Import_By_Dialog(Import_Kind::Gerber);
}

void Menu_Import_Bitmap() {
  if (May_Import()) Bitmap_Host.Show();
}

void Connect_Importers() {
  Import_Host.Open_GCode = Open_Imported_Program;
  for (const Import_Kind kind : Import_Kinds) {
    Register_Opener(Row_Of(kind).Opened,
                    [kind](const std::string& path) { Import_File(kind, path); });
  }
}

}  // namespace norvik
