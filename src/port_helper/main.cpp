// norvik-port PROGRAM [ARGUMENT...]: hands the right to the parallel port to norvik or norvik-cli.
//
//   sudo setcap cap_sys_rawio,cap_sys_resource+ep norvik-port     (once, by the administrator)
//   norvik-port norvik-cli run part.gc
//
// The kernel keeps the right to single I/O addresses over execve(2) (ioperm(2)). So this program
// takes the addresses of parallel ports and their cards and no others, gives up every capability,
// and becomes the program that was named. That one never has a capability, whatever plugins it
// loads. Nothing of the environment is looked at here; what is granted is told in NORVIK_PORTS,
// with the number of the process, which execve keeps, so that it means nothing to others.
#include "platform/linux/port_cards.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#if defined(__x86_64__) || defined(__i386__)
#include <sys/io.h>
#endif

namespace {

constexpr unsigned Dummy_Offset = 12, Lowest_Address = 600, Highest_Address = 0xFFFF;

[[noreturn]] void End(const std::string& text) {
  std::fprintf(stderr, "norvik-port: %s\n", text.c_str());
  std::exit(1);
}

int Allow(unsigned first, unsigned count) {
#if defined(__x86_64__) || defined(__i386__)
  return ::ioperm(first, count, 1) == 0 ? 0 : errno;
#else
  return first + count > 0 ? ENOSYS : 0;
#endif
}

// The registers of a port, and the place of its dummy writes. What was granted, as "378-37A,".
std::string Grant(unsigned first, unsigned last) {
  std::string granted;
  for (const unsigned offset : {0U, Dummy_Offset}) {
    if (first < Lowest_Address || last + offset > Highest_Address) continue;
    if (const int error = Allow(first + offset, last - first + 1)) {
      End(std::string("The system refuses the right to the port (") + std::strerror(error) +
          "). Give this program its capabilities: sudo setcap cap_sys_rawio,cap_sys_resource+ep "
          "norvik-port. If that does not help, Secure Boot has locked the kernel down.");
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%X-%X,", first + offset, last + offset);
    granted += text.data();
  }
  return granted;
}

std::string Grant_All() {
  std::string granted;
  for (const unsigned base : {0x278U, 0x378U, 0x3BCU}) granted += Grant(base, base + 2);
  for (const norvik::Card_Range& card : norvik::Port_Cards()) {
    granted += Grant(card.First, card.Last);
  }
  return granted;
}

// Priority and locked memory are limits that outlive execve, too. Without the right to raise them
// they stay what they are, and the program says so where it matters.
void Raise_Limits() {
  const rlimit nice{40, 40}, memory{RLIM_INFINITY, RLIM_INFINITY};  // nice -20
  ::setrlimit(RLIMIT_NICE, &nice);
  ::setrlimit(RLIMIT_MEMLOCK, &memory);
}

// Every right that came with this file, for good.
void Give_Up_Rights() {
  ::prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
  const bool given_up = ::syscall(SYS_capset, &header, none.data()) == 0 &&
                        ::setresgid(::getgid(), ::getgid(), ::getgid()) == 0 &&
                        ::setresuid(::getuid(), ::getuid(), ::getuid()) == 0 &&
                        ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
  if (!given_up) End(std::string("The rights cannot be given up: ") + std::strerror(errno));
}

std::string Own_Folder() {
  std::array<char, 4096> path{};
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  const std::string_view whole(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  return std::string(whole.substr(0, whole.rfind('/') + 1));
}

}  // namespace

int main(int argument_count, char** arguments) {
  const std::string_view name = argument_count > 1 ? arguments[1] : "";
  if (name != "norvik" && name != "norvik-cli") {
    End("Usage: norvik-port norvik [FILE], or norvik-port norvik-cli COMMAND...");
  }
  const std::string granted = Grant_All();
  Raise_Limits();
  Give_Up_Rights();
  const std::string ports = std::to_string(::getpid()) + ":" + granted;
  ::setenv("NORVIK_PORTS", ports.c_str(), 1);
  // Beside this program where it is installed, in the next folder where it was built.
  const std::string build_folder = name == "norvik" ? "../ui/" : "../cli/";
  for (const std::string& folder : {std::string(), build_folder}) {
    const std::string path = Own_Folder() + folder + std::string(name);
    ::execv(path.c_str(), arguments + 1);
  }
  End(std::string(name) + " does not lie beside norvik-port: " + std::strerror(errno));
}
