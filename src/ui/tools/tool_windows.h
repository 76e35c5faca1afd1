// tool_windows.h: the lists and the motion tools that the menu Window opens.
//
// Each shows what stands in the setup or in a file when it opens, so each opens anew.
#pragma once

#include <functional>
#include <vector>

class QWidget;

namespace norvik {

struct List_Window_Row {
  const char* Name;  // of the window; its entry is "Menu_Window_" and the name
  const char* Menu_Text;
  std::function<QWidget*()> Make;
  std::function<bool()> Offered;  // whether its entry stands in the menu
};

const std::vector<List_Window_Row>& List_Window_Rows();

}  // namespace norvik
