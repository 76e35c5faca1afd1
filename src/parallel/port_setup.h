// port_setup.h: the parallel pages of the port dialog: pins of a connector, or ports and bits.
//
// The store keeps a port and a bit for each function (pin_map.h), so that any card works. The page
// Bit Setup shows just that; the page Pin Setup is the friendlier view of it for the 25-pin
// connector at one base address and is never stored:
//
//   base      data     out   pins 2..9         = bits 0..7
//   base + 1  status   in    pins 15 13 12 10 11 = bits 3 4 5 6 7
//   base + 2  control  out   pins 1 14 16 17   = bits 0..3
//
// Choosing a pin fills port and bit; typing a port or bit shows its pin, if it has one. One of the
// pages is live at a time. Nothing acts before it is saved.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <string>

namespace norvik {

// Texts of one function's combos. "NU" is not used; a place that no pin has shows an empty pin.
struct Port_Setup_Row {
  std::string Pin = "NU", Port = "&H378", Bit = "NU";
  bool Invert = false;
};

// Which page is live.
inline constexpr std::int16_t Bit_Setup_Page = 1, Pin_Setup_Page = 2;

struct Port_Setup_Form_State {
  Indexed<Port_Setup_Row, 1, 17> Output;  // by output slot
  Indexed<Port_Setup_Row, 0, 5> Input;    // by input slot
  std::string Combo_LPT_Pin_Port;         // base address of the connector
  std::int16_t Option_LPT_Setup_Type = Bit_Setup_Page;
  bool Pins_Enabled = false, Bits_Enabled = true;
  std::int16_t Option_Port_Type = 1;  // Parallel_Port_Type: 1 the parallel port
  bool LPT_Page_Enabled = true;       // false while a serial board is selected

  Indexed<std::string, 1, 5> Text_Output_Name;
  std::int16_t Option_IODLL = 2;
  std::int16_t Option_MotorEnable = 0;
  std::string Combo_MotorEnable_Time;           // seconds
  std::string Text_MCode_High, Text_MCode_Low;  // user M codes of output 5, empty for none
  std::string Label_Hint;                       // what was refused last, and what to write instead
};
extern Port_Setup_Form_State Port_Setup;

inline constexpr const char* Offered_Ports[] = {"&H378", "&H379", "&H37A", "&H278", "&H279",
                                                "&H27A", "&H3BC", "&H3BD", "&H3BE"};
inline constexpr const char* Offered_Output_Pins[] = {"NU", "1", "2", "3",  "4",  "5", "6",
                                                      "7",  "8", "9", "14", "16", "17"};
inline constexpr const char* Offered_Input_Pins[] = {"NU", "10", "11", "12", "13", "15"};
inline constexpr const char* Offered_Bits[] = {"NU", "0", "1", "2", "3", "4", "5", "6", "7"};
inline constexpr int Offered_Enable_Times[] = {30, 60, 90, 120, 180, 240, 300, 600, 1200, 3600};

// Shows the setup.
void Port_Setup_Form_Load();
// A pin was chosen: fills port and bit.
void Check_Output_Pin(int slot);
void Check_Input_Pin(int slot);
// A bit or port was changed: shows the pin.
void Check_Output_Bit(int slot);
void Check_Input_Bit(int slot);
// The connector's base address was changed: all functions that have a pin go with it. An address
// that cannot be read is refused with the log line "Check_Pin_Port_Error Bad Address".
void Check_Pin_Port();
// The port of a row was typed; one that cannot be read is refused with a log line and the stored
// one comes back.
void Check_Output_Bit_Port(int slot);
void Check_Input_Bit_Port(int slot);
// The page that Option_LPT_Setup_Type names is live.
void Enable_Pins();
void Enable_Bits();
void Option_LPT_Setup_Type_Click(std::int16_t page);
// Greys the page while a serial board is selected.
void PortSelectionDisable();
void Option_Port_Type_Click(std::int16_t type);
// Takes everything into `MachineSetup`, writes the machine file and brings the pins to their idle
// levels. A field that cannot be read keeps its stored value, is logged and named in the hint.
// False when the machine file could not be written.
bool Save_Parallel_Info();

}  // namespace norvik
