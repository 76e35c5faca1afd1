// A second start of the desktop hands its file to the first.
#include "ui/main/second_start.h"

#include "core/paths.h"
#include "support/temporary_folder.h"

#include <filesystem>
#include <memory>
#include <vector>

#include <QObject>
#include <QTest>
#include <gmock/gmock.h>

namespace norvik {
namespace {

TEST(Second_Start, Hands_Its_File_To_The_Window_That_Is_Open) {
  const auto before = std::filesystem::current_path();
  const Temporary_Folder folder;
  std::filesystem::current_path(folder.Path);
  EXPECT_FALSE(Hand_To_First_Start("/a/part.gc"));  // nobody listens
  std::vector<std::string> opened;
  auto window = std::make_unique<QObject>();
  Replace_File("Norvik.socket", "");  // what a program that was killed may leave
  Listen_For_Second_Starts(*window, [&](const std::string& file) {
    opened.push_back(file);
    if (file != "/a/asks.gc") return;
    // What comes while a file is opened, and may ask something, waits.
    EXPECT_TRUE(Hand_To_First_Start("/a/later.gc"));
    QTest::qWait(50);
    opened.emplace_back("answered");
  });
  EXPECT_TRUE(Hand_To_First_Start("/a/part.gc"));
  EXPECT_TRUE(Hand_To_First_Start("/b/with blank.dxf"));
  QTest::qWait(50);
  EXPECT_THAT(opened, testing::ElementsAre("/a/part.gc", "/b/with blank.dxf"));
  opened.clear();
  EXPECT_TRUE(Hand_To_First_Start("/a/asks.gc"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return opened.size() == 3; }));
  EXPECT_THAT(opened, testing::ElementsAre("/a/asks.gc", "answered", "/a/later.gc"));
  window.reset();
  EXPECT_FALSE(Hand_To_First_Start("/a/part.gc"));
  EXPECT_FALSE(FileExists("Norvik.socket"));
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace norvik
