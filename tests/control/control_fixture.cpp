#include "control_fixture.h"

namespace norvik {

void Tick() {
  Watch_Machine();
  CNC_Controls_Timer1();
}

Control_Test::Control_Test() {
  Folder =
      std::filesystem::temp_directory_path() / ("norvik_control_" + std::to_string(::getpid()));
  std::filesystem::create_directories(Folder);
  Reset_Control();
  Reset_Simulate();
  Set_Up_Files();
  Set_Up_Machine();
  Reset_Simulated_Machine();
  Install_Simulated_Machine();
  Axis_Memory_Host.Positions_Given = Align_With_Application;
  Watch_Delays();
  Connect_Control();
}

Control_Test::~Control_Test() {
  Reset_Control();
  Reset_Simulate();
  std::filesystem::remove_all(Folder);
}

void Control_Test::Set_Up_Files() {
  Application.AppDirectory = Application.Pointer_Folder = Application.Table_Folder =
      Folder.string();
  Application.MachineFile = (Folder / "machine.ini").string();
  Application.ErrorFile = (Folder / "NorvikErr.txt").string();
  Move_Trace.Path = "";
}

void Control_Test::Set_Up_Machine() {
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

void Control_Test::Wire_Output(int slot, std::int32_t port, int bit) {
  MachineSetup.Output_Port[slot] = port;
  MachineSetup.Parallel_Output_Bit[slot] = std::to_string(bit);
}

void Control_Test::Wire_Input(int slot, std::int32_t port, int bit) {
  MachineSetup.Input_Port[slot] = port;
  MachineSetup.Parallel_Input_Bit[slot] = std::to_string(bit);
}

void Control_Test::Free_Axes() {
  for (int axis = 1; axis <= 4; ++axis) {
    Simulated_Machine.Axes[axis].Settings.Limited = false;
    Simulated_Machine.Inputs[axis].Zones = {};
    Settings_Changed(axis);
  }
}

void Control_Test::Watch_Delays() {
  Platform.Delay_Microseconds = [this, inner = Platform.Delay_Microseconds](std::int32_t us) {
    inner(us);
    if (!Runs(Operation::Move)) return;
    ++Half_Steps;
    if (const auto found = Actions.find(Half_Steps); found != Actions.end()) found->second();
  };
}

void Control_Test::At_Half_Step(std::int64_t n, std::function<void()> action) {
  Actions[Half_Steps + n] = std::move(action);
}

void Control_Test::In_Yield_After(std::int64_t n, std::function<void()> action) {
  const std::int64_t due = Half_Steps + n;
  scripted.On_Yield = [this, due, action = std::move(action), done = false]() mutable {
    if (done || Half_Steps < due) return;
    done = true;
    action();
  };
}

void Control_Test::In_Yield(std::int64_t n, std::function<void()> action) {
  const std::int64_t due = scripted.Yields + n;
  scripted.On_Yield = [this, due, action = std::move(action)] {
    if (scripted.Yields == due) action();
  };
}

void Control_Test::Load(const std::vector<Row>& rows) {
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
  Install_Table(std::move(table));
  Machine.StartingStep = 1;
  Machine.EndingStep = last;
}

void Control_Test::Expect_Position_True() {
  for (int axis = 1; axis <= 4; ++axis) {
    const double half_step = 0.5 / static_cast<double>(MachineSetup.Axis_SPI[axis]);
    EXPECT_NEAR(True_Position(axis), Machine.Position[axis], half_step) << "axis " << axis;
    EXPECT_NEAR(Machine.Theoretical_Pos[axis], Machine.Position[axis], half_step / 100)
        << "axis " << axis;
  }
}

void Control_Test::Record_Edges() {
  Edges.clear();
  Platform.Port_Write = [this, inner = Platform.Port_Write, last = int{-1}](
                            std::uint16_t port, std::uint8_t value) mutable {
    inner(port, value);
    if (port != Step_Port) return;
    constexpr int step_bits = 0x55;
    if (last >= 0 && ((last ^ value) & step_bits) != 0) Edges.push_back(Half_Steps + 1);
    last = value;
  };
}

}  // namespace norvik
