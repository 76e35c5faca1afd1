#include "compiler/state/piece_memory.h"

#include <array>
#include <cstdint>
#include <new>

#include <sys/mman.h>

namespace norvik {

namespace {

// Pieces given back lately. The wire pass gives back a piece of records for each one of wires that
// it takes; a few kept here spare it the way through the kernel.
struct Spare_Pieces {
  std::array<void*, 4> Items{};
  std::size_t Count = 0;
};
Spare_Pieces Spares;

// Twice as much as needed surely holds a piece at a multiple of its size; the rest goes back.
void* Map_Piece() {
  void* const mapped =
      ::mmap(nullptr, 2 * Piece_Size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  char* const first = static_cast<char*>(mapped);
  const std::size_t over = reinterpret_cast<std::uintptr_t>(first) % Piece_Size;
  const std::size_t before = over == 0 ? 0 : Piece_Size - over;
  if (before != 0) ::munmap(first, before);
  ::munmap(first + before + Piece_Size, Piece_Size - before);
  ::madvise(first + before, Piece_Size, MADV_HUGEPAGE);  // a wish; refused on some systems
  return first + before;
}

}  // namespace

void* Take_Piece() {
  return Spares.Count > 0 ? Spares.Items[--Spares.Count] : Map_Piece();
}

void Give_Piece_Back(void* piece) noexcept {
  if (Spares.Count < Spares.Items.size()) {
    Spares.Items[Spares.Count++] = piece;
  } else {
    ::munmap(piece, Piece_Size);
  }
}

}  // namespace norvik
