#include "platform/linux/granted_ports.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/program_path.h"
#include "platform/platform.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>

#include <fcntl.h>
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

// Where the kernel schedules each session as a group, a nice value only ranks the programs of one
// session; the group has a nice value of its own, which outlives the program.
constexpr const char* Group_File = "/proc/self/autogroup";

// Absent where there is no such grouping.
std::optional<int> Group_Nice() {
  std::ifstream file(Group_File);  // "/autogroup-11 nice 0"
  std::string name, word;
  int nice = 0;
  if (!(file >> name >> word >> nice)) return std::nullopt;
  return nice;
}

// 0, or the error number.
int Set_Group_Nice(int nice) {
  const int file = ::open(Group_File, O_WRONLY | O_CLOEXEC);
  if (file < 0) return errno;
  const std::string text = std::to_string(nice);
  const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  const int error = written ? 0 : errno;
  ::close(file);
  return error;
}

// What the program and its session were started with.
struct Started_Values {
  int Nice = Own_Nice();
  std::optional<int> Group = Group_Nice();
};
const Started_Values& Started() {
  static const Started_Values values;
  return values;
}

void Restore_Group() {
  const auto now = Group_Nice();
  if (now && Started().Group && *now != *Started().Group) Set_Group_Nice(*Started().Group);
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
         std::strerror(error) + "); the steps run at normal priority. To have it, " +
         Helper_Words() +
         " Or give your group the right with a line \"@group - nice -20\" in "
         "/etc/security/limits.conf, then log in again.";
}

std::string Group_Words(int error) {
  return std::string(
             "The higher priority was given, but the session's scheduling group was refused "
             "it (") +
         std::strerror(error) +
         "), so busy programs of other sessions may still hold up the steps. Switch the grouping "
         "off with the command \"sudo sysctl kernel.sched_autogroup_enabled=0\".";
}

std::string Lock_Words(int error) {
  return std::string("Locking the memory was refused (") + std::strerror(error) +
         "); the system may page the program out while it moves. To have it locked, " +
         Helper_Words() +
         " Or give your group the right with a line \"@group - memlock unlimited\" in "
         "/etc/security/limits.conf, then log in again.";
}

int Wanted_Nice(int level, int started) {
  return level == 2 ? Real_Time_Nice : level == 1 ? High_Nice : started;
}

// Empty when the steps run at the level, else the words.
std::string Set_Nice(int level) {
  const int wanted = Wanted_Nice(level, Started().Nice);
  // Of this thread: the one that makes the steps.
  if (Own_Nice() != wanted && ::setpriority(PRIO_PROCESS, 0, wanted) != 0) {
    return Nice_Words(wanted, errno);
  }
  const auto group = Group_Nice();
  if (!group) return "";
  const int wanted_group = Wanted_Nice(level, *Started().Group);
  if (*group == wanted_group) return "";
  const int error = Set_Group_Nice(wanted_group);
  return error == 0 ? "" : Group_Words(error);
}

std::string Set_Priority(int level) {
  std::string refused = Set_Nice(level);
  if (level != 2) {
    ::munlockall();
  } else if (::mlockall(Lock_Flags()) != 0) {
    refused += (refused.empty() ? "" : " ") + Lock_Words(errno);
  }
  return refused;
}

}  // namespace

void Install_Linux_Priority() {
  Started();
  std::atexit(Restore_Group);
  Platform.Set_Priority = Set_Priority;
}

}  // namespace norvik
