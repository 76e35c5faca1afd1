// The plotter file importer: reader, sorts, passes and writer.
#include "import/hpgl/import.h"
#include "import_round.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Fuzz_Import(data, size, "part.plt", Import_HPGL_File, "M30");
  return 0;
}
