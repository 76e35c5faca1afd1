// The small readers: `--set`, the pointer file with its window places and lists, the tool file, the
// settings of the simulated machine. What must hold: a value that was taken reads back as it is
// kept, and every window lies on its screen.
//
// First byte: which reader; the rest: its text.
#include "art_work.h"
#include "core/profile_file.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup_keys.h"
#include "core/tool_file.h"
#include "core/window_memory.h"
#include "parallel/port_ranges.h"
#include "simulate/simulated_machine.h"
#include "simulate/simulation_settings.h"

#include <cmath>
#include <fstream>
#include <string_view>

namespace {

using namespace norvik;

void Write(const std::string& path, std::string_view text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

void Set_One(std::string_view text) {
  const auto equals = text.find('=');
  const auto key = Find_Setup_Key(text.substr(0, equals));
  if (!key || equals == std::string_view::npos) return;
  const std::string before = Setup_Text(*key->Row, key->Index);
  const bool taken =
      Trap_With([](const Fault&) {}, [&] { Change_Setup_Key(*key, text.substr(equals + 1)); });
  const std::string now = Setup_Text(*key->Row, key->Index);
  if (!taken) Check(now == before);
  Check(Read_Setup_Text(*key->Row, key->Index, now));
  Check(Setup_Text(*key->Row, key->Index) == now);
}

void Read_Pointer(std::string_view text, std::uint8_t screen) {
  Write(Pointer_File(), text);
  const Screen_Area area{0, 0, 400 + screen * 8, 300 + screen * 8};
  for (const Form_Id form : All_Forms) {
    const Window_Place place = Brought_On_Screen(Read_Form_Place(form), area);
    Check(place.Width > 0 && place.Height > 0);
    Form_Was_Open(form);
  }
  Read_Remembered_Files();
  Read_Recent_Files();
  Ranges_In(text.substr(0, 200));
  Default_Simulation_Settings();
  Load_Simulation_Settings();
}

void Change_Simulation(std::string_view text) {
  Default_Simulation_Settings();
  for (const Simulation_Setting& setting : Simulation_Settings()) {
    const int axis = setting.Loaded.First;
    const std::string before = Text_Of_Setting(setting, axis);
    if (!Change_Setting(setting, axis, text).empty()) {
      Check(Text_Of_Setting(setting, axis) == before);
    }
  }
}

void Read_Tools(const std::string& path, std::string_view text) {
  Write(path, text);
  Read_Tool_File(path);
  for (const double diameter : Tools.Diameter) Check(std::isfinite(diameter));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = Enter_Work_Folder();
  if (size < 2) return 0;
  Application = {};  // no error file: nothing is written
  Application.AppDirectory = Application.Pointer_Folder = folder;
  Application.DecimalSeparator = (data[1] & 1) != 0 ? ',' : '.';
  MachineSetup = {};
  Restore_Factory_Setup();
  const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
  switch (data[0] % 4) {
    case 0:
      Set_One(text);
      break;
    case 1:
      Read_Pointer(text, data[1]);
      break;
    case 2:
      Change_Simulation(text.substr(0, 100));
      break;
    default:
      Read_Tools(folder + "/tools.tol", text);
  }
  return 0;
}
