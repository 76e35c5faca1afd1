// machine_fixture.h: a small machine on two ports, seen from its pins.
#pragma once

#include "core/application.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"
#include "support/findings.h"
#include "support/reset.h"

#include <cstdint>
#include <string>

#include <gmock/gmock.h>

namespace norvik {

inline constexpr std::uint16_t Data = 888, Status = 889, Control = 890, Second = 632;

// X on bits 0 (step), 1 (direction) of the data register, its enable on the control register, its
// switch on bit 3 and the E-stop on bit 7 of the status register; outputs on a second card. 100
// steps per unit, a travel of 0 to 10.
class Simulated_Machine_Test : public testing::Test {
 protected:
  Simulated_Machine_Test() {
    Reset_Simulate();
    Restore_Factory_Setup();
    MachineSetup.Axis_SPI.Fill(100);
    Wire_Output(1, Data, 0);
    Wire_Output(2, Data, 1);
    Wire_Output(3, Control, 0);
    for (int n = 1; n <= 5; ++n) Wire_Output(12 + n, Second, n - 1);
    Wire_Input(0, 7);
    Wire_Input(1, 3);
    Wire_Input(5, 4);
    Install_Virtual_Clock();
    Install_Simulated_Machine();
    Start();
  }
  ~Simulated_Machine_Test() override { Remove_Virtual_Clock(); }

  static void Wire_Output(int slot, std::uint16_t port, int bit) {
    MachineSetup.Output_Port[slot] = port;
    MachineSetup.Parallel_Output_Bit[slot] = std::to_string(bit);
  }
  static void Wire_Input(int slot, int bit) {
    MachineSetup.Input_Port[slot] = Status;
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(bit);
  }
  // Builds the machine, with its motors on and without a limit of the step rate.
  void Start() {
    Reset_Simulated_Machine();
    Simulated_Machine.Access_Time = 0;
    Settings().Top_Rate = 0;
    Write(Control, 1);
    Wait(10);
  }
  static Simulated_Axis& X() { return Simulated_Machine.Axes[1]; }
  static Simulated_Axis_Settings& Settings() { return X().Settings; }

  static void Write(std::uint16_t port, int value) {
    Platform.Port_Write(port, static_cast<std::uint8_t>(value));
  }
  static int Read(std::uint16_t port) { return Platform.Port_Read(port); }
  static void Wait(std::int32_t us) { Platform.Delay_Microseconds(us); }
  // Steps in one direction, one every `us` microseconds.
  static void Step(int count, bool negative = false, std::int32_t us = 1000) {
    const int direction = negative ? 2 : 0;
    Write(Data, direction);
    Wait(10);
    for (int i = 0; i < count; ++i) {
      Write(Data, direction + 1);
      Wait(us / 2);
      Write(Data, direction);
      Wait(us - us / 2);
    }
  }
  static std::string First_Text(Finding_Kind kind) {
    for (const Finding& finding : Findings.List) {
      if (finding.Kind == kind) return finding.Text;
    }
    return "";
  }

  Scripted_Platform scripted;
};

}  // namespace norvik
