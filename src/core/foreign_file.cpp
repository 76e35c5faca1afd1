#include "core/foreign_file.h"

#include "core/fault.h"
#include "core/paths.h"

#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr const char* Cannot_Read = "Cannot read";

struct Foreign_File {
  Foreign_File(const std::string& path, std::int64_t largest);
  ~Foreign_File() {
    if (Number >= 0) ::close(Number);
  }
  Foreign_File(const Foreign_File&) = delete;
  Foreign_File& operator=(const Foreign_File&) = delete;

  int Number = -1;
  std::size_t Size = 0;
};

bool Is_Made_Up_By_The_Kernel(int file) {
  struct statfs about {};
  return ::fstatfs(file, &about) == 0 &&
         (about.f_type == PROC_SUPER_MAGIC || about.f_type == SYSFS_MAGIC ||
          about.f_type == DEBUGFS_MAGIC);
}

Foreign_File::Foreign_File(const std::string& path, std::int64_t largest)
    // Without waiting, so that a pipe that nobody writes to does not hang the program.
    : Number(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
  const auto refuse = [&](const Fault& fault) {
    if (Number >= 0) ::close(Number);
    throw fault;
  };
  struct stat about {};
  if (Number < 0 || ::fstat(Number, &about) != 0) refuse(File_Fault(path, Cannot_Read, errno));
  if (S_ISDIR(about.st_mode)) refuse(File_Fault(path, Cannot_Read, EISDIR));
  if (!S_ISREG(about.st_mode) || Is_Made_Up_By_The_Kernel(Number)) {
    refuse({Fault_Number::Path_Access,
            "Cannot read " + path +
                ": this is a device, a pipe or a file of the system; choose a file on a disk"});
  }
  if (about.st_size > largest) {
    refuse({Fault_Number::Out_Of_Memory, "Cannot read " + path + ": it is larger than " +
                                             std::to_string(largest / 1'000'000) +
                                             " MB; choose a smaller file"});
  }
  Size = static_cast<std::size_t>(about.st_size);
}

}  // namespace

void Look_At_Foreign_File(const std::string& path, std::int64_t largest) {
  const Foreign_File file(path, largest);
}

std::string Read_Foreign_File(const std::string& path, std::int64_t largest) {
  const Foreign_File file(path, largest);
  std::string bytes(file.Size, '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file.Number, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw File_Fault(path, Cannot_Read, errno);
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace norvik
