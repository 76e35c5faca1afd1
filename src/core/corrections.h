// corrections.h: behaviour that is stated and can hurt, and what an operator has chosen instead.
//
// A correction is a row of section Corrections in the settings table: off in a fresh machine file,
// on where the operator said so. The rows say what each does; here is who is on.
#pragma once

#include "core/setup_table.h"

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// All of them, in the order of the table.
std::vector<const Setup_Row*> Correction_List();
// By the key, in any case; null when there is none.
const Setup_Row* Find_Correction(std::string_view key);

// True when `MachineSetup` has another value than the factory's.
bool Correction_Is_On(const Setup_Row& row);
int Corrections_On();
// Those that are on, "Home_Needs_Switch, Limit_Filter_Steps 40"; empty: none.
std::string Words_About_Corrections();
// The same as a line of a report, "Corrections: ..." without a line end; empty: none is on.
std::string Corrections_Line();

enum class Correction_Set {
  As_The_System_Was,  // all off
  Recommended,        // those that suit every machine on; the others as they are
};
// Changes `MachineSetup` alone. Those whose value is another one now.
std::vector<const Setup_Row*> Take_Corrections(Correction_Set set);

// The page for operators as Markdown: docs/corrections.md.
std::string Corrections_Page();

}  // namespace norvik
