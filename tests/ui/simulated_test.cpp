// The panel of the simulated machine: faults, hands, findings, the view from above, the settings.
#include "simulate/board/board.h"
#include "simulate/board_port.h"
#include "ui_fixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QTabWidget>
#include <QTableWidget>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Simulated_Panel_Test : Ui_Test {
  Simulated_Panel_Test() {
    Choose("Menu_Window_Simulated_Machine");
    Look();
  }
  // The panel's next look at the machine.
  void Look() {
    scripted.Advance(0.207);  // beside the pulses of noise
    Platform.Do_Events();
  }
  // Chooses an entry of the menu of faults that is open.
  void Choose_Fault(int input, const QString& words) {
    auto& menu = Find<QMenu>(QString("Menu_Faults_%1").arg(input));
    for (QAction* action : menu.actions()) {
      if (action->text() == words) action->trigger();
    }
    menu.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Look();
  }
  void Steps(int axis, int count, bool negative = false) {
    Step_Request request;
    request.Steps[axis] = count;
    request.Negative[axis] = negative;
    request.Start = request.Run = request.End = 10;
    request.No_Rate_Check = true;
    Step_Engine_Move(request);
    Look();
  }
  QString Items_Noticed() {
    QString all;
    auto& list = Find<QListWidget>("List_Noticed");
    for (int row = 0; row < list.count(); ++row) all += list.item(row)->text() + "\n";
    return all;
  }
};

TEST_F(Simulated_Panel_Test, Faults_Are_Set_By_The_Menu_And_Stand_On_The_Button_In_Words) {
  Click("Command_Faults_1");
  Choose_Fault(1, "Stuck on");
  EXPECT_EQ(Text_Of("Command_Input_1"), "X switch: ON\nstuck on");
  // A right click opens the same menu.
  auto& button = Find("Command_Input_1");
  emit button.customContextMenuRequested(QPoint(3, 3));
  Choose_Fault(1, "Noise pulses");
  EXPECT_EQ(Text_Of("Command_Input_1"), "X switch: ON\nstuck on\nnoise");
  Click("Command_Faults_1");
  Choose_Fault(1, "Noise pulses");
  Click("Command_Faults_1");
  Choose_Fault(1, "Contact works");
  EXPECT_EQ(Text_Of("Command_Input_1"), "X switch: off");
  Click("Command_Input_1");
  Look();
  EXPECT_EQ(Text_Of("Command_Input_1"), "X switch: ON\nheld on");
}

TEST_F(Simulated_Panel_Test, The_EStop_Latches_And_May_Cut_The_Power) {
  Click("Command_Faults_0");
  Choose_Fault(0, "Stuck off");
  Click("Command_Input_0");
  Look();
  EXPECT_EQ(Text_Of("Command_Input_0"), "E-STOP PRESSED\nreads off\nstuck off");
  Find<QCheckBox>("Check_EStop_Cuts_Power").click();
  EXPECT_TRUE(View_Simulated_Machine().Power_Cut);
  Steps(1, 10);
  EXPECT_THAT(Items_Noticed().toStdString(), HasSubstr("a step after the E-stop cut the power"));
  Click("Command_Input_0");
  Look();
  EXPECT_EQ(Text_Of("Command_Input_0"), "E-stop released\nreads off\nstuck off");
  EXPECT_FALSE(View_Simulated_Machine().Power_Cut);
}

TEST_F(Simulated_Panel_Test, Lost_Steps_Are_Made_Good_By_Hand_And_Findings_Cleared) {
  Simulated_Machine.Axes[1].Settings.Travel_High = 0.01;
  Simulated_Machine.Axes[1].Settings.Overtravel = 0;
  Settings_Changed(1);
  Steps(1, 200);
  EXPECT_NE(Text_Of("Label_Steps_Apart_X"), "0");
  EXPECT_THAT(Items_Noticed().toStdString(), HasSubstr("X: ran into the end stop"));
  Click("Command_Clear_Findings");
  EXPECT_EQ(Items_Noticed(), "Nothing has been noticed yet\n");
  Simulated_Machine.Axes[1].Settings.Travel_High = 5;
  Settings_Changed(1);
  Click("Command_Place_Believed");
  EXPECT_EQ(Text_Of("Label_Steps_Apart_X"), "0");

  Click("Command_Place_Axis");
  Find<QComboBox>("Combo_Place_Axis").setCurrentIndex(1);
  auto& position = Find<QLineEdit>("Text_Place_Position");
  position.setText("here");
  Click("Command_Place");
  EXPECT_THAT(Text_Of("Label_Place").toStdString(), HasSubstr("\"here\" is no number. Write"));
  position.setText("1,5");
  Click("Command_Place");
  EXPECT_EQ(Text_Of("Label_Place"), "Y stands at 1.5000.");
  Look();
  EXPECT_EQ(Text_Of("Label_True_Position_Y"), "1.5000");
  position.setText("5000");
  Click("Command_Place");
  EXPECT_THAT(Text_Of("Label_Place").toStdString(), HasSubstr("is its hard stop"));
}

