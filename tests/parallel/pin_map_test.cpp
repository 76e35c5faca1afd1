// Pins, ports, the recorder, motor supervision and the two port windows.
#include "parallel/pin_map.h"

#include "core/messages.h"
#include "core/paths.h"
#include "drive/drive_status.h"
#include "parallel/drive_test.h"
#include "parallel/port_display.h"
#include "support/temporary_folder.h"

namespace norvik {
namespace {

using testing::HasSubstr;

using Pin_Map_Test = Drive_Test;

TEST_F(Pin_Map_Test, Ports_That_Are_Not_Accessed) {
  PPSetPort(888, 5, false);
  EXPECT_EQ(scripted.Ports[900], 5);
  EXPECT_EQ(scripted.Ports[888], 0);
  Accesses.clear();
  for (const std::int32_t port : {1, 599, -888, 65536 + 888}) {
    EXPECT_EQ(PPGetPort(port), 0);
    PPSetPort(port, 1, true);
  }
  PPSetPort(65535, 1, false);
  MachineSetup.Parallel_IODLL = 3;
  EXPECT_EQ(PPGetPort(889), 0);
  PPSetPort(888, 1, true);
  EXPECT_EQ(Accesses, "");
  MachineSetup.Parallel_IODLL = 1;
  EXPECT_EQ(PPGetPort(600), 255);
  EXPECT_EQ(Accesses, "R600 ");
}

TEST_F(Pin_Map_Test, A_Failing_Back_End_Is_Logged_And_Reads_As_Zero) {
  Temporary_Folder folder;
  Application.ErrorFile = folder.File("log.txt");
  scripted.On_Port_Read = [](std::uint16_t) -> std::uint8_t {
    throw std::runtime_error("no right");
  };
  scripted.On_Port_Write = [](std::uint16_t, std::uint8_t) {
    throw std::runtime_error("no right");
  };
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(PPGetPort(888), 0);
    EXPECT_FALSE(PPSetPort(888, 1, true));
  }
  const auto lines = [](const std::string& log) {
    return std::count(log.begin(), log.end(), '\n');
  };
  std::string log = Read_Whole_File(Application.ErrorFile);
  EXPECT_THAT(log, HasSubstr("PPGetPort_Error # 51 no right"));
  EXPECT_THAT(log, HasSubstr("PPSetPort_Error # 51 no right"));
  EXPECT_EQ(lines(log), 2);  // once for each cause
  EXPECT_EQ(Port_Failures.Reads.Count, 3);
  EXPECT_EQ(Port_Failures.Writes.Count, 3);
  EXPECT_THAT(Messages.Panel[3], HasSubstr("motors do not move"));
  EXPECT_THAT(Messages.Status_Box, HasSubstr("home the axes before the next run"));
  EXPECT_THAT(Messages.Status_Box, HasSubstr("no right"));
  Stop_Port_Recorder();
  EXPECT_TRUE(Written.empty());

