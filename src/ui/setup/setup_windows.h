// setup_windows.h: the windows that the menu Machine opens: looking at a setup and changing it.
//
// Each shows the setup as it was when it opened and changes nothing before it is applied. So each
// opens anew, and none stays open while another machine is loaded.
#pragma once

#include <functional>
#include <vector>

class QWidget;

namespace norvik {

struct Setup_Window_Row {
  const char* Name;  // of the window; its entry is "Menu_Machine_" and the name
  const char* Menu_Text;
  const char* Tip;
  const char* Refused;  // why it does not open while the machine moves; empty: it always opens
  std::function<QWidget*()> Make;
};

const std::vector<Setup_Window_Row>& Setup_Window_Rows();

}  // namespace norvik