TEST_F(Simulated_Panel_Test, The_Pointer_Goes_Along_The_Travel) {
  auto& bar = Find<Travel_Bar>("Travel_X");
  const Simulated_Axis_Settings& s = Simulated_Machine.Axes[1].Settings;
  const double low = bar.Place_Of(s.Travel_Low), high = bar.Place_Of(s.Travel_High);
  EXPECT_GT(low, 0);
  EXPECT_LT(high, bar.width());
  EXPECT_NEAR(bar.Place_Of((s.Travel_Low + s.Travel_High) / 2), (low + high) / 2, 1e-6);
  EXPECT_EQ(bar.Place_Of(1e9), bar.Place_Of(s.Travel_High + s.Overtravel)) << "not off the bar";
}

// Ink in the picture of the trail around a place of the view.
bool Has_Ink(const Top_View& view, const QPointF& place) {
  const QImage image = view.Trail_Picture().toImage();
  const double ratio = image.devicePixelRatio();
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy) {
      const QPoint at((place * ratio).toPoint() + QPoint(dx, dy));
      if (image.rect().contains(at) && qAlpha(image.pixel(at)) > 60) return true;
    }
  }
  return false;
}

TEST_F(Simulated_Panel_Test, The_Trail_Is_Drawn_As_It_Grows_And_Anew_After_A_Change_Of_Size) {
  Find<QTabWidget>("Tabs").setCurrentIndex(1);
  auto& view = Find<Top_View>("Top_View");
  Look();
  norvik::Output_On(1);
  Steps(1, 3000);
  const double x = True_Position(1), y = True_Position(2);
  ASSERT_GT(x, 0.1);
  EXPECT_TRUE(Has_Ink(view, view.Above(x / 2, y)));
  EXPECT_FALSE(Has_Ink(view, view.Above(x / 2, y + 3)));
  Steps(2, 3000);
  EXPECT_TRUE(Has_Ink(view, view.Above(x, True_Position(2) / 2))) << "what is new";
  Find<QCheckBox>("Check_Trail_Only").click();
  EXPECT_TRUE(Has_Ink(view, view.Above(x / 2, y))) << "drawn anew, larger";
  EXPECT_TRUE(Has_Ink(view, view.Beside(x / 2, 0)));
  Frame_Of("Simulated_Machine").resize(700, 400);
  Look();
  EXPECT_TRUE(Has_Ink(view, view.Above(x / 2, y)));
  Click("Command_Clear_Trail");
  EXPECT_FALSE(Has_Ink(view, view.Above(x / 2, y)));
}

// Off is dotted, also where the points lie closer than the dots.
TEST_F(Simulated_Panel_Test, The_Line_Style_Tells_The_Spindle) {
  Find<QTabWidget>("Tabs").setCurrentIndex(1);
  auto& view = Find<Top_View>("Top_View");
  Look();
  const auto inked = [&](double from, double to) {
    const QImage image = view.Trail_Picture().toImage();
    const QPointF a = view.Above(from, True_Position(2)), b = view.Above(to, True_Position(2));
    int count = 0;
    for (int x = qRound(a.x()); x < qRound(b.x()); ++x) {
      count += qAlpha(image.pixel(x, qRound(a.y()))) > 100 ? 1 : 0;
    }
    return static_cast<double>(count) / (b.x() - a.x());
  };
  norvik::Output_Off(1);
  Steps(1, 8000);
  const double middle = True_Position(1);
  norvik::Output_On(1);
  Steps(1, 8000);
  Find<QCheckBox>("Check_Trail_Only").click();
  EXPECT_GT(inked(0.05 * middle, 0.95 * middle), 0.1);
  EXPECT_LT(inked(0.05 * middle, 0.95 * middle), 0.7);
  EXPECT_GT(inked(1.05 * middle, 1.95 * middle), 0.95);
}

