// control_fixture.h: a panel, a drive and a simulated machine on a scripted environment.
//
// Time is virtual: a delay of the step loop moves the clock, nothing else does, so that a test can
// act at a half step by its number (`At_Half_Step`) as hardware and fingers do.
//
// The machine: four axes of 400 steps per unit on port 888, enables on 890, outputs on 1000, E-stop
// and switches on 889, auxiliary input on 1001, all inputs active low. Ramps are off unless a test
// switches them on.
#pragma once

#include "compiler/compiler_state.h"
#include "compiler/program_text.h"
#include "compiler/program_wire.h"
#include "control/cnc_controller.h"
#include "control/cnc_controls_form.h"
#include "control/connect.h"
#include "control/control_texts.h"
#include "control/controller_state.h"
#include "control/displays.h"
#include "control/jog_key.h"
#include "control/joystick_jog.h"
#include "control/knob.h"
#include "control/machine_move.h"
#include "control/run_plot_host.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "parallel/drive_host.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/scripted/scripted_platform.h"
#include "simulate/simulated_machine.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {

inline constexpr std::int32_t Step_Port = 888, Input_Port_Address = 889, Enable_Port = 890,
                              Output_Port_Address = 1000, Aux_Port = 1001;

class Control_Test : public ::testing::Test {
 protected:
  Control_Test() {
    Folder =
        std::filesystem::temp_directory_path() / ("norvik_control_" + std::to_string(::getpid()));
    std::filesystem::create_directories(Folder);
    Reset_State();
    Set_Up_Files();
    Set_Up_Machine();
    Reset_Simulated_Machine();
    Install_Simulated_Machine();
    Watch_Delays();
    Connect_Control();
  }
  ~Control_Test() override {
    Stop_Port_Recorder();
    Reset_State();
    std::filesystem::remove_all(Folder);
  }

  static void Reset_State() {
    Application = {};
    Machine = {};
    MachineSetup = {};
    Messages = {};
    Controller = {};
    CNC_Controls = {};
    CNC_Controls_Host = {};
    Run_Plot_Host = {};
    Move_Trace = {};
    Knob = {};
    JogKey = {};
    JogKey_Form = {};
    Joystick_Jog = {};
    Pins = {};
    Timing = {};
    Step_Engine = {};
    Drive_Host = {};
    Compile_Tables = {};
    Compile_Status = {};
    GCode_Program = {};
    Take_Program_Wire({});
  }

  void Set_Up_Files() {
    Application.AppDirectory = Application.Pointer_Folder = Application.Table_Folder =
        Folder.string();
    Application.MachineFile = (Folder / "machine.ini").string();
    Application.ErrorFile = (Folder / "NorvikErr.txt").string();
    Move_Trace.Path = "";
  }

  static void Set_Up_Machine() {
    Restore_Factory_Setup();
    auto& setup = MachineSetup;
    for (int axis = 1; axis <= 4; ++axis) {
      setup.Axis_SPI[axis] = 400;
      setup.Axis_Max_Feed_Rate[axis] = 1000;
      Wire_Output(Step_Slot(axis), Step_Port, 2 * (axis - 1));
      Wire_Output(Direction_Slot(axis), Step_Port, 2 * (axis - 1) + 1);
      Wire_Output(Enable_Slot(axis), Enable_Port, axis - 1);
      Wire_Input(axis, Input_Port_Address, 3 + axis);
    }
    for (int n = 1; n <= 5; ++n) Wire_Output(Output_Slot(n), Output_Port_Address, n - 1);
    Wire_Input(EStop_Input, Input_Port_Address, 3);
    Wire_Input(Auxiliary_Input, Aux_Port, 0);
    setup.Axis_Ramping = false;
    setup.Axis_Ramp_Start = 10;
    setup.Axis_Feed_Rate_Travel = setup.Axis_Feed_Rate_Cut = setup.Axis_Feed_Rate_Jogging = 60;
    setup.Parallel_Time_Constant = 0;
    setup.Parallel_MotorEnable_Option = 1;
    setup.Sound_Files.Fill("Disabled");
    for (int slot = 0; slot <= 7; ++slot) setup.Sound_Files[slot] = std::to_string(slot);
    Machine.EndingStep = 0;
  }
  static void Wire_Output(int slot, std::int32_t port, int bit) {
    MachineSetup.Output_Port[slot] = port;
    MachineSetup.Parallel_Output_Bit[slot] = std::to_string(bit);
  }
  static void Wire_Input(int slot, std::int32_t port, int bit) {
    MachineSetup.Input_Port[slot] = port;
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(bit);
  }

