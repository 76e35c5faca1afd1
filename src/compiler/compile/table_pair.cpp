#include "compiler/compile/table_pair.h"

#include "compiler/compile/compile.h"
#include "core/fault.h"
#include "core/folder_lock.h"
#include "core/paths.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>

namespace norvik {

namespace {

constexpr const char* Cannot_Write = "Cannot write";

std::optional<timespec> Time_Of(const std::string& path) {
  struct stat about {};
  if (::stat(path.c_str(), &about) != 0) return std::nullopt;
  return about.st_mtim;
}

bool Is_Same(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

void Give_Time(const std::string& path, const timespec& time) {
  const std::array<timespec, 2> access_and_change{timespec{0, UTIME_OMIT}, time};
  if (::utimensat(AT_FDCWD, path.c_str(), access_and_change.data(), 0) != 0) {
    throw File_Fault(path, Cannot_Write, errno);
  }
}

void Move_Into(const std::string& folder, std::string& path) {
  const std::string place = Join_Path(folder, PathFileName(path));
  if (std::rename(path.c_str(), place.c_str()) != 0) throw File_Fault(place, Cannot_Write, errno);
  path = place;
}

}  // namespace

void Place_Table_Pair(const std::string& folder, std::string& records, std::string& wires) {
  const auto time = Time_Of(records);
  if (!time) throw File_Fault(records, "Cannot read", errno);
  Give_Time(records, *time);  // as the disk keeps it, so that both come out the same
  Give_Time(wires, *time);
  const Folder_Lock alone(Join_Path(folder, PathFileName(records)));
  Move_Into(folder, records);
  Move_Into(folder, wires);
}

Pair_Standing Standing_Of_Pair(const std::string& folder) {
  const auto records = Time_Of(Join_Path(folder, LineArc_Table_Name));
  if (!records) return Pair_Standing::Nothing;
  bool any = false;
  for (const std::string_view name : {Wire_Table_Name, Block_Wire_Table_Name}) {
    const auto wires = Time_Of(Join_Path(folder, name));
    any = any || wires;
    if (wires && Is_Same(*wires, *records)) return Pair_Standing::Whole;
  }
  return any ? Pair_Standing::Mixed : Pair_Standing::Nothing;
}

std::string Words_About_Mixed_Pair(const std::string& folder) {
  return "The two tables in " + folder +
         " are not from one compile: a program that wrote them was cut short, or one of them was "
         "changed. Compile the program again before anything reads them.";
}

}  // namespace norvik
