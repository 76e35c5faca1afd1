// jog.h: what the jogs of the panel, of the keys and of the joystick share.
//
// A jog has no target, only directions, so it goes straight to the drive, past Machine_Move. A held
// jog ends when its release arrives in a yield of the move, at the next full step.
#pragma once

#include "core/operation.h"
#include "drive/move.h"

#include <functional>
#include <string_view>

namespace norvik {

// Ends a held jog at its next full step; nothing when none runs.
void Release_Jog();

// What jogs of the panel and of the jog window share. True when a jog may start; otherwise says in
// panel 1 why not.
bool Begin_Jog(Operation wanted);
// Runs `jog`. A failure is logged under `name` and told in panel 1.
void Trap_Jog(std::string_view name, const std::function<void()>& jog);
// False, with a status text, for an A that follows another axis.
bool Jogs_By_Itself(int axis);
// Directions of the jog before, for the axes that rest in this one.
Step_Request Jog_Request();
// Adds an axis with the whole steps of a distance, and A with it where A is slaved to that axis.
// Raises a fault when the scale of one of them gives no step count.
void Add_Jog_Axis(Step_Request& request, int axis, bool negative, double distance);
// Runs the jog and keeps its directions. `held`: it ends with a release.
void Run_Jog(const Step_Request& request, bool held);

}  // namespace norvik
