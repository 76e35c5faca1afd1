#include "platform/linux/fatal_signals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr std::array Fatal_Signals{SIGQUIT, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGXCPU};
constexpr std::size_t Stack_Size = 64 * 1024;

struct Fatal_Signal_State {
  void (*volatile Act)() noexcept = nullptr;
  volatile pid_t Thread = 0;
};
Fatal_Signal_State Fatal;

alignas(16) std::array<char, Stack_Size> Signal_Stack;

pid_t Own_Thread() {
  return static_cast<pid_t>(::syscall(SYS_gettid));
}

void End_By(int signal) {
  std::signal(signal, SIG_DFL);
  ::raise(signal);  // acts when the handler returns
}

// Hands the signal on to the thread that may write to the ports. Where that one no longer answers,
// the process ends after a second all the same.
void Hand_Over(int signal) {
  const timespec patience{1, 0};
  if (::syscall(SYS_tgkill, ::getpid(), Fatal.Thread, signal) == 0) ::nanosleep(&patience, nullptr);
  End_By(signal);
}

void On_Fatal_Signal(int signal) {
  if (Own_Thread() != Fatal.Thread) return Hand_Over(signal);
  const auto act = Fatal.Act;
  Fatal.Act = nullptr;  // what fails in the act must not begin it again
  if (act != nullptr) act();
  End_By(signal);
}

}  // namespace

void Install_Fatal_Signals(void (*act)() noexcept) {
  Fatal.Act = act;
  Fatal.Thread = Own_Thread();
  // A stack that has run over leaves no room for a handler.
  stack_t stack{};
  stack.ss_sp = Signal_Stack.data();
  stack.ss_size = Signal_Stack.size();
  const bool own_stack = ::sigaltstack(&stack, nullptr) == 0;
  struct sigaction action {};
  action.sa_handler = On_Fatal_Signal;
  action.sa_flags = own_stack ? SA_ONSTACK : 0;
  ::sigemptyset(&action.sa_mask);
  for (const int signal : Fatal_Signals) ::sigaction(signal, &action, nullptr);
}

}  // namespace norvik
