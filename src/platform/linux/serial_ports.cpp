#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "platform/rest.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include <fcntl.h>
#include <grp.h>
#include <libserialport.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace norvik {

namespace {

struct Free_Port {
  void operator()(sp_port* port) const { sp_free_port(port); }
};
using Port_Handle = std::unique_ptr<sp_port, Free_Port>;

struct Open_Port {
  int File = -1;
  Port_Handle Port;  // null: a device that the library does not know, as a pseudo-terminal
};

struct Serial_Ports_State {
  std::map<int, Open_Port> Open;
  int Last_Handle = 0;
};
Serial_Ports_State Serial_Ports;

// The same files once more, for a signal handler; 0: none, otherwise the file's number and 1.
std::array<std::atomic<int>, 8> Files_Of_Handler;

void Note_File(int before, int now) {
  for (auto& file : Files_Of_Handler) {
    int expected = before + 1;
    if (file.compare_exchange_strong(expected, now + 1)) return;
  }
}

Open_Port* Find(int handle) {
  const auto found = Serial_Ports.Open.find(handle);
  return found == Serial_Ports.Open.end() ? nullptr : &found->second;
}

std::string Group_Of(const std::string& device) {
  struct stat status {};
  if (::stat(device.c_str(), &status) != 0) return {};
  const group* owner = ::getgrgid(status.st_gid);
  return owner ? owner->gr_name : std::to_string(status.st_gid);
}

std::string Problem_Words(const std::string& device, int error) {
  switch (error) {
    case ENOENT:
    case ENXIO:
    case ENODEV:
      return device + " does not exist: plug the board's cable in, or choose another port.";
    case EACCES:
    case EPERM:
      return device + " may be opened by the group " + Group_Of(device) +
             " only: add yourself to it (sudo usermod -aG " + Group_Of(device) +
             " $USER) and log in again.";
    case EBUSY:
    case EWOULDBLOCK:
      return device + " is in use by another program: end that one first.";
    case ENOTTY:
      return device + " is no serial port.";
    default:
      return device + " cannot be opened: " + std::strerror(error) + ".";
  }
}

// A name behind links; the path itself when there is no such file.
std::string Real_Path(const std::string& device) {
  const std::unique_ptr<char, decltype(&std::free)> path(::realpath(device.c_str(), nullptr),
                                                         &std::free);
  return path ? path.get() : device;
}

speed_t Speed_Of(std::int32_t baud) {
  switch (baud) {
    case 9'600:
      return B9600;
    case 19'200:
      return B19200;
    case 38'400:
      return B38400;
    case 57'600:
      return B57600;
    case 230'400:
      return B230400;
    default:
      return B115200;
  }
}

// This program alone, every byte unchanged. 0, or the system's error.
int Take_Port(int file, std::int32_t baud) {
  if (::flock(file, LOCK_EX | LOCK_NB) != 0) return errno;
  if (::ioctl(file, TIOCEXCL) != 0) return errno;
  termios settings{};
  if (::tcgetattr(file, &settings) != 0) return errno;
  ::cfmakeraw(&settings);
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB | CRTSCTS);
  settings.c_cflag |= CS8 | CLOCAL | CREAD;
  settings.c_cc[VMIN] = settings.c_cc[VTIME] = 0;
  ::cfsetspeed(&settings, Speed_Of(baud));
  return ::tcsetattr(file, TCSANOW, &settings) == 0 ? 0 : errno;
}

// 0, or the system's error.
int Open_Device(const std::string& path, Open_Port& port) {
  sp_port* known = nullptr;
  if (sp_get_port_by_name(path.c_str(), &known) == SP_OK) {
    port.Port.reset(known);
    if (sp_open(known, SP_MODE_READ_WRITE) != SP_OK) return sp_last_error_code();
    return sp_get_port_handle(known, &port.File) == SP_OK ? 0 : ENODEV;
  }
  port.File = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  return port.File >= 0 ? 0 : errno;
}

void Close_Device(Open_Port& port) {
  if (port.Port)
    sp_close(port.Port.get());
  else if (port.File >= 0)
    ::close(port.File);
}

Serial_Opened Open(const std::string& device, std::int32_t baud) {
  Open_Port port;
  int error = Open_Device(Real_Path(device), port);
  if (error == 0) error = Take_Port(port.File, baud);
  if (error != 0) {
    Close_Device(port);
    return {0, Problem_Words(device, error)};
  }
  Note_File(-1, port.File);
  const int handle = ++Serial_Ports.Last_Handle;
  Serial_Ports.Open.emplace(handle, std::move(port));
  return {handle, {}};
}

// A port whose buffer is full is given a moment: a frame is no longer than one of its packets.
bool Write(int handle, const std::vector<std::uint8_t>& bytes) {
  const Open_Port* port = Find(handle);
  constexpr int tries = 100;
  std::size_t written = 0;
  for (int i = 0; port && written < bytes.size() && i < tries; ++i) {
    const ssize_t count = ::write(port->File, bytes.data() + written, bytes.size() - written);
    if (count > 0) written += static_cast<std::size_t>(count);
    if (count < 0 && errno != EAGAIN && errno != EINTR) return false;
    if (count <= 0) Rest_Microseconds(100);
  }
  return port && written == bytes.size();
}

std::int32_t Available(int handle) {
  const Open_Port* port = Find(handle);
  int count = 0;
  if (!port || ::ioctl(port->File, FIONREAD, &count) != 0) return -1;
  return count;
}

bool Read(int handle, std::vector<std::uint8_t>& bytes) {
  const Open_Port* port = Find(handle);
  if (!port) return false;
  std::array<std::uint8_t, 256> part{};
  for (;;) {
    const ssize_t count = ::read(port->File, part.data(), part.size());
    if (count > 0) {
      bytes.insert(bytes.end(), part.begin(), part.begin() + count);
      continue;
    }
    return count == 0 || errno == EAGAIN || errno == EINTR;
  }
}

std::vector<Serial_Port_Info> List() {
  std::vector<Serial_Port_Info> ports;
  sp_port** list = nullptr;
  if (sp_list_ports(&list) != SP_OK) return ports;
  for (sp_port** port = list; *port; ++port) {
    const char* words = sp_get_port_description(*port);
    Serial_Port_Info info{sp_get_port_name(*port), words ? words : "", {}};
    if (::access(info.Device.c_str(), R_OK | W_OK) != 0)
      info.Problem = Problem_Words(info.Device, errno);
    ports.push_back(std::move(info));
  }
  sp_free_port_list(list);
  return ports;
}

}  // namespace

void Write_Serial_Ports_In_Handler(const std::uint8_t* bytes, std::size_t count) noexcept {
  for (const auto& file : Files_Of_Handler) {
    if (file > 0 && ::write(file - 1, bytes, count) < 0) continue;  // nobody is left to be told
  }
}

void Install_Serial_Ports() {
  Platform.Serial_Ports = List;
  Platform.Serial_Open = Open;
  Platform.Serial_Write = Write;
  Platform.Serial_Available = Available;
  Platform.Serial_Read = Read;
  Platform.Serial_Close = [](int handle) {
    if (Open_Port* port = Find(handle)) {
      Note_File(port->File, -1);
      Close_Device(*port);
    }
    Serial_Ports.Open.erase(handle);
  };
}

}  // namespace norvik
