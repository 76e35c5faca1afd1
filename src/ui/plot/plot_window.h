// plot_window.h: the window `Plot`: the program in 3D, the Z strip, the tools and viewpoints.
#pragma once

#include <array>

#include <QLabel>
#include <QWidget>

class QBoxLayout;
class QSpinBox;
class QToolButton;

namespace norvik {

class Plot_View;
class Program_View;

class Plot_Window : public QWidget {
 public:
  explicit Plot_Window(QWidget* parent = nullptr);
  ~Plot_Window() override;

  // Copies `Plot_Form` to the tools.
  void Show_Form();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  QWidget* Build_Zoom_Frame();
  QWidget* Build_Viewpoint_Frame();
  QWidget* Build_Turn_Frame();
  int Place_Tools(int top);
  void Place_Surfaces();
  void Show_Notice();
  void Show_Legend();

  Program_View* Picture1;
  Plot_View* Picture_ZAxis;
  QWidget *Frame_Zoom, *Frame_3D, *Frame_Turn;
  QLabel* Legend = nullptr;
  QLabel* Notice = nullptr;  // that the picture is not that of the text
  QToolButton *Zoom_In = nullptr, *Zoom_Win = nullptr, *Pan = nullptr;
  std::array<QSpinBox*, 3> Angles{};
};

}  // namespace norvik
