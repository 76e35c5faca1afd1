// Clock, ports and priority of this system. What the process may do here differs from machine to
// machine, so rights are tested both ways.
#include "platform/linux/linux_platform.h"

#include "platform/linux/granted_ports.h"
#include "platform/platform.h"
#include "support/temporary_folder.h"

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

class Linux_Platform_Test : public testing::Test {
 protected:
  ~Linux_Platform_Test() override { Platform = {}; }
};

// Never shorter than asked; how close is a matter of the machine's load and is measured elsewhere.
TEST_F(Linux_Platform_Test, Waits_Last_At_Least_As_Long_As_Asked) {
  Install_Linux_Clock();
  for (const std::int32_t us : {1, 20, 300, 5'000}) {
    const std::int64_t before = Platform.Monotonic_Clock();
    Platform.Delay_Microseconds(us);
    // The counter and the kernel's clock may differ by a few parts in a million.
    EXPECT_GE(Platform.Monotonic_Clock() - before, std::int64_t{us} * 999 - 100) << us;
  }
}

TEST_F(Linux_Platform_Test, Waits_In_A_Period_Keep_The_Period_On_The_Average) {
  Install_Linux_Clock();
  constexpr int rounds = 2'000;
  constexpr std::int64_t period = 33'333;
  Platform.Delay_In_Period(32, period);
  const std::int64_t before = Platform.Monotonic_Clock();
  for (int i = 0; i < rounds; ++i) Platform.Delay_In_Period(33, period);
  // Each wait may be a microsecond short of the 33 and no more.
  EXPECT_GE(Platform.Monotonic_Clock() - before, std::int64_t{rounds} * 32'000);
}

// What an access raises; empty when it succeeds.
std::string Words_Of(const std::function<void()>& access) {
  try {
    access();
  } catch (const std::exception& refused) {
    return refused.what();
  }
  return "";
}
std::string Read_Words() {
  return Words_Of([] { Platform.Port_Read(889); });
}
std::string Write_Words() {
  return Words_Of([] { Platform.Port_Write(888, 1); });
}

// A second access must not look like one that was made.
void Expect_Refused_Every_Time(const std::string& words) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Read_Words(), words);
    EXPECT_EQ(Write_Words(), words);
  }
}

TEST_F(Linux_Platform_Test, Port_Instructions) {
  static const std::int16_t way = 1;
  Install_Direct_Ports(&way);
  const Port_Right right = Direct_Port_Right(1);
  if (right.Granted) {
    EXPECT_NO_THROW(Platform.Port_Read(889));
    return;
  }
  EXPECT_THAT(right.Words, AnyOf(HasSubstr("cap_sys_rawio"), HasSubstr("Parallel_IODLL 2")));
  EXPECT_THAT(right.Words, HasSubstr("Port_Access to Simulated"));
  Expect_Refused_Every_Time(right.Words);
}

TEST_F(Linux_Platform_Test, Port_Device_Reads_And_Writes_At_The_Address) {
  Temporary_Folder folder;
  const std::string device = folder.File("port");
  std::ofstream(device) << std::string(1000, '\x2A');
  Set_Port_Device(device);
  static std::int16_t way = 2;
  Install_Direct_Ports(&way);
  EXPECT_TRUE(Direct_Port_Right(2).Granted);
  EXPECT_EQ(Platform.Port_Read(889), 0x2A);
  Platform.Port_Write(888, 7);
  EXPECT_EQ(Platform.Port_Read(888), 7);
  EXPECT_EQ(Platform.Port_Read(889), 0x2A);
  Set_Port_Device(folder.File("missing"));
  const Port_Right refused = Direct_Port_Right(2);
  EXPECT_FALSE(refused.Granted);
  EXPECT_THAT(refused.Words, HasSubstr("Parallel_IODLL 1"));
  Expect_Refused_Every_Time(refused.Words);
  EXPECT_FALSE(Direct_Port_Right(0).Granted);
  Set_Port_Device("/dev/port");
}

TEST_F(Linux_Platform_Test, A_Port_Device_That_Fails_Later) {
  Temporary_Folder folder;
  const std::string device = folder.File("port");
  std::ofstream(device) << std::string(1000, '\x2A');
  static const std::int16_t way = 2;
  Install_Direct_Ports(&way);
  Set_Port_Device(device);
  EXPECT_EQ(Read_Words(), "");
  std::ofstream(device, std::ios::trunc);
  EXPECT_THAT(Read_Words(), HasSubstr("does not answer any more"));
  EXPECT_EQ(Read_Words(), Read_Words());
  Set_Port_Device("/dev/full");  // takes no byte
  EXPECT_TRUE(Direct_Port_Right(2).Granted);
  EXPECT_THAT(Write_Words(), HasSubstr("Start the program again"));
  Set_Port_Device("/dev/port");
}

