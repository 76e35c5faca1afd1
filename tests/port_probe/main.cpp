// port_probe WAY RECORD: what no program run does to a real port, for scripts/port_check.sh. Reads
// back what it wrote to the data and the control register at 888 and 890, then steps a blocked
// axis, whose bytes must go to the dummy address. Moves pins: never on a machine with motors.
#include "core/application.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"
#include "platform/linux/linux_platform.h"

#include <cstdlib>
#include <iostream>

namespace norvik {
namespace {

bool Reads_Back(std::int32_t port, std::uint8_t pins) {
  bool same = true;
  for (const int value : {0x55, 0xAA, 0x00, 0xFF}) {
    const auto byte = static_cast<std::uint8_t>(value & pins);
    PPSetPort(port, byte, true);
    same = same && (PPGetPort(port) & pins) == byte;
  }
  return same;
}

int Probe(std::int16_t way, const std::string& record) {
  Restore_Factory_Setup();
  MachineSetup.Parallel_IODLL = way;
  MachineSetup.Parallel_Output_Bit[Step_Slot(1)] = "0";
  Install_Linux_Clock();
  Install_Direct_Ports(&MachineSetup.Parallel_IODLL);
  Record_Ports_To_File(record);
  const bool data = Reads_Back(888, 0xFF), control = Reads_Back(890, 0x0F);
  PPSetPort(888, 0x54, true);
  for (int i = 0; i < 20; ++i) Toggle_Step(1, false, false, false);
  const bool rested = PPGetPort(888) == 0x54 && Machine.Position[1] == 0;
  Stop_Port_Recorder();
  std::cout << "data " << data << ", control " << control << ", blocked axis rests " << rested
            << ", failures " << Port_Failures.Reads.Count + Port_Failures.Writes.Count << '\n';
  return data && control && rested ? 0 : 1;
}

}  // namespace
}  // namespace norvik

int main(int argument_count, char** arguments) {
  if (argument_count != 3) {
    std::cerr << "port_probe WAY RECORD\n";
    return 2;
  }
  return norvik::Probe(static_cast<std::int16_t>(std::atoi(arguments[1])), arguments[2]);
}
