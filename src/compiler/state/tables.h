// tables.h: the two records of a compile and their tables.
//
//   G-code text --line pass--> LineArc --wire pass--> Wire --feed pass--> speeds set
//
// The line pass writes down what each line of the program asks for; the wire pass cuts that into
// straight moves; the feed pass gives the moves their speeds. The passes hand their records over in
// memory. Beside that, both tables are written to files that users and other tools read,
// "NORVIK_Program_LineArc_Data.csv" and "NORVIK_Program_Wire_Data.csv", with the same records.
//
// Units: lengths in units of the setup, speeds in units per minute, times in seconds. Axis tables
// are indexed from 1: X, Y, Z, A, B, C; an axis that was never mentioned is absent.
#pragma once

#include "compiler/state/record_list.h"
#include "core/indexed.h"
#include "core/nullable.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

enum class Record_Type : std::uint8_t { Control = 0, Line = 1, Arc = 2, Other = 255 };

// What a record does to an output. In a namespace of its own because the drive has operations of
// the same names.
namespace output_command {
inline constexpr std::int16_t Output_Off = 0, Output_Unchanged = 1, Output_On = 2;
}
using namespace output_command;

// One motion or command as the program asks for it. `SourceText` points into storage that the table
// keeps (`Table::Texts`). The fields are sorted by size, which keeps a record at 208 bytes; their
// order in the file is that of the field list (compiler/tables/fields.h).
struct LineArc {
  std::int32_t LineNumber = 0;  // line of the program or of the macro; 0 in a block compile
  Record_Type RecordType = Record_Type::Control;
  bool FeedMove = false;        // true cutting, false travel
  std::int16_t RecordFlag = 0;  // 1 on lines and arcs
  Indexed<Nullable, 1, 6> Start, End;
  Nullable CenterI, CenterJ;  // centre words of an arc, first and second plane axis
  Nullable ToolNumber;
  Nullable SpindleSpeed;
  Nullable SpareWord;
  std::string_view SourceText;
  Indexed<float, 1, 4> Feed;
  float PauseTime = 0;  // 0 none, -1 halt for the operator, above 0 a dwell
  Indexed<std::int16_t, 0, 4> Out{{1, 1, 1, 1, 1}};  // spindle CW, CCW, mist, flood, auxiliary
  std::int16_t CompMode = 0;                         // 0 none, 1 left, 2 right
  std::optional<std::int16_t> ArcDirection;          // 0 clockwise (G2), 1 counter-clockwise (G3)
  std::optional<std::int16_t> WaitInput;             // 1: M66
  std::int16_t SpareFlag = 0;

  bool operator==(const LineArc&) const = default;
};

// One straight segment or command as executed.
struct Wire {
  std::int32_t Step = 0;    // the program line it belongs to; all chords of an arc share it
  std::int16_t Motion = 0;  // 1: a move; anything else: no motion
  bool FeedMove = false;
  Indexed<Nullable, 1, 6> Start, End;
  Nullable Tool;
  Nullable S_Word;
  Nullable Repeat;
  std::string_view Block_Text;
  float IPM_D = 0;             // desired feed
  float IPM_S = 0, IPM_R = 0;  // speed at the start, cruise speed
  float IPM_E = 0;             // speed at the end; a whole number in the executing table
  float Dwell = 0;             // 0 none, above 0 seconds, -1 program pause
  Indexed<std::int16_t, 0, 4> Out{{1, 1, 1, 1, 1}};
  std::int16_t Cutter_Comp = 0;          // 0 none, 1 left, 2 right
  std::optional<std::int16_t> Aux_Wait;  // 1: wait for the auxiliary input first
  std::int16_t Reserved = 0;

  bool operator==(const Wire&) const = default;
};

// The executing table holds at most so many wires; loaders stop there without a message.
inline constexpr std::size_t Wire_Table_Limit = 900'001;

// A table with the texts that its records point into. Copying shares the texts.
template <class Record>
struct Table {
  Record_List<Record> Rows;
  std::shared_ptr<const void> Texts;
};

}  // namespace norvik
