// The way to a real board: bytes over a terminal, in real time, a cable that is pulled, a program
// that dies.
#include "control/panel/drive_choice.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "platform/rest.h"
#include "serial/monitor.h"
#include "serial/serial_session.h"
#include "serial/stream.h"
#include "simulate/process/board_process.h"
#include "support/reset.h"
#include "support/temporary_folder.h"
#include "wiring/port_choice.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Board_On_Terminal_Test : testing::Test {
  Board_On_Terminal_Test() {
    Reset_Control();
    Reset_Simulate();
    Platform = {};
    Start_Board();
    Install_Linux_Clock();
    Install_Serial_Ports();
    Application.AppDirectory = Application.Pointer_Folder = Folder.File("");
    Application.ErrorFile = Folder.File("log.txt");
    Restore_Factory_Setup();
    MachineSetup.Parallel_Port_Type = 3;
    Choose_Drive_By_Setup();
    MachineSetup.Axis_SPI.Fill(400);
    MachineSetup.Axis_Ramp_Rate = 5;
    MachineSetup.Axis_Ramp_Start = 12;
    WritePointer("Platform", "Serial_Device_1", Link);
  }
  ~Board_On_Terminal_Test() override {
    Serial_End_Session();
    if (Control >= 0) ::close(Control);
    ::kill(Board, SIGKILL);
    ::waitpid(Board, nullptr, 0);
    Platform = {};
    Resting = {};
    Reset_Control();
    Reset_Simulate();
  }

  void Start_Board() {
    Board = ::fork();
    if (Board == 0) {
      Install_Linux_Clock();
      Board_Process_Options options;
      options.Generation = Board_Generation::Pelmar_V5;
      options.Link = Link;
      options.Control_Socket = Socket;
      Run_Board_Process(options, {});
      std::_Exit(0);
    }
    for (int i = 0; i < 400 && ::access(Socket.c_str(), F_OK) != 0; ++i) Nap();
    Control = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    Socket.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(Control, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  static void Nap() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

  std::string Told(const std::string& command) const {
    const std::string line = command + "\n";
    EXPECT_EQ(::write(Control, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    std::string answer;
    for (char letter = 0; ::read(Control, &letter, 1) == 1 && letter != '\n';) answer += letter;
    return answer;
  }

  static Move_End Move_X(std::int32_t steps, std::int32_t step) {
    Step_Request request;
    request.Steps[1] = steps;
    request.Start = request.End = 12;
    request.Run = 60;
    return Serial_Move(request, std::nullopt, step);
  }

  Temporary_Folder Folder;
  std::string Link = Folder.Path + "/port", Socket = Folder.Path + "/control";
  pid_t Board = -1;
  int Control = -1;
};

TEST_F(Board_On_Terminal_Test, A_Pulled_Cable_Stops_The_Run_And_Plugged_In_Again_It_Goes_On) {
  ASSERT_EQ(Choose_Port(), "Port: serial board, motors will move");
  Serial_Begin_Session();
  ASSERT_EQ(Serial_Missing(), "");
  Move_End end = Move_End::Done;
  int step = 0;
  while (end == Move_End::Done && step < 200) {
    end = Move_X(120, ++step);
    if (step == 4) {
      EXPECT_EQ(Told("unplug 700"), "{\"ok\":true}");
    }
  }
  EXPECT_EQ(end, Move_End::Failed);
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("at step " + std::to_string(step)));
  EXPECT_THAT(std::string(Serial_Missing()), HasSubstr("Last known position"));
  // No restart: the link comes back, the place is read back, and it is in doubt until looked at.
  for (int i = 0; i < 300 && !Serial_Missing().empty(); ++i) {
    Serial_Tick();
    Nap();
  }
  ASSERT_EQ(Serial_Missing(), "");
  EXPECT_NE(Position_Memory.Doubt, "");
  EXPECT_EQ(Told("expect-idle 1"), "{\"ok\":true}");
  ASSERT_TRUE(Read_Status_Now());
  const double place = Machine.Position[1];
  EXPECT_GT(place, 0);
  EXPECT_EQ(Move_X(100, ++step), Move_End::Done);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Machine.Position[1], place + 0.25);
  EXPECT_THAT(Told("state"), HasSubstr("\"checksum_errors\":0"));
}

TEST_F(Board_On_Terminal_Test, A_Program_That_Dies_By_A_Signal_Stops_The_Board) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t driver = ::fork();
  if (driver == 0) {
    Choose_Port();
    Serial_Begin_Session();
    for (int step = 1; step <= 4; ++step) Move_X(8'000, step);  // 20 s each
    [[maybe_unused]] const auto told = ::write(ready[1], "x", 1);
    ::pause();
    std::_Exit(0);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  EXPECT_THAT(Told("state"), HasSubstr("\"moving\":true"));
  ::kill(driver, SIGABRT);
  int status = 0;
  ::waitpid(driver, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(Told("expect-idle 1"), "{\"ok\":true}");
}

}  // namespace
}  // namespace norvik
