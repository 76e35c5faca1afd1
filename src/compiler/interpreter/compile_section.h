// compile_section.h: that the compiler is at work, and that nobody else may start it.
#pragma once

namespace norvik {

// True while a compile of a program or a block runs, in any of its passes, or a check does.
bool Compile_Busy();

// Marks the compiler as busy, with the busy pointer, as long as it stands. What a yield starts
// meanwhile is refused.
class Compile_Section {
 public:
  Compile_Section();
  ~Compile_Section();
  Compile_Section(const Compile_Section&) = delete;
  Compile_Section& operator=(const Compile_Section&) = delete;
};

}  // namespace norvik
