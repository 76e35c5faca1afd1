// wire_table.h: where the wires of the wire pass are appended, line by line and chord by chord.
#pragma once

#include "compiler/state/tables.h"
#include "core/indexed.h"
#include "core/nullable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvik {

// The pass shares its place with the interpreter (`Compiler`): `CurrentPosition` is where the wire
// before ended, `TargetPosition` the target of the wire being emitted, `Outputs` its commands.
struct Wire_Pass_State {
  // --- Of the record at hand --------------------------------------------------------------------
  std::int32_t Step = 0;
  Nullable Tool;
  bool FeedMove = false;
  std::string_view Block_Text;
  Nullable Repeat;
  std::optional<std::int16_t> Aux_Wait;
  float IPM_D = 0;
  Indexed<Nullable, 1, 4> Start;  // where the next wire begins

  // --- Results ----------------------------------------------------------------------------------
  Record_List<Wire> Wires;
  std::int32_t Wire_Count = 0;  // emitted lines and chords; copied control records not
};
extern Wire_Pass_State Wire_Pass;

// True when there is one wire more than the executing table takes, which is enough to see that the
// program is too long; the rest would never be read.
bool Wire_Table_Is_Full();

// Appends a wire as it is; nothing happens when the table is full.
void Append_Wire(const Wire& wire);

// Appends one wire from the current start to the point given; an absent coordinate stands for the
// target of the wire before. `flagDirect` is false in every call.
void EmitWireLine(Nullable x, Nullable y, Nullable z, Nullable a, bool flagDirect);

}  // namespace norvik
