// simulation_settings.h: what the simulated machine is like.
//
// Defaults follow the machine setup; section "Simulated Machine" of the pointer file may give other
// values (it concerns this computer and not the machine). One table names the keys.
//
//   travel                X, Y, A: 0 to Axis_Depth; Z: half of it to both sides of 0; moved so that
//   the
//                         carriage lies inside
//   hard stops            2 percent of the travel beyond its ends
//   switches              one at each end, from half way to the hard stop on
//   motor                 twice the axis's feed limit at most, no limit of acceleration
#pragma once

namespace norvik {

// Settings of all axes and switches from `MachineSetup` and the carriages' places.
void Default_Simulation_Settings();
// Values of the pointer file over the present ones. A text that is no number is logged and leaves
// the value.
void Load_Simulation_Settings();

}  // namespace norvik
