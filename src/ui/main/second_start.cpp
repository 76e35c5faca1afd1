#include "ui/main/second_start.h"

#include "core/scope.h"

#include <array>
#include <cstring>
#include <deque>
#include <utility>

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>
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

// Files that were handed over and are not open yet. One that comes while a question stands open, or
// while another is being opened, waits: a second question on top of the first would have no end.
class Waiting_Files : public QObject {
 public:
  Waiting_Files(int socket, std::function<void(const std::string&)> open, QObject* owner)
      : QObject(owner), Socket(socket), Open(std::move(open)) {
    constexpr int look_ms = 200;
    Look.setInterval(look_ms);
    connect(&Look, &QTimer::timeout, this, &Waiting_Files::Open_Next);
  }

  void Take() {
    constexpr std::size_t longest_path = 4096;
    std::array<char, longest_path> path{};
    const ssize_t length = ::recv(Socket, path.data(), path.size(), 0);
    if (length <= 0) return;
    Files.emplace_back(path.data(), static_cast<std::size_t>(length));
    Look.start();
    Open_Next();
  }

 private:
  void Open_Next() {
    if (Opening || QApplication::activeModalWidget() != nullptr) return;
    if (Files.empty()) return Look.stop();
    const std::string file = std::move(Files.front());
    Files.pop_front();
    const Value_In_Scope opening(Opening, true);
    Open(file);
  }

  int Socket;
  std::function<void(const std::string&)> Open;
  std::deque<std::string> Files;
  QTimer Look;
  bool Opening = false;
};

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
  auto* files = new Waiting_Files(socket, std::move(open), notifier);
  QObject::connect(notifier, &QSocketNotifier::activated, files, &Waiting_Files::Take);
  QObject::connect(notifier, &QObject::destroyed, [socket] {
    ::close(socket);
    ::unlink(Socket_Name);
  });
}

}  // namespace norvik
