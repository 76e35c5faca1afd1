// The block reader as plain string cutting, for comparison with the one that the product ships.
#pragma once

#include "compiler/text/block.h"

#include <string>

namespace norvik {

struct Reference_Reading {
  Block Read;
  Word_Values Last;  // all sticky values, I, J and K included
  bool Fault = false;
};

// Reads one line; `last` are the sticky values before it.
Reference_Reading Read_By_Reference(const std::string& text, const Word_Values& last);

}  // namespace norvik
