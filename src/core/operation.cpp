#include "core/operation.h"

#include "core/application.h"
#include "platform/platform.h"

#include <algorithm>
#include <utility>

namespace norvik {

Operations_State Operations;
Operation_Host_Operations Operation_Host;

namespace {

using namespace ended_by;

constexpr unsigned Motion = Esc | EStop | Stop;

constexpr Operation_Row Rows[] = {
    {"the compile of the program", false, Esc},
    {"the compile of a line", false, Nobody},
    {"the check of the program", false, Esc},
    {"an import", false, Esc},
    {"the opening of a file", false, Esc},
    {"a change of the program or an export", false, Esc},
    {"the run of the program", true, Motion | Pause},
    {"a step of the program", true, Motion | Pause},
    {"a jog", true, Motion | Release},
    {"a jog by key or joystick", true, Motion | Release},
    {"homing", true, Motion},
    {"the way to or from the ReTool position", true, Motion},
    {"a Goto", true, Motion},
    {"the search for the time constant", true, Esc | EStop},
    {"the run loop", true, Motion | Pause},
    {"a move", true, Esc | EStop},
};

bool Is_Part(Operation operation) {
  return operation == Operation::Run_Loop || operation == Operation::Move;
}

bool Is_Motion(Operation operation) {
  return Row_Of(operation).Moves && operation != Operation::Calibration;
}

std::string Busy_Text(Operation running) {
  std::string text = "Not now: " + std::string(Row_Of(running).Words) + " is under way.";
  const std::string way_out = How_To_End(running);
  return way_out.empty() ? text : text + " " + way_out;
}

}  // namespace

Operation_Host_Operations::Operation_Host_Operations()
    : Forget_Presses([] {
        (void)Platform.Key_Down(key::Escape);
        Application.EscFlag = false;
      }) {}

const Operation_Row& Row_Of(Operation operation) {
  return Rows[static_cast<std::size_t>(operation)];
}

std::string How_To_End(Operation operation) {
  const unsigned by = Row_Of(operation).Ended_By;
  if ((by & Release) != 0) return "Letting go, Stop, ESC or the E-stop ends it.";
  if ((by & Stop) != 0) return "Stop ends it behind the running move, ESC or the E-stop at once.";
  if ((by & EStop) != 0) return "ESC or the E-stop ends it.";
  return (by & Esc) != 0 ? "ESC ends it." : "";
}

Operation_Scope::Operation_Scope(Operation what) {
  if (Operations.Entries.empty() && !Is_Part(what)) Operation_Host.Forget_Presses();
  Operations.Entries.push_back({what, Platform.Monotonic_Clock(), {}});
}

Operation_Scope::~Operation_Scope() {
  if (!Operations.Entries.empty()) Operations.Entries.pop_back();
}

bool Runs(Operation operation) {
  return std::ranges::any_of(Operations.Entries, [operation](const Operation_Entry& entry) {
    return entry.What == operation;
  });
}

const Operation_Entry* Present_Operation() {
  return Operations.Entries.empty() ? nullptr : &Operations.Entries.front();
}

bool Anything_Moves() {
  return std::ranges::any_of(Operations.Entries,
                             [](const Operation_Entry& entry) { return Row_Of(entry.What).Moves; });
}

bool Compiler_Works() {
  return Runs(Operation::Compile) || Runs(Operation::Compile_Line) || Runs(Operation::Check);
}

bool Program_Is_Held() {
  return Runs(Operation::Compile) || Runs(Operation::Edit);
}

Obstacle Obstacle_To(Operation wanted) {
  if (Anything_Moves()) return Obstacle::Something_Moves;
  const bool motion = Is_Motion(wanted);
  if (Machine.CNCMode != CNC_Stopped && (!motion || wanted == Operation::Goto))
    return Obstacle::Run_Is_Paused;
  if (motion && Machine.EStop_Flag) return Obstacle::EStop;
  if (Program_Is_Held()) return Obstacle::Program_Is_Held;
  if (wanted == Operation::Import && Runs(Operation::Import)) return Obstacle::Import;
  if (motion && !Operation_Host.Drive_Missing().empty()) return Obstacle::No_Drive;
  return Obstacle::None;
}

std::string Why_Not_Begin(Operation wanted) {
  switch (Obstacle_To(wanted)) {
    case Obstacle::Something_Moves:
    case Obstacle::Import:
      return Busy_Text(Present_Operation()->What);
    case Obstacle::Run_Is_Paused:
      return std::string(wanted == Operation::Goto ? operation_text::Goto_Needs_Stop
                                                   : operation_text::Run_Is_Paused);
    case Obstacle::EStop:
      return std::string(operation_text::Motors_Are_Disabled);
    case Obstacle::Program_Is_Held:
      return Runs(Operation::Compile) ? std::string(operation_text::Compile_Runs)
                                      : Busy_Text(Operation::Edit);
    case Obstacle::No_Drive:
      return std::string(Operation_Host.Drive_Missing());
    case Obstacle::None:
      break;
  }
  return {};
}

void Tell_Detail(std::string detail) {
  if (!Operations.Entries.empty()) Operations.Entries.front().Detail = std::move(detail);
}

}  // namespace norvik