TEST_F(Simulated_Panel_Test, Settings_Count_At_Once_And_Are_Saved) {
  Click("Command_Simulation_Settings");
  auto& table = Find<QTableWidget>("Table_Settings");
  const auto row_of = [&](const QString& words) {
    for (int row = 0; row < table.rowCount(); ++row) {
      if (table.verticalHeaderItem(row)->text() == words) return row;
    }
    return -1;
  };
  QTableWidgetItem* backlash = table.item(row_of("Backlash, units"), 1);
  backlash->setText("0,02");
  EXPECT_EQ(Simulated_Machine.Axes[2].Settings.Backlash, 0.02);
  EXPECT_EQ(backlash->text(), "0.02");
  backlash->setText("-1");
  EXPECT_EQ(backlash->text(), "0.02");
  EXPECT_THAT(Text_Of("Label_Settings").toStdString(), HasSubstr("write a number from 0"));
  table.item(row_of("Driver loses such steps"), 0)->setCheckState(Qt::Checked);
  EXPECT_TRUE(Simulated_Machine.Axes[1].Settings.Strict);
  auto& top = Find<QLineEdit>("Setting_Material_Top");
  top.setText("0.1");
  emit top.editingFinished();
  EXPECT_EQ(Simulated_Machine.Material_Top, 0.1);
  Click("Command_Save_Settings");
  EXPECT_EQ(Text_Of("Label_Settings"), "Saved.");
  EXPECT_EQ(ReadPointer("Simulated Machine", "Backlash_2"), "0.02");
  EXPECT_EQ(ReadPointer("Simulated Machine", "Backlash_1"), "");
  Click("Command_Restore_Defaults");
  EXPECT_EQ(backlash->text(), "0");
  EXPECT_EQ(top.text(), "");
  EXPECT_FALSE(Simulated_Machine.Axes[1].Settings.Strict);
}

// Wide: all beside each other. Default place: the view is a page. Narrow: findings too. The E-stop
// is in sight in each.
TEST_F(Simulated_Panel_Test, Every_Size_Shows_The_EStop_And_Reaches_Every_Part) {
  for (const auto& [width, height, pages] :
       {std::tuple{1590, 380, 0}, {865, 375, 2}, {560, 480, 3}}) {
    auto& frame = Frame_Of("Simulated_Machine");
    frame.setGeometry(0, 0, width, height);
    Look();
    auto& tabs = Find<QTabWidget>("Tabs");
    EXPECT_EQ(tabs.count(), pages) << width;
    const QWidget& estop = Find("Command_Input_0");
    const QRect place(estop.mapTo(&frame, QPoint()), estop.size());
    EXPECT_TRUE(frame.rect().contains(place)) << width;
    for (const char* part : {"Top_View", "List_Noticed", "Command_Input_5"}) {
      QWidget& widget = Find(part);
      for (int page = 0; page < pages && !widget.isVisible(); ++page) tabs.setCurrentIndex(page);
      EXPECT_TRUE(widget.isVisible()) << part << " at " << width;
    }
  }
}

// The board is there once its port has been opened; its hands act on the line and on the machine.
TEST_F(Simulated_Panel_Test, A_Controller_Board_Shows_Itself_And_Trains_Faults) {
  EXPECT_FALSE(Find("Group_Board").isVisible());
  Install_Simulated_Boards();
  const int handle = Platform.Serial_Open("simulated:pelmar", 115'200).Handle;
  ASSERT_GT(handle, 0);
  Look();
  EXPECT_TRUE(Find("Group_Board").isVisible());
  EXPECT_EQ(Text_Of("Label_Board_Entry"), "at rest");
  const std::vector<std::uint8_t> output_3{27, 13, 3, 43, 0};
  Platform.Serial_Write(handle, output_3);
  Look();
  EXPECT_THAT(Text_Of("Label_Board_State").toStdString(), HasSubstr("Outputs on: 3"));
  EXPECT_THAT(Text_Of("Label_Board_Link").toStdString(), HasSubstr("plugged in: 1 frames, 0 bad"));
  Click("Command_Board_Low_X");
  Look();
  EXPECT_EQ(Text_Of("Command_Board_Low_X"), "ON");
  EXPECT_TRUE(Low_Switch_On(Line_In_Use()->Board, 1));
  Click("Command_Board_Slip_Y");
  EXPECT_EQ(Line_In_Use()->Board.Axes[2].Settings.Slip, 0.05);
  Click("Command_Board_Watchdog");
  Click("Command_Board_Aux");
  Click("Command_Board_Restart");
  EXPECT_EQ(Line_In_Use()->Board.Watchdog_Errors, 1);
  EXPECT_EQ(Line_In_Use()->Board.Aux, Input_State::On);
  Look();
  EXPECT_THAT(Items_Noticed().toStdString(), HasSubstr("the board restarted"));
  Click("Command_Board_Unplug");
  Look();
  EXPECT_EQ(Platform.Serial_Available(handle), -1);
  EXPECT_THAT(Text_Of("Label_Board_Link").toStdString(), HasSubstr("UNPLUGGED"));
  Click("Command_Board_Unplug");
  EXPECT_GT(Platform.Serial_Open("simulated:pelmar", 115'200).Handle, 0);
  Forget_Simulated_Boards();
  Look();
  EXPECT_FALSE(Find("Group_Board").isVisible());
}

}  // namespace
}  // namespace norvik
