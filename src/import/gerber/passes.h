// passes.h: from the tables of an artwork to the cuts in the line file "Graftmp.txt".
//
// For each pass: lines and pads that repeat others are dropped (import/gerber/clean.h), the rest
// becomes polygons (import/gerber/polygon.h), of which the outline of the union or every edge is
// written (import/gerber/isolation.h); then the line file is cleaned, the thin lines are added and
// the file is sorted (import/gerber/file_steps.h). What runs depends on section `Gerber_Info` of
// the setup.
#pragma once

namespace norvik {

// Appends the cuts of all passes to `Application.Gerber_Scratch`. ESC stops the loop in progress,
// the rest goes on. Empties the thin lines.
void Gerber_Isolation_Passes();

}  // namespace norvik
