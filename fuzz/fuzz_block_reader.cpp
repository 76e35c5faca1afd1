// The block reader and the interpreter: any line is compiled; the quick and the cutting way through
// the reader must agree. Macros, repeats and counts: fuzz_compile.cpp.
#include "compiler/check/program_check.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compiler_state.h"
#include "compiler/text/block_reader.h"
#include "core/application.h"
#include "core/setup.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace norvik;

constexpr const char* Axis_Formats[] = {"000.000", "000.0000", "0.0##", "#.#", "", "0,0 mm"};

struct Reading {
  Block Read;
  Word_Values Last;
  bool Failed = false;
  bool operator==(const Reading&) const = default;
};

template <class Reader>
Reading Read_With(Reader&& reader, std::string_view line) {
  Compiler.Last = {};
  Compiler_Memory = {};
  Reading reading;
  reading.Failed = !Trap_With([](const Fault&) {}, [&] { reader(line, reading.Read); });
  reading.Last = Compiler.Last;
  reading.Last[word::I] = Compiler_Memory.LastI;
  reading.Last[word::J] = Compiler_Memory.LastJ;
  reading.Last[word::K] = Compiler_Memory.LastK;
  return reading;
}

void Expect_One_Reading(std::string_view line) {
  const auto cut = [](std::string_view text, Block& block) { Read_Words_By_Cutting(text, block); };
  if (!(Read_With(Read_Words, line) == Read_With(cut, line))) std::abort();
}

// Cycles and repeats with large counts are right, but take long.
bool Runs_Long(const std::string& text) {
  for (std::size_t n = 0; n < text.size(); ++n) {
    const char c = text[n];
    if (c == 'L' || c == 'l' || c == 'Q' || c == 'q' || c == 'P' || c == 'p') return true;
  }
  return false;
}

}  // namespace

// First byte: decimal sign and axis format; the rest: lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Application = {};  // no error file: nothing is written
  Application.DecimalSeparator = (data[0] & 1) != 0 ? ',' : '.';
  MachineSetup = {};
  MachineSetup.Axis_Format = Axis_Formats[(data[0] >> 1) % std::size(Axis_Formats)];
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto program = std::make_shared<const GCode_Text>(text);
  for (std::int32_t line = 1; line <= program->Line_Count(); ++line) {
    Expect_One_Reading(program->Line(line));
  }
  if (Runs_Long(text)) return 0;
  Compiler_Memory = {};
  Run_Line_Pass(program, Compile_Operations());
  Check_Program(program);
  return 0;
}
