// port_display.h: the window Port_IO, the live state of the 25-pin connector for finding wiring
// faults.
//
// Three registers at a base address, one lamp for each pin; a lit lamp is a high level at the
// connector, so the lines that the port inverts (~) are turned around:
//
//   base      data     bits 0..7       pins 2..9
//   base + 1  status   bits 3 4 5 6 7~ pins 15 13 12 10 11~
//   base + 2  control  bits 0~ 1~ 2 3~ pins 1~ 14~ 16 17~
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <string>

namespace norvik {

// Pins of the data and control registers have their lamp in `Command_Pin`, those that can only be
// read in `Command_PinIO`; entries of other pins stay unlit.
struct Port_IO_Form_State {
  std::string Combo_Port_Address;  // "&H378", or any typed address in that form
  Indexed<bool, 1, 17> Command_Pin, Command_PinIO;
  std::string Text_PortIO;    // the three bytes in decimal, one to a line
  int Timer1_Interval = 200;  // ms
};
extern Port_IO_Form_State Port_IO;

inline constexpr const char* Port_IO_Addresses[] = {"&H378", "&H278", "&H3BC"};

// When the window opens: the combo shows the stored address.
void Port_IO_SetupCombos();
// Takes the combo's text into `Parallel_Display_IO_Address` and writes the key at once. A text that
// is no number is logged and changes nothing.
void Port_IO_SaveIO();
void Combo_Port_Address_Change();
void Combo_Port_Address_Click();
// Reads the registers and lights the lamps.
void Port_IO_Timer1();
void Port_IO_SetColor(int pin);
void Port_IO_ResetColor(int pin);

// Address in a text: "&H378" is hexadecimal, other texts are decimal; 16-bit values that read as
// negative count from 65536 down, so "&HD000" is 53248. Raises a type fault when it is no number.
std::int32_t Port_Address(const std::string& text);
// The other way: 888 is "&H378".
std::string Port_Text(std::int32_t address);

}  // namespace norvik
