// The DXF importer: reader, sorts, passes and writer.
#include "import/dxf/import.h"
#include "import_round.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Fuzz_Import(data, size, "part.dxf", Import_DXF_File, "M30");
  return 0;
}
