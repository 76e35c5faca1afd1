// The bar above the editor, pressed as a hand would.
#include "ui_fixture.h"

namespace norvik {
namespace {

struct Adapt_Bar_Test : Ui_Test {
  bool Bar_Is_Shown() { return Find("Bar_Adapt").isVisibleTo(Window.get()); }
  std::string Text() { return Find<QPlainTextEdit>("Text_GCode").toPlainText().toStdString(); }
};

TEST_F(Adapt_Bar_Test, Adapt_Rewrites_The_Text_And_One_Undo_Brings_It_Back) {
  const std::string foreign = "g20g90\ng0x1y2(over)\ng1x2f10\n";
  Open("foreign.ngc", foreign);
  ASSERT_TRUE(Bar_Is_Shown());
  EXPECT_THAT(Text_Of("Label_Adapt").toStdString(), testing::HasSubstr("of 3 lines would be lost"));
  Click("Command_Adapt");
  EXPECT_THAT(Text(), testing::ContainsRegex("G0 X0*1\\.0+ Y0*2\\.0+ \\(over\\)"));
  EXPECT_FALSE(Bar_Is_Shown());
  Find<QPlainTextEdit>("Text_GCode").undo();
  EXPECT_EQ(Text(), foreign);
  EXPECT_EQ(Read_Whole_File(Folder.File("foreign.ngc")), foreign);
}

TEST_F(Adapt_Bar_Test, Leave_Hides_It_And_A_Plain_Program_Has_None) {
  Open("foreign.ngc", "g0x1y2\n");
  ASSERT_TRUE(Bar_Is_Shown());
  Click("Command_Adapt_Show");
  EXPECT_EQ(Find<QPlainTextEdit>("Text_GCode").textCursor().blockNumber(), 0);
  Click("Command_Adapt_Leave");
  EXPECT_FALSE(Bar_Is_Shown());
  Open("plain.gc", "G0 X1 Y2\n");
  EXPECT_FALSE(Bar_Is_Shown());
}

}  // namespace
}  // namespace norvik
