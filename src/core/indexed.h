// indexed.h: a table with a first and a last index, checked.
//
// Most tables of the system are indexed from 1. An index out of range raises a fault, never
// undefined behaviour.
#pragma once

#include "core/fault.h"

#include <array>
#include <cstddef>
#include <string>

namespace norvik {

[[noreturn]] inline void Raise_Index_Fault(long long index, long long first, long long last) {
  throw Fault(Fault_Number::Out_Of_Range, "Index " + std::to_string(index) + " is outside " +
                                              std::to_string(first) + ".." + std::to_string(last));
}

template <class T, int First, int Last>
class Indexed {
  static_assert(First <= Last);

 public:
  static constexpr int first = First, last = Last;

  constexpr T& operator[](long long index) { return Items[Place(index)]; }
  constexpr const T& operator[](long long index) const { return Items[Place(index)]; }

  constexpr void Fill(const T& value) { Items.fill(value); }

  constexpr auto begin() { return Items.begin(); }
  constexpr auto end() { return Items.end(); }
  constexpr auto begin() const { return Items.begin(); }
  constexpr auto end() const { return Items.end(); }

  bool operator==(const Indexed&) const = default;

  // The items from the first index on; public so that a table can be written as a braced list.
  std::array<T, static_cast<std::size_t>(Last - First + 1)> Items{};

 private:
  static constexpr std::size_t Place(long long index) {
    if (index < First || index > Last) Raise_Index_Fault(index, First, Last);
    return static_cast<std::size_t>(index - First);
  }
};

}  // namespace norvik
