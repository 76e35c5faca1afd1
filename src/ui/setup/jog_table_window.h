// jog_table_window.h: the page of `Table_Setup` that says which key or joystick button moves what.
#pragma once

#include "platform/platform.h"
#include "ui/widgets/form_binding.h"

#include <array>

#include <QWidget>

class QListWidget;

namespace norvik {

class JogKey_Test_Window;

class Jog_Table_Window : public QWidget {
 public:
  explicit Jog_Table_Window(QWidget* parent = nullptr);
  ~Jog_Table_Window() override;

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  QWidget* Build_Keys();
  QWidget* Build_Joystick();
  QWidget* Build_Buttons();
  void Show_Form();
  void Show_Raw_Values();

  Form_Binding Binding;
  std::array<QLabel*, 15> Key_Labels{};
  QListWidget* Raw_Values = nullptr;
  QLabel* Hint = nullptr;
  JogKey_Test_Window* Test;
  Timer_Id Timer_Joystick = 0;
};

}  // namespace norvik
