#include "parallel/port_setup.h"

#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/connector.h"
#include "parallel/pin_map.h"
#include "parallel/port_display.h"

namespace norvik {

Port_Setup_Form_State Port_Setup;

namespace {

constexpr const char* Not_Used = "NU";
constexpr const char* Not_Used_Bit = "99";

// Absent when the text is no address.
std::optional<std::int32_t> Address_In(const std::string& text) {
  std::optional<std::int32_t> address;
  Trap_With([](const Fault&) {}, [&] { address = Port_Address(text); });
  return address;
}

std::string Bit_Text(const std::optional<int>& bit) {
  return bit ? std::to_string(*bit) : Not_Used;
}

// --- Pin and place -------------------------------------------------------------------------------

const Connector_Line* Line_Of_Pin(const std::string& pin, bool input) {
  for (const Connector_Line& line : Connector_Lines) {
    if (line.Input() == input && std::to_string(line.Pin) == Trim(pin)) return &line;
  }
  return nullptr;
}

// The pin that has the row's place; empty when none has.
std::string Pin_Of_Place(const Port_Setup_Row& row, bool input) {
  if (row.Bit == Not_Used) return Not_Used;
  const auto base = Address_In(Port_Setup.Combo_LPT_Pin_Port);
  const auto port = Address_In(row.Port);
  if (!base || !port) return "";
  for (const Connector_Line& line : Connector_Lines) {
    const bool here = *base + line.Register == *port && std::to_string(line.Bit) == row.Bit;
    if (here && line.Input() == input) return std::to_string(line.Pin);
  }
  return "";
}

void Fill_From_Pin(Port_Setup_Row& row, bool input) {
  const Connector_Line* line = Line_Of_Pin(row.Pin, input);
  const auto base = Address_In(Port_Setup.Combo_LPT_Pin_Port);
  if (line == nullptr || !base) {
    if (row.Pin == Not_Used) row.Bit = Not_Used;
    return;
  }
  row.Port = Port_Text(*base + line->Register);
  row.Bit = std::to_string(line->Bit);
}

void Hint_At_Address(const std::string& text) {
  Port_Setup.Label_Hint =
      "\"" + text + "\" is no port address: write it like &H378. The one before stays.";
}

void Check_Row_Port(Port_Setup_Row& row, std::int32_t stored, bool input) {
  Port_Setup.Label_Hint.clear();
  if (!Address_In(row.Port)) {
    ErrorLogWrite("Check_Bit_Port_Error Bad Address \"" + row.Port + "\"");
    Hint_At_Address(row.Port);
    row.Port = Port_Text(stored);
  }
  row.Pin = Pin_Of_Place(row, input);
}

// --- Load and save -------------------------------------------------------------------------------

template <class Row_Table, class Port_Table, class Bit_Table, class Invert_Table>
void Show_Rows(Row_Table& rows, const Port_Table& ports, const Bit_Table& bits,
               const Invert_Table& inverts, bool input) {
  for (int slot = Row_Table::first; slot <= Row_Table::last; ++slot) {
    Port_Setup_Row& row = rows[slot];
    row.Port = Port_Text(ports[slot]);
    row.Bit = Bit_Text(Bit_In(bits[slot]));
    row.Invert = inverts[slot];
    row.Pin = Pin_Of_Place(row, input);
  }
}

template <class Row_Table, class Port_Table, class Bit_Table, class Invert_Table>
void Take_Rows(const Row_Table& rows, Port_Table& ports, Bit_Table& bits, Invert_Table& inverts) {
  for (int slot = Row_Table::first; slot <= Row_Table::last; ++slot) {
    const Port_Setup_Row& row = rows[slot];
    Trap("Save_Parallel_Info_Error", [&] { ports[slot] = Port_Address(row.Port); });
    bits[slot] = Bit_In(row.Bit) ? Trim(row.Bit) : Not_Used_Bit;
    inverts[slot] = row.Invert;
  }
}

template <class Visit>
void For_Each_Row(Visit&& visit) {
  for (Port_Setup_Row& row : Port_Setup.Output) visit(row, false);
  for (Port_Setup_Row& row : Port_Setup.Input) visit(row, true);
}

}  // namespace

void Port_Setup_Form_Load() {
  Port_Setup = {};
  Port_Setup.Combo_LPT_Pin_Port = Port_Text(MachineSetup.Parallel_LPT_Pin_Port);
  Show_Rows(Port_Setup.Output, MachineSetup.Output_Port, MachineSetup.Parallel_Output_Bit,
            MachineSetup.Parallel_Output_Bit_Invert, false);
  Show_Rows(Port_Setup.Input, MachineSetup.Input_Port, MachineSetup.Parallel_Input_Bit,
            MachineSetup.Parallel_Input_Bit_Invert, true);
  for (int n = 1; n <= 5; ++n) Port_Setup.Text_Output_Name[n] = MachineSetup.Output_Names[n];
  Port_Setup.Option_IODLL = MachineSetup.Parallel_IODLL;
  Port_Setup.Option_MotorEnable = MachineSetup.Parallel_MotorEnable_Option;
  Port_Setup.Combo_MotorEnable_Time = Shortest_Text(MachineSetup.Parallel_MotorEnable_Time);
  Port_Setup.Text_MCode_High = MachineSetup.Parallel_MCode_High[0];
  Port_Setup.Text_MCode_Low = MachineSetup.Parallel_MCode_Low[0];
  Option_LPT_Setup_Type_Click(MachineSetup.Parallel_Setup_Type);
  Option_Port_Type_Click(MachineSetup.Parallel_Port_Type);
}

void Check_Output_Pin(int slot) {
  Fill_From_Pin(Port_Setup.Output[slot], false);
}
void Check_Input_Pin(int slot) {
  Fill_From_Pin(Port_Setup.Input[slot], true);
}

void Check_Output_Bit(int slot) {
  Port_Setup_Row& row = Port_Setup.Output[slot];
  row.Pin = Pin_Of_Place(row, false);
}

void Check_Input_Bit(int slot) {
  Port_Setup_Row& row = Port_Setup.Input[slot];
  row.Pin = Pin_Of_Place(row, true);
}

void Check_Pin_Port() {
  Port_Setup.Label_Hint.clear();
  if (!Address_In(Port_Setup.Combo_LPT_Pin_Port)) {
    Hint_At_Address(Port_Setup.Combo_LPT_Pin_Port);
    ErrorLogWrite("Check_Pin_Port_Error Bad Address");
    Port_Setup.Combo_LPT_Pin_Port = Port_Text(MachineSetup.Parallel_LPT_Pin_Port);
    return;
  }
  For_Each_Row([](Port_Setup_Row& row, bool input) {
    if (row.Pin.empty()) {
      row.Pin = Pin_Of_Place(row, input);
    } else {
      Fill_From_Pin(row, input);
    }
  });
}

void Check_Output_Bit_Port(int slot) {
  Check_Row_Port(Port_Setup.Output[slot], MachineSetup.Output_Port[slot], false);
}

void Check_Input_Bit_Port(int slot) {
  Check_Row_Port(Port_Setup.Input[slot], MachineSetup.Input_Port[slot], true);
}

void Enable_Pins() {
  Port_Setup.Pins_Enabled = Port_Setup.Option_LPT_Setup_Type == Pin_Setup_Page;
}

void Enable_Bits() {
  Port_Setup.Bits_Enabled = Port_Setup.Option_LPT_Setup_Type != Pin_Setup_Page;
}

void Option_LPT_Setup_Type_Click(std::int16_t page) {
  Port_Setup.Option_LPT_Setup_Type = page;
  Enable_Pins();
  Enable_Bits();
}

void PortSelectionDisable() {
  Port_Setup.LPT_Page_Enabled = Port_Setup.Option_Port_Type == 1;
}

void Option_Port_Type_Click(std::int16_t type) {
  Port_Setup.Option_Port_Type = type;
  PortSelectionDisable();
}

bool Save_Parallel_Info() {
  Port_Setup.Label_Hint.clear();
  Take_Rows(Port_Setup.Output, MachineSetup.Output_Port, MachineSetup.Parallel_Output_Bit,
            MachineSetup.Parallel_Output_Bit_Invert);
  Take_Rows(Port_Setup.Input, MachineSetup.Input_Port, MachineSetup.Parallel_Input_Bit,
            MachineSetup.Parallel_Input_Bit_Invert);
  Trap("Save_Parallel_Info_Error",
       [] { MachineSetup.Parallel_LPT_Pin_Port = Port_Address(Port_Setup.Combo_LPT_Pin_Port); });
  const bool time_read = Trap("Save_Parallel_Info_Error", [] {
    MachineSetup.Parallel_MotorEnable_Time =
        To_Single(To_Double(Port_Setup.Combo_MotorEnable_Time));
  });
  if (!time_read)
    Port_Setup.Label_Hint = "\"" + Port_Setup.Combo_MotorEnable_Time +
                            "\" is no number of seconds. The time before stays.";
  for (int n = 1; n <= 5; ++n) MachineSetup.Output_Names[n] = Port_Setup.Text_Output_Name[n];
  MachineSetup.Parallel_Setup_Type = Port_Setup.Option_LPT_Setup_Type;
  MachineSetup.Parallel_IODLL = Port_Setup.Option_IODLL;
  MachineSetup.Parallel_MotorEnable_Option = Port_Setup.Option_MotorEnable;
  MachineSetup.Parallel_MCode_High[0] = Trim(Port_Setup.Text_MCode_High);
  MachineSetup.Parallel_MCode_Low[0] = Trim(Port_Setup.Text_MCode_Low);
  MachineSetup.Parallel_Port_Type = Port_Setup.Option_Port_Type;
  const bool saved = SaveMachineSetup();
  Drive().Idle();
  return saved;
}

}  // namespace norvik