  // Axes without ends and switches.
  static void Free_Axes() {
    for (int axis = 1; axis <= 4; ++axis) {
      Simulated_Machine.Axes[axis].Settings.Limited = false;
      Simulated_Machine.Inputs[axis].Zones = {};
      Settings_Changed(axis);
    }
  }

  // --- Acting at a half step ---------------------------------------------------------------------
  void Watch_Delays() {
    Platform.Delay_Microseconds = [this, inner = Platform.Delay_Microseconds](std::int32_t us) {
      inner(us);
      if (!Step_Engine.Active) return;
      ++Half_Steps;
      if (const auto found = Actions.find(Half_Steps); found != Actions.end()) found->second();
    };
  }
  // Runs `action` in the delay of the n-th half step from here on, as hardware would.
  void At_Half_Step(std::int64_t n, std::function<void()> action) {
    Actions[Half_Steps + n] = std::move(action);
  }
  // Runs `action` in the first yield at or after the n-th half step, as an event of the window.
  void In_Yield_After(std::int64_t n, std::function<void()> action) {
    const std::int64_t due = Half_Steps + n;
    scripted.On_Yield = [this, due, action = std::move(action), done = false]() mutable {
      if (done || Half_Steps < due) return;
      done = true;
      action();
    };
  }
  // Ends a wait that would last for ever: runs `action` in the n-th yield from here on.
  void In_Yield(std::int64_t n, std::function<void()> action) {
    const std::int64_t due = scripted.Yields + n;
    scripted.On_Yield = [this, due, action = std::move(action)] {
      if (scripted.Yields == due) action();
    };
  }

  // --- A program by its wires --------------------------------------------------------------------
  struct Row {
    std::int32_t Step = 1;
    Nullable X = {}, Y = {}, Z = {}, A = {};
    float Dwell = 0;
    Nullable Repeat = {};
    std::optional<std::int16_t> Aux_Wait = {};
    std::array<std::int16_t, 5> Out{1, 1, 1, 1, 1};
    std::int16_t Motion = 1;
    float Feed = 60;
  };
  void Load(const std::vector<Row>& rows) {
    Table<Wire> table;
    std::int32_t last = 0;
    for (const Row& row : rows) {
      Wire wire;
      wire.Step = row.Step;
      wire.Motion = row.Motion;
      const Nullable ends[] = {row.X, row.Y, row.Z, row.A};
      for (int axis = 1; axis <= 4; ++axis) wire.End[axis] = ends[axis - 1];
      for (int n = 0; n <= 4; ++n) wire.Out[n] = row.Out[static_cast<std::size_t>(n)];
      wire.Dwell = row.Dwell;
      wire.Repeat = row.Repeat;
      wire.Aux_Wait = row.Aux_Wait;
      wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = row.Feed;
      wire.Block_Text = "block";
      table.Rows.push_back(wire);
      last = std::max(last, row.Step);
    }
    Take_Program_Wire(std::move(table));
    Machine.StartingStep = 1;
    Machine.EndingStep = last;
  }

  // The machine stands where the application believes, and the commanded position agrees.
  static void Expect_Position_True() {
    for (int axis = 1; axis <= 4; ++axis) {
      const double half_step = 0.5 / static_cast<double>(MachineSetup.Axis_SPI[axis]);
      EXPECT_NEAR(True_Position(axis), Machine.Position[axis], half_step) << "axis " << axis;
      EXPECT_NEAR(Machine.Theoretical_Pos[axis], Machine.Position[axis], half_step / 100)
          << "axis " << axis;
    }
  }

  // --- Recorded pulses ---------------------------------------------------------------------------
  // Real changes of step pins, each with the half step in which it happened.
  void Record_Edges() {
    Edges.clear();
    Start_Port_Recorder([](const std::vector<Port_Write_Record>&) {});
    Platform.Port_Write = [this, inner = Platform.Port_Write, last = int{-1}](
                              std::uint16_t port, std::uint8_t value) mutable {
      inner(port, value);
      if (port != Step_Port) return;
      constexpr int step_bits = 0x55;
      if (last >= 0 && ((last ^ value) & step_bits) != 0) Edges.push_back(Half_Steps + 1);
      last = value;
    };
  }

  std::filesystem::path Folder;
  Scripted_Platform scripted;
  std::int64_t Half_Steps = 0;  // delays of the step loop so far
  std::map<std::int64_t, std::function<void()>> Actions;
  std::vector<std::int64_t> Edges;
};

}  // namespace norvik
