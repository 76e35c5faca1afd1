// Which port a program gets, and that the hardware has one master.
#include "wiring/port_choice.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/linux/linux_platform.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <csignal>

#include <gmock/gmock.h>
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

}  // namespace
}  // namespace norvik
