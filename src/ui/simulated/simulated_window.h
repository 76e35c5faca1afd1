// simulated_window.h: the panel of the simulated machine: what it does, and the operator's hands.
#pragma once

#include "platform/platform.h"
#include "simulate/simulated_machine.h"

#include <array>
#include <vector>

#include <QLabel>
#include <QWidget>

class QCheckBox;
class QDialog;
class QGridLayout;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace norvik {

class Axes_Panel;
class Board_Panel;
class Input_Button;
class View_Page;

// All drawing comes from one timer of 100 ms; nothing is shown, and nothing costs time, while the
// panel is closed.
class Simulated_Window : public QWidget {
 public:
  explicit Simulated_Window(QWidget* parent = nullptr);
  ~Simulated_Window() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* Build_Hands();
  QWidget* Build_Inputs();
  QWidget* Build_Outputs();
  QWidget* Build_Findings();
  QWidget* Build_EStop();
  QPushButton* Hand(const char* words, const char* name, const char* tip);
  void Place_Parts(int columns);
  void Show_View();
  void Show_Findings(const std::vector<std::string>& texts);

  QLabel* Head = nullptr;
  Board_Panel* Board = nullptr;
  Axes_Panel* Axes = nullptr;
  std::array<Input_Button*, 6> Inputs{};
  std::array<QLabel*, 6> Outputs{};
  QWidget *Left = nullptr, *Switches = nullptr, *Noticed = nullptr;
  View_Page* Above = nullptr;
  QTabWidget* Tabs = nullptr;
  QGridLayout* Grid = nullptr;
  int Columns = 0;
  QCheckBox* Cuts_Power = nullptr;
  QLabel* Spindle = nullptr;
  QListWidget* Findings = nullptr;
  QDialog *Settings = nullptr, *Place = nullptr;
  std::vector<std::string> Shown_Findings;
  Timer_Id Timer = 0;
};

}  // namespace norvik
