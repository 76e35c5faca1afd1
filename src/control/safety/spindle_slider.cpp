#include "control/safety/spindle_slider.h"

#include "control/displays/displays.h"
#include "control/state/cnc_controls_form.h"
#include "core/application.h"
#include "core/messages.h"
#include "drive/drive.h"

namespace norvik {

void Slider_RPM_Change() {
  const std::string_view missing = Drive().Missing();
  if (Machine.EStop_Flag)
    Tell("The motors are disabled: the spindle's speed is not changed.", 5);
  else if (!missing.empty())
    Tell(missing, 5);
  else
    Drive().Set_Spindle_Level(CNC_Controls.Slider_RPM.Value);
  Display_IO();
}

}  // namespace norvik
