#include "platform/linux/linux_platform.h"
#include "platform/platform.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

namespace {

struct Lock {
  std::string Path;
  int File = -1;  // -1: not held
};

struct Lock_State {
  Lock Instance, Port;
};
Lock_State Locks;

// Reading is enough for a lock, so that a file of another user serves as well.
int Open_Lock_File(const std::string& path) {
  constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW;
  const int present = ::open(path.c_str(), flags);
  if (present >= 0 || errno != ENOENT) return present;
  const int made = ::open(path.c_str(), flags | O_CREAT | O_EXCL, 0644);
  if (made < 0) return errno == EEXIST ? ::open(path.c_str(), flags) : made;
  ::fchmod(made, 0644);  // whatever the user's mask says
  return made;
}

// 0 when it is held, EWOULDBLOCK when another process holds it, otherwise why it cannot be made.
int Hold(Lock& lock) {
  if (lock.File >= 0) return 0;
  const int file = Open_Lock_File(lock.Path);
  if (file < 0) return errno;
  if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    const int error = errno;
    ::close(file);
    return error;
  }
  lock.File = file;
  return 0;
}

// A folder that every user may write to, by its own mode and not by this user's rights, so that all
// users come to the same one.
std::string Common_Folder() {
  for (const char* folder : std::array{"/run/lock", "/dev/shm"}) {
    struct stat found {};
    if (::stat(folder, &found) == 0 && S_ISDIR(found.st_mode) && (found.st_mode & S_IWOTH) != 0) {
      return folder;
    }
  }
  return "/tmp";
}

// Nobody else can put anything into it or take it away.
bool Is_Own_Folder(const std::string& path) {
  struct stat found {};
  return ::lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
         found.st_uid == ::geteuid() && (found.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

std::string Runtime_Folder() {
  const char* given = std::getenv("XDG_RUNTIME_DIR");
  if (given != nullptr && given[0] == '/' && Is_Own_Folder(given)) return given;
  std::error_code missing;
  const auto temporary = std::filesystem::temp_directory_path(missing);
  const std::string own =
      (missing ? "/tmp" : temporary) / ("norvik-" + std::to_string(::geteuid()));
  ::mkdir(own.c_str(), S_IRWXU);
  return Is_Own_Folder(own) ? own : std::string();
}

void Install_Instance_Lock() {
  const std::string folder = Runtime_Folder();
  Locks.Instance.Path = folder.empty() ? "" : folder + "/norvik.lock";
  // Who does not know may not believe to be alone.
  Platform.Other_Instance_Runs = [] { return Hold(Locks.Instance) != 0; };
}

Port_Right Lock_Direct_Port() {
  if (Locks.Port.Path.empty()) Locks.Port.Path = Common_Folder() + "/norvik-port.lock";
  const int error = Hold(Locks.Port);
  if (error == 0) return {true, ""};
  if (error == EWOULDBLOCK) {
    return {false,
            "Another Norvik program on this computer, a window or norvik-cli run, drives the "
            "machine. Two at once would mix their pulses. Wait until it has ended, or end it, then "
            "start again. Or set Port_Access to Simulated to work on the simulated machine."};
  }
  return {false, "The lock file " + Locks.Port.Path +
                     ", which keeps two programs from driving one machine, cannot be used (" +
                     std::strerror(error) +
                     "). Make sure that its folder exists and may be written, or delete the file, "
                     "then start again."};
}

void Set_Port_Lock(const std::string& path) {
  if (Locks.Port.File >= 0) ::close(Locks.Port.File);
  Locks.Port = {path, -1};
}

}  // namespace norvik
