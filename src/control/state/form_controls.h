// form_controls.h: the plain records that stand for the controls of a window.
//
// Handlers read and write these; a window copies them to its widgets when it is told that they
// changed, and copies what the operator typed into them before it calls a handler. No handler of a
// record's change runs because logic wrote to the record.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

// Colours that mean something. Red and Green are the stored colour values (blue, green, red from
// the highest byte to the lowest); Normal is whatever the desktop gives a control.
enum class Control_Color : std::int32_t { Normal = -1, Red = 255, Green = 65280 };

struct Button_Control {
  std::string Caption;
  bool Enabled = true;
  Control_Color Color = Control_Color::Normal;
};

struct Label_Control {
  std::string Caption;
  Control_Color Color = Control_Color::Normal;
};

struct Text_Control {
  std::string Text;
  bool Enabled = true;
};

struct Check_Control {
  bool Value = false;
  Control_Color Color = Control_Color::Normal;
};

struct Slider_Control {
  std::int32_t Value = 0, Maximum = 0;
  bool Visible = false;
};

struct Combo_Control {
  std::vector<std::string> List;
  int ListIndex = -1;  // -1: none selected
  std::string Text;
};

// Key codes that handlers of text boxes ask for.
inline constexpr int Key_Enter = 13;

}  // namespace norvik
