#include "core/axis_memory.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <string>

namespace norvik {

Axis_Memory_Host_Operations Axis_Memory_Host;
Position_Memory_State Position_Memory;

namespace {

constexpr std::string_view Section = "Axis Position";
constexpr int Last_Axis = 4;

std::string Position_Text(double position) {
  return RegionalFix(Shortest_Text(position));
}

double Read_Position(const std::string& key) {
  const std::string text = ReadSetup(Section, key);
  if (text.empty()) return 0;
  const auto position = Try_Number(text);
  if (!position) {
    ErrorLogWrite("[Axis Position] " + key + "=" + text.substr(0, 60) +
                  " is no number; the position counts as 0");
  }
  return position.value_or(0);
}

}  // namespace

bool Save_Axis_Positions() {
  const bool written = Write_Setup_Together([] {
    for (int axis = 1; axis <= Last_Axis; ++axis) {
      const std::string number = std::to_string(axis);
      WriteSetup(Section, "Axis_Cur_Pos_" + number, Position_Text(Machine.Position[axis]));
      WriteSetup(Section, "Axis_Mach_Pos_" + number, Position_Text(Machine.Absolute_Pos[axis]));
    }
  });
  if (!written || Setup_Store.Leaves_Files) return false;
  Axis_Memory_Host.Positions_Stored();
  return true;
}

void Keep_Given_Positions() {
  Save_Axis_Positions();
  Axis_Memory_Host.Positions_Given();
}

void Load_Axis_Positions() {
  for (int axis = 1; axis <= Last_Axis; ++axis) {
    const std::string number = std::to_string(axis);
    Machine.Position[axis] = Machine.Theoretical_Pos[axis] =
        Read_Position("Axis_Cur_Pos_" + number);
    Machine.Absolute_Pos[axis] = Read_Position("Axis_Mach_Pos" + number);
  }
}

}  // namespace norvik
