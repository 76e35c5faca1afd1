// compile_section.h: that the compiler is at work, and that nobody else may start it.
#pragma once

#include "core/operation.h"

namespace norvik {

// True while a compile of a program or a block runs, in any of its passes, or a check does.
bool Compile_Busy();

// Enters one of them in the ledger, with the busy pointer, for as long as it stands. What a yield
// starts meanwhile is refused.
class Compile_Section {
 public:
  explicit Compile_Section(Operation what);
  ~Compile_Section();
  Compile_Section(const Compile_Section&) = delete;
  Compile_Section& operator=(const Compile_Section&) = delete;

 private:
  Operation_Scope Entry;
};

}  // namespace norvik
