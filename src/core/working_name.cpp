#include "core/working_name.h"

#include "core/fault.h"
#include "core/paths.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view Prefix = ".norvik-";
constexpr std::string_view Unknown_Characters = "XXXXXX";
// Of a folder not the folder itself is locked: that lock belongs to who writes in it together with
// other programs (folder_lock.h).
constexpr std::string_view Lock_Name = ".lock";
constexpr std::time_t Youngest_Leftover = 60, Youngest_Without_Locks = 24 * 60 * 60;

bool Is_Working_Name(std::string_view name) {
  return name.starts_with(Prefix) && name.size() == Prefix.size() + Unknown_Characters.size();
}

// Nobody works with it any more. The answer holds: who makes a working file locks it at once, and
// nobody opens one that another has made.
bool Is_Abandoned(const std::string& path) {
  struct stat about {};
  if (::lstat(path.c_str(), &about) != 0 || about.st_uid != ::geteuid()) return false;
  if (!S_ISREG(about.st_mode) && !S_ISDIR(about.st_mode)) return false;
  const std::time_t age = std::time(nullptr) - about.st_mtime;
  if (age < Youngest_Leftover) return false;
  const std::string lock = S_ISDIR(about.st_mode) ? Join_Path(path, Lock_Name) : path;
  const int file = ::open(lock.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (file < 0) return errno == ENOENT;  // killed before it had locked its folder
  const bool locked_now = ::flock(file, LOCK_EX | LOCK_NB) == 0;
  const bool in_use = !locked_now && errno == EWOULDBLOCK;
  ::close(file);
  return locked_now || (!in_use && age >= Youngest_Without_Locks);
}

}  // namespace

std::string Working_Name_In(const std::string& folder) {
  return Join_Path(folder, std::string(Prefix) + std::string(Unknown_Characters));
}

void Collect_Leftovers(const std::string& folder) noexcept {
  std::error_code failure;
  fs::directory_iterator entry(folder.empty() ? "." : folder, failure);
  // An entry that fails ends the walk; the next start comes by again.
  for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
    if (!Is_Working_Name(entry->path().filename().native())) continue;
    if (!Is_Abandoned(entry->path().native())) continue;
    std::error_code ignored;
    fs::remove_all(entry->path(), ignored);
  }
}

Working_Folder::Working_Folder(const std::string& parent) {
  Collect_Leftovers(parent);
  std::string name = Working_Name_In(parent);
  if (::mkdtemp(name.data()) == nullptr) throw File_Fault(parent, "Cannot write", errno);
  Place = name;
  Lock = ::open(Join_Path(Place, Lock_Name).c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600);
  if (Lock >= 0) ::flock(Lock, LOCK_EX | LOCK_NB);
}

Working_Folder::~Working_Folder() {
  std::error_code ignored;
  fs::remove_all(Place, ignored);
  if (Lock >= 0) ::close(Lock);
}

}  // namespace norvik
