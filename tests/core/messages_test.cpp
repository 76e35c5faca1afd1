// Panels, message list, error log, traps and waiting.
#include "core/messages.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/waiting.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

struct Messages_Test : testing::Test {
  Messages_Test() {
    Reset_Core();
    Application.ErrorFile = Folder.File("NorvikErr.txt");
  }
  ~Messages_Test() override { Reset_Core(); }
  std::string Log() { return Read_Whole_File(Application.ErrorFile); }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

TEST_F(Messages_Test, List_Holds_The_Newest_51) {
  for (int i = 1; i <= 60; ++i) AddMessage("line " + std::to_string(i));
  EXPECT_EQ(Messages.MessageLog[0], "line 60");
  EXPECT_EQ(Messages.MessageLog[50], "line 10");
  EXPECT_EQ(Messages.LastMessage, "line 60");
  EXPECT_THAT(Messages.Status_Box, testing::StartsWith("line 60\r\nline 59\r\n"));
  EXPECT_THAT(Messages.Status_Box, testing::EndsWith("line 10\r\n"));
  Add_New_Message("line 56");  // among the five newest
  EXPECT_EQ(Messages.LastMessage, "line 60");
  Add_New_Message("line 55");
  EXPECT_EQ(Messages.MessageLog[0], "line 55");
  AddMessage(Messages.MessageLog[7]);  // a text out of the list itself
  EXPECT_EQ(Messages.MessageLog[0], "line 54");
}

TEST_F(Messages_Test, Panels_One_And_Three_Are_Cleared_In_Time) {
  for (int panel = 1; panel <= 3; ++panel) SetStatus(panel, "text", 2);
  SetStatus(4, "stays", 1);
  Age_Status_Panels();
  EXPECT_EQ(Messages.Panel[1], "text");
  Age_Status_Panels();
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(Messages.Panel[2], "text");
  EXPECT_EQ(Messages.Panel[3], "");
  EXPECT_EQ(Messages.Panel[4], "stays");
  SetStatus(1, "kept", -1);
  for (int i = 0; i < 5; ++i) Age_Status_Panels();
  EXPECT_EQ(Messages.Panel[1], "kept");
  EXPECT_EQ(Messages.Status_Timeout[1], -1);
}

TEST_F(Messages_Test, What_Is_Over_Leaves_The_Panel_And_Stays_In_The_List) {
  Messages = {};
  Tell("Refused.", 5);
  Tell("Refused.", 5);  // a key that repeats itself
  EXPECT_EQ(Messages.Panel[1], "Refused.");
  EXPECT_EQ(Messages.Status_Timeout[1], 5);
  EXPECT_EQ(Messages.MessageLog[0], "Refused.");
  EXPECT_EQ(Messages.MessageLog[1], "");
  Clear_Standing_Status();  // ends by itself soon
  EXPECT_EQ(Messages.Panel[1], "Refused.");
  for (const int seconds : {-1, 1000}) {
    SetStatus(1, "Done!", seconds);
    Clear_Standing_Status();
    EXPECT_EQ(Messages.Panel[1], "");
    EXPECT_EQ(Messages.Status_Timeout[1], -1);
  }
  // Work that ends well, by a fault, and after another text has come.
  {
    const Progress_Status work("Work: ");
    SetStatus(1, "Work: 99.00% completed", 5);
  }
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_FALSE(Trap("Work", [] {
    const Progress_Status work("Work: ");
    SetStatus(1, "Work: file", -1);
    throw Fault(Fault_Number::Disk_Full, "full");
  }));
  EXPECT_THAT(Messages.Panel[1], testing::HasSubstr("full"));
  {
    const Progress_Status work("Work: ");
    SetStatus(1, "Lines are missing", 10);
  }
  EXPECT_EQ(Messages.Panel[1], "Lines are missing");
}

TEST_F(Messages_Test, Error_Log_Takes_One_Line_An_Entry) {
  ErrorLogWrite("first");
  EXPECT_EQ(Messages.Panel[1], "Error Write:first");
  EXPECT_EQ(Messages.Panel[3], "Error Log Entry");
  EXPECT_EQ(Messages.Status_Timeout[1], 10);
  EXPECT_FALSE(Trap("Some_Error", [] { throw Fault(Fault_Number::Overflow, "too\r\nlarge"); }));
  EXPECT_FALSE(Trap("Import Error # ", [] { throw std::runtime_error("lost"); }));
  EXPECT_TRUE(Trap("Quiet", [] {}));
  const std::string stamp = "05/06/2024 10:20:30 Error Description: ";
  EXPECT_EQ(Log(), stamp + "first\r\n" + stamp + "Some_Error # 6 too  large\r\n" + stamp +
                       "Import Error # 51 lost\r\n");
  ErrorLogWrite(std::string(5000, 'x') + "\x1B[2J");
  EXPECT_THAT(Log(), testing::EndsWith("xxx... (5004 characters)\r\n"));
  EXPECT_LT(Messages.Panel[1].size(), 1100U);
  Reset_Error_Log();
  EXPECT_EQ(Log(), "05/06/2024 10:20:30 Error File Cleared on Startup\r\n");
  EXPECT_EQ(Messages.Panel[1], "Error File Reset:");
  Application.ErrorFile = Folder.Path;  // cannot be written: the panels still tell
  ErrorLogWrite("second");
  EXPECT_EQ(Messages.Panel[1], "Error Write:second");
}

TEST_F(Messages_Test, Wait_Ends_By_The_Clock_That_Never_Goes_Back) {
  scripted.Day_Start = 86'399.9;  // midnight passes meanwhile
  Wait(0.5);
  EXPECT_NEAR(static_cast<double>(scripted.Now), 0.5e9, 1e5);
  scripted.Yield_Nanoseconds = 0;
  Wait(1);  // a clock that stands still does not hang it
  int asked = 0;
  std::vector<std::int64_t> left;
  const auto rest = [&](std::int64_t left_ns) {
    left.push_back(left_ns);
    Platform.Delay_Microseconds(400);
  };
  EXPECT_FALSE(Yield_Until([&] { return ++asked > 9; }, 1'000'000, rest));
  EXPECT_THAT(left, testing::ElementsAre(1'000'000, 600'000, 200'000));
  EXPECT_TRUE(Yield_Until([&] { return ++asked > 9; }, Without_Limit_ns, rest));
  EXPECT_EQ(asked, 10);
  scripted.Press(key::Escape);
  EXPECT_TRUE(CheckEsc());
  EXPECT_TRUE(Application.EscFlag);
  EXPECT_FALSE(CheckEsc());
}

TEST(Paths, Take_Both_Separators) {
  struct Row {
    const char *Path, *Directory, *Name, *Stem, *Extension, *Changed;
  };
  for (const Row& row : {
           Row{"C:\\a.b\\part.one.gc", "C:\\a.b\\", "part.one.gc", "C:\\a.b\\part", ".gc",
               "C:\\a.b\\part.GC"},
           Row{"/x/y/part", "/x/y/", "part", "/x/y/part", "part", "/x/y/part.GC"},
           Row{"part.gc", "", "part.gc", "part", ".gc", "part.GC"},
           Row{"/x.y/", "/x.y/", "", "/x.y/", "", "/x.y/.GC"},
           Row{".hidden", "", ".hidden", "", ".hidden", ".GC"},
           Row{"", "", "", "", "", ".GC"},
       }) {
    EXPECT_EQ(PathDirectory(row.Path), row.Directory) << row.Path;
    EXPECT_EQ(PathFileName(row.Path), row.Name) << row.Path;
    EXPECT_EQ(FileNameStem(row.Path), row.Stem) << row.Path;
    EXPECT_EQ(PathExtension(row.Path), row.Extension) << row.Path;
    EXPECT_EQ(ChangeExtension(row.Path, "GC"), row.Changed) << row.Path;
  }
  EXPECT_EQ(Join_Path("/a/", "\\b"), "/a/b");
  EXPECT_EQ(Join_Path("", "b"), "b");
  EXPECT_EQ(Split_Lines("a\r\n\nb\rc"), (std::vector<std::string>{"a", "", "b", "c"}));
  EXPECT_TRUE(Split_Lines("").empty());
  EXPECT_EQ(Split_Lines("a\n").size(), 1U);
  EXPECT_FALSE(FileExists("/"));
}

}  // namespace
}  // namespace norvik
