// The machine file: any bytes are parsed, kept as they are, loaded, repaired and loaded again.
#include "core/application.h"
#include "core/profile_file.h"
#include "core/setup.h"
#include "core/setup_table.h"
#include "platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

using namespace norvik;

// A folder of this process on a disk in memory where there is one: a load may write the file.
std::string Work_Folder() {
  namespace fs = std::filesystem;
  const fs::path root = fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
  const fs::path folder = root / ("norvik_fuzz_" + std::to_string(::getpid()));
  fs::create_directories(folder);
  static struct Remover {
    fs::path Folder;
    ~Remover() {
      std::error_code ignored;
      fs::remove_all(Folder, ignored);
    }
  } remover{folder};
  return folder.string();
}

void Check(bool holds) {
  if (!holds) std::abort();
}

std::string All_Values() {
  std::string texts;
  for (const Setup_Row& row : Setup_Rows()) {
    if (row.Save == Save_Place::Nowhere) continue;
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
      texts += Setup_Text(row, index) + '\n';
    }
  }
  return texts;
}

void Parse_And_Change(const std::string& bytes) {
  Profile_Text text{bytes};
  Check(text.Bytes() == bytes);
  const std::string value = bytes.substr(0, 100);
  text.Set("Axis", "Axis_HomePos_1", value);
  const Profile_Text again{text.Bytes()};
  Check(again.Find("axis", "AXIS_HOMEPOS_1") == text.Find("Axis", "Axis_HomePos_1"));
}

void Load_And_Repair(const std::string& bytes) {
  std::ofstream(Application.MachineFile, std::ios::binary | std::ios::trunc) << bytes;
  LoadMachineSetup();
  SaveMachineSetup();
  LoadMachineSetup();
  Check(Application.SelfTestValue == 123);
  const std::string first = All_Values();
  SaveMachineSetup();
  LoadMachineSetup();
  Check(All_Values() == first);  // what a load gives, a save keeps
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = Work_Folder();
  static std::int64_t clock = 0;
  Platform.Monotonic_Clock = [] { return clock += 1'000'000'000; };  // no wait takes time
  Application = {};
  Application.AppDirectory = folder;
  Application.Pointer_Folder = folder;
  Application.MachineFile = folder + "/Machine.ini";
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Parse_And_Change(bytes);
  Load_And_Repair(bytes);
  return 0;
}