  scripted.On_Port_Write = [](std::uint16_t, std::uint8_t) {
    throw std::runtime_error("another cause");
  };
  PPSetPort(888, 1, true);
  log = Read_Whole_File(Application.ErrorFile);
  EXPECT_THAT(log, HasSubstr("PPSetPort_Error # 51 another cause"));
  EXPECT_EQ(lines(log), 3);
}

struct Bit_Row {
  const char* Text;
  std::optional<int> Bit;
};

TEST_F(Pin_Map_Test, Bit_Texts) {
  for (const Bit_Row& row : {Bit_Row{"0", 0},
                             {"7", 7},
                             {" 3 ", 3},
                             {"05", 5},
                             {"8", {}},
                             {"99", {}},
                             {"", {}},
                             {" ", {}},
                             {"-1", {}},
                             {"3.5", {}},
                             {"x", {}},
                             {"4x", {}}}) {
    MachineSetup.Parallel_Output_Bit[1] = MachineSetup.Parallel_Input_Bit[0] = row.Text;
    EXPECT_EQ(Output_Bit(1), row.Bit) << row.Text;
    EXPECT_EQ(Input_Bit(0), row.Bit) << row.Text;
  }
}

// Each operation changes its own bit and leaves the others.
TEST_F(Pin_Map_Test, Levels_By_Invert_Flag) {
  struct Row {
    std::function<void()> Operation;
    int Slot;
    bool High_Plain;
  };
  const std::vector<Row> rows{
      {[] { Set_Direction(2, true); }, 5, true}, {[] { Set_Direction(2, false); }, 5, false},
      {[] { Motor_Enable(3); }, 9, true},        {[] { Motor_Disable(3); }, 9, false},
      {[] { Output_On(1); }, 13, true},          {[] { Output_Off(1); }, 13, false},
      {[] { Output_On(5); }, 17, true},          {[] { Output_Off(5); }, 17, false}};
  for (const Row& row : rows) {
    const auto port = static_cast<std::uint16_t>(MachineSetup.Output_Port[row.Slot]);
    const auto mask = static_cast<std::uint8_t>(1 << *Output_Bit(row.Slot));
    for (const bool invert : {false, true}) {
      MachineSetup.Parallel_Output_Bit_Invert[row.Slot] = invert;
      for (const std::uint8_t before : std::array<std::uint8_t, 3>{0x00, 0xFF, 0xA5}) {
        scripted.Ports[port] = before;
        row.Operation();
        const bool high = row.High_Plain != invert;
        EXPECT_EQ(scripted.Ports[port], high ? before | mask : before & ~mask)
            << row.Slot << invert;
      }
    }
    MachineSetup.Parallel_Output_Bit[row.Slot] = "99";
    Accesses.clear();
    row.Operation();
    EXPECT_EQ(Accesses, "") << row.Slot;
    MachineSetup.Parallel_Output_Bit[row.Slot] = std::to_string(std::countr_zero(mask));
  }
}

TEST_F(Pin_Map_Test, Inputs_And_Read_Back) {
  scripted.Ports[889] = 255 - 8 - 64 - 128;  // X and A switch and E-stop low
  scripted.Ports[632] = 0b0101;
  MachineSetup.Parallel_Input_Bit_Invert[4] = true;
  MachineSetup.Parallel_Output_Bit_Invert[14] = true;
  MachineSetup.Parallel_Output_Bit[16] = "99";
  Drive_Status.Home_Distance = {{5, 6, 7, 8, 9, 10}};
  Read_Limits();
  EXPECT_EQ(Drive_Status.Limit_State.Items, (std::array<bool, 4>{true, false, false, false}));
  EXPECT_EQ(Drive_Status.Output_State.Items, (std::array<bool, 4>{true, true, true, false}));
  EXPECT_EQ(Drive_Status.Home_Distance.Items, (std::array<float, 6>{0, 6, 7, 8, 9, 10}));
  EXPECT_TRUE(Read_Input(EStop_Input));
  EXPECT_FALSE(Read_Input(Auxiliary_Input));
  MachineSetup.Parallel_Input_Bit[EStop_Input] = "99";
  EXPECT_FALSE(Read_Input(EStop_Input));
}

TEST_F(Pin_Map_Test, Idle_Levels_And_Their_Memory) {
  MachineSetup.Parallel_Output_Bit_Invert[Step_Slot(2)] = true;
  MachineSetup.Parallel_Output_Bit_Invert[Enable_Slot(1)] = true;
  scripted.Ports[888] = scripted.Ports[890] = scripted.Ports[632] = 255;
  Idle_All_Outputs();
  EXPECT_EQ(scripted.Ports[888], 0b10101110);  // directions stay
  EXPECT_EQ(scripted.Ports[890], 0b11110001);
  EXPECT_EQ(scripted.Ports[632], 255);
  EXPECT_EQ(Pins.Step_Bit.Items, (std::array<std::int16_t, 6>{0, 1, 0, 0, 0, 0}));
  All_Outputs_Off();
  EXPECT_EQ(scripted.Ports[632], 0b11100000);
}

// The memory and not the read-back says the level: a port that reads 0 still toggles.
TEST_F(Pin_Map_Test, Step_Level_Comes_From_The_Memory) {
  scripted.On_Port_Read = [](std::uint16_t) { return std::uint8_t{0}; };
  for (int i = 0; i < 4; ++i) Toggle_Step(1, true, true, false);
  EXPECT_EQ(Writes(888), "0=1 0=0 0=1 0=0 ");
  EXPECT_DOUBLE_EQ(Machine.Position[1], -0.002);
  EXPECT_FLOAT_EQ(Drive_Status.Home_Distance[1], -0.002f);
}

TEST_F(Pin_Map_Test, Blocked_And_Backlash_Toggles_Do_Not_Count) {
  MachineSetup.Parallel_MotorEnable_Time = 5;
  Toggle_Step(1, false, false, false);
  EXPECT_EQ(Pins.Motor_Enable_Timer[1], 0);
  Toggle_Step(1, false, false, false);
  Toggle_Step(1, false, true, true);
  EXPECT_EQ(Pins.Motor_Enable_Timer[1], 5);
  EXPECT_EQ(Writes(888), "0=1! 0=0! 0=1 ");
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_EQ(scripted.Ports[888], 1);
}

// --- Motors --------------------------------------------------------------------------------------

TEST_F(Pin_Map_Test, Timed_Motors_Go_Off_After_Their_Time) {
  MachineSetup.Parallel_MotorEnable_Option = 2;
  MachineSetup.Parallel_MotorEnable_Time = 2;
  Motor_Timer_Tick();
  Step_Engine_Move(Move(2, 0, 0, 0));
  EXPECT_EQ(scripted.Ports[890], 1);
  Pins.Axis_Stepping[1] = true;  // a tick in a yield of the move
  for (int i = 0; i < 4; ++i) scripted.Advance(1), Motor_Timer_Tick();
  EXPECT_EQ(scripted.Ports[890], 1);
  Pins.Axis_Stepping[1] = false;
  scripted.Advance(1), Motor_Timer_Tick();
  EXPECT_EQ(scripted.Ports[890], 1);
  scripted.Now -= 3'600'000'000'000;  // a clock that goes back counts as no time
  Motor_Timer_Tick();
  EXPECT_FALSE(Pins.Motor_Timed_Off[1]);
  scripted.Advance(3600), Motor_Timer_Tick();  // one that jumps counts as a second
  EXPECT_TRUE(Pins.Motor_Timed_Off[1]);
  EXPECT_EQ(scripted.Ports[890], 0);
}

TEST_F(Pin_Map_Test, Motors_On_With_Step_Are_Off_At_Rest) {
  scripted.Ports[890] = 15;
  Pins.Axis_Stepping[2] = true;
  Step_Engine.Axis_Enabled[3] = false;  // blocked
  Motor_Timer_Tick();
  EXPECT_EQ(scripted.Ports[890], 0b0110);
  MachineSetup.Parallel_MotorEnable_Option = 1;
  scripted.Ports[890] = 15;
  Motor_Timer_Tick();
  EXPECT_EQ(scripted.Ports[890], 15);
}

// --- Recorder ------------------------------------------------------------------------------------

TEST_F(Pin_Map_Test, Port_Record_File) {
  Temporary_Folder folder;
  scripted.Advance(7);
  Record_Ports_To_File(folder.File("ports.csv"));
  PPSetPort(888, 3, true);
  scripted.Now += 1'234'567;
  PPSetPort(890, 255, false);
  PPSetPort(5, 1, true);  // not written, not recorded
  EXPECT_TRUE(Stop_Port_Recorder());
  EXPECT_EQ(Read_Whole_File(folder.File("ports.csv")),
            "microseconds,port,value,real\n0.000,888,3,1\n1234.567,890,255,0\n");
  EXPECT_THROW(Record_Ports_To_File(folder.File("missing/ports.csv")), Fault);
  EXPECT_FALSE(Port_Recorder.Active);
  // A disk that is full: the record says so, the port is written all the same.
  Record_Ports_To_File("/dev/full");
  EXPECT_TRUE(PPSetPort(888, 3, true));
  EXPECT_FALSE(Stop_Port_Recorder());
  EXPECT_TRUE(Stop_Port_Recorder());
}

TEST_F(Pin_Map_Test, Recorder_Hands_Over_Whole_Blocks) {
  std::vector<std::size_t> sizes;
  Start_Port_Recorder([&](const auto& block) { sizes.push_back(block.size()); });
  for (std::size_t i = 0; i < Port_Recorder_State::Block_Size + 3; ++i) PPSetPort(888, 1, true);
  Stop_Port_Recorder();
  EXPECT_THAT(sizes, testing::ElementsAre(Port_Recorder_State::Block_Size, 3));
}

// --- Port_IO -------------------------------------------------------------------------------------

struct Address_Row {
  const char* Text;
  std::int32_t Address;
};

TEST_F(Pin_Map_Test, Typed_Addresses) {
  for (const Address_Row& row : {Address_Row{"&H378", 888},
                                 {"&h3bc", 956},
                                 {"&HD000", 53248},
                                 {"888", 888},
                                 {"-12288", 53248},
                                 {" &HFFFF ", 65535}}) {
    MachineSetup.Parallel_Display_IO_Address = 1;
    Port_IO.Combo_Port_Address = row.Text;
    Combo_Port_Address_Change();
    EXPECT_EQ(MachineSetup.Parallel_Display_IO_Address, row.Address) << row.Text;
  }
  for (const char* bad : {"", "&H", "&H10000", "&HXY", "port"}) {
    Port_IO.Combo_Port_Address = bad;
    Port_IO_SaveIO();
    EXPECT_EQ(MachineSetup.Parallel_Display_IO_Address, 65535) << bad;
  }
  Port_IO_SetupCombos();
  EXPECT_EQ(Port_IO.Combo_Port_Address, "&HFFFF");
}

TEST_F(Pin_Map_Test, Lamps_Show_The_Level_At_The_Connector) {
  struct Row {
    std::array<std::uint8_t, 3> Bytes;
    std::string High;  // pins that are lit
  };
  const std::string inverted = "1 11 14 17 ";
  for (const Row& row : {Row{{0, 0, 0}, inverted},
                         {{255, 255, 255}, "2 3 4 5 6 7 8 9 10 12 13 15 16 "},
                         {{0b10000001, 0, 0}, "1 2 9 11 14 17 "},
                         {{0, 0b11001000, 0b0101}, "10 14 15 16 17 "}}) {
    Port_IO = {};
    MachineSetup.Parallel_Display_IO_Address = 888;
    for (std::uint16_t i = 0; i < 3; ++i)
      scripted.Ports[static_cast<std::uint16_t>(888 + i)] = row.Bytes[i];
    Port_IO_Timer1();
    std::string high;
    for (int pin = 1; pin <= 17; ++pin) {
      if (Port_IO.Command_Pin[pin] || Port_IO.Command_PinIO[pin]) high += std::to_string(pin) + " ";
    }
    EXPECT_EQ(high, row.High);
    EXPECT_EQ(Port_IO.Text_PortIO, std::to_string(row.Bytes[0]) + "\r\n" +
                                       std::to_string(row.Bytes[1]) + "\r\n" +
                                       std::to_string(row.Bytes[2]));
  }
  EXPECT_TRUE(Port_IO.Command_PinIO[10]) << "status lines have lamps of their own";
  EXPECT_TRUE(Port_IO.Command_Pin[14]);
}

}  // namespace
}  // namespace norvik
