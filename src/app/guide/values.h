// values.h: how the pages of the guide change the setup.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace norvik {

struct Guide_Value {
  std::string Key, Text;
};

// A hint instead of a change, for the handlers of the pages. Answers false.
bool Refuse(std::string_view hint);

// Nothing moves and no run is paused. Otherwise false, with a hint, and `what` ("Can't change the
// pins") in status panel 1.
bool May_Change(std::string_view what);

// All of the values into setup and machine file, the drive's session ended before and begun anew
// after it, or none of them and a hint: while the machine moves, or where one is no value of its
// key. A file that can't be written is told; the values then hold until the program ends.
bool Take_Values(std::initializer_list<Guide_Value> values);

// A number that the operator typed, with either decimal sign. Raises a fault that names `what`.
double Typed_Number(const std::string& text, std::string_view what);
// The text of a number for the machine file and for the fields of the guide.
std::string Guide_Number(double value);

}  // namespace norvik
