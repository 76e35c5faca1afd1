// block.h: the words of one line as numbers.
#pragma once

#include "adapt/expressions.h"
#include "adapt/words.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik::adapting {

struct Foreign_Block {
  std::string_view Sequence;  // digits behind N; empty: none
  std::vector<int> G;         // in tenths: 911 is G91.1
  std::vector<int> M;
  std::array<std::optional<double>, 26> Words{};  // of the letters A to Z but G, M, N and O
  bool Assigns = false;                           // a parameter was set

  std::optional<double> operator[](char letter) const {
    return Words[static_cast<std::size_t>(letter - 'A')];
  }
  bool Has(char letter) const { return (*this)[letter].has_value(); }
  bool Has_Any(std::string_view letters) const {
    for (const char letter : letters) {
      if (Has(letter)) return true;
    }
    return false;
  }
  bool Has_G(int tenths) const;
  bool Has_M(int number) const;
  bool Empty() const;
};

// Reads the line's code into `block`. Parameters that it sets take their value once the whole line
// is read, as controllers do it. Raises Unreadable; no parameter is set then.
void Read_Block(const Foreign_Line& line, Parameters& parameters, Foreign_Block& block);

}  // namespace norvik::adapting
