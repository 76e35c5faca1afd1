// compile_sources.h: what the tables of a compile were made from.
//
//   text of the program ---+
//   settings of the setup  +--compile--> tables, with the sources beside them
//   tools (compensation)   |
//   macro files -----------+
//
// As long as the sources are what they were, a compile would make the same tables again. Whoever is
// about to run tables asks `Changed_Source` first.
#pragma once

#include "compiler/text/program_text.h"
#include "core/indexed.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// A macro file as a compile met it.
struct Macro_Source {
  std::int16_t Number = 0;
  std::string Path;           // empty: the macro has no file
  bool Present = false;       // the file could be found
  std::uint64_t Size = 0;     // bytes
  std::int64_t Modified = 0;  // ticks of the file system's clock
  std::uint64_t Hash = 0;     // of its content
};

struct Compile_Sources {
  std::shared_ptr<const GCode_Text> Text;  // absent: of no program (a Goto line)
  std::vector<std::string> Settings;       // as the machine file would hold them
  // By tool; absent where no compensation used them.
  std::optional<Indexed<double, 0, 200>> Tool_Diameters;
  std::vector<Macro_Source> Macros;  // each once, in the order of their first call
};

// Of the compile that runs or ran last. A check leaves it alone.
extern Compile_Sources Present_Compile;

// The text and the settings as they stand now, without tools and macros.
Compile_Sources Present_Sources();
// Adds a macro that a compile calls; nothing when it is there already. Reads its file.
void Add_Macro_Source(Compile_Sources& sources, std::int16_t macro);

// True when both have the same lines, so that their tables are the same. Empty lines don't count.
bool Same_Lines(const GCode_Text& a, const GCode_Text& b);

// True when `sources` are those of the text of the program as it is, whatever is being typed.
bool Is_Of_Present_Text(const Compile_Sources& sources);
// What is not as it was, other than the text, in words that begin a sentence ("The setting
// Axis_Ramp_Rate"); empty: nothing. Looks at the macro files.
std::string Changed_Source(const Compile_Sources& sources);

}  // namespace norvik
