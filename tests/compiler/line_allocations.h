// How often the test program took memory from the heap.
#pragma once

#include <cstddef>

namespace norvik {

std::size_t Allocation_Count();

}  // namespace norvik
