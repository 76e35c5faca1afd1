// port_setup_window.h: the window `Port_Setup`: which pin or bit is what, motors, port access, and
// the pages of a serial board.
#pragma once

#include "ui/setup/serial_page_view.h"

#include <array>

#include <QWidget>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QRadioButton;
class QTabWidget;

namespace norvik {

class Pin_Table;

class Port_Setup_Window : public QWidget {
 public:
  explicit Port_Setup_Window(QWidget* parent = nullptr);

 private:
  QWidget* Build_Pages();
  QWidget* Build_Side();
  void Build_Port(QFormLayout& form);
  void Build_Motors(QFormLayout& form);
  QWidget* Build_Buttons();
  void Show_Form();
  void Show_Fitting_Page();
  void Look_At_Board();
  void Apply();

  Pin_Table* Pins;
  std::array<QRadioButton*, 2> Pages{};  // Bit Setup, Pin Setup
  QComboBox *Port_Type = nullptr, *Connector = nullptr, *Access = nullptr;
  QComboBox *Motors = nullptr, *Off_Time = nullptr;
  QLineEdit *MCode_High = nullptr, *MCode_Low = nullptr;
  Serial_Page_View Serial;
  QTabWidget* Tabs = nullptr;
  QLabel* Health = nullptr;
  QLabel* Hint = nullptr;
};

}  // namespace norvik
