#include "simulate/process/control_socket.h"

#include "core/fault.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr std::size_t Longest_Line = 65'536;

[[noreturn]] void Raise(const std::string& what, const std::string& advice) {
  throw Fault(Fault_Number::Path_Access, what + ": " + std::strerror(errno) + ". " + advice);
}

sockaddr_un Address_Of(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw Fault(Fault_Number::Path_Access,
                "The path of the control socket is too long: " + path + ". Name a shorter one.");
  }
  std::copy(path.begin(), path.end(), address.sun_path);
  return address;
}

// Somebody listens there.
bool Is_In_Use(const sockaddr_un& address) {
  const int file = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (file < 0) return false;
  const bool used =
      ::connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(file);
  return used;
}

}  // namespace

Control_Socket::Control_Socket(std::string path) : Path(std::move(path)) {
  const std::string advice = "Name another with --control.";
  const sockaddr_un address = Address_Of(Path);
  if (Is_In_Use(address)) {
    throw Fault(Fault_Number::Path_Access,
                "The control socket " + Path + " is in use by another simulated board. " + advice);
  }
  Listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (Listener < 0) Raise("The control socket " + Path + " cannot be made", advice);
  int bound = ::bind(Listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  if (bound != 0 && errno == EADDRINUSE) {
    ::unlink(Path.c_str());  // left behind by a process that was killed
    bound = ::bind(Listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
  constexpr int waiting = 4;
  if (bound == 0 && ::listen(Listener, waiting) == 0) return;
  const int error = errno;
  ::close(Listener);
  errno = error;
  Raise("The control socket " + Path + " cannot be made", advice);
}

Control_Socket::~Control_Socket() {
  for (const Caller& caller : Callers) ::close(caller.File);
  ::close(Listener);
  ::unlink(Path.c_str());
}

void Control_Socket::Add_Files(std::vector<pollfd>& files) const {
  files.push_back({Listener, POLLIN, 0});
  for (const Caller& caller : Callers) files.push_back({caller.File, POLLIN, 0});
}

void Control_Socket::Take_Callers() {
  while (true) {
    const int file = ::accept4(Listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (file < 0) return;
    Callers.push_back({file, ""});
  }
}

bool Control_Socket::Receive(Caller& caller) {
  char buffer[4096];
  while (true) {
    const ssize_t count = ::recv(caller.File, buffer, sizeof buffer, 0);
    if (count > 0) {
      caller.Received.append(buffer, static_cast<std::size_t>(count));
      if (caller.Received.size() > Longest_Line) return false;
    } else if (count < 0 && errno == EINTR) {
      continue;
    } else {
      return count < 0 && errno == EAGAIN;
    }
  }
}

void Control_Socket::Serve(
    const std::function<std::string(int caller, const std::string& line)>& answer) {
  Take_Callers();
  for (Caller& caller : Callers) {
    const bool there = Receive(caller);
    for (auto end = caller.Received.find('\n'); end != std::string::npos;
         end = caller.Received.find('\n')) {
      const std::string line = caller.Received.substr(0, end);
      caller.Received.erase(0, end + 1);
      const std::string back = answer(caller.File, line);
      if (!back.empty()) Send(caller.File, back);
    }
    if (there) continue;
    ::close(caller.File);
    caller.File = -1;
  }
  std::erase_if(Callers, [](const Caller& caller) { return caller.File < 0; });
}

void Control_Socket::Send(int caller, const std::string& line) {
  if (!Is_There(caller)) return;
  const std::string whole = line + "\n";
  std::size_t sent = 0;
  while (sent < whole.size()) {
    const ssize_t count = ::send(caller, whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
    if (count > 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      pollfd file{caller, POLLOUT, 0};
      constexpr int patience_ms = 200;
      if (::poll(&file, 1, patience_ms) <= 0) return;  // it does not read
    } else if (errno != EINTR) {
      return;
    }
  }
}

bool Control_Socket::Is_There(int caller) const {
  return std::any_of(Callers.begin(), Callers.end(),
                     [&](const Caller& known) { return known.File == caller; });
}

}  // namespace norvik
