// The windows themselves: their memory, other setups, and files that arrive or do not.
#include "plot/nist_plot.h"
#include "ui/plot/plot_view.h"
#include "ui_fixture.h"

#include <filesystem>
#include <set>

#include <QAbstractButton>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QScrollArea>

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

// What the text of a label or button takes, with its picture and a little air; empty: no text.
QSize Room_Of_Text(const QWidget& part) {
  const QString text = part.property("text").toString();
  if (text.isEmpty()) return {};
  const QSize drawn = part.fontMetrics().size(0, text);
  const int width = drawn.width(), height = drawn.height();
  if (const auto* label = qobject_cast<const QLabel*>(&part)) {
    if (label->wordWrap() || Qt::mightBeRichText(text)) return {};
    const int frame = 2 * (label->margin() + label->frameWidth());
    return {width + frame, height + frame};
  }
  const auto* button = qobject_cast<const QAbstractButton*>(&part);
  if (button == nullptr) return {};
  const int picture = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
  return {width + picture + 8, height + 4};
}

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

TEST_F(Windows_Test, Reset_Puts_The_Windows_Back_And_The_Next_Start_Finds_Them_There) {
  const QRect before = Frame_Of("GCode").geometry();
  Frame_Of("GCode").setGeometry(40, 30, 500, 300);
  Frame_Of("Plot").showMaximized();
  Choose("Menu_View_Reset_Positions");
  QCoreApplication::processEvents();
  EXPECT_FALSE(Frame_Of("Plot").isMaximized());
  const QRect reset = Frame_Of("GCode").geometry();
  EXPECT_NE(reset, QRect(40, 30, 500, 300));
  EXPECT_GE(reset.top(), before.top() / 2);
  EXPECT_FALSE(reset.intersects(Frame_Of("CNC_Controls").geometry()));
  Start_Again();
  EXPECT_EQ(Frame_Of("GCode").geometry(), reset);
}

TEST_F(Windows_Test, A_Maximised_Plot_Keeps_Its_Normal_Size_And_Maximises_Nothing_Else) {
  const QRect place(30, 20, 500, 400);
  Frame_Of("Plot").setGeometry(place);
  Frame_Of("Plot").showMaximized();
  EXPECT_TRUE(Find("Command_Bar_EStop").isVisible());
  Choose("Menu_Window_CNC_Controls");
  EXPECT_FALSE(Frame_Of("CNC_Controls").isMaximized());
  Choose("Menu_Window_Plot");
  Start_Again();
  EXPECT_TRUE(Frame_Of("Plot").isMaximized());
  EXPECT_FALSE(Frame_Of("CNC_Controls").isMaximized());
  EXPECT_FALSE(Frame_Of("GCode").isMaximized());
  Frame_Of("Plot").showNormal();
  EXPECT_EQ(Frame_Of("Plot").geometry(), place);
}

TEST_F(Windows_Test, The_Layout_Of_The_Last_Time_Holds_Whatever_It_Is) {
  Choose("Menu_Window_JogKey");
  Choose("Menu_Window_Port_IO");
  for (const char* name : {"GCode", "CNC_Controls"}) Frame_Of(name).close();
  Start_Again();
  for (const char* name : {"JogKey", "Port_IO", "Plot"}) {
    EXPECT_TRUE(Window->Tool_Window_Is_Open(name)) << name;
  }
  for (const char* name : {"GCode", "CNC_Controls"}) {
    EXPECT_FALSE(Window->Tool_Window_Is_Open(name)) << name;
  }
  EXPECT_FALSE(Find("JogKey").hasFocus()) << "keys that move the machine ask for a click first";
}

TEST_F(Windows_Test, A_Factory_Reset_In_A_First_Run_Leaves_The_Windows_Open) {
  Choose("Menu_Window_Simulated_Machine");
  scripted.Answer_Box(Box_Answer::Yes);
  scripted.Answer_Box(Box_Answer::Ok);
  Choose("Menu_Machine_Restore");
  for (const char* name : {"Plot", "GCode", "CNC_Controls", "Simulated_Machine"}) {
    EXPECT_TRUE(Window->Tool_Window_Is_Open(name)) << name;
  }
}

