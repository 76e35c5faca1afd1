// Bytes as a motion file: what loads comes back as the same stream when it is packed again.
#include "compiler/tables/tables_io.h"
#include "compiler/tables/value_stream.h"
#include "core/fault.h"
#include "core/setup.h"
#include "tools/motion_file.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace norvik;

std::string Unpack(std::string_view bytes, Motion_Content& content) {
  Memory_Source source(bytes);
  Value_Stream values(source, "motion file");
  return Unpacked_Motion(values, content);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    Motion_Content content;
    const std::string wires = Unpack({reinterpret_cast<const char*>(data), size}, content);
    MachineSetup.Motion_File_Any_Length = true;
    Memory_Source source(wires);
    Value_Stream values(source, "wire table");
    Motion_Content again;
    const std::string motion = Packed_Motion(values, again);
    Parse_Wire_Table(wires, "wire table");
    // A table of whole wires comes back byte for byte.
    if (Unpack(motion, again) != wires) std::abort();
  } catch (const Fault&) {
  }
  return 0;
}
