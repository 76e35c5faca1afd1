// The drill file importer: reader, sorts, passes and writer.
#include "import/excellon/import.h"
#include "import_round.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Fuzz_Import(data, size, "part.nc", Import_Excellon_File, "[END OF PROGRAM]");
  return 0;
}
