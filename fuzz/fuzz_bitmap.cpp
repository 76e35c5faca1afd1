// The picture importer: any settings over a made picture of any small size. Pictures are decoded by
// the toolkit, so only what comes behind runs here.
#include "art_work.h"
#include "import/picture/import.h"
#include "import/picture/scan.h"
#include "platform/platform.h"

#include <algorithm>
#include <fstream>

namespace {

using namespace norvik;

void Read_Settings(Byte_Source& bytes) {
  MachineSetup.BMAP_Material_Size_X = bytes.Take<float>();
  MachineSetup.BMAP_Material_Size_Y = bytes.Take<float>();
  MachineSetup.BMAP_Material_Size_Z = bytes.Take<float>();
  MachineSetup.BMAP_Travel_Height = bytes.Take<float>();
  MachineSetup.BMAP_Increment_X = bytes.Take<float>();
  MachineSetup.BMAP_Increment_Y = bytes.Take<float>();
  MachineSetup.BMAP_Import_Offset_X = bytes.Take<float>();
  MachineSetup.BMAP_Import_Offset_Z = bytes.Take<float>();
  MachineSetup.BMAP_Rotate90 = bytes.Bit() ? 1 : 0;
  MachineSetup.BMAP_Invert_Z = bytes.Bit() ? 1 : 0;
  MachineSetup.BMAP_Sway_XY = bytes.Bit() ? 1 : 0;
  MachineSetup.BMAP_Passes_to_Depth = static_cast<std::int16_t>(bytes.Take<std::int8_t>() % 4);
  MachineSetup.DXF_Passes_to_Depth = bytes.Bit() ? 1 : 2;
  MachineSetup.DXF_Ingore_Depth = bytes.Bit();
}

// Grids of many points take long and show nothing new.
bool Is_Small() {
  constexpr std::int64_t most = 4096;
  try {
    return Bitmap_Grid_Of_Setup().Samples() <= most;
  } catch (const Fault&) {
    return true;  // refused
  }
}

Picture Made_Picture(Byte_Source& bytes) {
  Picture picture{bytes.Take<std::uint8_t>() % 17, bytes.Take<std::uint8_t>() % 17, {}};
  picture.Rgb.resize(static_cast<std::size_t>(picture.Width * picture.Height * 3));
  for (std::uint8_t& value : picture.Rgb) value = bytes.Take<std::uint8_t>();
  return picture;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = Enter_Work_Folder() + "/relief.bmp";
  Byte_Source bytes{data, size};
  Restore_Factory_Setup();
  Read_Settings(bytes);
  if (!Is_Small()) return 0;
  const Picture picture = Made_Picture(bytes);
  Platform.Load_Picture = [&](const std::string&) { return std::optional(picture); };
  bool opened = false;
  Import_Host = {};
  Import_Host.Open_GCode = [&](const std::string&) { opened = true; };
  std::ofstream(path, std::ios::trunc) << "picture";
  Check(Import_Bitmap_File(path));
  Check_Import(opened);
  return 0;
}
