// The reader of Wire tables.
#include "table_round_trip.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Expect_Round_Trip({reinterpret_cast<const char*>(data), size}, Parse_Wire_Table, Write_Wire_Table,
                    Read_Wire_Table);
  return 0;
}
