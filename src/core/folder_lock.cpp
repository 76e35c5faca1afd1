#include "core/folder_lock.h"

#include "core/fault.h"

#include <cerrno>
#include <filesystem>
#include <map>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace norvik {

namespace {

struct Held_Folder {
  int File = -1;
  int Users = 0;
};

struct Folder_Lock_State {
  std::map<std::string, Held_Folder> Held;
};
Folder_Lock_State Folder_Locks;

std::string Folder_Of(const std::string& file) {
  std::error_code failure;
  const auto whole = std::filesystem::weakly_canonical(std::filesystem::absolute(file), failure);
  return failure ? std::string() : whole.parent_path().string();
}

// False when another program has the folder for longer than a save takes.
bool Lock_Within_A_Second(int file) {
  constexpr int tries = 200;
  constexpr useconds_t between_tries_us = 5'000;
  for (int count = 0; count < tries; ++count) {
    if (::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return true;
    ::usleep(between_tries_us);
  }
  return false;
}

}  // namespace

Folder_Lock::Folder_Lock(const std::string& file) {
  const std::string folder = Folder_Of(file);
  if (folder.empty()) return;
  Held_Folder& held = Folder_Locks.Held[folder];
  if (held.Users == 0) {
    held.File = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (held.File >= 0 && !Lock_Within_A_Second(held.File)) {
      ::close(held.File);
      Folder_Locks.Held.erase(folder);
      throw Fault(Fault_Number::Permission_Denied,
                  "Cannot write " + file +
                      ": another Norvik program is writing in that folder. Try again; if this "
                      "stays, end the other program");
    }
  }
  ++held.Users;
  Folder = folder;
}

Folder_Lock::~Folder_Lock() {
  const auto held = Folder_Locks.Held.find(Folder);
  if (held == Folder_Locks.Held.end() || --held->second.Users > 0) return;
  if (held->second.File >= 0) ::close(held->second.File);
  Folder_Locks.Held.erase(held);
}

}  // namespace norvik
