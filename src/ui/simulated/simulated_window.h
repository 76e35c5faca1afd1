// simulated_window.h: the panel of the simulated machine: what it does, and the operator's hands.
#pragma once

#include "platform/platform.h"
#include "simulate/simulated_machine.h"

#include <array>

#include <QLabel>
#include <QWidget>

class QBoxLayout;
class QListWidget;
class QPushButton;

namespace norvik {

class Simulated_Window : public QWidget {
 public:
  explicit Simulated_Window(QWidget* parent = nullptr);
  ~Simulated_Window() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* Build_Axes();
  QWidget* Build_Inputs();
  QWidget* Build_Outputs();
  QWidget* Build_Speed();
  void Show_View();
  void Show_Axis(int axis, const Simulated_Axis_View& view);
  void Show_Input(int input, const Simulated_Input_View& view);

  struct Axis_Row {
    QLabel *Position, *Apart, *Rate, *State;
  };
  std::array<Axis_Row, 5> Axes{};
  std::array<QPushButton*, 6> Inputs{};
  std::array<QLabel*, 6> Outputs{};
  QBoxLayout* Columns = nullptr;
  QLabel* Spindle = nullptr;
  QListWidget* Findings = nullptr;
  std::vector<std::string> Shown_Findings;
  Timer_Id Timer = 0;
};

}  // namespace norvik
