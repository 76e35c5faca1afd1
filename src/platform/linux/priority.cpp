#include "platform/linux/linux_platform.h"
#include "platform/linux/program_path.h"
#include "platform/platform.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace norvik {

std::string Program_Path() {
  std::array<char, 4096> path{};
  const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : "<program>";
}

namespace {

constexpr int High_Nice = -10, Real_Time_Nice = -20;

int Own_Nice() {
  return ::getpriority(PRIO_PROCESS, 0);
}

// The nice value that the program was started with.
int Started_Nice() {
  static const int started = Own_Nice();
  return started;
}

bool Has_Capability(unsigned number) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with("CapEff:")) continue;
    return (std::stoull(line.substr(7), nullptr, 16) >> number & 1) != 0;
  }
  return false;
}

// Locking what is allocated later is safe only without a limit: with one, an allocation beyond it
// would fail in the middle of a run.
int Lock_Flags() {
  constexpr unsigned ipc_lock = 14;  // capabilities(7)
  rlimit limit{};
  ::getrlimit(RLIMIT_MEMLOCK, &limit);
  const bool unlimited = limit.rlim_cur == RLIM_INFINITY || Has_Capability(ipc_lock);
  return unlimited ? MCL_CURRENT | MCL_FUTURE : MCL_CURRENT;
}

std::string Nice_Words(int nice, int error) {
  return "The higher priority (nice " + std::to_string(nice) + ") was refused (" +
         std::strerror(error) +
         "); the steps run at normal priority. Give the program the capability CAP_SYS_NICE with "
         "the command \"sudo setcap cap_sys_rawio,cap_sys_nice,cap_ipc_lock+ep " +
         Program_Path() +
         "\", or your group the right with a line \"@group - nice -20\" in "
         "/etc/security/limits.conf, then log in again.";
}

std::string Lock_Words(int error) {
  return std::string("Locking the memory was refused (") + std::strerror(error) +
         "); the system may page the program out while it moves. Give the program the capability "
         "CAP_IPC_LOCK with the command \"sudo setcap "
         "cap_sys_rawio,cap_sys_nice,cap_ipc_lock+ep " +
         Program_Path() +
         "\", or your group the right with a line \"@group - memlock unlimited\" in "
         "/etc/security/limits.conf, then log in again.";
}

std::string Set_Priority(int level) {
  const int wanted = level == 2 ? Real_Time_Nice : level == 1 ? High_Nice : Started_Nice();
  std::string refused;
  // Of this thread: the one that makes the steps.
  if (Own_Nice() != wanted && ::setpriority(PRIO_PROCESS, 0, wanted) != 0) {
    refused = Nice_Words(wanted, errno);
  }
  if (level != 2) {
    ::munlockall();
  } else if (::mlockall(Lock_Flags()) != 0) {
    refused += (refused.empty() ? "" : " ") + Lock_Words(errno);
  }
  return refused;
}

}  // namespace

void Install_Linux_Priority() {
  Started_Nice();
  Platform.Set_Priority = Set_Priority;
}

}  // namespace norvik
