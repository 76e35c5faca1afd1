#include "app/folders.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/working_name.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

namespace norvik {

namespace {

namespace fs = std::filesystem;

std::string Environment_Folder(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  // A relative path would depend on where the program was started.
  if (value == nullptr || !fs::path(value).is_absolute()) return otherwise;
  return value;
}

// Nothing of a program that cannot keep its positions and its setup may begin.
void Need_Folder(const std::string& folder) {
  const auto refuse = [&](const char* what, const std::string& reason) {
    throw Fault(Fault_Number::Path_Access,
                "The folder " + folder + ", in which Norvik keeps its files, cannot be " + what +
                    ": " + reason +
                    ". Give this user the right to it, make room on its disk, or name another one "
                    "with HOME, XDG_DATA_HOME or XDG_CONFIG_HOME (norvik-cli: --home).");
  };
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (!fs::is_directory(folder)) refuse("made", failure.message());
  if (::access(folder.c_str(), W_OK | X_OK) != 0) refuse("written", std::strerror(errno));
}

bool Make_Folder(const std::string& folder) {
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (fs::is_directory(folder, failure)) return true;
  ErrorLogWrite("The folder " + folder + " cannot be made: " + failure.message());
  return false;
}

void Set_Working_Files(const std::string& working) {
  Application.AppDirectory = working;
  const auto under = [&](std::string_view name) { return Join_Path(working, name); };
  Application.Temporary_GCode = under("TEMP_NORVIK999.GC");
  Application.DXF_Scratch = under("DXFtmp.txt");
  Application.HPGL_Scratch = under("HPGLtmp.txt");
  Application.Bitmap_Scratch = under("Bitmaptmp.txt");
  Application.Gerber_Scratch = under("Graftmp.txt");
  Application.ErrorFile = under("NorvikErr.txt");
}

// A folder that the operator chose for the tables and that is not there must not lose a compile.
void Set_Table_Folder() {
  const fs::path chosen = ReadPointer("Platform", "Table_Directory");
  Application.Table_Folder = (Application.AppDirectory / chosen).string();
  if (!chosen.empty() && Make_Folder(Application.Table_Folder)) return;
  Application.Table_Folder = Application.AppDirectory;
}

// Megabytes in section `Platform` of the pointer file; what is missing or no size leaves the usual
// one.
void Set_Limit(std::int64_t& limit, std::string_view key) {
  constexpr std::int64_t megabyte = 1'000'000, most = 100'000;
  const std::string text = Trim(ReadPointer("Platform", key));
  std::int64_t value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  if (whole && value > 0 && value <= most) limit = value * megabyte;
}

}  // namespace

Folder_Set Usual_Folders() {
  const std::string home = Environment_Folder("HOME", "/");
  return {Join_Path(Environment_Folder("XDG_DATA_HOME", Join_Path(home, ".local/share")), "norvik"),
          Join_Path(Environment_Folder("XDG_CONFIG_HOME", Join_Path(home, ".config")), "norvik")};
}

void Read_Machine_Name() {
  Application.MachineFile = ReadPointer("Machine", "Name");
  if (Application.MachineFile.empty()) {
    Application.MachineFile = Join_Path(Application.AppDirectory, Default_Machine_Name);
  }
}

void Use_Folders(const Folder_Set& folders) {
  Need_Folder(folders.Working);
  Need_Folder(folders.Pointer);
  Set_Working_Files(folders.Working);
  Application.Pointer_Folder = folders.Pointer;
  Set_Table_Folder();
  Set_Limit(Log_Limits.Error_Log, "Error_Log_Limit_MB");
  Set_Limit(Log_Limits.Trace, "Trace_Limit_MB");
  for (const std::string& folder : {folders.Working, folders.Pointer, Application.Table_Folder}) {
    Collect_Leftovers(folder);
  }
  Read_Machine_Name();
}

void Enter_Desktop_Folders() {
  const Folder_Set folders = Usual_Folders();
  Use_Folders(folders);
  fs::current_path(folders.Working);
}

void Set_Companion_Folders(const std::string& home) {
  if (home.empty()) return Use_Folders(Usual_Folders());
  const std::string folder = fs::absolute(home).string();
  Use_Folders({folder, folder});
}

char Regional_Decimal_Sign() {
  const locale_t region = ::newlocale(LC_NUMERIC_MASK, "", locale_t{});
  if (region == locale_t{}) return '.';  // The environment names a region that is not installed.
  const char sign = ::nl_langinfo_l(RADIXCHAR, region)[0];
  ::freelocale(region);
  return sign == ',' ? ',' : '.';
}

}  // namespace norvik
