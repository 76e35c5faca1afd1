#include "simulate/process/pseudo_terminal.h"

#include "core/fault.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace norvik {

namespace {

[[noreturn]] void Raise(const std::string& what) {
  throw Fault(Fault_Number::Path_Access, what + ": " + std::strerror(errno) + ".");
}

void Make_Raw(int file) {
  termios settings{};
  if (::tcgetattr(file, &settings) != 0) Raise("The pseudo-terminal has no settings");
  ::cfmakeraw(&settings);
  ::cfsetspeed(&settings, B115200);
  if (::tcsetattr(file, TCSANOW, &settings) != 0) Raise("The pseudo-terminal cannot be set");
}

// A symbolic link that an earlier process left behind gives way; anything else
// is left alone.
void Remove_Link(const std::string& link) {
  struct stat found {};
  if (::lstat(link.c_str(), &found) == 0 && S_ISLNK(found.st_mode)) ::unlink(link.c_str());
}

}  // namespace

Pseudo_Terminal::Pseudo_Terminal(std::string link) : Link(std::move(link)) {
  Open();
}

Pseudo_Terminal::~Pseudo_Terminal() {
  Close();
}

void Pseudo_Terminal::Open() {
  if (Is_Open()) return;
  Master_File = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (Master_File < 0 || ::grantpt(Master_File) != 0 || ::unlockpt(Master_File) != 0) {
    Raise("There is no pseudo-terminal to be had");
  }
  char name[128];
  if (::ptsname_r(Master_File, name, sizeof name) != 0) Raise("The pseudo-terminal has no name");
  Slave_Path = name;
  Slave_File = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (Slave_File < 0) Raise(Slave_Path + " cannot be opened");
  Make_Raw(Slave_File);
  ::fcntl(Master_File, F_SETFL, ::fcntl(Master_File, F_GETFL) | O_NONBLOCK);
  if (Link.empty()) return;
  Remove_Link(Link);
  if (::symlink(name, Link.c_str()) == 0) return;
  const std::string link = std::exchange(Link, std::string());  // it is not ours
  const int error = errno;
  Close();
  errno = error;
  Raise("The link " + link + " cannot be made. Name another with --link");
}

void Pseudo_Terminal::Close() {
  if (!Link.empty()) Remove_Link(Link);
  for (int* file : {&Slave_File, &Master_File}) {
    if (*file >= 0) ::close(*file);
    *file = -1;
  }
}

bool Pseudo_Terminal::Read(std::vector<std::uint8_t>& bytes) {
  std::uint8_t buffer[4096];
  while (Is_Open()) {
    const ssize_t count = ::read(Master_File, buffer, sizeof buffer);
    if (count > 0) {
      bytes.insert(bytes.end(), buffer, buffer + count);
    } else if (count < 0 && errno == EINTR) {
      continue;
    } else {
      return count < 0 && (errno == EAGAIN || errno == EIO);
    }
  }
  return true;
}

void Pseudo_Terminal::Write(std::span<const std::uint8_t> bytes) {
  while (Is_Open() && !bytes.empty()) {
    const ssize_t count = ::write(Master_File, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;  // nobody reads: what does not fit is lost, as on a line
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

std::string Pseudo_Terminal::Wrong_Settings() const {
  termios settings{};
  if (Slave_File < 0 || ::tcgetattr(Slave_File, &settings) != 0) return {};
  if (::cfgetospeed(&settings) != B115200 || ::cfgetispeed(&settings) != B115200) {
    return "the port is set to another speed than 115200 baud";
  }
  if ((settings.c_cflag & CSIZE) != CS8 || (settings.c_cflag & (PARENB | CSTOPB)) != 0) {
    return "the port is not set to 8 bits, no parity, 1 stop bit";
  }
  if ((settings.c_lflag & (ICANON | ECHO | ISIG)) != 0 || (settings.c_oflag & OPOST) != 0 ||
      (settings.c_iflag & (IXON | ICRNL | INLCR | ISTRIP)) != 0) {
    return "the port changes bytes on their way: it is not raw";
  }
  return {};
}

}  // namespace norvik
