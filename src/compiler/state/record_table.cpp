#include "compiler/state/record_table.h"

#include "compiler/state/compiler_state.h"
#include "core/fault.h"

#include <string>

namespace norvik {

LineArc& AddLineArc(Record_Type type) {
  Record_List<LineArc>& rows = Compile_Tables.Program_LineArc.Rows;
  if (rows.size() >= LineArc_Table_Limit) {
    throw Fault(Fault_Number::Out_Of_Memory,
                "The program makes more than " + std::to_string(LineArc_Table_Limit) + " records");
  }
  LineArc record;
  record.LineNumber = Compiler.CurrentLineNumber;
  record.RecordType = type;
  record.RecordFlag = type == Record_Type::Control ? 0 : 1;
  record.Start = Compiler.CurrentPosition;
  record.End = Compiler.TargetPosition;
  for (int output = 0; output <= 4; ++output) record.Out[output] = Compiler.Outputs[output];
  record.ToolNumber = Compiler.ToolNow;
  record.FeedMove = Compiler.FeedMoveNow;
  record.PauseTime = Compiler.PauseNext;
  record.CompMode = Compiler.CompModeNow;
  record.Feed.Fill(Compiler.CurrentFeed);
  record.SourceText = Compiler.BlockText;
  record.SpindleSpeed = Compiler.Last[word::S];
  return rows.push_back(record);
}

}  // namespace norvik
