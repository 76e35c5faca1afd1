// The reader of LineArc tables.
#include "table_round_trip.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  Expect_Round_Trip({reinterpret_cast<const char*>(data), size}, Parse_LineArc_Table,
                    Write_LineArc_Table, Read_LineArc_Table);
  return 0;
}
