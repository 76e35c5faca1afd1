// motion.h: how everything that moves the machine begins, is stopped and ends.
//
//   Begin_Operation --> Motion_Scope { moves, waits } --> Announce_End
//
// Stop, an E-stop, ESC in a move and a failed drive all end in `CNC_Stop`. It only changes what the
// operation finds when its move or wait comes back, so that it may be called in any yield.
#pragma once

#include "core/operation.h"

#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// Stops after the running wire and goes back to the first step.
void CNC_Stop();
// With `E_Stop_Output_Disable` an E-stop, by button or input, switches the five outputs off.
void Switch_Outputs_Off_By_EStop();
// What a stopped machine looks like, whichever way it was stopped: the commanded position is the
// live one, the next run begins at `StartingStep`, no repeat is open.
void Settle_Stopped();

// Called first. False, with a status text, while the E-stop is set, a compile runs or the drive is
// missing; false in silence while something moves. Otherwise clears what a past operation left
// (stop request, ESC, its text).
bool Begin_Operation(Operation wanted);
// Such an operation in the ledger until the end of the scope; Stop is enabled for as long. At its
// end the machine rests, so that the measured feed is 0.
class Motion_Scope {
 public:
  explicit Motion_Scope(Operation what);
  ~Motion_Scope();
  Motion_Scope(const Motion_Scope&) = delete;
  Motion_Scope& operator=(const Motion_Scope&) = delete;

 private:
  std::optional<Operation_Scope> Entry;
};
// After ReTool the way back is open, and its button blinks; any other motion shuts it.
void Show_Retool_Way_Back();
void ResetRetoolDisplay();
// Another machine setup is loaded: what earlier operations left (directions, step counts, where
// ReTool would return to, estimate) belongs to the machine before. Only while nothing moves.
void Forget_Operations();
// Why the operation ended before its time, in the operator's words; empty when it did not.
std::string_view End_Reason();
// Says it in panel 1.
void Announce_End();

// True when nothing moves, no run is paused and no program is being compiled. Otherwise says in
// panel 1 that `what` ("Can't open file", ...) has to wait. For opening, compiling and loading a
// machine setup.
bool Stopped_For(std::string_view what);

}  // namespace norvik
