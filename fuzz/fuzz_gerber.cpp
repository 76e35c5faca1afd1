// The artwork importer: any bytes under any choice of its settings give a whole program. The first
// bytes choose, the others are the file.
#include "art_work.h"
#include "import/gerber/import.h"
#include "import/gerber/layers.h"

#include <algorithm>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  const std::string path = Enter_Work_Folder() + "/board.gbr";
  Byte_Source bytes{data, size};
  Restore_Factory_Setup();
  const auto choice = bytes.Take<std::uint8_t>();
  const auto layers = bytes.Take<std::uint8_t>();  // from 128 on: cancelled
  MachineSetup.Gerber_Clean_Data = (choice & 1) != 0;
  MachineSetup.Gerber_Isolation = (choice & 2) != 0;
  MachineSetup.Gerber_Isolation_Sort_Lines = (choice & 4) != 0;
  MachineSetup.Gerber_Isolation_Cleanup_Lines = (choice & 8) != 0;
  MachineSetup.Gerber_Isolation_SmallLines_Function = (choice & 16) != 0;
  MachineSetup.Gerber_Isolation_Multi_Cut_Lines = (choice & 32) != 0;
  MachineSetup.Gerber_Isolation_Multi_Cut_Count = 2;
  Application.DecimalSeparator = (choice & 64) != 0 ? ',' : '.';
  Import_Host = {};
  Import_Host.Select_Gerber_Layers = [choice, layers] {
    int layer = 0;
    for (auto& row : GerberLayerSelection.List_Layers) {
      row.Selected = (choice & 128) == 0 || (layers >> (layer++ % 7) & 1) != 0;
    }
    if (layers < 128) GerberLayerSelection_Command_OK_Click();
  };
  bool opened = false;
  Import_Host.Open_GCode = [&](const std::string&) { opened = true; };
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(bytes.Data), static_cast<std::streamsize>(bytes.Size));
  Check(Import_Gerber_File(path));
  Check_Import(opened);
  Check(opened || layers >= 128);
  return 0;
}
