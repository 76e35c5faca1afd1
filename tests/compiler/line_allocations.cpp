#include "line_allocations.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t Count = 0;
}

void* operator new(std::size_t size) {
  ++Count;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++Count;
  return std::malloc(size != 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}

namespace norvik {

std::size_t Allocation_Count() {
  return Count;
}

}  // namespace norvik
