// adapt_program.h: a program of another controller, adapted in the window.
//
//   checked --lines would be lost or misread--> bar (adapt_bar.h): Adapt, Show, Leave
//   Adapt: one step that the editor can undo; Save asks for a name, the file opened stays as it is
//
// With the correction Adapt_Always a program is adapted when it is opened, where it needs it.
#pragma once

namespace norvik {

// Another program was opened and checked.
void Adapt_As_Opened();

// Refused unless the machine stands. What is left to the operator is told.
void Command_Adapt_Click();

}  // namespace norvik
