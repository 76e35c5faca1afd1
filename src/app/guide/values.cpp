#include "app/guide/values.h"

#include "app/drive_session.h"
#include "app/guide/guide.h"
#include "control/motion/motion.h"
#include "control/panel/panel.h"
#include "control/state/cnc_controls_form.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/number_text.h"
#include "core/numbers.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "plot/view.h"

#include <vector>

namespace norvik {

namespace {

constexpr const char* Machine_Moves =
    "Not while the machine moves or a run is paused. Press Stop, then try again.";

struct Earlier_Value {
  Setup_Key Key;
  std::string Text;
};

void Change_All(std::initializer_list<Guide_Value> values, std::vector<Earlier_Value>& earlier) {
  for (const Guide_Value& value : values) {
    const auto key = Find_Setup_Key(value.Key);
    if (!key) throw Fault{Fault_Number::Internal, "There is no setting " + value.Key + "."};
    earlier.push_back({*key, Setup_Text(*key->Row, key->Index)});
    Change_Setup_Key(*key, value.Text);
  }
}

// What shows the setup shows it as it is now.
void Show_Changed_Setup() {
  Load_CNC_Controls();
  CNC_Controls_Host.Form_Changed();
  Zoom_Table();
}

}  // namespace

bool Refuse(std::string_view hint) {
  Guide_Form.Label_Hint = hint;
  Guide_Host.Form_Changed();
  return false;
}

bool May_Change(std::string_view what) {
  return Stopped_For(what) || Refuse(Machine_Moves);
}

bool Take_Values(std::initializer_list<Guide_Value> values) {
  if (!May_Change("Can't change the setup")) return false;
  std::vector<Earlier_Value> earlier;
  std::string refused;
  End_Drive_Session();
  Trap_With([&](const Fault& fault) { refused = fault.Description; },
            [&] { Change_All(values, earlier); });
  if (!refused.empty())
    for (const Earlier_Value& value : earlier)
      Read_Setup_Text(*value.Key.Row, value.Key.Index, value.Text);
  const bool saved = refused.empty() && SaveMachineSetup();
  Begin_Drive_Session();
  Show_Changed_Setup();
  if (!refused.empty()) return Refuse(refused);
  Guide_Form.Label_Hint =
      saved ? "" : "The machine file can't be written: this holds until Norvik ends.";
  return true;
}

double Typed_Number(const std::string& text, std::string_view what) {
  double value = 0;
  const bool read = Trap_With([](const Fault&) {}, [&] { value = RegionalNumber(text); });
  if (!read || text.empty())
    throw Fault{Fault_Number::Type_Mismatch,
                std::string(what) +
                    (text.empty() ? ": type a number." : ": \"" + text + "\" is no number.")};
  return value;
}

std::string Guide_Number(double value) {
  std::string text = Format_Number(value, "0.######");
  if (!text.empty() && text.back() == Application.DecimalSeparator) text.pop_back();
  return text;
}

}  // namespace norvik
