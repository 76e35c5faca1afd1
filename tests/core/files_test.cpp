// Files that take the place of others, what killed programs leave, and the bounded logs.
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/replacement_file.h"
#include "core/working_name.h"
#include "platform/scripted/scripted_platform.h"
#include "support/temporary_folder.h"

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct stat About(const std::string& path) {
  struct stat about {};
  EXPECT_EQ(::stat(path.c_str(), &about), 0) << path;
  return about;
}

void Make_Older(const std::string& path, std::time_t seconds) {
  const timespec time{std::time(nullptr) - seconds, 0};
  const timespec times[] = {time, time};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

struct Files_Test : testing::Test {
  // Whatever a file is reached by leads to the new content afterwards.
  void Expect_Everywhere(const std::string& text, const std::vector<std::string>& names) {
    for (const std::string& name : names)
      EXPECT_EQ(Read_Whole_File(Folder.File(name)), text) << name;
  }
  std::size_t Entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(Folder.Path), fs::directory_iterator()));
  }
  Temporary_Folder Folder;
};

TEST_F(Files_Test, Links_Mode_And_Owner_Stay) {
  const std::string file = Folder.File("file");
  Replace_File(file, "first, and longer than the second");
  fs::create_symlink("file", Folder.File("symbolic"));
  ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
  const bool as_root = ::geteuid() == 0;
  if (as_root) {
    ASSERT_EQ(::chown(file.c_str(), 1234, 4321), 0);
  }
  Replace_File(Folder.File("symbolic"), "second");
  Expect_Everywhere("second", {"file", "symbolic"});
  EXPECT_TRUE(fs::is_symlink(Folder.File("symbolic")));

  fs::create_hard_link(file, Folder.File("hard"));
  for (const char* text : {"a third text that is longer than before", "4", ""}) {
    Replace_File(file, text);
    Expect_Everywhere(text, {"file", "symbolic", "hard"});
  }
  EXPECT_EQ(About(file).st_nlink, 2U);
  EXPECT_EQ(About(file).st_mode & 07777, 0640U);
  if (as_root) {
    EXPECT_EQ(About(file).st_uid, 1234U);
    EXPECT_EQ(About(file).st_gid, 4321U);
  }
  EXPECT_EQ(Entries(), 3U) << "no neighbour is left";
}

TEST_F(Files_Test, Only_What_Nobody_Works_With_Is_Collected) {
  const auto make = [&](const std::string& name, std::time_t age) {
    Replace_File(Folder.File(name), "x");
    Make_Older(Folder.File(name), age);
    return Folder.File(name);
  };
  const std::string left = make(".norvik-abcdef", 300), young = make(".norvik-ghijkl", 5);
  const std::string longer_name = make(".norvik-settings", 300), other = make("part.gc", 300);
  const std::string link = Folder.File(".norvik-mnopqr");
  fs::create_symlink(other, link);
  fs::create_directories(Folder.File(".norvik-folder/in"));
  fs::rename(Folder.File(".norvik-folder"), Folder.File(".norvik-tables"));
  Make_Older(Folder.File(".norvik-tables"), 300);

  // A program at work, which has had its file for long.
  std::optional<Replacement_File> file(std::in_place, Folder.File("new"));
  EXPECT_FALSE(fs::exists(left)) << "the leftover goes when the writing begins";
  std::string at_work;
  for (const auto& entry : fs::directory_iterator(Folder.Path)) {
    if (!entry.is_symlink() && fs::is_empty(entry.path())) at_work = entry.path();
  }
  ASSERT_FALSE(at_work.empty());
  EXPECT_FALSE(fs::exists(Folder.File(".norvik-tables")));
  Make_Older(at_work, 300);
  const pid_t child = ::fork();
  if (child == 0) {
    Collect_Leftovers(Folder.Path);
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  for (const std::string& kept : {young, longer_name, other, link, at_work}) {
    EXPECT_TRUE(fs::exists(kept)) << kept;
  }
  file->Write("done");
  file->Commit(Flush_To_Disk::No);
  file.reset();
  EXPECT_EQ(Read_Whole_File(Folder.File("new")), "done");
}

TEST_F(Files_Test, A_Log_Stays_Bounded_And_One_That_Fails_Speaks_Up) {
  const Scripted_Platform scripted;
  Log_Limits.Error_Log = 200;
  Application.ErrorFile = Folder.File("NorvikErr.txt");
  for (int n = 0; n < 50; ++n) ErrorLogWrite("entry " + std::to_string(n));
  EXPECT_LT(fs::file_size(Folder.File("NorvikErr.txt")), 300U);
  EXPECT_LT(fs::file_size(Folder.File("NorvikErr.1.txt")), 300U);
  EXPECT_THAT(Read_Whole_File(Folder.File("NorvikErr.txt")), HasSubstr("entry 49"));
  EXPECT_EQ(Entries(), 2U);

  Application.ErrorFile = Folder.File("gone/NorvikErr.txt");
  testing::internal::CaptureStderr();
  ErrorLogWrite("the machine file is broken");
  ErrorLogWrite("and again");
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_THAT(said, HasSubstr("no such file or folder"));
  EXPECT_THAT(said, HasSubstr("the machine file is broken"));
  EXPECT_THAT(said, HasSubstr("and again"));
  EXPECT_EQ(said.find("no such file"), said.rfind("no such file")) << "the cause once";
  Application = {};
  Log_Limits = {};
}

}  // namespace
}  // namespace norvik
