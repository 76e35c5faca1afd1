#include "app/guide/welcome.h"

#include "app/gcode_file.h"
#include "app/openers.h"
#include "app/startup.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "platform/platform.h"

namespace norvik {

namespace {

constexpr const char* Section = "Platform";
constexpr const char* Key = "Show_Welcome";
constexpr const char* Drawings =
    "Drawings, drill files, pictures|*.dxf;*.plt;*.hpgl;*.hpg;*.drl;*.nc;*.xln;*.gbr;*.ger;*.art;"
    "*.bmp;*.png;*.jpg|All Files (*.*)|*.*";

}  // namespace

bool Shows_Welcome() {
  const std::string stored = Upper(ReadPointer(Section, Key));
  return stored.empty() ? !Main_Window.Pointer_File_Was_There : stored == "TRUE";
}

void Set_Shows_Welcome(bool shows) {
  WritePointer(Section, Key, shows ? "True" : "False");
}

void Welcome_Open_Program() {
  Menu_File_Open();
}

void Welcome_Import_Drawing() {
  const auto path = Platform.Open_File_Dialog(
      {"Import a drawing", Drawings, Last_File(File_Kind::DXF_In).Directory, "", ""});
  if (path) LoadRecentFile(*path);
}

}  // namespace norvik
