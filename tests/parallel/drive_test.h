// drive_test.h: a machine file, a scripted environment and a log of all port accesses.
//
//   port 888   data      X step, X dir, Y step, Y dir, Z step, Z dir, A step, A dir (bits 0..7)
//   port 890   control   X, Y, Z, A enable (bits 0..3)
//   port 632   data 2    outputs 1..5 (bits 0..4)
//   port 889   status    X, Y, Z, A switch (bits 3..6), E-stop (bit 7), all active low
//   port 633   status 2  auxiliary input (bit 3)
//
// 1000 steps per unit, no ramps, no limits of the axes, time constant 0: 600 IPM are half steps of
// 50 microseconds.
#pragma once

#include "core/application.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"

#include <gmock/gmock.h>

namespace norvik {

inline void Set_Standard_Pins() {
  for (int slot = 1; slot <= 12; ++slot) {
    const int axis = (slot - 1) / 3, role = (slot - 1) % 3;
    MachineSetup.Output_Port[slot] = role == 2 ? 890 : 888;
    MachineSetup.Parallel_Output_Bit[slot] = std::to_string(role == 2 ? axis : 2 * axis + role);
  }
  for (int n = 1; n <= 5; ++n) {
    MachineSetup.Output_Port[12 + n] = 632;
    MachineSetup.Parallel_Output_Bit[12 + n] = std::to_string(n - 1);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    MachineSetup.Input_Port[slot] = slot == 5 ? 633 : 889;
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(slot == 0   ? 7
                                                           : slot == 5 ? 3
                                                                       : slot + 2);
  }
}

inline void Set_Standard_Machine() {
  Reset_Parallel();
  Restore_Factory_Setup();
  Set_Standard_Pins();
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Axis_Max_Feed_Rate.Fill(10'000);
  MachineSetup.Axis_Ramping = false;
  MachineSetup.Parallel_Time_Constant = 0;
}

class Drive_Test : public testing::Test {
 protected:
  Drive_Test() {
    Set_Standard_Machine();
    scripted.Yield_Nanoseconds = 0;
    scripted.Record_Delays = true;
    scripted.Ports = {{888, 0}, {890, 0}, {632, 0}, {889, 255}, {633, 255}};
    Drive_Host.Stop_Run = [this] { ++Stops; };
    scripted.On_Port_Read = [this](std::uint16_t port) {
      Accesses += "R" + std::to_string(port) + " ";
      if (On_Read) On_Read(port);
      return scripted.Ports.contains(port) ? scripted.Ports[port] : std::uint8_t{255};
    };
    scripted.On_Port_Write = [this](std::uint16_t port, std::uint8_t value) {
      Accesses += "W" + std::to_string(port) + " ";
      scripted.Ports[port] = value;
    };
    Start_Port_Recorder([this](const std::vector<Port_Write_Record>& block) {
      Written.insert(Written.end(), block.begin(), block.end());
    });
  }
  ~Drive_Test() override {
    Stop_Port_Recorder();
    Reset_Parallel();
  }

  // Ends the recording and gives its writes of one port as "t=value" with t in microseconds.
  std::string Writes(std::uint16_t port) {
    Stop_Port_Recorder();
    std::string text;
    for (const Port_Write_Record& record : Written) {
      if (record.Port != port) continue;
      text += std::to_string(record.Time / 1000) + "=" + std::to_string(record.Value) +
              (record.Real ? " " : "! ");
    }
    return text;
  }

  static Step_Request Move(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t a,
                           double ipm = 600) {
    Step_Request request;
    request.Steps = {{x, y, z, a}};
    request.Start = request.Run = request.End = ipm;
    return request;
  }

  Scripted_Platform scripted;
  std::string Accesses;
  std::function<void(std::uint16_t)> On_Read;
  std::vector<Port_Write_Record> Written;
  int Stops = 0;
};

}  // namespace norvik
