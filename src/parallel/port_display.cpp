#include "parallel/port_display.h"

#include "core/fault.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "parallel/connector.h"
#include "parallel/ports.h"

#include <array>
#include <charconv>

namespace norvik {

Port_IO_Form_State Port_IO;

namespace {

void Light(int pin, bool high) {
  for (const Connector_Line& line : Connector_Lines) {
    if (line.Pin != pin) continue;
    (line.Input() ? Port_IO.Command_PinIO : Port_IO.Command_Pin)[pin] = high;
  }
}

std::int32_t Hexadecimal(std::string_view digits) {
  std::uint32_t value = 0;
  const auto end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  if (error != std::errc() || stop != end || value > 0xFFFF) {
    throw Fault(Fault_Number::Type_Mismatch,
                "\"&H" + std::string(digits) + "\" is no port address from &H0 to &HFFFF");
  }
  return static_cast<std::int32_t>(value);
}

}  // namespace

std::int32_t Port_Address(const std::string& text) {
  const std::string trimmed = Upper(Trim(text));
  if (trimmed.starts_with("&H")) return Hexadecimal(std::string_view(trimmed).substr(2));
  const std::int32_t value = To_Int32(To_Double(trimmed));
  return value < 0 ? value + 65536 : value;
}

std::string Port_Text(std::int32_t address) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), address, 16).ptr;
  return "&H" +
         Upper(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

void Port_IO_SetupCombos() {
  Port_IO.Combo_Port_Address = Port_Text(MachineSetup.Parallel_Display_IO_Address);
}

void Port_IO_SaveIO() {
  Trap("SaveIO_Error", [] {
    MachineSetup.Parallel_Display_IO_Address = Port_Address(Port_IO.Combo_Port_Address);
    WriteSetup("Parallel Display", "Parallel_Display_IO_Address",
               std::to_string(MachineSetup.Parallel_Display_IO_Address));
  });
}

void Combo_Port_Address_Change() {
  Port_IO_SaveIO();
}
void Combo_Port_Address_Click() {
  Port_IO_SaveIO();
}

void Port_IO_Timer1() {
  const std::int32_t base = MachineSetup.Parallel_Display_IO_Address;
  std::array<std::uint8_t, 3> bytes{};
  Port_IO.Text_PortIO.clear();
  for (int place = 0; place < 3; ++place) {
    const std::uint8_t byte = PPGetPort(base + place);
    bytes[static_cast<std::size_t>(place)] = byte;
    if (place > 0) Port_IO.Text_PortIO += "\r\n";
    Port_IO.Text_PortIO += std::to_string(byte);
  }
  for (const Connector_Line& line : Connector_Lines) {
    const bool set = (bytes[static_cast<std::size_t>(line.Register)] >> line.Bit & 1) != 0;
    if (set != line.Inverted) {
      Port_IO_SetColor(line.Pin);
    } else {
      Port_IO_ResetColor(line.Pin);
    }
  }
}

void Port_IO_SetColor(int pin) {
  Light(pin, true);
}
void Port_IO_ResetColor(int pin) {
  Light(pin, false);
}

}  // namespace norvik
