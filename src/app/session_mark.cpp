#include "app/session_mark.h"

#include "core/application.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "platform/platform.h"

#include <cstdio>
#include <string>

namespace norvik {

Session_Mark_State Session_Mark;

namespace {

constexpr std::string_view Section = "Session";
constexpr std::string_view Running = "running", Ended = "ended",
                           Ended_Without = "ended without positions";

std::string Mark_File() {
  return Join_Path(Application.AppDirectory, "Session.ini");
}

std::string Now_Text() {
  const Calendar_Time now = Platform.Local_Time();
  char text[80];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", now.Year, now.Month, now.Day,
                now.Hour, now.Minute, now.Second);
  return text;
}

// A mark that cannot be kept must not keep the machine from working; the operator reads about it.
void Log_Unmarked(const Fault& fault) {
  ErrorLogWrite("The mark of this session is not kept, so a crash would not be noticed. " +
                fault.Description);
}

// The words about an end that was not orderly; empty after an orderly one.
std::string Doubt_About_Last_End() {
  const std::string state = Read_Profile(Mark_File(), Section, "State");
  if (state.empty() || state == Ended) return {};
  const std::string began = Read_Profile(Mark_File(), Section, "Began");
  const std::string stored = Read_Profile(Mark_File(), Section, "Positions");
  const std::string how = state == Running ? " did not come to an orderly end"
                                           : " ended without storing positions that hold";
  return "The last session with the machine, begun " + began + "," + how +
         ". The positions shown are from " + stored +
         " and need not be where the machine stands. Home the machine, or compare the positions "
         "with the machine and confirm them.";
}

void Write_Together(const std::function<void()>& body) {
  Trap_With(Log_Unmarked, [&] {
    Profile_Session file(Mark_File(), Profile_Use::Writing);
    body();
    file.Commit();
  });
}

void Write_Mark(std::string_view key, std::string_view value) {
  Write_Profile(Mark_File(), Section, key, value);
}

void Note_Positions_Stored() {
  if (!Session_Mark.Open) return;
  Write_Together([] { Write_Mark("Positions", Now_Text()); });
}

}  // namespace

void Mark_Session_Begin() {
  Session_Mark.Open = true;
  Axis_Memory_Host.Positions_Stored = Note_Positions_Stored;
  Write_Together([] {
    if (!Session_Mark.Was_Read) Position_Memory.Doubt = Doubt_About_Last_End();
    Session_Mark.Was_Read = true;
    const std::string now = Now_Text();
    Write_Mark("Machine", Application.MachineFile);
    Write_Mark("Began", now);
    Write_Mark("State", Running);
    if (Read_Profile(Mark_File(), Section, "Positions").empty()) Write_Mark("Positions", now);
  });
  if (!Position_Memory.Doubt.empty()) ErrorLogWrite(Position_Memory.Doubt);
}

void Mark_Session_End(bool stored) {
  if (!Session_Mark.Open) return;
  Session_Mark.Open = false;
  const bool hold = stored && Position_Memory.Doubt.empty();
  Write_Together([&] { Write_Mark("State", hold ? Ended : Ended_Without); });
}

}  // namespace norvik
