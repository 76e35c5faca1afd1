#include "core/replacement_file.h"

#include "core/paths.h"
#include "core/working_name.h"

#include <array>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr const char* Cannot_Write = "Cannot write";

// The file itself where `path` is a link to it, so that the link survives a replacement.
std::string Behind_Links(const std::string& path) {
  std::error_code failure;
  if (!std::filesystem::is_symlink(path, failure)) return path;
  const auto target = std::filesystem::weakly_canonical(path, failure);
  return failure ? path : target.string();
}

mode_t Usual_Rights() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

void Flush(int file, const std::string& path) {
  // A pipe has nothing to flush.
  if (::fsync(file) != 0 && errno != EINVAL) throw File_Fault(path, Cannot_Write, errno);
}

void Write_All(int file, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw File_Fault(path, Cannot_Write, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

struct Descriptor_Closer {
  int File;
  ~Descriptor_Closer() { ::close(File); }
};

// A rename survives a power cut only once its folder is on disk too.
void Flush_Folder_Of(const std::string& path) {
  const std::string folder = PathDirectory(path);
  const int file = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return;
  ::fsync(file);
  ::close(file);
}

}  // namespace

Replacement_File::Replacement_File(const std::string& path) : Target(Behind_Links(path)) {
  struct stat old {};
  const bool exists = ::stat(Target.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) throw File_Fault(Target, Cannot_Write, EISDIR);
  if (exists && ::access(Target.c_str(), W_OK) != 0) throw File_Fault(Target, Cannot_Write, errno);
  if (exists && !S_ISREG(old.st_mode)) {
    // Without waiting for a reader of a pipe; from here on it may wait for it.
    File = ::open(Target.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (File >= 0) ::fcntl(File, F_SETFL, 0);
  } else {
    Rights = exists ? old.st_mode & 07777 : Usual_Rights();
    Make_Neighbour();
  }
  if (File < 0) throw File_Fault(Target, Cannot_Write, errno);
  if (exists && !Neighbour.empty()) Keep_Owner(old.st_uid, old.st_gid, old.st_nlink);
}

Replacement_File::~Replacement_File() {
  if (File >= 0) ::close(File);
  if (!Neighbour.empty()) ::unlink(Neighbour.c_str());
}

void Replacement_File::Make_Neighbour() {
  const std::string folder = PathDirectory(Target);
  Collect_Leftovers(folder);
  Neighbour = Working_Name_In(folder);
  File = ::mkostemp(Neighbour.data(), O_CLOEXEC);
  if (File >= 0) {
    ::flock(File, LOCK_EX | LOCK_NB);
  } else {
    Neighbour.clear();
  }
}

// The new file belongs to whom the old one belonged. Where a name beside this one leads to the same
// file, or the owner cannot be given, the file itself has to stay.
void Replacement_File::Keep_Owner(unsigned owner, unsigned group, std::uint64_t names) {
  struct stat made {};
  const bool same = ::fstat(File, &made) == 0 && made.st_uid == owner && made.st_gid == group;
  const bool kept = same || ::fchown(File, owner, group) == 0;
  Stays = names > 1 || !kept;
}

void Replacement_File::Write(std::string_view bytes) {
  Write_All(File, bytes, Target);
}

// The content of the neighbour into the file itself, once it is sure that the disk has room for it.
void Replacement_File::Copy_Into_Target() {
  const int target = ::open(Target.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW);
  if (target < 0) throw File_Fault(Target, Cannot_Write, errno);
  const Descriptor_Closer closer{target};
  const off_t size = ::lseek(File, 0, SEEK_END);
  const int room = size > 0 ? ::fallocate(target, FALLOC_FL_KEEP_SIZE, 0, size) : 0;
  if (room != 0 && errno != EOPNOTSUPP) throw File_Fault(Target, Cannot_Write, errno);
  ::lseek(File, 0, SEEK_SET);
  std::array<char, 65'536> bytes{};
  for (;;) {
    const ssize_t count = ::read(File, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw File_Fault(Target, Cannot_Write, errno);
    if (count == 0) break;
    Write_All(target, {bytes.data(), static_cast<std::size_t>(count)}, Target);
  }
  if (::ftruncate(target, size) != 0) throw File_Fault(Target, Cannot_Write, errno);
  Flush(target, Target);
}

void Replacement_File::Commit(Flush_To_Disk flush) {
  if (flush == Flush_To_Disk::Yes) Flush(File, Target);
  if (Neighbour.empty()) return;
  if (Stays) return Copy_Into_Target();
  if (::fchmod(File, Rights) != 0 || ::rename(Neighbour.c_str(), Target.c_str()) != 0) {
    throw File_Fault(Target, Cannot_Write, errno);
  }
  Neighbour.clear();
  if (flush == Flush_To_Disk::Yes) Flush_Folder_Of(Target);
}

}  // namespace norvik
