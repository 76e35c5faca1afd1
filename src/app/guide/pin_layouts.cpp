#include "app/guide/pin_layouts.h"

#include "parallel/connector.h"
#include "parallel/pin_map.h"
#include "parallel/port_setup.h"

#include <array>
#include <string>

namespace norvik {

namespace {

// What boards agree on beside steps and directions: outputs on the control lines, switches and
// E-stop on the status lines.
constexpr Pin_Layout On_Pins(std::string_view name, Indexed<int, 1, 4> step,
                             Indexed<int, 1, 4> direction) {
  Pin_Layout layout;
  layout.Name = name;
  layout.Step = step;
  layout.Direction = direction;
  layout.Output = Indexed<int, 1, 5>{{1, 0, 16, 17, 14}};
  layout.EStop = 10;
  layout.Switch = Indexed<int, 1, 4>{{11, 12, 13, 0}};
  layout.Auxiliary = 15;
  return layout;
}

const std::array Layouts{
    On_Pins("Steps on pins 2, 4, 6, 8, each direction on the pin behind it", {{2, 4, 6, 8}},
            {{3, 5, 7, 9}}),
    On_Pins("Directions on pins 2, 4, 6, 8, each step on the pin behind it", {{3, 5, 7, 9}},
            {{2, 4, 6, 8}}),
    On_Pins("Steps on pins 2 to 5, directions on pins 6 to 9", {{2, 3, 4, 5}}, {{6, 7, 8, 9}}),
};

std::string Pin_Text(int pin) {
  return pin == 0 ? "NU" : std::to_string(pin);
}

// Some lines of the connector turn their level around on the way to the pin.
bool Turned_Around(int pin) {
  for (const Connector_Line& line : Connector_Lines)
    if (line.Pin == pin) return line.Inverted;
  return false;
}

void Show_Output(int slot, int pin) {
  Port_Setup.Output[slot].Pin = Pin_Text(pin);
  Port_Setup.Output[slot].Invert = Turned_Around(pin);
  Check_Output_Pin(slot);
}

// A contact that opens lets the pin go high; an input that is not inverted is on while its bit is
// low.
void Show_Input(int slot, int pin) {
  Port_Setup.Input[slot].Pin = Pin_Text(pin);
  Port_Setup.Input[slot].Invert = !Turned_Around(pin);
  Check_Input_Pin(slot);
}

}  // namespace

std::span<const Pin_Layout> Pin_Layouts() {
  return Layouts;
}

void Show_Pin_Layout(const Pin_Layout& layout) {
  Option_LPT_Setup_Type_Click(Pin_Setup_Page);
  for (int axis = 1; axis <= 4; ++axis) {
    Show_Output(Step_Slot(axis), layout.Step[axis]);
    Show_Output(Direction_Slot(axis), layout.Direction[axis]);
    Show_Output(Enable_Slot(axis), layout.Enable[axis]);
    Show_Input(Limit_Input(axis), layout.Switch[axis]);
  }
  for (int n = 1; n <= 5; ++n) Show_Output(Output_Slot(n), layout.Output[n]);
  Show_Input(EStop_Input, layout.EStop);
  Show_Input(Auxiliary_Input, layout.Auxiliary);
}

}  // namespace norvik