TEST_F(Windows_Test, The_Z_Strip_Follows_Its_Size_And_Is_Empty_Without_The_Grid) {
  const auto inked = [this] {
    const Plot_Image& image = dynamic_cast<Plot_View&>(Find("Picture_ZAxis")).Surface().Image();
    int count = 0;
    for (const std::uint32_t pixel : image.Pixels) count += pixel != image.Pixels.front();
    return count;
  };
  const int before = inked();
  Frame_Of("Plot").resize(Frame_Of("Plot").size() - QSize(0, 150));
  QCoreApplication::processEvents();
  EXPECT_GT(inked(), 20);
  EXPECT_NE(inked(), before);
  MachineSetup.Plot_Show_Grid = 0;
  Choose("Menu_View_Refresh");
  EXPECT_EQ(inked(), 0);
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

TEST_F(Windows_Test, The_Simulated_Machine_Has_A_Place_Of_Its_Own_And_Comes_Back) {
  Choose("Menu_Window_Simulated_Machine");
  EXPECT_FALSE(Frame_Of("Simulated_Machine").geometry().intersects(Frame_Of("Plot").geometry()));
  const QRect place(60, 200, 620, 400);
  Frame_Of("Simulated_Machine").setGeometry(place);
  Start_Again();
  EXPECT_TRUE(Window->Tool_Window_Is_Open("Simulated_Machine"));
  EXPECT_EQ(Frame_Of("Simulated_Machine").geometry(), place);
}

TEST_F(Windows_Test, Windows_That_Stood_Off_Every_Screen_Are_Brought_Back) {
  Start_Again([this] {
    Write_Machine("work/mill.ini",
                  "[Form Position]\nMain_WindowState=0\nMain_Top=-90000\nMain_Width=24000\n"
                  "Main_Height=15000\nPlot_Left=450000\nPlot_Top=-300000\nGCode_Left=-99999999\n"
                  "GCode_Width=7\nCNC_Controls_Height=none\n");
  });
  EXPECT_GE(Window->geometry().top(), 0);
  for (const char* name : {"Plot", "GCode", "CNC_Controls"}) {
    const QMdiSubWindow& frame = Frame_Of(name);
    EXPECT_TRUE(frame.parentWidget()->rect().contains(frame.geometry())) << name;
    EXPECT_GE(frame.width(), 100) << name;
  }
}

// What an operator reads or presses is whole at every size of the screen: 1600 x 1000 at a scale of
// 100, 150 and 200 %, and 1024 x 600.
TEST_F(Windows_Test, No_Text_Or_Button_Is_Cut_On_A_Small_Or_Finely_Scaled_Screen) {
  for (const QSize size :
       {QSize(1600, 1000), QSize(1066, 666), QSize(1024, 600), QSize(800, 500)}) {
    SCOPED_TRACE(std::to_string(size.width()));
    Start_Again([&] {
      scripted.Screen_Size = {0, 0, size.width(), size.height()};
      Write_Machine("work/mill.ini", Main_Window_Size(size.width(), size.height()));
    });
    Choose("Menu_Window_Simulated_Machine");
    for (const char* name :
         {"Plot", "GCode", "CNC_Controls", "Simulated_Machine", "JogKey", "Port_IO",
          "Machine_Check", "System_Timing", "Port_Setup", "Table_Setup"}) {
      Window->Show_Tool_Window(name);
      QCoreApplication::processEvents();
      const QWidget& window = Find(name);
      for (const QWidget* part : window.findChildren<QWidget*>()) {
        const QSize needed = Room_Of_Text(*part);
        if (needed.isEmpty() || !part->isVisibleTo(&window)) continue;
        if (part->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored) continue;
        const std::string which = std::string(name) + " " + part->objectName().toStdString() + " " +
                                  part->property("text").toString().toStdString();
        EXPECT_GE(part->width(), needed.width()) << which;
        EXPECT_GE(part->height(), needed.height()) << which;
        const QRect place(part->mapTo(&window, QPoint(0, 0)), part->size());
        EXPECT_GE(place.left(), 0) << which;
        EXPECT_LE(place.right(), window.width()) << which;
      }
    }
    for (const QScrollArea* area : Window->findChildren<QScrollArea*>()) {
      if (!area->isVisible()) continue;  // laid out when it is shown
      EXPECT_LE(area->widget()->width(), area->viewport()->width())
          << area->parent()->objectName().toStdString();
    }
  }
}

TEST_F(Windows_Test, A_Machine_File_With_Nonsense_Colours_And_Sizes_Gives_Usable_Windows) {
  Start_Again([this] {
    Write_Machine("work/mill.ini",
                  Main_Window_Size(1600, 1000) +
                      "Plot_Width=-5\nPlot_Height=1e300\nPlot_WindowState=77\n"
                      "CNC_Controls_Width=999999999999\n"
                      "[General]\nPlot_Color_0=-1\nPlot_Color_1=99999999999\nPlot_Color_2=green\n"
                      "Plot_Color_3=1e40\nPlot_Color_4=nan\nPlot_Bit_Radious=-3\n"
                      "Arc_Resolution=-8\n[Axis]\nAxis_Depth_1=-1e30\nAxis_Depth_3=nan\n");
  });
  for (const char* name : {"Plot", "GCode", "CNC_Controls"}) {
    const QMdiSubWindow& frame = Frame_Of(name);
    EXPECT_TRUE(frame.parentWidget()->rect().contains(frame.geometry())) << name;
  }
  Open("part.gc", "G0 X0 Y0\nG1 X1 Y1\n");
  Click("Command_Update");
  Click("Command_Zoom_All");
  // Something can be told from the ground.
  const QImage seen = Find("Picture1").grab().toImage().convertToFormat(QImage::Format_RGB32);
  std::set<QRgb> colors;
  for (int y = 0; y < seen.height(); ++y) {
    for (int x = 0; x < seen.width(); ++x) colors.insert(seen.pixel(x, y));
  }
  EXPECT_GE(colors.size(), 2U);
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

// None of these may take the program that is open with it.
TEST_F(Windows_Test, A_File_That_Cannot_Be_Loaded_Is_Told_And_The_Program_Stays) {
  Open("part.gc", "G0 X1\nG0 X2\n");
  const std::string huge = Write_Program("huge.gc", "G0 X1\n");
  std::filesystem::resize_file(huge, 2ULL << 30);  // no block of it lies on the disk
  const std::string vanishing = Write_Program("vanishing.gc", "G0 X1\n");
  const std::string one_line = Write_Program("picture.gc", std::string(3'000'000, 'X'));
  struct {
    std::string Path, Told;
  } const rows[] = {
      {huge, "2048 MB"}, {vanishing, "Cannot read"}, {one_line, "line 1 has 3000000"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Path);
    const auto boxes = scripted.Boxes.size();
    // The loading announces itself after the look whether the file exists.
    const auto shown = Messages_Host.Panel_Changed;
    Messages_Host.Panel_Changed = [&](int panel) {
      shown(panel);
      if (row.Path == vanishing && Messages.Panel[1] == "Open GCode: Loading File...") {
        std::filesystem::remove(vanishing);
      }
    };
    Drop(row.Path);
    Messages_Host.Panel_Changed = shown;
    ASSERT_EQ(scripted.Boxes.size(), boxes + 1);
    EXPECT_THAT(scripted.Boxes.back().Text, testing::HasSubstr(row.Told));
    EXPECT_THAT(scripted.Boxes.back().Text, testing::HasSubstr(row.Path));
    EXPECT_EQ(GCodeLineCount(), 2);
    EXPECT_EQ(Text_Of("Text_GCode").trimmed(), "G0 X1\nG0 X2");
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
