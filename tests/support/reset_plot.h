// State of the plot, and of the rooms below it, as at the start of a program.
#pragma once

#include "plot/cursor.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/view.h"
#include "support/reset_compiler.h"

namespace norvik {

inline void Reset_Plot() {
  Reset_Compiler();
  View = {};
  Plot = {};
  Plot_Form = {};
  Plot_Host = {};
  Cursor = {};
}

}  // namespace norvik
