// What no window may do beside a moving machine, and what stays in reach whatever is closed.
#include "control/run/cnc_controller.h"
#include "core/error_log.h"
#include "core/operation.h"
#include "ui/main/safety_bar.h"
#include "ui/widgets/theme.h"
#include "ui_fixture.h"

#include <algorithm>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QSpinBox>
#include <QTextCursor>
#include <QThread>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

namespace norvik {
namespace {

struct Calm_Test : Ui_Test {
  // Runs `action`; whether the toolkit waited in an event loop of its own meanwhile. Such a loop is
  // left again, so that a failure does not hang the test.
  static bool Waits_In_A_Loop(const std::function<void()>& action) {
    bool waited = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      if (QThread::currentThread()->loopLevel() == 0) return;
      waited = true;
      if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
      if (QWidget* focus = QApplication::focusWidget()) QTest::keyClick(focus, Qt::Key_Escape);
    });
    watch.start(0);
    action();
    watch.stop();
    while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    return waited;
  }
  static void Drag_Across(QWidget& widget, QPoint from) {
    QTest::mousePress(&widget, Qt::LeftButton, Qt::NoModifier, from);
    for (int step = 1; step <= 8; ++step) {
      QMouseEvent move(QEvent::MouseMove, from + QPoint(step * 20, 0),
                       widget.mapToGlobal(from + QPoint(step * 20, 0)), Qt::NoButton,
                       Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&widget, &move);
    }
    QTest::mouseRelease(&widget, Qt::LeftButton, Qt::NoModifier, from + QPoint(160, 0));
  }
  void Wheel_Over(QWidget& widget) {
    const QPointF at(widget.width() / 2.0, widget.height() / 2.0);
    QWheelEvent turn(at, widget.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &turn);
  }
};

TEST_F(Calm_Test, Nothing_That_A_Mouse_Does_To_A_Widget_Waits_In_A_Loop) {
  for (const char* name : {"JogKey", "Port_IO", "Simulated_Machine"}) {
    Choose(QString("Menu_Window_") + name);
  }
  Find<QPlainTextEdit>("Text_GCode").setPlainText("G1 X1 Y1 F10 (a long line to take hold of)");
  int walked = 0;
  for (const auto& widget : Window->findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    SCOPED_TRACE(widget->metaObject()->className() + std::string(" ") +
                 widget->objectName().toStdString());
    ++walked;
    EXPECT_FALSE(Waits_In_A_Loop([&] {
      QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(3, 3),
                              widget->mapToGlobal(QPoint(3, 3)));
      QApplication::sendEvent(widget, &event);
    })) << "context menu";
    if (auto* box = qobject_cast<QComboBox*>(widget)) {
      EXPECT_FALSE(Waits_In_A_Loop([&] { box->showPopup(); })) << "list";
      box->hidePopup();
    }
    // A button's own menu is waited for.
    if (auto* button = qobject_cast<QPushButton*>(widget)) {
      EXPECT_EQ(button->menu(), nullptr);
    }
    if (auto* button = qobject_cast<QToolButton*>(widget)) {
      EXPECT_EQ(button->menu(), nullptr);
    }
    if (auto* line = qobject_cast<QLineEdit*>(widget)) {
      line->selectAll();
      EXPECT_FALSE(Waits_In_A_Loop([&] { Drag_Across(*line, line->rect().center() / 2); }))
          << "drag of text";
    }
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) {
      text->selectAll();
      EXPECT_FALSE(Waits_In_A_Loop([&] {
        Drag_Across(*text->viewport(), {Text_Height(), Text_Height() / 2});
      })) << "drag of text";
    }
    if (qobject_cast<QMdiSubWindow*>(widget) != nullptr) {
      for (const QPoint from : {QPoint(widget->width() / 2, Text_Height() / 2),
                                widget->rect().bottomRight() - QPoint(1, 1)}) {
        EXPECT_FALSE(Waits_In_A_Loop([&] { Drag_Across(*widget, from); })) << "title bar or edge";
      }
    }
  }
  EXPECT_GT(walked, 100);
}

