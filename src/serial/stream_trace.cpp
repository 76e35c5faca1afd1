#include "serial/stream_trace.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/trace_file.h"

namespace norvik {

Dravon_Trace_State Dravon_Trace;

namespace {

std::string Trace_Line(const Step_Request& request, Nullable s_word, std::uint32_t step) {
  std::string line = std::to_string(step);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int32_t steps = request.Steps[axis];
    line += "," + std::to_string(request.Negative[axis] ? -steps : steps);
  }
  for (const double speed : {request.Start, request.Run, request.End})
    line += "," + Shortest_Text(speed);
  line += request.Is_Arc ? ",1" : ",0";
  for (const std::int16_t command : request.Out) line += "," + std::to_string(command);
  return line + "," + (s_word ? Shortest_Text(*s_word) : std::string()) + "\r\n";
}

}  // namespace

void Choose_Dravon_Trace() {
  Dravon_Trace = {};
  Dravon_Trace.Enabled = Upper(Trim(ReadPointer("Platform", "Serial_Trace"))) == "TRUE";
}

void Trace_Dravon_Move(const Step_Request& request, Nullable s_word, std::uint32_t step) {
  if (!Dravon_Trace.Enabled || Application.Table_Folder.empty()) return;
  const std::string path = Join_Path(Application.Table_Folder, "TestFile2.csv");
  if (Append_To_Trace(path, Trace_Line(request, s_word, step))) return;
  if (path == Dravon_Trace.Failed_Path) return;
  Dravon_Trace.Failed_Path = path;
  ErrorLogWrite("The trace of the moves for the board cannot be written: " + path);
}

}  // namespace norvik
