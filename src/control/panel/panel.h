// panel.h: the panel as a whole: filled at start and kept up to date by its timer.
#pragma once

namespace norvik {

// `Timer1` of the panel, every 250 milliseconds: lost releases of a held jog, then the displays and
// the plot's cursor. With `Axis_Position_Update_Disable` these stand still during a move. What
// watches the machine itself does not hang on this window: `Watch_Machine` in safety.h.
void CNC_Controls_Timer1();

// Fills the record from the setup; at start and after another setup was loaded.
void Load_CNC_Controls();

}  // namespace norvik
