// The reader of a board's replies: any bytes, both boards. A reply that passes carries its checksum
// where it ends, and every reading of it stays within its fields.
#include "serial/serial_frame.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  const std::span<const std::uint8_t> bytes(data, size);
  for (const Serial_Command& command : Serial_Commands()) {
    for (int generation = 0; generation <= 1; ++generation) {
      const std::size_t length = command.Reply[static_cast<std::size_t>(generation)];
      if (Look_At_Reply(bytes, length) != Reply_Fault::None) continue;
      if (size < length || size > Longest_Reply) std::abort();
      Reply_Bytes reply;
      for (std::size_t i = 0; i < size; ++i) reply[static_cast<long long>(i) + 1] = bytes[i];
      const Status_Reply status = Status_Of(reply, generation);
      for (const std::int32_t count : status.Step_Count)
        if (count < -0x800000 || count > 0x7FFFFF) std::abort();
      const Encoder_Reply encoders = Encoder_Of(reply);
      for (const std::int16_t fault : encoders.Faults)
        if (fault < 0 || fault > 1) std::abort();
      if (Config_Of(reply).BufferCapacity > 0xFFFF) std::abort();
    }
  }
  return 0;
}
