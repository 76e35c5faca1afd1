#include "ui/main/second_start.h"

#include <array>
#include <cstring>
#include <utility>

#include <QSocketNotifier>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace norvik {

namespace {

// Relative, since a socket's path may have no more than a hundred characters.
constexpr const char* Socket_Name = "Norvik.socket";

sockaddr_un Address() {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, Socket_Name, sizeof address.sun_path - 1);
  return address;
}

int Open_Socket() {
  return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

void Take_Files(int socket, const std::function<void(const std::string&)>& open) {
  constexpr std::size_t longest_path = 4096;
  std::array<char, longest_path> path{};
  const ssize_t length = ::recv(socket, path.data(), path.size(), 0);
  if (length > 0) open(std::string(path.data(), static_cast<std::size_t>(length)));
}

}  // namespace

bool Hand_To_First_Start(const std::string& file) {
  const int socket = Open_Socket();
  if (socket < 0) return false;
  const sockaddr_un address = Address();
  const ssize_t sent = ::sendto(socket, file.data(), file.size(), 0,
                                reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::close(socket);
  return sent == static_cast<ssize_t>(file.size());
}

void Listen_For_Second_Starts(QObject& owner, std::function<void(const std::string& file)> open) {
  const int socket = Open_Socket();
  if (socket < 0) return;
  ::unlink(Socket_Name);  // of a program that was killed: this one holds the lock
  const sockaddr_un address = Address();
  const mode_t mask = ::umask(0077);
  const int bound = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::umask(mask);
  if (bound != 0) {
    ::close(socket);
    return;
  }
  auto* notifier = new QSocketNotifier(socket, QSocketNotifier::Read, &owner);
  QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                   [socket, open = std::move(open)] { Take_Files(socket, open); });
  QObject::connect(notifier, &QObject::destroyed, [socket] {
    ::close(socket);
    ::unlink(Socket_Name);
  });
}

}  // namespace norvik