TEST_F(Linux_Platform_Test, Priority_Levels_Are_Nice_Values) {
  Install_Linux_Priority();
  const int started = ::getpriority(PRIO_PROCESS, 0);
  // Real time is left out: locking all memory does not go with the checking builds.
  const std::string refused = Platform.Set_Priority(1);
  if (refused.empty()) {
    EXPECT_EQ(::getpriority(PRIO_PROCESS, 0), -10);
    EXPECT_EQ(Platform.Set_Priority(0), "");
  } else {
    EXPECT_THAT(refused, HasSubstr("norvik-port"));
    EXPECT_THAT(refused, HasSubstr("limits.conf"));
  }
  EXPECT_EQ(::getpriority(PRIO_PROCESS, 0), started);
}

// The other program is a child: a lock is no obstacle to who holds it.
TEST_F(Linux_Platform_Test, One_Program_Drives_The_Port_And_The_Next_When_It_Has_Died) {
  const Temporary_Folder folder;
  Set_Port_Lock(folder.File("port.lock"));
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t other = ::fork();
  if (other == 0) {
    const char held = Lock_Direct_Port().Granted && Lock_Direct_Port().Granted ? 'y' : 'n';
    [[maybe_unused]] const auto told = ::write(ready[1], &held, 1);
    ::pause();
  }
  char held = 0;
  ASSERT_EQ(::read(ready[0], &held, 1), 1);
  EXPECT_EQ(held, 'y');
  const Port_Right refused = Lock_Direct_Port();
  EXPECT_FALSE(refused.Granted);
  EXPECT_THAT(refused.Words, HasSubstr("Wait until it has ended"));
  ::kill(other, SIGKILL);
  ::waitpid(other, nullptr, 0);
  EXPECT_TRUE(Lock_Direct_Port().Granted);

  Set_Port_Lock(folder.File("no/folder/port.lock"));  // no lock, no motion
  EXPECT_FALSE(Lock_Direct_Port().Granted);
  EXPECT_THAT(Lock_Direct_Port().Words, HasSubstr(folder.File("no/folder/port.lock")));
  for (const int end : ready) ::close(end);
  Set_Port_Lock("");
}

// --- Rights that come from elsewhere -------------------------------------------------------------

// What the environment says about this process; gone with the scope.
struct Environment_Value {
  Environment_Value(const char* name, const std::string& value) : Name(name) {
    const char* before = ::getenv(name);
    if (before != nullptr) Before = before;
    ::setenv(name, value.c_str(), 1);
  }
  ~Environment_Value() {
    if (Before) {
      ::setenv(Name, Before->c_str(), 1);
    } else {
      ::unsetenv(Name);
    }
  }
  Environment_Value(const Environment_Value&) = delete;
  Environment_Value& operator=(const Environment_Value&) = delete;

  const char* Name;
  std::optional<std::string> Before;
};

TEST_F(Linux_Platform_Test, Granted_Ports_Are_Believed_For_This_Process_Alone) {
  const auto granted = [](const std::string& process, const std::string& ranges) {
    const Environment_Value told("NORVIK_PORTS", process + ":" + ranges);
    return Granted_Ports();
  };
  const std::string own = std::to_string(::getpid());
  const auto ports = granted(own, "378-37A,D000-D000,zz-1,5,FFFF-1FFFF,");
  EXPECT_EQ(ports.count(), 3U + 1U + 1U);
  for (const std::size_t port : {0x378U, 0x379U, 0x37AU, 0xD000U, 0xFFFFU}) {
    EXPECT_TRUE(ports[port]) << port;
  }
  EXPECT_TRUE(granted(std::to_string(::getppid()), "378-37A,").none());
  EXPECT_TRUE(granted("", "378-37A,").none());
  EXPECT_TRUE(granted(own, "").none());
  EXPECT_EQ(Words_About_Own_Rights(), "");
}

TEST_F(Linux_Platform_Test, Locks_Lie_Where_Nobody_Else_Can_Write) {
  const Temporary_Folder folder;
  const std::string given = folder.File("given");
  std::filesystem::create_directory(given);
  const Environment_Value runtime("XDG_RUNTIME_DIR", given), temporary("TMPDIR", folder.Path);
  const auto mode = [](const std::string& path, unsigned bits) {
    std::filesystem::permissions(path, std::filesystem::perms(bits));
  };
  mode(given, 0700);
  EXPECT_EQ(Runtime_Folder(), given);
  mode(given, 0777);
  const std::string own = folder.File("norvik-" + std::to_string(::geteuid()));
  EXPECT_EQ(Runtime_Folder(), own);
  EXPECT_EQ(std::filesystem::status(own).permissions(), std::filesystem::perms(0700));
  // Somebody was there before, with a folder that all may write to, or a link to one of ours.
  mode(own, 0777);
  EXPECT_EQ(Runtime_Folder(), "");
  Install_Instance_Lock();
  EXPECT_TRUE(Platform.Other_Instance_Runs()) << "who does not know does not believe to be alone";
  std::filesystem::remove(own);
  std::filesystem::create_directory(folder.File("ours"));
  std::filesystem::create_symlink("ours", own);
  EXPECT_EQ(Runtime_Folder(), "");
}

}  // namespace
}  // namespace norvik
