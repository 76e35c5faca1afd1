#include "platform/linux/port_instructions.h"

#include <cerrno>

#if defined(__x86_64__) || defined(__i386__)

#include <sys/io.h>

namespace norvik {

int Allow_Port(std::uint16_t address) {
  return ::ioperm(address, 1, 1) == 0 ? 0 : errno;
}
std::uint8_t In_Byte(std::uint16_t address) {
  return ::inb(address);
}
void Out_Byte(std::uint16_t address, std::uint8_t value) {
  ::outb(value, address);
}

}  // namespace norvik

#else

namespace norvik {

int Allow_Port(std::uint16_t) {
  return ENOSYS;
}
std::uint8_t In_Byte(std::uint16_t) {
  return 0;
}
void Out_Byte(std::uint16_t, std::uint8_t) {}

}  // namespace norvik

#endif
