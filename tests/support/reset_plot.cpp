#include "plot/cursor.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/view.h"
#include "support/reset.h"

namespace norvik {

void Reset_Plot() {
  Reset_Compiler();
  View = {};
  Plot = {};
  Plot_Form = {};
  Plot_Host = {};
  Cursor = {};
}

}  // namespace norvik
