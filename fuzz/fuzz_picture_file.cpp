// A picture file, decoded as the program does it, with the scan behind. What must hold: a picture
// has all its pixels, and its import is a whole program or none.
//
// The first byte chooses the settings; the rest is the file.
#include "art_work.h"
#include "import/picture/import.h"
#include "platform/platform.h"
#include "plot/picture/picture_files.h"

#include <cstdlib>
#include <stdexcept>

#include <QImageReader>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace norvik;

// A file without a folder, which the decoders open by its name.
class Memory_File {
 public:
  Memory_File(const std::uint8_t* data, std::size_t size)
      : Number(::memfd_create("picture", MFD_CLOEXEC)) {
    if (Number < 0 || ::write(Number, data, size) != static_cast<ssize_t>(size))
      throw std::runtime_error("no file in memory");
  }
  ~Memory_File() { ::close(Number); }
  Memory_File(const Memory_File&) = delete;
  Memory_File& operator=(const Memory_File&) = delete;
  std::string Path() const { return "/proc/self/fd/" + std::to_string(Number); }

 private:
  int Number;
};

// Large pictures take long and show nothing new; what the decoders say goes nowhere.
bool Set_Up_Decoders() {
  ::setenv("QT_LOGGING_RULES", "*=false", 1);
  QImageReader::setAllocationLimit(8);  // megabytes
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  [[maybe_unused]] static const bool ready = Set_Up_Decoders();
  Enter_Work_Folder();
  Byte_Source bytes{data, size};
  const auto choice = bytes.Take<std::uint8_t>();
  Restore_Factory_Setup();
  MachineSetup.BMAP_Material_Size_X = MachineSetup.BMAP_Material_Size_Y = 2;
  MachineSetup.BMAP_Increment_X = MachineSetup.BMAP_Increment_Y = 0.125F;
  MachineSetup.BMAP_Rotate90 = choice & 1;
  MachineSetup.BMAP_Invert_Z = choice >> 1 & 1;
  const Memory_File file(bytes.Data, bytes.Size);
  const auto picture = Read_Picture_File(file.Path());
  if (!picture) return 0;
  Check(picture->Width > 0 && picture->Height > 0);
  Check(picture->Rgb.size() == std::size_t{3} * static_cast<std::size_t>(picture->Width) *
                                   static_cast<std::size_t>(picture->Height));
  Platform.Load_Picture = [&](const std::string&) { return picture; };
  bool opened = false;
  Import_Host = {};
  Import_Host.Open_GCode = [&](const std::string&) { opened = true; };
  Check(Import_Bitmap_File(file.Path()));
  Check_Import(opened);
  return 0;
}
