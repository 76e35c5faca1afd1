// piece_memory.h: memory for the big tables, in pieces of two megabytes.
//
// A table of a compile takes hundreds of megabytes within half a second, and asking the kernel for
// them page by page would cost as much time as the passes themselves. Pieces of the size and place
// of a large page come at one go where the system grants large pages.
#pragma once

#include <cstddef>
#include <memory>

namespace norvik {

inline constexpr std::size_t Piece_Size = std::size_t{1} << 21;

// Raises std::bad_alloc when there is no memory.
void* Take_Piece();
void Give_Piece_Back(void* piece) noexcept;

struct Piece_Return {
  void operator()(void* piece) const noexcept { Give_Piece_Back(piece); }
};
using Memory_Piece = std::unique_ptr<void, Piece_Return>;

}  // namespace norvik
