#include "ui/setup/setup_windows.h"

#include "ui/setup/jog_table_window.h"
#include "ui/setup/machine_check_window.h"
#include "ui/setup/options_window.h"
#include "ui/setup/port_setup_window.h"
#include "ui/setup/system_timing_window.h"

namespace norvik {

const std::vector<Setup_Window_Row>& Setup_Window_Rows() {
  static const std::vector<Setup_Window_Row> rows = {
      {"Options", "&Options...", "Every setting, page by page, and a search over them",
       "Can't change the options", [] { return new Options_Window; }},
      {"Machine_Check", "Machine c&heck", "What in this setup may surprise you beside the machine",
       "", [] { return new Machine_Check_Window; }},
      {"Port_Setup", "&Port and pins...", "Which pin or bit is what", "Can't change the port setup",
       [] { return new Port_Setup_Window; }},
      {"System_Timing", "System &timing...", "Find the time constant of this computer",
       "Can't find the time constant", [] { return new System_Timing_Window; }},
      {"Table_Setup", "&Keys and joystick...", "Which key or button moves what",
       "Can't change the jog keys", [] { return new Jog_Table_Window; }},
  };
  return rows;
}

}  // namespace norvik
