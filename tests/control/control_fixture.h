// control_fixture.h: a panel, a drive and a simulated machine on a scripted environment.
//
// Time is virtual: a delay of the step loop moves the clock, nothing else does, so that a test can
// act at a half step by its number (`At_Half_Step`) as hardware and fingers do.
//
// The machine: four axes of 400 steps per unit on port 888, enables on 890, outputs on 1000, E-stop
// and switches on 889, auxiliary input on 1001, all inputs active low. Ramps are off unless a test
// switches them on.
#pragma once

#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/displays/displays.h"
#include "control/manual/jog.h"
#include "control/manual/jog_key.h"
#include "control/manual/joystick_jog.h"
#include "control/manual/knob.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/panel/connect.h"
#include "control/panel/panel.h"
#include "control/run/cnc_controller.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/scripted/scripted_platform.h"
#include "simulate/simulated_machine.h"
#include "support/reset.h"

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

// What comes due every quarter second: the watch of the machine and the panel's timer.
void Tick();

class Control_Test : public ::testing::Test {
 protected:
  Control_Test();
  ~Control_Test() override;

  void Set_Up_Files();
  static void Set_Up_Machine();
  static void Wire_Output(int slot, std::int32_t port, int bit);
  static void Wire_Input(int slot, std::int32_t port, int bit);
  // Axes without ends and switches.
  static void Free_Axes();

  // --- Acting at a half step ---------------------------------------------------------------------
  void Watch_Delays();
  // Runs `action` in the delay of the n-th half step from here on, as hardware would.
  void At_Half_Step(std::int64_t n, std::function<void()> action);
  // Runs `action` in the first yield at or after the n-th half step, as an event of the window.
  void In_Yield_After(std::int64_t n, std::function<void()> action);
  // Runs `action` in the n-th yield from here on, to end a wait that would last for ever.
  void In_Yield(std::int64_t n, std::function<void()> action);

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
  void Load(const std::vector<Row>& rows);

  // The machine stands where the application believes, and the commanded position agrees.
  static void Expect_Position_True();

  // --- Recorded pulses ---------------------------------------------------------------------------
  // Real changes of step pins, each with the half step in which it happened.
  void Record_Edges();

  std::filesystem::path Folder;
  Scripted_Platform scripted;
  std::int64_t Half_Steps = 0;  // delays of the step loop so far
  std::map<std::int64_t, std::function<void()>> Actions;
  std::vector<std::int64_t> Edges;
};

}  // namespace norvik
