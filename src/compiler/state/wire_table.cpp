#include "compiler/state/wire_table.h"

#include "compiler/state/compiler_state.h"

namespace norvik {

Wire_Pass_State Wire_Pass;

bool Wire_Table_Is_Full() {
  return Wire_Pass.Wires.size() > Wire_Table_Limit;
}

void Append_Wire(const Wire& wire) {
  if (!Wire_Table_Is_Full()) Wire_Pass.Wires.push_back(wire);
}

void EmitWireLine(Nullable x, Nullable y, Nullable z, Nullable a, bool /*flagDirect*/) {
  auto& start_pos = Compiler.CurrentPosition;
  auto& end_pos = Compiler.TargetPosition;
  if (x) end_pos[1] = x;
  if (y) end_pos[2] = y;
  if (z) end_pos[3] = z;
  if (a) end_pos[4] = a;

  Wire wire;
  wire.Step = Wire_Pass.Step;
  wire.Motion = 1;
  for (int axis = 1; axis <= 4; ++axis) wire.Start[axis] = Wire_Pass.Start[axis];
  for (int axis = 5; axis <= 6; ++axis) wire.Start[axis] = start_pos[axis];
  wire.End = end_pos;
  for (int output = wire.Out.first; output <= wire.Out.last; ++output) {
    wire.Out[output] = Compiler.Outputs[output];
  }
  wire.Tool = Wire_Pass.Tool;
  wire.FeedMove = Wire_Pass.FeedMove;
  wire.Dwell = Compiler.PauseNext;
  wire.Cutter_Comp = Compiler.CompModeNow;
  wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = Wire_Pass.IPM_D;
  wire.Block_Text = Wire_Pass.Block_Text;
  wire.S_Word = Last_Word(word::S);
  wire.Repeat = Wire_Pass.Repeat;
  wire.Aux_Wait = Wire_Pass.Aux_Wait;
  Append_Wire(wire);

  ++Wire_Pass.Wire_Count;
  Compiler.PauseNext = 0;
  for (int axis = 1; axis <= 6; ++axis) {
    if (end_pos[axis]) start_pos[axis] = end_pos[axis];
  }
  for (int output = 0; output <= 3; ++output) Compiler.Outputs[output] = Output_Unchanged;
}

}  // namespace norvik
