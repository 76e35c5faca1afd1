#include "compiler/wires/wire_pass.h"

#include "compiler/arcs/chords.h"
#include "compiler/state/compiler_state.h"
#include "compiler/state/wire_table.h"
#include "core/application.h"

#include <utility>

namespace norvik {

namespace {

void Take_Record(const LineArc& record) {
  Wire_Pass.Step = record.LineNumber;
  Wire_Pass.Tool = record.ToolNumber;
  Wire_Pass.FeedMove = record.FeedMove;
  Wire_Pass.Block_Text = record.SourceText;
  Wire_Pass.Repeat = record.SpareWord;
  Wire_Pass.Aux_Wait = record.WaitInput;
  Wire_Pass.IPM_D = record.Feed[1];
  for (int axis = 1; axis <= 4; ++axis) Wire_Pass.Start[axis] = record.Start[axis];
}

// A record that changes nothing leaves a command that still waits for its wire, or that the
// auxiliary output repeats.
void Take_Outputs(const LineArc& record) {
  for (int output = record.Out.first; output <= record.Out.last; ++output) {
    if (record.Out[output] != Output_Unchanged) Compiler.Outputs[output] = record.Out[output];
  }
}

void Copy_Control(const LineArc& record) {
  Wire wire;
  wire.Step = record.LineNumber;
  wire.Motion = record.RecordFlag;
  wire.Start = record.Start;
  wire.End = record.End;
  wire.Out = record.Out;
  wire.Tool = record.ToolNumber;
  wire.FeedMove = record.FeedMove;
  wire.Dwell = record.PauseTime;
  wire.Cutter_Comp = record.CompMode;
  wire.IPM_D = record.Feed[1];
  wire.IPM_S = record.Feed[2];
  wire.IPM_R = record.Feed[3];
  wire.IPM_E = record.Feed[4];
  wire.Block_Text = record.SourceText;
  wire.S_Word = record.SpindleSpeed;
  wire.Reserved = record.SpareFlag;
  wire.Repeat = record.SpareWord;
  wire.Aux_Wait = record.WaitInput;
  Append_Wire(wire);
}

void Walk_Arc(const LineArc& record) {
  Indexed<Nullable, 1, 4> end;
  for (int axis = 1; axis <= 4; ++axis) end[axis] = record.End[axis];
  Nist_Arc(Wire_Pass.Start, end, record.CenterI, record.CenterJ, record.ArcDirection);
}

void Convert_Record(const LineArc& record) {
  Take_Record(record);
  switch (record.RecordType) {
    case Record_Type::Control:
      Copy_Control(record);
      break;
    case Record_Type::Line:
      Take_Outputs(record);
      EmitWireLine(record.End[1], record.End[2], record.End[3], record.End[4], false);
      break;
    case Record_Type::Arc:
      Take_Outputs(record);
      Walk_Arc(record);
      break;
    case Record_Type::Other:
      break;
  }
}

// `used(n)`: the first n records are no longer needed.
template <class Used>
Table<Wire> Convert(const Table<LineArc>& records, Used&& used) {
  Wire_Pass = {};
  Compiler.TargetPosition = {};
  Compiler.Outputs = Compiler_State().Outputs;
  bool whole = true;
  const bool converted = Trap("NIST_ConvertLineArctoWire_Error", [&] {
    for (std::size_t i = 0; whole && i < records.Rows.size() && !Wire_Table_Is_Full(); ++i) {
      Convert_Record(records.Rows[i]);
      used(i + 1);
      whole = !std::exchange(Application.EscFlag, false);
    }
  });
  if (!whole || !converted) Compile_Status.Cut_Short = true;
  return {std::move(Wire_Pass.Wires), records.Texts};
}

}  // namespace

Table<Wire> NIST_ConvertLineArctoWire(Table<LineArc>&& records) {
  Table<LineArc> taken = std::move(records);
  return Convert(taken, [&](std::size_t count) { taken.Rows.Release_Before(count); });
}

Table<Wire> NIST_ConvertLineArctoWire(const Table<LineArc>& records) {
  return Convert(records, [](std::size_t) {});
}

}  // namespace norvik
