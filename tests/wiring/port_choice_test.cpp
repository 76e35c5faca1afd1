// Which port a program gets, and that the hardware has one master.
#include "wiring/port_choice.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/port_cards.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

// A file stands where the port device is: access by device is granted, and what is written shows.
struct Port_Choice_Test : testing::Test {
  Port_Choice_Test() {
    Reset_Control();
    Reset_Simulate();
    Application.AppDirectory = Application.Pointer_Folder = Folder.File("");
    Application.ErrorFile = Folder.File("log.txt");
    Replace_File(Folder.File("port"), std::string(1000, ' '));
    Set_Port_Device(Folder.File("port"));
    Set_Port_Lock(Folder.File("port.lock"));
    MachineSetup.Parallel_IODLL = 2;
  }
  ~Port_Choice_Test() override {
    Set_Port_Device("/dev/port");
    Set_Port_Lock("");
    Reset_Control();
    Reset_Simulate();
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

TEST_F(Port_Choice_Test, The_Hardware_Has_One_Master_And_The_Simulation_Any_Number) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t other = ::fork();
  if (other == 0) {
    Choose_Port();
    [[maybe_unused]] const auto told = ::write(ready[1], "x", 1);
    ::pause();
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  for (const char* wanted : {"Auto", "Direct"}) {
    WritePointer("Platform", "Port_Access", wanted);
    EXPECT_THROW(Choose_Port(), Fault) << wanted;  // Auto does not turn to a simulation by itself
    Platform.Port_Write(888, 'x');
    EXPECT_EQ(Read_Whole_File(Folder.File("port"))[888], ' ');
  }
  WritePointer("Platform", "Port_Access", "Simulated");
  EXPECT_EQ(Choose_Port(), "Port: simulated machine");
  ::kill(other, SIGKILL);
  ::waitpid(other, nullptr, 0);
  WritePointer("Platform", "Port_Access", "Auto");
  EXPECT_EQ(Choose_Port(), "Port: real, motors will move");
  EXPECT_FALSE(Port_Is_Simulated());
  Platform.Port_Write(888, 'x');
  EXPECT_EQ(Read_Whole_File(Folder.File("port"))[888], 'x');
  for (const int end : ready) ::close(end);
}

// A machine file of a stranger names addresses of other devices.
TEST_F(Port_Choice_Test, Other_Devices_Of_The_Computer_Are_Never_Touched) {
  WritePointer("Platform", "Port_Access", "Direct");
  WritePointer("Platform", "Card_Ports", "700-707");
  Choose_Port();
  Platform.Port_Write(704, 'x');
  for (const std::uint16_t port : {std::uint16_t{650}, std::uint16_t{800}}) {
    EXPECT_THROW(Platform.Port_Write(port, 'x'), std::exception);
    EXPECT_THROW(Platform.Port_Read(port), std::exception);
    Write_Port_In_Handler(port, 'x');
    EXPECT_EQ(Read_Whole_File(Folder.File("port"))[port], ' ');
  }
  EXPECT_EQ(Read_Whole_File(Folder.File("port"))[704], 'x');
}

TEST_F(Port_Choice_Test, Cards_Are_Found_By_Their_Class) {
  const auto device = [&](const std::string& name, const char* kind, const char* resources) {
    std::filesystem::create_directories(Folder.File("pci/" + name));
    Replace_File(Folder.File("pci/" + name + "/class"), kind);
    Replace_File(Folder.File("pci/" + name + "/resource"), resources);
  };
  device("0000:00:01.0", "0x070103\n",
         "0x000000000000d000 0x000000000000d007 0x0000000000040101\n"
         "0x00000000f0000000 0x00000000f0000fff 0x0000000000040200\n"
         "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
  device("0000:00:02.0", "0x030000\n",
         "0x000000000000c000 0x000000000000c0ff 0x0000000000040101\n");
  const auto cards = Port_Cards(Folder.File("pci"));
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].First, 0xD000);
  EXPECT_EQ(cards[0].Last, 0xD007);
  EXPECT_TRUE(Port_Cards(Folder.File("none")).empty());
}

// What a process that a signal ends leaves on the port.
TEST_F(Port_Choice_Test, A_Signal_That_Ends_The_Process_Finds_Everything_Off) {
  WritePointer("Platform", "Port_Access", "Direct");
  for (int slot = 1; slot <= 17; ++slot) {
    MachineSetup.Output_Port[slot] = slot <= 12 ? 888 : 890;
    MachineSetup.Parallel_Output_Bit[slot] = "99";
  }
  const auto wire = [](int slot, const char* bit, bool inverted) {
    MachineSetup.Parallel_Output_Bit[slot] = bit;
    MachineSetup.Parallel_Output_Bit_Invert[slot] = inverted;
  };
  wire(Step_Slot(1), "0", false);
  wire(Direction_Slot(1), "1", false);
  wire(Enable_Slot(1), "2", false);
  wire(Enable_Slot(2), "3", true);
  wire(Output_Slot(1), "0", false);
  wire(Output_Slot(2), "1", true);
  for (const int signal :
       {SIGQUIT, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGXCPU, -SIGABRT, -SIGSEGV}) {
    SCOPED_TRACE(signal);
    Replace_File(Folder.File("port"), std::string(1000, '\0'));
    const pid_t child = ::fork();
    if (child == 0) {
      const rlimit no_core{0, 0};
      ::setrlimit(RLIMIT_CORE, &no_core);
      Set_Port_Device(Folder.File("port"));
      Choose_Port();
      Idle_All_Outputs();
      All_Outputs_Off();
      Set_Direction(1, true);
      Motor_Enable(1);
      Motor_Enable(2);
      Output_On(1);
      Output_On(2);
      Toggle_Step(1, true, true, true);
      if (signal < 0) std::thread([signal] { ::raise(-signal); }).join();
      ::raise(signal);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), std::abs(signal));
    const std::string port = Read_Whole_File(Folder.File("port"));
    EXPECT_EQ(port[888], 1 << 1 | 1 << 3) << "direction as it was, step, motors off";
    EXPECT_EQ(port[890], 1 << 1) << "outputs off";
  }
}

}  // namespace
}  // namespace norvik
