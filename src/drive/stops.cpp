#include "drive/stops.h"

#include "platform/platform.h"

namespace norvik {

namespace {

struct Stop_State {
  bool Old_Escape = false;  // EscFlag was set before the move began and still is
};
Stop_State Stops;

}  // namespace

void Begin_Watching_Stops() {
  Stops.Old_Escape = Application.EscFlag;
}

bool Escape_Met() {
  if (!Application.EscFlag) Stops.Old_Escape = false;
  const bool down = Platform.Key_Down(key::Escape) || Drive_Host.Escape_Held();
  if (!down && (!Application.EscFlag || Stops.Old_Escape)) return false;
  Application.EscFlag = true;
  Drive_Host.Stop_Run();
  return true;
}

}  // namespace norvik
