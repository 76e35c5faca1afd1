// The windows themselves: their memory, other setups, and files that arrive or do not.
#include "ui_fixture.h"

#include <filesystem>

#include <QDropEvent>
#include <QMimeData>

namespace norvik {
namespace {

struct Windows_Test : Ui_Test {
  void Drop(const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Window.get(), &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Window.get(), &drop);
  }
};

TEST_F(Windows_Test, A_First_Start_Tiles_Three_Windows_Without_Overlap) {
  const QRect plot = Frame_Of("Plot").geometry(), text = Frame_Of("GCode").geometry(),
              panel = Frame_Of("CNC_Controls").geometry();
  EXPECT_FALSE(plot.intersects(text) || plot.intersects(panel) || text.intersects(panel));
  EXPECT_LT(plot.top(), text.top());
  EXPECT_GT(panel.left(), plot.left());
  for (const char* name : {"Plot", "GCode", "CNC_Controls"}) {
    EXPECT_TRUE(Frame_Of(name).isVisible()) << name;
    EXPECT_GE(Frame_Of(name).width(), Frame_Of(name).minimumSizeHint().width()) << name;
  }
}

TEST_F(Windows_Test, Windows_Come_Back_Where_They_Stood_And_Closed_Ones_Stay_Closed) {
  const QRect place(40, 30, 500, 300);
  Frame_Of("GCode").setGeometry(place);
  Frame_Of("CNC_Controls").close();
  EXPECT_FALSE(Window->Tool_Window_Is_Open("CNC_Controls"));
  Start_Again();
  EXPECT_EQ(Frame_Of("GCode").geometry(), place);
  EXPECT_FALSE(Window->Tool_Window_Is_Open("CNC_Controls"));
  Choose("Menu_Window_CNC_Controls");
  EXPECT_TRUE(Window->Tool_Window_Is_Open("CNC_Controls"));
}

TEST_F(Windows_Test, Closing_With_Typed_Text_Asks_Once_And_Can_Be_Called_Off) {
  QTest::keyClicks(&Find("Text_GCode"), "G0 X1");
  scripted.Answer_Box(Box_Answer::Cancel);
  EXPECT_FALSE(Window->close());
  EXPECT_FALSE(scripted.Process_Ended);
  scripted.Answer_Box(Box_Answer::Yes);
  scripted.Save_Answers.push_back(Folder.File("kept.gc"));
  Window->close();
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_EQ(Read_Whole_File(Folder.File("kept.gc")), "G0 X1\r\n");
}

TEST_F(Windows_Test, Another_Machine_Setup_Is_Taken_Over_And_The_Windows_Speak_Its_Unit) {
  EXPECT_EQ(Find<QLabel>("Label_Axis_Unit_X").text(), "in");
  Replace_File(Folder.File("work/other.ini"),
               Read_Whole_File(std::string(NORVIK_SAMPLES_FOLDER) + "/metric.ini"));
  scripted.Open_Answers.push_back(Folder.File("work/other.ini"));
  Choose("Menu_Machine_Load_Machine_Setup");
  EXPECT_EQ(Application.MachineFile, Folder.File("work/other.ini"));
  EXPECT_EQ(Find<QLabel>("Panel_4").text(), "other");
  for (const char* name : {"Plot", "GCode", "CNC_Controls"}) {
    EXPECT_TRUE(Window->Tool_Window_Is_Open(name)) << name;
  }
  EXPECT_EQ(Find<QLabel>("Label_Axis_Unit_X").text(), "mm");
}

TEST_F(Windows_Test, A_Dropped_Program_Is_Opened_What_Is_No_File_Changes_Nothing) {
  Drop(Write_Program("dropped.gc", "G0 X1\nG0 X2\n"));
  EXPECT_EQ(GCodeLineCount(), 2);
  for (const std::string& path : {Folder.File("missing.gc"), Folder.Path}) {
    SCOPED_TRACE(path);
    const int beeps = scripted.Beeps;
    const auto boxes = scripted.Boxes.size();
    Drop(path);
    EXPECT_EQ(GCodeLineCount(), 2);
    EXPECT_TRUE(scripted.Beeps > beeps || scripted.Boxes.size() > boxes);
  }
}

TEST_F(Windows_Test, A_Recent_File_That_Has_Gone_Is_Told_And_Changes_Nothing) {
  Open("first.gc", "G0 X1\n");
  Drop(Write_Program("second.gc", "G0 X1\nG0 X2\n"));
  std::filesystem::remove(Folder.File("second.gc"));
  Open("third.gc", "G0 X3\nG0 X4\nG0 X5\n");
  for (QAction* action : Window->findChildren<QAction*>()) {
    if (action->objectName().startsWith("Menu_File_File") && action->text().contains("second")) {
      action->trigger();
      break;
    }
  }
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Text, "File not found : " + Folder.File("second.gc"));
  EXPECT_EQ(GCodeLineCount(), 3);
}

}  // namespace
}  // namespace norvik