TEST_F(Calm_Test, The_Wheel_Changes_No_Box_That_Has_Not_The_Focus) {
  auto& box = Find<QComboBox>("Combo_Goto");
  box.setCurrentIndex(1);
  Find("Text_Goto").setFocus();
  Wheel_Over(box);
  EXPECT_EQ(box.currentIndex(), 1);
  EXPECT_FALSE(box.hasFocus());
  auto& angle = Find<QSpinBox>("UpDown_3D_Viewpoint_0");
  const int before = angle.value();
  Wheel_Over(angle);
  EXPECT_EQ(angle.value(), before);
  box.setFocus();
  Wheel_Over(box);
  EXPECT_EQ(box.currentIndex(), 2);
}

TEST_F(Calm_Test, Stop_And_EStop_Are_In_Reach_With_Every_Window_Closed) {
  Open("long.gc", "G1 X5 F10\n");
  Click("Command_Update");
  for (const char* name : {"CNC_Controls", "GCode", "Plot"}) Frame_Of(name).close();
  bool moved = false;
  std::string activity;
  In_Yield_When([] { return Runs(Operation::Move) && True_Position(1) > 0.1; },
                [&] {
                  moved = Find("Command_Bar_Stop").isEnabled() &&
                          Find("Command_Bar_Stop").isVisible() &&
                          Find("Command_Bar_EStop").isVisible() &&
                          Text_Of("Label_Bar_State") == "CNC Running";
                  Command_CNC_Pause_Click();
                  static_cast<Safety_Bar&>(Find("Safety_Bar")).Show_State();
                  activity = Text_Of("Label_Bar_Activity").toStdString();
                  Click("Command_Bar_EStop");
                });
  Choose("Menu_Machine_Play");
  EXPECT_TRUE(moved);
  EXPECT_THAT(activity, testing::StartsWith("pausing: ends with this move, "));
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_LT(True_Position(1), 1);
  scripted.Run_For(0.3);
  EXPECT_EQ(Text_Of("Label_Bar_State"), "MOTORS DISABLED");
  // Pressed again, in a fright, the key enables nothing.
  Choose("Menu_Machine_EStop");
  EXPECT_TRUE(Machine.EStop_Flag);
}

TEST_F(Calm_Test, What_Stands_On_A_Coloured_Face_Can_Be_Read) {
  // As painted: the style shades the colour that it is given.
  const auto worst = [](QPushButton& button) {
    const QImage face = button.grab().toImage();
    const QColor ink = button.palette().color(QPalette::ButtonText);
    double least = 21;
    for (const int y : {face.height() / 4, face.height() / 2, face.height() * 3 / 4})
      least = std::min(least, Contrast(face.pixelColor(face.width() - 6, y), ink));
    return least;
  };
  EXPECT_GE(worst(Find<QPushButton>("Command_Bar_EStop")), Readable_Contrast);
  auto& button = Find<QPushButton>("Command_EStop");
  const QRect place = button.geometry();
  Click("Command_EStop");
  ASSERT_EQ(button.text(), "MOTORS DISABLED");
  QCoreApplication::processEvents();
  EXPECT_EQ(button.geometry(), place);  // it does not move under the hand
  EXPECT_GE(worst(button), Readable_Contrast);
  EXPECT_NE(Find("Command_CNC_Play").palette().color(QPalette::ButtonText),
            Find("Command_CNC_Pause").palette().color(QPalette::ButtonText));
  Click("Command_EStop");
  EXPECT_EQ(Find("Command_CNC_Play").palette().color(QPalette::ButtonText),
            Find("Command_CNC_Pause").palette().color(QPalette::ButtonText));
  // The dark theme's red is another one.
  EXPECT_EQ(Ink_On_Face(QColor(0xE5484D)), QColor(Qt::black));
  EXPECT_EQ(Ink_On_Face(QColor(0xC62828)), QColor(Qt::white));
}

TEST_F(Calm_Test, The_Error_Log_Opens_And_An_Angle_Is_Asked_For) {
  ErrorLogWrite("Something worth reading");
  Choose("Menu_Help_Error_Log");
  EXPECT_THAT(Text_Of("Text_Error_Log").toStdString(),
              testing::HasSubstr("Something worth reading"));
  scripted.Input_Answers.push_back("45");
  Click("Label_3D_Viewpoint_1");
  EXPECT_EQ(Find<QSpinBox>("UpDown_3D_Viewpoint_1").value(), 45);
}

}  // namespace
}  // namespace norvik
