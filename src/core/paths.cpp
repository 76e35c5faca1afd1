#include "core/paths.h"

#include "core/fault.h"
#include "core/replacement_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr std::string_view Separators = "\\/";

std::size_t File_Start(std::string_view path) {
  const auto last = path.find_last_of(Separators);
  return last == std::string_view::npos ? 0 : last + 1;
}

// Where the extension of the file part begins when the first "." counts.
std::size_t First_Point(std::string_view path) {
  return std::min(path.find('.', File_Start(path)), path.size());
}

// A file descriptor that closes itself.
struct Open_File {
  explicit Open_File(int number) : Number(number) {}
  ~Open_File() {
    if (Number >= 0) ::close(Number);
  }
  Open_File(const Open_File&) = delete;
  Open_File& operator=(const Open_File&) = delete;
  int Number;
};

}  // namespace

Fault File_Fault(const std::string& path, const char* what, int reason) {
  const auto said = [&](Fault_Number number, const std::string& text) {
    return Fault(number, std::string(what) + " " + path + ": " + text);
  };
  switch (reason) {
    case ENOENT:
      return said(Fault_Number::File_Not_Found,
                  "there is no such file or folder; check the name or choose another folder");
    case ENOTDIR:
      return said(Fault_Number::Path_Access, "a part of the path is a file and not a folder");
    case EISDIR:
      return said(Fault_Number::Path_Access, "this is a folder, please name a file");
    case EACCES:
    case EPERM:
      return said(Fault_Number::Permission_Denied,
                  "you have no right to it; change its rights or choose another place");
    case EROFS:
      return said(Fault_Number::Permission_Denied, "the disk is read-only; choose another place");
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return said(Fault_Number::Disk_Full, "the disk is full; make room and try again");
    case ENXIO:
      return said(Fault_Number::Path_Access, "nobody reads from this pipe; start its reader first");
    case ENAMETOOLONG:
      return said(Fault_Number::Path_Access, "the name is too long");
    default:
      return said(Fault_Number::Path_Access, std::strerror(reason));
  }
}

std::string PathDirectory(std::string_view path) {
  return std::string(path.substr(0, File_Start(path)));
}

std::string PathFileName(std::string_view path) {
  return std::string(path.substr(File_Start(path)));
}

std::string FileNameStem(std::string_view name) {
  return std::string(name.substr(0, First_Point(name)));
}

std::string ChangeExtension(std::string_view name, std::string_view extension) {
  return std::string(name.substr(0, First_Point(name))) + "." + std::string(extension);
}

std::string PathExtension(std::string_view path) {
  const std::string_view name = path.substr(File_Start(path));
  const auto point = name.rfind('.');
  return std::string(point == std::string_view::npos ? name : name.substr(point));
}

bool FileExists(const std::string& path) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  return !failure && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

std::string Join_Path(std::string_view folder, std::string_view name) {
  std::string path(folder);
  while (!name.empty() && Separators.find(name.front()) != std::string_view::npos) {
    name.remove_prefix(1);
  }
  if (!path.empty() && Separators.find(path.back()) == std::string_view::npos) path += '/';
  return path + std::string(name);
}

namespace {

// More than any file of ours holds; a device gives bytes for ever.
constexpr std::size_t Largest_File = std::size_t{4} << 30, Largest_Stream = std::size_t{64} << 20;

[[noreturn]] void Raise_Too_Large(const std::string& path, std::size_t largest) {
  throw Fault(Fault_Number::Out_Of_Memory, "Cannot read " + path + ": it gives more than " +
                                               std::to_string(largest >> 20) + " MB");
}

std::string Read_Open_File(const Open_File& file, const std::string& path) {
  struct stat about {};
  if (::fstat(file.Number, &about) != 0) throw File_Fault(path, "Cannot read", errno);
  if (S_ISDIR(about.st_mode)) throw File_Fault(path, "Cannot read", EISDIR);
  const std::size_t largest = S_ISREG(about.st_mode) ? Largest_File : Largest_Stream;
  if (about.st_size > static_cast<off_t>(largest)) Raise_Too_Large(path, largest);
  ::fcntl(file.Number, F_SETFL, 0);  // from here on a pipe may be waited for

  // One byte more than there is, so that the end is seen without growing.
  std::string bytes(static_cast<std::size_t>(S_ISREG(about.st_mode) ? about.st_size : 0) + 1, '\0');
  std::size_t length = 0;
  for (;;) {
    if (length > largest) Raise_Too_Large(path, largest);
    if (length == bytes.size()) bytes.resize(length + std::max<std::size_t>(length / 2, 4096));
    const ssize_t count = ::read(file.Number, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw File_Fault(path, "Cannot read", errno);
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace

std::optional<std::string> Read_If_There(const std::string& path) {
  // Without waiting, so that a pipe that nobody writes to does not hang the program.
  const Open_File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Number < 0 && errno == ENOENT) return std::nullopt;
  if (file.Number < 0) throw File_Fault(path, "Cannot read", errno);
  return Read_Open_File(file, path);
}

std::string Read_Whole_File(const std::string& path) {
  std::optional<std::string> bytes = Read_If_There(path);
  if (!bytes) throw File_Fault(path, "Cannot read", ENOENT);
  return std::move(*bytes);
}

void Replace_File(const std::string& path, std::string_view bytes) {
  Replacement_File file(path);
  file.Write(bytes);
  file.Commit(Flush_To_Disk::Yes);
}

std::vector<std::string> Split_Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find_first_of("\r\n"), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
    if (text.starts_with("\r\n")) {
      text.remove_prefix(2);
    } else if (!text.empty()) {
      text.remove_prefix(1);
    }
  }
  return lines;
}

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string Trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

}  // namespace norvik
